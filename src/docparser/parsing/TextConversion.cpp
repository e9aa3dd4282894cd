#include "docparser/parsing/TextConversion.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>

// SSE2 is part of the x86-64 baseline, so no run-time dispatch is needed. Defining
// REFDOC_PORTABLE_TEXT builds the portable word-at-a-time version instead (to test it on x86).
#if defined(__SSE2__) && !defined(REFDOC_PORTABLE_TEXT)
#define REFDOC_TEXT_SSE2 1
#include <emmintrin.h>
#endif

namespace reference::docparser::text {

namespace {

using Byte = unsigned char;

constexpr char16_t kReplacement = u'\uFFFD';
constexpr std::uint64_t kHighBits = 0x8080808080808080ull;
constexpr std::uint64_t kLow7Bits = 0x7F7F7F7F7F7F7F7Full;
constexpr std::uint64_t kOnes = 0x0101010101010101ull;

std::uint64_t load8(const Byte* p) noexcept {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// High bit of each byte that lies outside 0x01..0x7E. Every step stays below 0x100 per byte,
// so no carry crosses into the neighbouring byte.
std::uint64_t outsidePlainAscii8(std::uint64_t word) noexcept {
    const std::uint64_t low7 = word & kLow7Bits;
    const std::uint64_t isDel = low7 + kOnes;      // high bit set when low7 == 0x7F
    const std::uint64_t notNul = low7 + kLow7Bits; // high bit clear when low7 == 0
    return (word | isDel | ~notNul) & kHighBits;
}

#ifdef REFDOC_TEXT_SSE2

void store16(__m128i bytes, char16_t* out) noexcept {
    const __m128i zero = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(bytes, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(bytes, zero));
}

void widen16(const Byte* in, char16_t* out) noexcept {
    store16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in)), out);
}

// Widens the next 16 bytes whole. Returns 0 when all are below 0x80, otherwise a mask whose
// lowest set bit is the index of the first byte that is not. The units from that index on are
// garbage for the caller to overwrite.
unsigned widenBlock16(const Byte* in, char16_t* out) noexcept {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    store16(bytes, out);
    return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}

void widen8(const Byte* in, char16_t* out) noexcept {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(in));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
}

bool plainAscii16(const Byte* in) noexcept {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    // Signed view: 0x01..0x7E are exactly the bytes in 1..126.
    const __m128i inside =
        _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_setzero_si128()), _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x7F)));
    return _mm_movemask_epi8(inside) == 0xFFFF;
}

// True when all of the next 8 UTF-16 units are below 0x80.
bool ascii8Units(const char16_t* in) noexcept {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    const __m128i high = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF;
}

// Narrows 8 units known to be below 0x80.
void narrow8(const char16_t* in, char* out) noexcept {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(units, units));
}

#else // portable: eight bytes per word

// Index of the first set high bit of a byte-mask word, in memory order.
unsigned firstMarkedByte(std::uint64_t highBits) noexcept {
    if constexpr (std::endian::native == std::endian::little) {
        return static_cast<unsigned>(std::countr_zero(highBits)) / 8;
    } else {
        return static_cast<unsigned>(std::countl_zero(highBits)) / 8;
    }
}

void widen8(const Byte* in, char16_t* out) noexcept {
    for (int k = 0; k < 8; ++k) {
        out[k] = in[k];
    }
}

void widen16(const Byte* in, char16_t* out) noexcept {
    widen8(in, out);
    widen8(in + 8, out + 8);
}

unsigned widenBlock16(const Byte* in, char16_t* out) noexcept {
    widen16(in, out);
    for (unsigned half = 0; half < 16; half += 8) {
        if (const std::uint64_t high = load8(in + half) & kHighBits; high != 0) {
            return 1u << (half + firstMarkedByte(high));
        }
    }
    return 0;
}

bool plainAscii16(const Byte* in) noexcept {
    return (outsidePlainAscii8(load8(in)) | outsidePlainAscii8(load8(in + 8))) == 0;
}

bool ascii8Units(const char16_t* in) noexcept {
    char16_t any = 0;
    for (int k = 0; k < 8; ++k) {
        any |= in[k];
    }
    return (any & 0xFF80) == 0;
}

void narrow8(const char16_t* in, char* out) noexcept {
    for (int k = 0; k < 8; ++k) {
        out[k] = static_cast<char>(in[k]);
    }
}

#endif

bool isContinuation(Byte b) noexcept { return (b & 0xC0) == 0x80; }

// Writes one code point (never a surrogate) as one or two units; returns the units written.
std::size_t putCodePoint(std::uint32_t cp, char16_t* out) noexcept {
    if (cp < 0x10000) {
        *out = static_cast<char16_t>(cp);
        return 1;
    }
    cp -= 0x10000;
    out[0] = static_cast<char16_t>(0xD800 + (cp >> 10));
    out[1] = static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    return 2;
}

// Decodes the sequence that starts with the non-ASCII byte *p. Advances p past the sequence, or
// past its maximal ill-formed subpart (at least one byte), and returns the units written.
std::size_t decodeSequence(const Byte*& p, const Byte* end, char16_t* out) noexcept {
    const Byte b0 = p[0];
    const std::ptrdiff_t left = end - p;

    // The common cases first: complete, well-formed two- and three-byte sequences.
    if (b0 >= 0xC2 && b0 <= 0xDF && left >= 2 && isContinuation(p[1])) {
        *out = static_cast<char16_t>(((b0 & 0x1Fu) << 6) | (p[1] & 0x3Fu));
        p += 2;
        return 1;
    }
    if ((b0 & 0xF0) == 0xE0 && left >= 3 && isContinuation(p[1]) && isContinuation(p[2])) {
        const std::uint32_t cp = ((b0 & 0x0Fu) << 12) | ((p[1] & 0x3Fu) << 6) | (p[2] & 0x3Fu);
        if (cp >= 0x800 && (cp < 0xD800 || cp > 0xDFFF)) {
            *out = static_cast<char16_t>(cp);
            p += 3;
            return 1;
        }
    }

    // General case. The second byte's range depends on the lead byte (this excludes overlong
    // forms, surrogates and values above U+10FFFF); later bytes are any continuation byte.
    int length;
    Byte low = 0x80;
    Byte high = 0xBF;
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        length = 2;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        length = 3;
        if (b0 == 0xE0) {
            low = 0xA0;
        } else if (b0 == 0xED) {
            high = 0x9F;
        }
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        length = 4;
        if (b0 == 0xF0) {
            low = 0x90;
        } else if (b0 == 0xF4) {
            high = 0x8F;
        }
    } else { // a continuation byte without lead, C0, C1, F5..FF
        *out = kReplacement;
        ++p;
        return 1;
    }

    std::uint32_t cp = b0 & (0x7Fu >> length);
    int taken = 1;
    for (; taken < length && taken < left; ++taken) {
        const Byte b = p[taken];
        if (b < low || b > high) {
            break;
        }
        cp = (cp << 6) | (b & 0x3Fu);
        low = 0x80;
        high = 0xBF;
    }
    p += taken;
    if (taken < length) {
        *out = kReplacement; // the maximal subpart read so far
        return 1;
    }
    return putCodePoint(cp, out);
}

} // namespace

// Most texts are short (names, links, one-line purposes), so the ends of a text are handled by
// one more block that overlaps the last one rather than by a loop over the remaining bytes; the
// overlap rewrites units with the same values.
void widenAscii(std::string_view bytes, char16_t* out) noexcept {
    const auto* in = reinterpret_cast<const Byte*>(bytes.data());
    const std::size_t n = bytes.size();
    if (n >= 16) {
        std::size_t i = 0;
        for (; i + 16 <= n; i += 16) {
            widen16(in + i, out + i);
        }
        if (i < n) {
            widen16(in + n - 16, out + n - 16);
        }
        return;
    }
    if (n >= 8) {
        widen8(in, out);
        widen8(in + n - 8, out + n - 8);
        return;
    }
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = in[i];
    }
}

std::size_t decodeUtf8(std::string_view bytes, char16_t* out) noexcept {
    const auto* p = reinterpret_cast<const Byte*>(bytes.data());
    const Byte* const end = p + bytes.size();
    char16_t* o = out;
    // Every step writes at most as many units as it consumes bytes, so o - out <= p - begin and a
    // block store of 16 units at o stays inside the caller's buffer whenever 16 bytes remain.
    while (p < end) {
        if (*p < 0x80) {
            if (end - p >= 16) {
                // Whole ASCII blocks advance by a constant, so the next load never waits for
                // this one's mask; only the block that ends the run computes its length.
                do {
                    if (const unsigned mask = widenBlock16(p, o); mask != 0) {
                        const auto run = static_cast<unsigned>(std::countr_zero(mask));
                        p += run;
                        o += run;
                        break;
                    }
                    p += 16;
                    o += 16;
                } while (end - p >= 16);
            } else {
                *o++ = *p++;
            }
            continue;
        }
        // CJK text is runs of well-formed three-byte characters: decode those in a loop of their
        // own; anything else (and the end of the run) goes through the general decoder.
        while (end - p >= 3 && (p[0] & 0xF0) == 0xE0) {
            const std::uint32_t cp = ((p[0] & 0x0Fu) << 12) | ((p[1] & 0x3Fu) << 6) | (p[2] & 0x3Fu);
            if (!isContinuation(p[1]) || !isContinuation(p[2]) || cp < 0x800 || (cp >= 0xD800 && cp <= 0xDFFF)) {
                break;
            }
            *o++ = static_cast<char16_t>(cp);
            p += 3;
        }
        if (p < end && *p >= 0x80) {
            o += decodeSequence(p, end, o);
        }
    }
    return static_cast<std::size_t>(o - out);
}

std::u16string asciiToUtf16(std::string_view bytes) {
    std::u16string out(bytes.size(), u'\0');
    widenAscii(bytes, out.data());
    return out;
}

std::u16string utf8ToUtf16(std::string_view bytes) {
    if (bytes.empty()) {
        return {};
    }
    // The result is shorter than the input unless it is all ASCII. Decoding into scratch space and
    // copying once gives a string of exactly its final size.
    constexpr std::size_t kStackUnits = 512;
    if (bytes.size() <= kStackUnits) {
        char16_t scratch[kStackUnits];
        return std::u16string(scratch, decodeUtf8(bytes, scratch));
    }
    const auto scratch = std::make_unique_for_overwrite<char16_t[]>(bytes.size());
    return std::u16string(scratch.get(), decodeUtf8(bytes, scratch.get()));
}

bool isPlainAscii(std::string_view bytes) noexcept {
    const auto* in = reinterpret_cast<const Byte*>(bytes.data());
    const std::size_t n = bytes.size();
    // As in widenAscii, the end of the text is one more (overlapping) block, not a byte loop.
    if (n >= 16) {
        std::size_t i = 0;
        for (; i + 16 <= n; i += 16) {
            if (!plainAscii16(in + i)) {
                return false;
            }
        }
        return i == n || plainAscii16(in + n - 16);
    }
    if (n >= 8) {
        return (outsidePlainAscii8(load8(in)) | outsidePlainAscii8(load8(in + n - 8))) == 0;
    }
    if (n >= 4) {
        std::uint32_t head;
        std::uint32_t tail;
        std::memcpy(&head, in, sizeof head);
        std::memcpy(&tail, in + n - 4, sizeof tail);
        return outsidePlainAscii8(head | (std::uint64_t{tail} << 32)) == 0;
    }
    for (std::size_t i = 0; i < n; ++i) {
        if (in[i] == 0x00 || in[i] >= 0x7F) {
            return false;
        }
    }
    return true;
}

bool sameText(std::u16string_view a, std::u16string_view b) noexcept {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
}

int compareText(std::u16string_view a, std::u16string_view b) noexcept {
    const std::size_t n = std::min(a.size(), b.size());
    std::size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        std::uint64_t x;
        std::uint64_t y;
        std::memcpy(&x, a.data() + i, sizeof x);
        std::memcpy(&y, b.data() + i, sizeof y);
        if (x != y) {
            // The first differing unit decides, compared as a unit (not as bytes).
            const std::uint64_t difference = x ^ y;
            if constexpr (std::endian::native == std::endian::little) {
                i += static_cast<std::size_t>(std::countr_zero(difference)) / 16;
            } else {
                i += static_cast<std::size_t>(std::countl_zero(difference)) / 16;
            }
            return a[i] < b[i] ? -1 : 1;
        }
    }
    for (; i < n; ++i) {
        if (a[i] != b[i]) {
            return a[i] < b[i] ? -1 : 1;
        }
    }
    return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

namespace {

bool isHighSurrogate(char16_t c) noexcept { return c >= 0xD800 && c <= 0xDBFF; }

bool isLowSurrogate(char16_t c) noexcept { return c >= 0xDC00 && c <= 0xDFFF; }

} // namespace

std::string utf16ToUtf8(std::u16string_view text) {
    const char16_t* const in = text.data();
    const std::size_t n = text.size();

    // Measure first so that the result is allocated once, at its final size.
    std::size_t length = 0;
    for (std::size_t i = 0; i < n;) {
        if (i + 8 <= n && ascii8Units(in + i)) {
            length += 8;
            i += 8;
            continue;
        }
        const char16_t c = in[i];
        if (c < 0x80) {
            length += 1;
        } else if (c < 0x800) {
            length += 2;
        } else if (isHighSurrogate(c) && i + 1 < n && isLowSurrogate(in[i + 1])) {
            length += 4;
            ++i;
        } else {
            length += 3; // other BMP characters, and a lone surrogate as U+FFFD
        }
        ++i;
    }

    std::string out(length, '\0');
    char* o = out.data();
    for (std::size_t i = 0; i < n;) {
        if (i + 8 <= n && ascii8Units(in + i)) {
            narrow8(in + i, o);
            o += 8;
            i += 8;
            continue;
        }
        std::uint32_t cp = in[i];
        if (isHighSurrogate(in[i]) && i + 1 < n && isLowSurrogate(in[i + 1])) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (in[i + 1] - 0xDC00u);
            ++i;
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            cp = 0xFFFD;
        }
        ++i;
        if (cp < 0x80) {
            *o++ = static_cast<char>(cp);
        } else if (cp < 0x800) {
            *o++ = static_cast<char>(0xC0 | (cp >> 6));
            *o++ = static_cast<char>(0x80 | (cp & 0x3F));
        } else if (cp < 0x10000) {
            *o++ = static_cast<char>(0xE0 | (cp >> 12));
            *o++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            *o++ = static_cast<char>(0x80 | (cp & 0x3F));
        } else {
            *o++ = static_cast<char>(0xF0 | (cp >> 18));
            *o++ = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
            *o++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            *o++ = static_cast<char>(0x80 | (cp & 0x3F));
        }
    }
    return out;
}

} // namespace reference::docparser::text
