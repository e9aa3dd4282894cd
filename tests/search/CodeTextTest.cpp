#include "search/CodeText.hpp"
#include "search/IndexData.hpp"
#include "search/NameMatch.hpp"

#include <reference/docparser/TextConversion.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace reference::search::detail;
using reference::docparser::utf16ToUtf8;
using reference::docparser::utf8ToUtf16;

// The segments as text, digit runs in brackets: "get|Current|[938]".
std::string segmentsOf(const std::string& name) {
    const std::u16string text = utf8ToUtf16(name);
    std::vector<Segment> segments;
    appendSegments(text, segments);
    std::string out;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const std::size_t end = i + 1 < segments.size() ? segments[i + 1].start : text.size();
        std::u16string piece = text.substr(segments[i].start, end - segments[i].start);
        while (!piece.empty() && !isWordCharacter(piece.back())) {
            piece.pop_back();
        }
        out += (i ? "|" : "") + (segments[i].digits ? "[" + utf16ToUtf8(piece) + "]" : utf16ToUtf8(piece));
    }
    return out;
}

TEST(CodeText, Segments) {
    const struct Case {
        const char* name;
        const char* segments;
    } cases[] = {
        {"getCurrentFigure", "get|Current|Figure"},
        {"read_csv", "read|csv"},
        {"Figure.savefig", "Figure|savefig"},
        {"matlab::engine-start", "matlab|engine|start"},
        {"HTMLParser", "HTML|Parser"},
        {"getHTML", "get|HTML"},
        {"IOError", "IO|Error"},
        {"prod006system938", "prod|[006]|system|[938]"},
        {"x2D", "x|[2]|D"},
        {"__init__", "init"},
        {"Discrete Filter", "Discrete|Filter"},
        {"straßeÖffnen", "straße|Öffnen"},
        {"配列Sort", "配列|Sort"},
        {"", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(segmentsOf(c.name), c.segments) << c.name;
    }
}

// Simple case folding: one character for one, never changing the length.
TEST(CodeText, FoldingKeepsOffsets) {
    const struct Case {
        const char* text;
        const char* folded;
    } cases[] = {
        {"GetCurrentFIGURE", "getcurrentfigure"},
        {"ΣΥΣΤΗΜΑς", "συστημασ"},
        {"straßeÖ", "straßeö"}, // ß has only a full folding (ss): kept
        {"\u212A", "k"},        // KELVIN SIGN
        {"İ", "İ"},             // its folding is not one character: kept
        {"𐐀𐐁", "𐐨𐐩"},           // Deseret, outside the BMP
        {"ＡＢＣ", "ａｂｃ"},   // fullwidth
        {"配列", "配列"},
    };
    for (const auto& c : cases) {
        const std::u16string in = utf8ToUtf16(c.text);
        const std::u16string out = folded(in);
        EXPECT_EQ(utf16ToUtf8(out), c.folded) << c.text;
        EXPECT_EQ(out.size(), in.size()) << c.text;
    }
}

TEST(CodeText, NaturalOrder) {
    const struct Case {
        const char* a;
        const char* b;
        int order;
    } cases[] = {
        {"system111", "system1020", -1},
        {"file9a", "file10", -1},
        {"prod9", "prod10", -1},
        {"a2b3", "a2b10", -1},
        {"x007", "x7", 1},
        {"x7", "x7", 0},
        {"abc", "abd", -1},
        {"ab", "abc", -1},
        {"a10", "a9z", 1},
        // Where the names first differ, a digit run may go on on one side only.
        {"a1x", "a12", -1},
        {"a12", "a1", 1},
        {"v2.10", "v2.9", 1},
        {"set2value", "set2values", -1},
        {"set20value", "set2value", 1},
        {"alpha7", "alpha7", 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(compareNatural(utf8ToUtf16(c.a), utf8ToUtf16(c.b)), c.order) << c.a << " " << c.b;
        EXPECT_EQ(compareNatural(utf8ToUtf16(c.b), utf8ToUtf16(c.a)), -c.order) << c.b << " " << c.a;
    }
}

TEST(CodeText, WordsOfPurposeTexts) {
    const struct Case {
        const char* text;
        std::vector<std::string> words; // unspaced ones in brackets
    } cases[] = {
        {"read a comma-separated file", {"read", "a", "comma", "separated", "file"}},
        {"配列の要素を並べ替える", {"[配列の要素を並べ替える]"}},
        {"csvファイルを読み取り、table にする", {"csv", "[ファイルを読み取り]", "table", "[にする]"}},
        {"필터 적용", {"필터", "적용"}},
        {"2-D line, 3×3", {"2", "d", "line", "3", "3"}},
    };
    for (const auto& c : cases) {
        const std::u16string text = folded(utf8ToUtf16(c.text));
        std::vector<Word> words;
        splitWords(text, words);
        std::vector<std::string> out;
        for (const auto& w : words) {
            const std::string piece = utf16ToUtf8(text.substr(w.begin, w.length));
            out.push_back(w.unspaced ? "[" + piece + "]" : piece);
        }
        EXPECT_EQ(out, c.words) << c.text;
    }
}

TEST(NameMatch, Typos) {
    const struct Case {
        const char* query;
        const char* name;
        int edits; // -1: no match
        bool whole;
    } cases[] = {
        {"plto", "plot", 1, true},
        {"plto", "plotyy", 1, false},
        {"systen", "system938", 1, false},
        {"prod006systen938", "prod006system938", 1, true},
        {"fsatfiltre", "fastfilter", 2, true},
        {"fastfiltr", "fastfilter", 1, true},
        {"fstfilter", "fastfilter", 1, true},
        {"abc", "abd", -1, false},         // too short for a typo
        {"abcdefg", "abxdxfg", -1, false}, // two edits in seven characters
        {"plot", "plotting", -1, false},   // a plain prefix is not a typo
        {"xyzw", "plot", -1, false},
    };
    std::vector<int> scratch;
    for (const auto& c : cases) {
        const std::u16string query = utf8ToUtf16(c.query);
        const auto match = matchTypo(query, utf8ToUtf16(c.name), allowedTypos(query.size()), scratch);
        if (c.edits < 0) {
            EXPECT_FALSE(match) << c.query << " " << c.name;
            continue;
        }
        ASSERT_TRUE(match) << c.query << " " << c.name;
        EXPECT_EQ(match->edits, c.edits) << c.query << " " << c.name;
        EXPECT_EQ(match->wholeName, c.whole) << c.query << " " << c.name;
    }
}

// In-order letters: starts of segments and runs beat scattered letters; a late start costs.
TEST(NameMatch, InOrderGrades) {
    const auto grade = [](const char* query, const char* name) {
        const std::u16string q = utf8ToUtf16(query);
        const std::u16string n = folded(utf8ToUtf16(name));
        std::vector<Segment> segments;
        appendSegments(utf8ToUtf16(name), segments);
        std::vector<int> scratch;
        return matchInOrder(q, n, segments, scratch, nullptr).value_or(-1);
    };
    EXPECT_GT(grade("gcfh", "getCurrentFigureHandle"), grade("gcfh", "magicFishHook"));
    EXPECT_GT(grade("fig", "figureOut"), grade("fig", "outFigure"));
    EXPECT_GT(grade("fig", "outFigure"), grade("fig", "offsetInGroup"));
    EXPECT_EQ(grade("gfc", "getCurrentFigure"), -1);
    EXPECT_EQ(grade("igu", "figure"), -1); // the first letter starts the name or a segment
    EXPECT_EQ(grade("x", "x"), -1);        // one letter is a prefix or nothing
}

// The bound that lets a query skip grading a name is never below the grade (the name itself as
// the query included), and is empty exactly when there is no grade.
TEST(NameMatch, InOrderBoundHoldsEveryGrade) {
    const char* names[] = {"getCurrentFigureHandle",
                           "magicFishHook",
                           "figureOut",
                           "outFigure",
                           "offsetInGroup",
                           "read_csv",
                           "HTMLParser",
                           "system1020",
                           "aaaaBaaa",
                           "setSetSet",
                           "Figure.savefig",
                           "ÄrgerÜber",
                           "x",
                           "fft_ifft2d",
                           "sampleRate"};
    const char* queries[] = {"gcfh", "fig", "fo",  "ofig", "rcsv", "htmlp", "s10", "aab",   "sss",
                             "fsv",  "är",  "ärü", "ff2",  "srt",  "sare",  "og",  "igure", "xyz"};
    std::vector<int> scratch;
    for (const char* nameText : names) {
        const std::u16string original = utf8ToUtf16(nameText);
        const std::u16string name = folded(original);
        std::vector<Segment> segments;
        appendSegments(original, segments);
        for (const char* queryText : queries) {
            const std::u16string query = folded(utf8ToUtf16(queryText));
            const QueryPositions positions(query);
            const auto grade = matchInOrder(query, name, segments, scratch, nullptr);
            const auto bound = inOrderBound(positions, name, segments);
            if (grade) {
                ASSERT_TRUE(bound) << queryText << " " << nameText;
                EXPECT_GE(*bound, *grade) << queryText << " " << nameText;
            }
            EXPECT_EQ(bound.has_value(), grade.has_value()) << queryText << " " << nameText;
        }
        if (name.size() >= 2) {
            const auto self = matchInOrder(name, name, segments, scratch, nullptr);
            ASSERT_TRUE(self) << nameText;
            EXPECT_GE(inOrderBound(QueryPositions(name), name, segments).value_or(-1), *self) << nameText;
        }
    }
}

// Runs of entry numbers are kept as gaps in seven-bit groups: each size boundary reads back, in a
// run, exactly as written.
TEST(IndexData, GapsReadBackAsWritten) {
    const struct Case {
        std::uint32_t gap;
        std::size_t bytes;
    } cases[] = {{0, 1}, {1, 1}, {127, 1}, {128, 2}, {16383, 2}, {16384, 3}, {(1u << 27) - 1, 4}, {UINT32_MAX, 5}};
    std::vector<std::uint8_t> run(64);
    std::uint8_t* out = run.data();
    for (const auto& c : cases) {
        EXPECT_EQ(gapBytes(c.gap), c.bytes) << c.gap;
        std::uint8_t* const before = out;
        out = putGap(out, c.gap);
        EXPECT_EQ(static_cast<std::size_t>(out - before), c.bytes) << c.gap;
    }
    const std::uint8_t* in = run.data();
    for (const auto& c : cases) {
        EXPECT_EQ(takeGap(in), c.gap);
    }
    EXPECT_EQ(in, out);
}

} // namespace
