// The exported entry points of the text converters; the converters themselves stay internal
// so that the parsers keep calling them without going through the dynamic symbol table.

#include <reference/docparser/TextConversion.hpp>

#include "docparser/parsing/TextConversion.hpp"

namespace reference::docparser {

std::u16string utf8ToUtf16(std::string_view text) {
    return text::utf8ToUtf16(text);
}

std::string utf16ToUtf8(std::u16string_view text) {
    return text::utf16ToUtf8(text);
}

} // namespace reference::docparser
