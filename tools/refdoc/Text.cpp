#include "Text.hpp"

#include <reference/docparser/TextConversion.hpp>

#include <cwchar>
#include <cwctype>

namespace refdoc::tool {
std::string toUtf8(std::u16string_view text) { return reference::docparser::utf16ToUtf8(text); }

std::u16string toUtf16(std::string_view text) { return reference::docparser::utf8ToUtf16(text); }

std::u32string foldCase(std::u16string_view text) {
    std::u32string out;
    out.reserve(text.size());
    for (const char32_t c : reference::docparser::utf16ToUtf32(text)) {
        if (c < 0x80) {
            out += (c >= 'A' && c <= 'Z') ? c + ('a' - 'A') : c;
        } else {
            out += static_cast<char32_t>(std::towlower(static_cast<std::wint_t>(c)));
        }
    }
    return out;
}

std::size_t displayWidth(std::string_view utf8) {
    std::size_t width = 0;
    for (const char32_t c : reference::docparser::utf16ToUtf32(toUtf16(utf8))) {
        // The C library's width under the UTF-8 locale main() sets: 2 for East Asian wide
        // characters, 0 for combining marks; a character it cannot print counts as one column.
        const int columns = ::wcwidth(static_cast<wchar_t>(c));
        width += columns < 0 ? 1 : static_cast<std::size_t>(columns);
    }
    return width;
}

std::string padRight(std::string_view utf8, std::size_t width) {
    std::string out(utf8);
    const std::size_t used = displayWidth(utf8);
    if (used < width) {
        out.append(width - used, ' ');
    }
    return out;
}

std::vector<std::string> splitList(std::string_view list) {
    std::vector<std::string> items;
    while (!list.empty()) {
        const std::size_t comma = list.find(',');
        std::string_view piece = list.substr(0, comma);
        list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 1);
        while (!piece.empty() && (piece.front() == ' ' || piece.front() == '\t')) {
            piece.remove_prefix(1);
        }
        while (!piece.empty() && (piece.back() == ' ' || piece.back() == '\t')) {
            piece.remove_suffix(1);
        }
        if (!piece.empty()) {
            items.emplace_back(piece);
        }
    }
    return items;
}

std::string joinList(const std::vector<std::string>& items, std::string_view separator) {
    std::string out;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) {
            out += separator;
        }
        out += items[i];
    }
    return out;
}

} // namespace refdoc::tool
