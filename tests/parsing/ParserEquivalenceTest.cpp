// The streaming reading of lookup and page files against the tree reading, on hand-picked inputs
// where an event-driven reader is easy to get wrong: duplicate keys, keys in unusual order,
// escapes in keys and texts, wrong kinds, failures after failures, the nesting limit, documents
// whose key is taken and page replacements. Each case also names the outcome the tree reading
// gives, so that a case keeps exercising what its name says. The comparison is the one of the
// differential fuzz targets (fuzz/Differential.hpp).

#include "Differential.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

using refdoc::fuzz::LookupOutcome;
using refdoc::fuzz::PageMap;
using refdoc::fuzz::PageOutcome;
using refdoc::fuzz::Reading;
using refdoc::fuzz::WarningOrder;
using reference::docparser::DropReason;

enum class Expect { Accepted, SyntaxError, MissingKey, WrongKind };

struct Case {
    const char* name;
    std::string text;
    Expect expect;
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }

std::string caseName(const ::testing::TestParamInfo<Case>& info) { return info.param.name; }

template <class Outcome>
const char* failureOf(const Outcome& outcome) {
    using Failure = typename Outcome::Failure;
    switch (outcome.failure) {
    case Failure::None:
        return "accepted";
    case Failure::SyntaxError:
        return "syntax error";
    case Failure::FormatError:
        return "format error";
    case Failure::Other:
        break;
    }
    return "other failure";
}

// What the tree reading did, in the terms of Expect.
template <class Outcome>
void expectOutcome(const Outcome& outcome, Expect expect) {
    switch (expect) {
    case Expect::Accepted:
        EXPECT_STREQ(failureOf(outcome), "accepted");
        break;
    case Expect::SyntaxError:
        EXPECT_STREQ(failureOf(outcome), "syntax error");
        break;
    case Expect::MissingKey:
    case Expect::WrongKind:
        EXPECT_STREQ(failureOf(outcome), "format error");
        ASSERT_EQ(outcome.diagnostics.size(), 1u);
        EXPECT_EQ(outcome.diagnostics[0].dropReason,
                  expect == Expect::MissingKey ? DropReason::MissingKey : DropReason::WrongKind);
        break;
    }
}

// ---- Lookup files

const std::string kHeader =
    R"("productName": "Signal", "baseCode": "SG", "helpFolder": "signal", "helpLocation": "help/signal")";

std::string lookup(const std::string& items, const std::string& rest = "") {
    return "{" + kHeader + R"(, "refItems": [)" + items + "]" + rest + "}";
}

std::string entry(const std::string& name, const std::string& extra = "") {
    return R"({"name": ")" + name + R"(", "refpurpose": "Purpose of )" + name + R"(", "href": "ref/)" + name +
           R"(.html")" + extra + "}";
}

// Longer than the JSON parser's buffer for unescaped text, so that a string with escapes reaches
// an event reader in several parts.
std::string longEscaped(std::size_t characters) {
    std::string text;
    for (std::size_t i = 0; i < characters; ++i) {
        text += i % 7 == 0 ? "\\u00e9" : i % 11 == 0 ? "\\n" : "x";
    }
    return text;
}

std::string nested(int depth) { return std::string(depth, '[') + std::string(depth, ']'); }

const std::vector<Case> kLookupCases = {
    {"EveryField",
     lookup(entry("b", R"(, "type": "function", "fcntype": "builtin", "deprecated": false)") + "," +
            entry("a", R"(, "type": "class")") + "," + entry("b", R"(, "deprecated": null)")),
     Expect::Accepted},
    {"DuplicateKeyFirstInvalid", lookup(R"({"name": "a", "refpurpose": "p", "href": 5, "href": "ref/a.html"})"),
     Expect::Accepted},
    {"DuplicateKeySecondInvalid", lookup(R"({"name": "a", "refpurpose": "p", "href": "ref/a.html", "href": 5})"),
     Expect::WrongKind},
    {"DuplicateNameLastWins", lookup(R"({"name": "a", "refpurpose": "p", "href": "h", "name": "z"})"),
     Expect::Accepted},
    {"DuplicateEnumUnknownThenKnown",
     lookup(R"({"type": "widget", "name": "a", "refpurpose": "p", "href": "h", "type": "class"})"), Expect::Accepted},
    {"DuplicateEnumKnownThenUnknown",
     lookup(R"({"type": "class", "name": "a", "refpurpose": "p", "href": "h", "type": "widget"})"), Expect::Accepted},
    {"DuplicateRefItemsEmptyFirst", "{" + kHeader + R"(, "refItems": [], "refItems": [)" + entry("a") + "]}",
     Expect::Accepted},
    {"DuplicateRefItemsInvalidFirst",
     "{" + kHeader + R"(, "refItems": [{"name": 1}], "refItems": [)" + entry("a") + "]}", Expect::Accepted},
    {"DuplicateRefItemsWrongKindLast", "{" + kHeader + R"(, "refItems": [)" + entry("a") + R"(], "refItems": {}})",
     Expect::WrongKind},
    {"DuplicateHeaderKey", R"({"helpFolder": "first", )" + kHeader + R"(, "helpFolder": "last", "refItems": []})",
     Expect::Accepted},
    {"DuplicateSupportPackages",
     lookup(entry("a"), R"(, "supportPackages": [{"bad": 1}], "supportPackages": [{"productName": "P", "baseCode": "pk",
        "helpFolder": "p", "helpLocation": "l", "refItems": []}])"),
     Expect::Accepted},
    {"HeaderAfterRefItems", R"({"refItems": [)" + entry("a") + "], " + kHeader + "}", Expect::Accepted},
    {"HrefFirstAndKeysReversed",
     lookup(R"({"deprecated": 1, "fcntype": "method", "type": "method", "href": "h", "refpurpose": "p", "name": "n"})"),
     Expect::Accepted},
    {"EscapedKeysMatch",
     lookup(R"({"na\u006de": "a", "\u0072efpurpose": "p", "hr\u0065f": "h", "typ\u0065": "\u0066unction"})"),
     Expect::Accepted},
    {"NulInKeyIsAnotherKey", lookup(R"({"name\u0000": "x", "name": "a", "refpurpose": "p", "href": "h"})"),
     Expect::Accepted},
    {"NulInKeyOnly", lookup(R"({"name\u0000": "x", "refpurpose": "p", "href": "h"})"), Expect::MissingKey},
    {"EscapesAndNulInTexts",
     lookup(
         R"({"name": "a\u0000b", "refpurpose": "caf\u00e9 \ud83d\ude00 \"q\" \\ \/ \b\f\n\r\t", "href": "r\u0000\/x"})"),
     Expect::Accepted},
    {"NonAsciiInAsciiFields", R"({"productName": "Sig", "baseCode": "caf\u00e9", "helpFolder": "dossier\u00e9",
        "helpLocation": "\u65e5", "refItems": [{"name": "a", "refpurpose": "p", "href": "\u00e9"}]})",
     Expect::Accepted},
    {"LongEscapedTexts",
     lookup(R"({"name": "a", "refpurpose": ")" + longEscaped(9000) + R"(", "href": "h", "type": ")" +
            longEscaped(5000) + R"(", ")" + longEscaped(6000) + R"(": 1})"),
     Expect::Accepted},
    {"UnknownEnumTexts",
     lookup(entry("a", R"(, "type": "widget", "fcntype": "Builtin")") + "," + entry("b", R"(, "type": "")")),
     Expect::Accepted},
    {"EnumOfWrongKind", lookup(entry("a", R"(, "type": 12)")), Expect::WrongKind},
    {"RootIsAnArray", "[" + lookup(entry("a")) + "]", Expect::WrongKind},
    {"RootIsAString", R"("signal")", Expect::WrongKind},
    // Escapes make the parser hand the string over in pieces, before any object is open.
    {"RootIsAStringInPieces", "\"" + std::string(5000, 'x') + "\\/\"", Expect::WrongKind},
    {"RefItemsIsAnObject", "{" + kHeader + R"(, "refItems": {"a": 1}})", Expect::WrongKind},
    {"ItemIsAString", lookup(entry("a") + R"(, "b")"), Expect::WrongKind},
    {"NameIsANumber", lookup(R"({"name": 1, "refpurpose": "p", "href": "h"})"), Expect::WrongKind},
    {"HeaderFieldIsNull", R"({"productName": null, "baseCode": "SG", "helpFolder": "s", "helpLocation": "l",
        "refItems": []})",
     Expect::WrongKind},
    {"SupportPackagesIsAnObject", lookup(entry("a"), R"(, "supportPackages": {})"), Expect::WrongKind},
    {"SupportPackageIsANumber", lookup(entry("a"), R"(, "supportPackages": [7])"), Expect::WrongKind},
    {"RefItemsMissing", "{" + kHeader + "}", Expect::MissingKey},
    {"EmptyObject", "{}", Expect::MissingKey},
    {"MissingHrefThenTrailingComma", lookup(R"({"name": "a", "refpurpose": "p"},)"), Expect::SyntaxError},
    // The item is complete (and lacks its name) before the text breaks off.
    {"MissingNameThenTruncated",
     [] {
         const std::string text = lookup(R"({"refpurpose": "p", "href": "h"})");
         return text.substr(0, text.size() - 2);
     }(),
     Expect::SyntaxError},
    {"UnknownEnumThenSyntaxError", lookup(entry("a", R"(, "type": "widget")")) + " x", Expect::SyntaxError},
    {"UnknownEnumThenMissingKey", lookup(entry("a", R"(, "type": "widget")") + R"(, {"name": "b", "href": "h"})"),
     Expect::MissingKey},
    {"UnknownEnumBeforeMissingName", lookup(R"({"type": "widget", "refpurpose": "p", "href": "h"})"),
     Expect::MissingKey},
    {"MissingKeyInLaterPackage",
     lookup(entry("a"), R"(, "supportPackages": [{"productName": "P", "baseCode": "pk", "helpFolder": "p",
        "helpLocation": "l", "refItems": [{"name": "x", "href": "h"}]}])"),
     Expect::MissingKey},
    {"DepthThirtyTwo", lookup(entry("a"), R"(, "deep": )" + nested(31)), Expect::Accepted},
    {"DepthThirtyThree", lookup(entry("a"), R"(, "deep": )" + nested(32)), Expect::SyntaxError},
    {"DepthInsideAnItem", lookup(entry("a", R"(, "deep": )" + nested(29))), Expect::Accepted},
    {"DepthInsideAnItemTooDeep", lookup(entry("a", R"(, "deep": )" + nested(30))), Expect::SyntaxError},
    {"PackageKeyTakenByMain",
     lookup(entry("a"), R"(, "supportPackages": [{"productName": "P", "baseCode": "signal", "helpFolder": "p",
        "helpLocation": "l", "refItems": [{"name": "x", "refpurpose": "p", "href": "h", "type": "nope"}]},
        {"productName": "Q", "baseCode": "pk", "helpFolder": "q", "helpLocation": "l", "refItems": []},
        {"productName": "R", "baseCode": "pk", "helpFolder": "r", "helpLocation": "l", "refItems": []}])"),
     Expect::Accepted},
    {"TakenPackageStillChecked",
     lookup(entry("a"), R"(, "supportPackages": [{"productName": "P", "baseCode": "signal", "helpFolder": "p",
        "helpLocation": "l", "refItems": [{"name": "x", "refpurpose": "p"}]}])"),
     Expect::MissingKey},
    {"SameKeysElsewhere",
     "{" + kHeader + R"(, "name": "doc", "href": "doc", "refItems": [{"name": "a", "refpurpose": "p", "href": "h",
        "refItems": [1], "productName": 2, "extra": {"name": 3, "href": [4]}}],
        "supportPackages": [{"productName": "P", "baseCode": "pk", "helpFolder": "p", "helpLocation": "l",
        "refItems": [], "supportPackages": [{"bad": true}]}]})",
     Expect::Accepted},
    {"ExoticNumbersInIgnoredMembers", lookup(entry("a", R"(, "n": [1e400, -0, 18446744073709551616, 1.5E-7])")),
     Expect::Accepted},
    {"InvalidUtf8", lookup(entry("a\xC3")), Expect::SyntaxError},
    {"LoneSurrogateEscape", lookup(entry("a\\ud800")), Expect::SyntaxError},
    {"CommentBeforeRoot", "// c\n" + lookup(entry("a")), Expect::SyntaxError},
    {"TrailingText", lookup(entry("a")) + " {}", Expect::SyntaxError},
    {"EmptyText", "", Expect::SyntaxError},
    {"Whitespace", " \n\t ", Expect::SyntaxError},
};

class LookupEquivalence : public ::testing::TestWithParam<Case> {};

TEST_P(LookupEquivalence, ReadingsAgree) {
    const auto& c = GetParam();
    expectOutcome(refdoc::fuzz::readLookupFile(c.text, Reading::Tree), c.expect);
    const std::string difference = refdoc::fuzz::lookupReadingsDiffer(c.text);
    EXPECT_TRUE(difference.empty()) << difference;
}

INSTANTIATE_TEST_SUITE_P(Cases, LookupEquivalence, ::testing::ValuesIn(kLookupCases), caseName);

// ---- Page files

std::string pages(const std::string& items, const std::string& rest = "") {
    return "{" + kHeader + R"(, "refItems": [)" + items + "]" + rest + "}";
}

std::string page(const std::string& href, const std::string& extra = "") {
    return R"({"href": ")" + href + R"(", "refpurpose": "Purpose of )" + href + R"(")" + extra + "}";
}

const std::string kInputs = R"("inputgroup": [{"title": "In", "inputs": [{"name": "caf\u00e9", "purpose": "p",
    "htmlid": "in_a", "value": ["v\u00e9"], "defaultvalue": "1", "syntaxtype": "required"}]}])";
const std::string kProperties =
    R"("classpropertygroup": [{"classproperty": [{"name": "Gr\u00f6\u00dfe", "purpose": "p"}]}])";

const std::vector<Case> kPageCases = {
    {"FullPage",
     pages(page("ref/b.html", R"(, "refentity": [{"type": "function", "fcntype": "ordinary", "name": "b"}],
        "packagename": "pk", "introduced": "1.0", "description": "d\u00e9", "appthumbnail": {"fileref": "f.png", "alt": "a"},
        "deprecationstatus": "current", "syntaxgroup": [{"title": "T", "syntaxtype": "function", "syntax": ["y = b(x);", "b;"]}],
        )" + kInputs + R"(, "outputs": [{"name": "y\u00b2", "purpose": "p", "htmlid": "out_y", "syntaxtype": "output"}],
        )" + kProperties + R"(, "seealso": [{"url": "u", "name": "n"}],
        "examples": [{"url": "e", "open_command": "open", "title": "t"}],
        "parameters": [{"name": "W\u00ef", "purpose": "p", "defaultvalue": "0"}])") +
           "," + page("ref/a.html") + "," + page("ref/b.html")),
     Expect::Accepted},
    {"InputGroupBeforeBlockEntity",
     pages(page("ref/blk.html",
                ", " + kInputs + ", " + kProperties + R"(, "refentity": [{"type": "block", "name": "B"}])")),
     Expect::Accepted},
    {"BlockEntityLaterInTheList",
     pages(page("ref/blk.html", ", " + kInputs + R"(, "refentity": [{"type": "function", "name": "f"},
        {"type": "\u0062lock", "name": "B"}])")),
     Expect::Accepted},
    {"DuplicateRefEntityLastWins",
     pages(page("ref/blk.html", R"(, "refentity": [{"type": "block", "name": "B"}], )" + kInputs +
                                    R"(, "refentity": [{"type": "function", "name": "f"}])")),
     Expect::Accepted},
    {"BlockEntityWithDuplicateTypeKey",
     pages(page("ref/blk.html", R"(, "refentity": [{"type": "block", "name": "B", "type": "function"}], )" + kInputs)),
     Expect::Accepted},
    {"NameValuePairs", pages(page("ref/nv.html", R"(, "inputgroup": [{"namevaluepairs": [{"title": "A", "inputs": [
        {"name": "N", "purpose": "p"}]}, {"title": "B"}], "inputs": [{"bad": 1}]}, {"title": "Plain", "inputs": []}])")),
     Expect::Accepted},
    {"NameValuePairsBeforeTitleAndInputs", pages(page("ref/nv.html", R"(, "inputgroup": [{"inputs": 5, "title": 6,
        "namevaluepairs": []}])")),
     Expect::Accepted},
    {"NameValuePairsDuplicateLastIsNull", pages(page("ref/nv.html", R"(, "inputgroup": [{"namevaluepairs": [],
        "namevaluepairs": null}])")),
     Expect::WrongKind},
    {"InputGroupWithoutTitle", pages(page("ref/a.html", R"(, "inputgroup": [{"inputs": []}])")), Expect::MissingKey},
    {"EmptyThumbnail", pages(page("ref/a.html", R"(, "appthumbnail": {})")), Expect::MissingKey},
    {"ThumbnailIsAString", pages(page("ref/a.html", R"(, "appthumbnail": "x.png")")), Expect::WrongKind},
    {"ClassPropertyGroupWithoutProperties", pages(page("ref/a.html", R"(, "classpropertygroup": [{"title": "T"}])")),
     Expect::MissingKey},
    {"SyntaxLineIsANumber", pages(page("ref/a.html", R"(, "syntaxgroup": [{"title": "T", "syntax": ["a", 1]}])")),
     Expect::WrongKind},
    {"SyntaxGroupWithoutSyntax", pages(page("ref/a.html", R"(, "syntaxgroup": [{"title": "T"}])")), Expect::MissingKey},
    {"ValueListHoldsNull",
     pages(page("ref/a.html", R"(, "outputs": [{"name": "y", "purpose": "p", "value": [null]}])")), Expect::WrongKind},
    {"HtmlIdIsANumber", pages(page("ref/a.html", R"(, "parameters": [{"name": "y", "purpose": "p", "htmlid": 1}])")),
     Expect::WrongKind},
    {"UnknownEnumTextsEverywhere", pages(page("ref/a.html", R"(, "deprecationstatus": "gone",
        "refentity": [{"type": "gizmo", "fcntype": "weird", "name": "g"}],
        "syntaxgroup": [{"syntaxtype": "odd", "title": "T", "syntax": []}],
        "outputs": [{"name": "y", "purpose": "p", "syntaxtype": "strange"}])")),
     Expect::Accepted},
    {"UnknownEnumThenMissingKeyInSameItem",
     pages(R"({"deprecationstatus": "gone", "refentity": [{"type": "gizmo", "name": "g"}], "href": "h"})"),
     Expect::MissingKey},
    {"LongEscapedTexts",
     pages(page("ref/a.html", R"(, "description": ")" + longEscaped(9000) + R"(",
        "syntaxgroup": [{"title": "T", "syntax": [")" +
                                  longEscaped(5000) + R"("]}], "deprecationstatus": ")" + longEscaped(4500) + R"(")")),
     Expect::Accepted},
    {"HrefLastAndEscaped", pages(R"({"refpurpose": "p", "description": "a\u0000b", "h\u0072ef": "ref\/x.html"})"),
     Expect::Accepted},
    {"PackageKeyTakenWithBrokenPage",
     pages(page("ref/a.html"), R"(, "supportPackages": [{"productName": "P", "baseCode": "signal", "helpFolder": "p",
        "helpLocation": "l", "refItems": [{"href": "x"}]}])"),
     Expect::MissingKey},
    {"PackageKeyTakenWithGoodPages",
     pages(page("ref/a.html"), R"(, "supportPackages": [{"productName": "P", "baseCode": "signal", "helpFolder": "p",
        "helpLocation": "l", "refItems": [{"href": "x", "refpurpose": "y", "deprecationstatus": "nah"}]},
        {"productName": "Q", "baseCode": "pk", "helpFolder": "q", "helpLocation": "l", "refItems": [{"href": "q",
        "refpurpose": "y"}, {"href": "r", "refpurpose": "z"}]}])"),
     Expect::Accepted},
    {"MissingKeyThenSyntaxError", pages(R"({"href": "a"}, {"href": "b", "refpurpose": "p",})"), Expect::SyntaxError},
    {"DepthThirtyTwoInAPage", pages(page("ref/a.html", R"(, "deep": )" + nested(29))), Expect::Accepted},
    {"DepthThirtyThreeInAPage", pages(page("ref/a.html", R"(, "deep": )" + nested(30))), Expect::SyntaxError},
};

class PageEquivalence : public ::testing::TestWithParam<Case> {};

// Each case without a replacement, with a replacement that covers every page it holds, and with
// one that covers some of them (the pages of a replacement are only checked, not built).
TEST_P(PageEquivalence, ReadingsAgreeWithAndWithoutReplacement) {
    const auto& c = GetParam();
    const PageOutcome tree = refdoc::fuzz::readPageFile(c.text, Reading::Tree);
    expectOutcome(tree, c.expect);
    std::string difference = refdoc::fuzz::pageReadingsDiffer(c.text);
    EXPECT_TRUE(difference.empty()) << "without a replacement: " << difference;
    if (tree.failure == PageOutcome::Failure::None) {
        difference = refdoc::fuzz::pageReadingsDiffer(c.text, &tree.result);
        EXPECT_TRUE(difference.empty()) << "replacing every page: " << difference;
        const PageMap partial = refdoc::fuzz::thinnedReplacement(tree.result);
        difference = refdoc::fuzz::pageReadingsDiffer(c.text, &partial);
        EXPECT_TRUE(difference.empty()) << "replacing some pages: " << difference;
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, PageEquivalence, ::testing::ValuesIn(kPageCases), caseName);

// ---- The comparison itself: outcomes that differ in one respect are told apart, and the
// report names where.

struct DifferenceCase {
    const char* name;
    std::string first;
    std::string second;
    const char* reportNames; // a part of the report's first line
};

void PrintTo(const DifferenceCase& c, std::ostream* out) { *out << c.name; }

const std::vector<DifferenceCase> kDifferences = {
    {"FieldValue", lookup(entry("a")), lookup(R"({"name": "a", "refpurpose": "other", "href": "ref/a.html"})"),
     R"(result["signal"].items["a"][0].purpose)"},
    {"EnumValue", lookup(entry("a", R"(, "type": "class")")), lookup(entry("a", R"(, "type": "method")")),
     ".entityType"},
    {"DeprecatedFlag", lookup(entry("a", R"(, "deprecated": 0)")), lookup(entry("a")), ".deprecated"},
    {"RecordOrder", lookup(entry("a") + "," + entry("a", R"(, "type": "class")")),
     lookup(entry("a", R"(, "type": "class")") + "," + entry("a")), R"(.items["a"][0])"},
    {"ExtraRecord", lookup(entry("a") + "," + entry("a")), lookup(entry("a")), R"(.items["a"])"},
    {"ExtraDocument",
     lookup(entry("a"), R"(, "supportPackages": [{"productName": "P", "baseCode": "pk", "helpFolder": "p",
        "helpLocation": "l", "refItems": []}])"),
     lookup(entry("a")), "result"},
    {"AcceptedAgainstRefused", lookup(entry("a")), lookup(R"({"name": "a"})"), "(top)"},
    {"SyntaxErrorCode", lookup(entry("a")) + ",", "{" + lookup(entry("a")), "(top)"},
    {"SyntaxErrorPosition", lookup(entry("a")) + " x", lookup(entry("a")) + "  x", ".offset"},
    {"MissingKeyPointer", lookup(entry("a") + R"(, {"name": "b"})"), lookup(R"({"name": "b"}, )" + entry("a")),
     ".jsonPath"},
    {"WarningPointer", lookup(entry("a", R"(, "type": "x")") + "," + entry("b")),
     lookup(entry("a") + "," + entry("b", R"(, "type": "x")")), ".warnings"},
};

class ComparisonReports : public ::testing::TestWithParam<DifferenceCase> {};

TEST_P(ComparisonReports, TellsOutcomesApart) {
    const auto& c = GetParam();
    const LookupOutcome first = refdoc::fuzz::readLookupFile(c.first, Reading::Tree);
    const LookupOutcome second = refdoc::fuzz::readLookupFile(c.second, Reading::Tree);
    const std::string report = refdoc::fuzz::describeDifference(first, second);
    ASSERT_NE(report, "");
    EXPECT_NE(report.substr(0, report.find('\n')).find(c.reportNames), std::string::npos) << report;
    EXPECT_EQ(refdoc::fuzz::describeDifference(first, first), "");
}

INSTANTIATE_TEST_SUITE_P(Cases, ComparisonReports, ::testing::ValuesIn(kDifferences),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
