#pragma once

// Text helpers of the tool: the library speaks UTF-16, the terminal and JSON output UTF-8.

#include <string>
#include <string_view>
#include <vector>

namespace refdoc::tool {

// The library's converters (reference/docparser/TextConversion.hpp): a lone surrogate becomes
// U+FFFD, and so does each maximal ill-formed subpart of UTF-8.
std::string toUtf8(std::u16string_view text);
std::u16string toUtf16(std::string_view text);

// Lower-cased code points for case-insensitive matching (simple case folding as the C.UTF-8
// locale's towlower gives it: ASCII, Latin, Greek, Cyrillic, ...).
std::u32string foldCase(std::u16string_view text);

// Columns the text takes in a terminal: East Asian wide and full-width characters take two,
// combining marks none.
std::size_t displayWidth(std::string_view utf8);
// The text followed by spaces up to `width` columns.
std::string padRight(std::string_view utf8, std::size_t width);

// "a,b , c" to {"a", "b", "c"}; empty pieces are dropped, so "" gives an empty list.
std::vector<std::string> splitList(std::string_view list);
std::string joinList(const std::vector<std::string>& items, std::string_view separator);

} // namespace refdoc::tool
