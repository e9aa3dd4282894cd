#pragma once

#include <refdoc/platform/Export.hpp>

#include <boost/exception/exception.hpp>

#include <string>

namespace foundation::core::except {

// Base of the host's exceptions: Boost.Exception state plus the clone base, so that an
// exception can be copied across threads and rethrown. Deliberately not a std::exception.
//
// Virtual operations in table order: clone, rethrow, destructor (from the clone base),
// then what, convert_str (UTF-16), convert_str (narrow), ToUstringImpl.
class REFDOC_PLATFORM_API IException : public boost::exception_detail::clone_base, public boost::exception {
public:
    ~IException() noexcept override;

    virtual const char* what() const noexcept = 0;

    // Turn a text into the framework's message form (UTF-16).
    virtual std::u16string convert_str(const std::u16string& text) const;
    virtual std::u16string convert_str(const std::string& utf8Text) const;

    // The exception's description as UTF-16, by default what() converted.
    virtual std::u16string ToUstringImpl() const;

protected:
    IException() = default;
    IException(const IException&) = default;
    IException& operator=(const IException&) = default;
};

} // namespace foundation::core::except
