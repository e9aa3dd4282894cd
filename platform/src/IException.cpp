#include <foundation/core/except/IException.hpp>
#include <foundation/core/except/IInternalException.hpp>

#include "TextCodec.hpp"

namespace foundation::core::except {

IException::~IException() noexcept = default;

std::u16string IException::convert_str(const std::u16string& text) const { return text; }

std::u16string IException::convert_str(const std::string& utf8Text) const {
    return platform::detail::widenFromUtf8(utf8Text);
}

std::u16string IException::ToUstringImpl() const { return convert_str(std::string(what())); }

IInternalException::~IInternalException() noexcept = default;

} // namespace foundation::core::except
