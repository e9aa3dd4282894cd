#pragma once

// The library's UTF-8 <-> UTF-16 converters, for callers that hand texts to the library
// (paths, names, languages) and show the UTF-16 texts it returns. They are the ones the
// parsers use, so a caller converts exactly as the library does.

#include <reference/docparser/Export.hpp>

#include <string>
#include <string_view>

namespace reference::docparser {

/// UTF-8 to UTF-16, characters above U+FFFF as surrogate pairs. Never fails: each maximal
/// ill-formed subpart (a stray continuation byte, a truncated sequence, an overlong form, an
/// encoded surrogate, a value above U+10FFFF, the bytes C0, C1, F5..FF) becomes one U+FFFD.
REFDOC_API std::u16string utf8ToUtf16(std::string_view text);

/// UTF-16 to UTF-8. Never fails: an unpaired surrogate (a high one not followed by a low one,
/// or a low one on its own) becomes U+FFFD (EF BF BD); the unit after it is converted as usual.
REFDOC_API std::string utf16ToUtf8(std::u16string_view text);

/// UTF-16 to code points (for callers that measure, fold or classify characters), with the same
/// rule: an unpaired surrogate becomes U+FFFD.
REFDOC_API std::u32string utf16ToUtf32(std::u16string_view text);

} // namespace reference::docparser
