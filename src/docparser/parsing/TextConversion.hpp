#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
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

// True when every byte lies in 0x01..0x7E. Such text widens to the same UTF-16 under both
// converters, so the field readers use it to keep most strings off the UTF-8 decoder; NUL,
// DEL and every byte >= 0x80 make it false.
bool isPlainAscii(std::string_view bytes) noexcept;

// Equality and order of UTF-16 texts, the same as std::u16string's (code unit by code unit, a
// prefix first) but comparing four units at a time, where std::char_traits<char16_t> takes one.
// The loaders use them on sorted keys, which share long prefixes.
bool sameText(std::u16string_view a, std::u16string_view b) noexcept;
int compareText(std::u16string_view a, std::u16string_view b) noexcept;

// Equality of two short byte strings (JSON keys): compared as two overlapping words, the first
// and the last 8 or 4 bytes, which beats a call to memcmp or a byte loop.
inline bool sameBytes(std::string_view a, std::string_view b) noexcept {
    const std::size_t n = a.size();
    if (b.size() != n) {
        return false;
    }
    const auto sameWords = [&](auto word) {
        using Word = decltype(word);
        Word a0, a1, b0, b1;
        std::memcpy(&a0, a.data(), sizeof(Word));
        std::memcpy(&b0, b.data(), sizeof(Word));
        std::memcpy(&a1, a.data() + n - sizeof(Word), sizeof(Word));
        std::memcpy(&b1, b.data() + n - sizeof(Word), sizeof(Word));
        return ((a0 ^ b0) | (a1 ^ b1)) == 0;
    };
    if (n >= 8 && n <= 16) {
        return sameWords(std::uint64_t{});
    }
    if (n >= 4 && n < 8) {
        return sameWords(std::uint32_t{});
    }
    return a == b;
}

// The two converters writing into a caller's buffer, for callers that assemble one string
// from several pieces. `out` must have room for bytes.size() code units: no input yields
// more units than it has bytes. decodeUtf8 returns the number of units written.
void widenAscii(std::string_view bytes, char16_t* out) noexcept;
std::size_t decodeUtf8(std::string_view bytes, char16_t* out) noexcept;

} // namespace reference::docparser::text
