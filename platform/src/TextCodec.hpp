#pragma once

#include <string>
#include <string_view>

namespace platform::detail {

// Conversions through the standard library's UTF-8/UTF-16 facet, as the host's message
// streams do. Ill-formed input is replaced piecewise by U+FFFD / '?' rather than failing.
std::string narrowFromUtf16(std::u16string_view text);
std::u16string widenFromUtf8(std::string_view text);

} // namespace platform::detail
