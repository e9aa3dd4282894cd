#include "docparser/parsing/TextConversion.hpp"

#include <reference/docparser/TextConversion.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace text = reference::docparser::text;

namespace {

std::string bytes(std::initializer_list<int> values) {
    std::string out;
    for (int v : values) {
        out.push_back(static_cast<char>(v));
    }
    return out;
}

std::string encode(std::uint32_t cp) {
    if (cp < 0x80) {
        return bytes({static_cast<int>(cp)});
    }
    if (cp < 0x800) {
        return bytes({static_cast<int>(0xC0 | (cp >> 6)), static_cast<int>(0x80 | (cp & 0x3F))});
    }
    if (cp < 0x10000) {
        return bytes({static_cast<int>(0xE0 | (cp >> 12)), static_cast<int>(0x80 | ((cp >> 6) & 0x3F)),
                      static_cast<int>(0x80 | (cp & 0x3F))});
    }
    return bytes({static_cast<int>(0xF0 | (cp >> 18)), static_cast<int>(0x80 | ((cp >> 12) & 0x3F)),
                  static_cast<int>(0x80 | ((cp >> 6) & 0x3F)), static_cast<int>(0x80 | (cp & 0x3F))});
}

std::u16string utf16(std::uint32_t cp) {
    if (cp < 0x10000) {
        return std::u16string(1, static_cast<char16_t>(cp));
    }
    return {static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)), static_cast<char16_t>(0xDC00 + (cp & 0x3FF))};
}

std::string asciiRun(std::size_t length) {
    std::string out;
    for (std::size_t i = 0; i < length; ++i) {
        out.push_back(static_cast<char>('!' + i % 90));
    }
    return out;
}

TEST(TextConversion, AsciiWideningAndPlainAsciiCheckAtEveryLength) {
    // Lengths around the 8- and 16-byte steps; every byte value passes through each block slot,
    // and a single byte that is not plain ASCII is found wherever it sits.
    for (std::size_t length = 1; length <= 40; ++length) {
        std::string input;
        std::u16string expected;
        for (std::size_t i = 0; i < length; ++i) {
            const auto b = static_cast<unsigned char>(0x70 + 7 * i);
            input.push_back(static_cast<char>(b));
            expected.push_back(b);
        }
        EXPECT_EQ(text::asciiToUtf16(input), expected) << "length " << length;
        for (std::size_t at = 0; at < length; ++at) {
            for (const int byte : {0x00, 0x01, 0x7E, 0x7F, 0x80, 0xFF}) {
                std::string probe = asciiRun(length);
                probe[at] = static_cast<char>(byte);
                ASSERT_EQ(text::isPlainAscii(probe), byte == 0x01 || byte == 0x7E)
                    << "byte " << byte << " length " << length << " at " << at;
            }
        }
    }
}

TEST(TextConversion, DecodesBoundariesAndReplacesEachMaximalIllFormedSubpartOnce) {
    const std::u16string r(1, u'\uFFFD');
    const struct {
        const char* what;
        std::string input;
        std::u16string expected;
    } cases[] = {
        {"U+0080", bytes({0xC2, 0x80}), u"\u0080"},
        {"U+07FF", bytes({0xDF, 0xBF}), u"\u07FF"},
        {"U+0800", bytes({0xE0, 0xA0, 0x80}), u"\u0800"},
        {"U+D7FF", bytes({0xED, 0x9F, 0xBF}), u"\uD7FF"},
        {"U+E000", bytes({0xEE, 0x80, 0x80}), u"\uE000"},
        {"U+FFFF", bytes({0xEF, 0xBF, 0xBF}), std::u16string(1, u'\xFFFF')},
        {"U+10000", bytes({0xF0, 0x90, 0x80, 0x80}), std::u16string{0xD800, 0xDC00}},
        {"U+10FFFF", bytes({0xF4, 0x8F, 0xBF, 0xBF}), std::u16string{0xDBFF, 0xDFFF}},

        {"truncated 4-byte", bytes({0xF0, 0x9F, 0x98}), r},
        {"truncated then ASCII", bytes({0xE2, 0x82, 0x41}), r + u"A"},
        {"truncated then lead", bytes({0xF0, 0x9F, 0xC3, 0xA9}), r + u"\u00E9"},
        {"overlong C0", bytes({0xC0, 0xAF}), r + r},
        {"overlong 3-byte", bytes({0xE0, 0x80, 0xAF}), r + r + r},
        {"overlong 4-byte", bytes({0xF0, 0x80, 0x80, 0xAF}), r + r + r + r},
        {"encoded high surrogate", bytes({0xED, 0xA0, 0x80}), r + r + r},
        {"above U+10FFFF", bytes({0xF4, 0x90, 0x80, 0x80}), r + r + r + r},
        {"F5 lead", bytes({0xF5, 0x80, 0x80, 0x80}), r + r + r + r},
        {"FE and FF", bytes({0xFE, 0xFF}), r + r},
        // The worked example of the Unicode standard for maximal subparts.
        {"standard example", bytes({0x61, 0xF1, 0x80, 0x80, 0xE1, 0x80, 0xC2, 0x62, 0x80, 0x63, 0x80, 0xBF, 0x64}),
         u"a" + r + r + r + u"b" + r + u"c" + r + r + u"d"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(text::utf8ToUtf16(c.input), c.expected) << c.what;
    }
}

TEST(TextConversion, EncodesUtf16AndReplacesLoneSurrogates) {
    const std::string r = bytes({0xEF, 0xBF, 0xBD});
    const struct {
        const char* what;
        std::u16string input;
        std::string expected;
    } cases[] = {
        {"two-byte", u"\u00E9", bytes({0xC3, 0xA9})},
        {"highest pair", std::u16string{0xDBFF, 0xDFFF}, bytes({0xF4, 0x8F, 0xBF, 0xBF})},
        {"lone high at end", std::u16string{u'a', 0xD800}, "a" + r},
        {"lone low", std::u16string{0xDC00, u'a'}, r + "a"},
        {"reversed pair", std::u16string{0xDC00, 0xD800}, r + r},
        {"two highs then low", std::u16string{0xD800, 0xD800, 0xDC00}, r + bytes({0xF0, 0x90, 0x80, 0x80})},
        {"ASCII block then BMP", u"abcdefghij\u00E9", "abcdefghij" + bytes({0xC3, 0xA9})},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(text::utf16ToUtf8(c.input), c.expected) << c.what;
        // The exported converters follow the same rule, code points included.
        EXPECT_EQ(reference::docparser::utf16ToUtf8(c.input), c.expected) << c.what;
        std::string viaCodePoints;
        for (const char32_t codePoint : reference::docparser::utf16ToUtf32(c.input)) {
            viaCodePoints += encode(codePoint);
        }
        EXPECT_EQ(viaCodePoints, c.expected) << c.what;
    }
}

// Random strings of pieces whose decoding is known on its own: ASCII runs of random length, valid
// characters of every length, stray bytes (one U+FFFD each) and cut sequences followed by ASCII
// (one U+FFFD). This puts every kind of sequence at every position relative to the decoder's 8-
// and 16-byte blocks, and makes some inputs longer than its stack scratch. The decoder may store
// whole blocks ahead; all of them must land inside the bytes.size() units the caller provides.
TEST(TextConversion, RandomPiecesDecodeAsEachPieceAloneWithinTheCallersBuffer) {
    constexpr char16_t kSentinel = 0xBEEF;
    std::mt19937 random(20240611);
    const auto pick = [&](std::uint32_t low, std::uint32_t high) {
        return std::uniform_int_distribution<std::uint32_t>(low, high)(random);
    };
    for (int round = 0; round < 4000; ++round) {
        std::string input;
        std::u16string expected;
        bool valid = true;
        for (std::uint32_t piece = pick(0, 16); piece > 0; --piece) {
            const std::uint32_t kind = pick(0, 6);
            std::uint32_t cp = 0;
            if (kind <= 1) {
                const std::string run = asciiRun(pick(0, round % 8 == 0 ? 300 : 40));
                input += run;
                expected.append(run.begin(), run.end());
                continue;
            }
            if (kind == 2) {
                cp = pick(0x80, 0x7FF);
            } else if (kind == 3) {
                cp = pick(0x800, 0xFFFF - 0x800);
                cp += cp >= 0xD800 ? 0x800 : 0;
            } else if (kind == 4) {
                cp = pick(0x10000, 0x10FFFF);
            }
            if (kind <= 4) {
                input += encode(cp);
                expected += utf16(cp);
                continue;
            }
            valid = false;
            if (kind == 5) {
                input.push_back(static_cast<char>(pick(0, 1) == 0 ? pick(0x80, 0xBF) : pick(0xF5, 0xFF)));
                expected += u'\uFFFD';
            } else {
                cp = pick(0x80, 0x10FFFF - 0x800);
                cp += cp >= 0xD800 ? 0x800 : 0;
                const std::string whole = encode(cp);
                input += whole.substr(0, pick(1, static_cast<std::uint32_t>(whole.size()) - 1)) + "A";
                expected += u"\uFFFDA";
            }
        }
        ASSERT_EQ(text::utf8ToUtf16(input), expected) << "round " << round;
        std::vector<char16_t> buffer(input.size() + 32, kSentinel);
        const std::size_t written = text::decodeUtf8(input, buffer.data());
        ASSERT_EQ(std::u16string(buffer.data(), written), expected) << "round " << round;
        for (std::size_t i = input.size(); i < buffer.size(); ++i) {
            ASSERT_EQ(buffer[i], kSentinel) << "overwrote unit " << i << ", round " << round;
        }
        if (valid) {
            ASSERT_EQ(text::utf16ToUtf8(expected), input) << "round trip, round " << round;
        }
    }
}

// The loaders order map keys with compareText; any disagreement with std::u16string's own order
// would misplace a key. Sorted keys share long prefixes: one unit of a shared prefix is varied,
// in every block lane, among units whose byte order and code-unit order differ.
TEST(TextOrder, AgreesWithStringOrder) {
    const auto sign = [](int value) { return (value > 0) - (value < 0); };
    std::mt19937 random(20240612);
    const char16_t alphabet[] = {u'a', u'b', u'Z', 0x00FF, 0x0100, 0x3042, 0xD800, 0xDC00, 0xFFFF};
    const auto unit = [&] { return alphabet[random() % std::size(alphabet)]; };
    for (int round = 0; round < 5000; ++round) {
        std::u16string a;
        for (std::size_t length = random() % 24; a.size() < length;) {
            a.push_back(unit());
        }
        std::u16string b = a;
        if (!b.empty() && random() % 4 != 0) {
            b[random() % b.size()] = unit();
        }
        if (random() % 3 == 0) {
            b.push_back(unit());
        }
        ASSERT_EQ(text::compareText(a, b), sign(a.compare(b))) << "round " << round;
        ASSERT_EQ(text::compareText(b, a), sign(b.compare(a))) << "round " << round;
        ASSERT_EQ(text::sameText(a, b), a == b) << "round " << round;
    }
}

} // namespace
