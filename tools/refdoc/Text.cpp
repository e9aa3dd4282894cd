#include "Text.hpp"

#include <reference/docparser/TextConversion.hpp>

#include <cwctype>

namespace refdoc::tool {
namespace {

bool isWide(char32_t c) {
    return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0x303E) || (c >= 0x3041 && c <= 0x33FF) ||
           (c >= 0x3400 && c <= 0x4DBF) || (c >= 0x4E00 && c <= 0x9FFF) || (c >= 0xA000 && c <= 0xA4CF) ||
           (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE4F) ||
           (c >= 0xFF00 && c <= 0xFF60) || (c >= 0xFFE0 && c <= 0xFFE6) || (c >= 0x1F300 && c <= 0x1F64F) ||
           (c >= 0x1F900 && c <= 0x1F9FF) || (c >= 0x20000 && c <= 0x3FFFD);
}

bool isCombining(char32_t c) {
    return (c >= 0x0300 && c <= 0x036F) || (c >= 0x1AB0 && c <= 0x1AFF) || (c >= 0x1DC0 && c <= 0x1DFF) ||
           (c >= 0x20D0 && c <= 0x20FF) || (c >= 0xFE20 && c <= 0xFE2F) || c == 0x200B || c == 0x200D;
}

} // namespace

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
        width += isCombining(c) ? 0 : isWide(c) ? 2 : 1;
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
