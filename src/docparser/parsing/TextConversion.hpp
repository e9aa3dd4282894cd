#pragma once

#include <string>
#include <string_view>

namespace reference::docparser::text {

// Widens bytes one to one (each byte becomes the code unit of the same value). Meant for 7-bit
// ASCII; bytes >= 0x80 come out as U+0080..U+00FF.
std::u16string asciiToUtf16(std::string_view bytes);

// Decodes UTF-8 into UTF-16, characters above U+FFFF as surrogate pairs. Ill-formed input
// never fails: each maximal ill-formed subsequence (a stray continuation byte, a truncated
// sequence, an overlong form, an encoded surrogate, a value above U+10FFFF, the bytes C0, C1,
// F5..FF) becomes one U+FFFD, as the Unicode standard recommends.
std::u16string utf8ToUtf16(std::string_view bytes);

// Encodes UTF-16 as UTF-8. A lone surrogate becomes U+FFFD (EF BF BD).
std::string utf16ToUtf8(std::u16string_view text);

} // namespace reference::docparser::text
