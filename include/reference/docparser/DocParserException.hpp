#pragma once

#include <reference/docparser/Export.hpp>

#include <foundation/core/except/IInternalException.hpp>

namespace reference::docparser {

/// The library's one exception: a required key is missing from a resource file (or a member
/// has the wrong JSON kind). It carries no message and no error information; loaders catch it
/// per file and treat that file as absent.
class REFDOC_API DocParserException : public foundation::core::except::IInternalException {
public:
    DocParserException() noexcept = default;
    DocParserException(const DocParserException&) = default;
    DocParserException& operator=(const DocParserException&) = default;
    ~DocParserException() noexcept override;

    const boost::exception_detail::clone_base* clone() const override;
    [[noreturn]] void rethrow() const override;

    /// Always "resource::docparser::DocParserException".
    const char* what() const noexcept override;
};

} // namespace reference::docparser
