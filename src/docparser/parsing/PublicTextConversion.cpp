// The exported entry points of the text converters; the converters themselves stay internal
// so that the parsers keep calling them without going through the dynamic symbol table.

#include <reference/docparser/TextConversion.hpp>

#include "docparser/parsing/TextConversion.hpp"

namespace reference::docparser {

std::u16string utf8ToUtf16(std::string_view text) { return text::utf8ToUtf16(text); }

std::string utf16ToUtf8(std::u16string_view text) { return text::utf16ToUtf8(text); }

std::u32string utf16ToUtf32(std::u16string_view text) {
    std::u32string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            out += 0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else {
            out += (unit >= 0xD800 && unit <= 0xDFFF) ? char32_t{0xFFFD} : unit;
        }
    }
    return out;
}

} // namespace reference::docparser
