#include "docparser/parsing/TextConversion.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace text = reference::docparser::text;

namespace {

int sign(int value) { return (value > 0) - (value < 0); }

// The loaders order map keys with compareText; any disagreement with std::u16string's own order
// would misplace a key.
TEST(TextOrder, AgreesWithStringOrder) {
    struct Case {
        std::u16string a;
        std::u16string b;
    };
    const Case cases[] = {
        {u"", u""},
        {u"", u"a"},
        {u"abcd", u"abcd"},
        {u"abcd", u"abce"},
        {u"abcdefgh", u"abcdefg"},        // prefix, at a block edge
        {u"abcdefghijk", u"abcdefghijK"}, // difference in the tail after whole blocks
        {u"a\u0100", u"a\u00FF"},         // bytes would order these the other way round
        {u"\u00FFxyz", u"\u0100xyz"},
        {u"plot\U0001F600", u"plot\uFFFF"}, // a surrogate pair orders below U+E000..U+FFFF
        {u"ArrayBusEstimator.Event", u"ArrayBusEstimator.Gain"},
    };
    for (const auto& c : cases) {
        for (const auto& [a, b] : {std::pair{c.a, c.b}, std::pair{c.b, c.a}}) {
            EXPECT_EQ(text::compareText(a, b), sign(a.compare(b)));
            EXPECT_EQ(text::sameText(a, b), a == b);
        }
    }
}

TEST(TextOrder, AgreesWithStringOrderOnRandomNeighbours) {
    // Sorted keys share long prefixes: vary one unit of a shared prefix, in every block lane.
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
