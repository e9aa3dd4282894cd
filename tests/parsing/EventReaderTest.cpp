// What the one reader decides for every format: the last of a repeated key counts, members may
// come in any order, the failure reported is the first in the tables' order (a syntax error
// anywhere wins), and a text and its parsed value give the same records.

#include "docparser/parsing/LookupParser.hpp"
#include "docparser/parsing/RefItemParser.hpp"

#include "diagnostics/RecordText.hpp"
#include "support/JsonFixtures.hpp"

#include <gtest/gtest.h>

#include <boost/system/system_error.hpp>

#include <string>
#include <vector>

namespace {

using namespace reference::docparser;
using namespace reference::property;
using refdoc::test::parseJson;
using refdoc::test::recordText;

constexpr const char* kHeader = R"("productName": "P", "baseCode": "B", "helpFolder": "p", "helpLocation": "h")";

std::string lookupFile(const std::string& items, const std::string& extra = "") {
    return std::string("{") + kHeader + R"(, "refItems": [)" + items + "]" + extra + "}";
}

// What a lookup file gave: its record when it failed (reason, message, pointer, warnings).
struct Outcome {
    DocResourceParser::LookupResourceMap result;
    FileDiagnostic record;
    bool failed = false;
};

Outcome readLookup(const std::string& text) {
    Outcome outcome;
    detail::ScratchMemory scratch;
    try {
        outcome.result = parseLookupFile(text, scratch, &outcome.record);
    } catch (const DocParserException&) {
        outcome.failed = true;
    } catch (const boost::system::system_error&) {
        outcome.failed = true;
    }
    // Read without a record, the text gives the same documents or refusal.
    try {
        EXPECT_EQ(parseLookupFile(text, scratch, nullptr), outcome.result) << text;
        EXPECT_FALSE(outcome.failed) << "accepted only without a record: " << text;
    } catch (...) {
        EXPECT_TRUE(outcome.failed) << "refused only without a record: " << text;
    }
    // The same tables read the parsed value of strict JSON text: the same records or refusal.
    if (outcome.record.dropReason != DropReason::SyntaxError) {
        try {
            EXPECT_EQ(parseLookupFile(parseJson(text)), outcome.result) << text;
            EXPECT_FALSE(outcome.failed) << "the parsed value is accepted, the text was not: " << text;
        } catch (const DocParserException&) {
            EXPECT_TRUE(outcome.failed) << "the parsed value is refused, the text was not: " << text;
        }
    }
    return outcome;
}

// A support package keyed by `baseCode` with the given items.
std::string package(const std::string& baseCode, const std::string& items = "") {
    return R"({"productName": "Q", "baseCode": ")" + baseCode + R"(", "helpFolder": "q", "helpLocation": "h",
               "refItems": [)" +
           items + "]}";
}

TEST(EventReader, FailureReportedIsTheFirstInTableOrderAndASyntaxErrorWins) {
    const struct Case {
        const char* what;
        std::string text;
        std::string record;
    } cases[] = {
        {"members in table order, not text order", lookupFile(R"({"href": 5, "refpurpose": "p"})"),
         "missing key at /refItems/0/name: missing required member \"name\""},
        {"earlier element first, whatever comes later in it",
         lookupFile(R"({"name": "a", "href": "h", "refpurpose": 1}, {"href": "h"})"),
         "wrong kind at /refItems/0/refpurpose: expected a string, found a number"},
        {"the header before the items, wherever it stands",
         R"({"refItems": [{"name": 1}], "productName": "P", "baseCode": "B", "helpFolder": [], "helpLocation": "h"})",
         "wrong kind at /helpFolder: expected a string, found an array"},
        {"an array element of the wrong kind", lookupFile(R"({"name": "a", "refpurpose": "p", "href": "h"}, [])"),
         "wrong kind at /refItems/1: expected an object, found an array"},
        {"the whole document of the wrong kind", R"(["a"])",
         "wrong kind: expected an object, found an array at the top level"},
        {"keys escaped in pointers",
         lookupFile("", R"(, "supportPackages": [{"productName": "Q", "baseCode": "a/b~c"}])"),
         "missing key at /supportPackages/0/helpFolder: missing required member \"helpFolder\""},
        {"a document without entries", std::string("{") + kHeader + "}",
         "missing key at /refItems: missing required member \"refItems\""},
        {"a package dropped for its taken key is still checked",
         lookupFile("", R"(, "supportPackages": [)" + package("p", R"({"name": "y", "refpurpose": "p"})") + "]"),
         "missing key at /supportPackages/0/refItems/0/href: missing required member \"href\""},
        {"warnings before the failure stay, later ones go",
         lookupFile(R"({"name": "a", "refpurpose": "p", "href": "h", "type": "odd"}, {"name": "b", "refpurpose": "p"},
                       {"name": "c", "refpurpose": "p", "href": "h", "type": "later"})"),
         "missing key at /refItems/1/href: missing required member \"href\"; "
         "unknown enumeration text at /refItems/0/type: odd"},
        {"a failure inside a value that a repeated key replaces does not count",
         lookupFile(R"({"name": "a"})", R"(, "refItems": [{"name": "b", "refpurpose": "p", "href": "h"}])"), "read"},
        {"nor do its warnings; warnings come in table order",
         lookupFile(R"({"name": "a", "refpurpose": "p", "href": "h", "fcntype": "f1", "type": "t1", "type": "class"},
                       {"name": "b", "refpurpose": "p", "href": "h", "fcntype": "f2", "type": "t2"})"),
         "read; unknown enumeration text at /refItems/0/fcntype: f1; unknown enumeration text at /refItems/1/type: t2; "
         "unknown enumeration text at /refItems/1/fcntype: f2"},
        {"a package whose key the main document or an earlier package holds is dropped with a warning",
         lookupFile("", R"(, "supportPackages": [)" +
                            package("sp", R"({"name": "b", "refpurpose": "p", "href": "h", "fcntype": "Ordinary"})") +
                            "," + package("p") + "," + package("sp") + "]"),
         "read; unknown enumeration text at /supportPackages/0/refItems/0/fcntype: Ordinary; "
         "document key taken at /supportPackages/1: p; document key taken at /supportPackages/2: sp"},
        {"a syntax error after a failure", lookupFile(R"({"name": "a"},)"), "syntax error at 1:106: syntax error"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const Outcome outcome = readLookup(c.text);
        EXPECT_EQ(outcome.failed, outcome.record.dropped());
        EXPECT_EQ(recordText(outcome.record), c.record);
    }
}

TEST(EventReader, TheLastOfARepeatedKeyCountsWholly) {
    const Outcome outcome = readLookup(lookupFile(
        R"({"name": "x", "refpurpose": "p", "href": "h"})",
        R"(, "refItems": [{"name": "a", "name": "b", "refpurpose": "p", "href": "h", "type": "class", "type": "odd"}],
             "supportPackages": [{"productName": "Q", "baseCode": "Q", "helpFolder": "q", "helpLocation": "h",
                                  "refItems": []}],
             "supportPackages": [], "helpFolder": "last")"));
    ASSERT_FALSE(outcome.failed);
    ASSERT_EQ(outcome.result.size(), 1u);
    const auto& [key, resource] = *outcome.result.begin();
    EXPECT_EQ(key, u"last");
    ASSERT_EQ(resource.getItems().size(), 1u);
    const auto& entry = resource.getItems().at(u"b").at(0);
    EXPECT_EQ(entry.getEntityType(), RefEntityType::getDefaultValue()) << "an unknown last text is not the first";

    // A package that failed in the replaced array leaves none of its entries behind.
    const Outcome replaced =
        readLookup(lookupFile(R"({"name": "x", "refpurpose": "p", "href": "h"})",
                              R"(, "supportPackages": [{"baseCode": "Q", "helpFolder": "q", "helpLocation": "h",
                                  "refItems": [{"name": "y", "refpurpose": "p", "href": "lost"}]}],
             "supportPackages": [])"));
    ASSERT_FALSE(replaced.failed);
    ASSERT_EQ(replaced.result.size(), 1u);
    const auto& items = replaced.result.begin()->second.getItems();
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items.at(u"x").size(), 1u);
}

// What a page's records depend on may come after them in the text or change with a repeated
// key: the href in every anchor, the block entity in member names (input and class property
// names are UTF-8 only on pages documenting a block; output and parameter names always are),
// the href in whether a replacing file holds the page.
TEST(EventReader, PageRecordsFollowTheFinalHrefAndEntitiesWhereverTheyStand) {
    const auto page = [](const std::string& item) {
        return std::string("{") + kHeader + R"(, "refItems": [)" + item + "]}";
    };
    const std::string members =
        R"("inputgroup": [{"title": "T", "inputs": [{"htmlid": "in", "name": "\u00e9", "purpose": "p"}]},
                          {"namevaluepairs": [{"title": "NV", "inputs": [{"name": "\u00e9", "purpose": "p"}]}]}],
           "classpropertygroup": [{"classproperty": [{"name": "\u00e9", "purpose": "p"}]}],
           "outputs": [{"htmlid": "out", "name": "\u00e9", "purpose": "p"}],
           "parameters": [{"name": "\u00e9", "purpose": "p"}])";
    const auto entities = [](const std::string& types) { return R"("refentity": [)" + types + "]"; };
    const std::string block = R"({"type": "block", "name": "b"})";
    const std::string function = R"({"type": "function", "name": "f"})";
    const std::string a = R"("href": "a.html", "refpurpose": "p")";
    const struct Case {
        const char* what;
        std::string item;
        bool utf8Names;
    } cases[] = {
        {"no entities", "{" + a + ", " + members + "}", false},
        {"a function", "{" + a + ", " + entities(function) + ", " + members + "}", false},
        {"an unknown type text", "{" + a + ", " + entities(R"({"type": "Block", "name": "f"})") + ", " + members + "}",
         false},
        {"href and block first", "{" + a + ", " + entities(block) + ", " + members + "}", true},
        {"block after a function, href and entities last",
         "{" + members + ", " + entities(function + ", " + block) + ", " + a + "}", true},
        {"block before a function", "{" + members + ", " + entities(block + ", " + function) + ", " + a + "}", true},
        {"repeated href and entities",
         R"({"href": "x.html", "refpurpose": "p", )" + entities(block) + ", " + members + ", " + entities(function) +
             R"(, "href": "a.html"})",
         false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string text = page(c.item);
        const auto pages = parseRefItemFile(text, nullptr, nullptr);
        EXPECT_EQ(parseRefItemFile(parseJson(text)), pages);
        const RefItem& item = pages.at(u"p").getItems().at(u"a.html").at(0);
        const std::u16string name = c.utf8Names ? u"\u00e9" : u"\u00c3\u00a9";
        const auto& inputs = item.getInputGroups();
        EXPECT_EQ(inputs.at(0).getInputs().at(0).getInfo().getName(), name);
        EXPECT_EQ(inputs.at(0).getInputs().at(0).getInfo().getAnchor(), u"a.html#in");
        EXPECT_EQ(inputs.at(1).getInputs().at(0).getInfo().getName(), name);
        const auto& property = item.getClassPropertyGroups().at(0).getProperties().at(0).getInfo();
        EXPECT_EQ(property.getName(), name);
        EXPECT_EQ(property.getAnchor(), u"a.html#prop_" + name);
        EXPECT_EQ(item.getOutputs().at(0).getInfo().getName(), u"\u00e9");
        EXPECT_EQ(item.getOutputs().at(0).getInfo().getAnchor(), u"a.html#out");
        EXPECT_EQ(item.getParameters().at(0).getInfo().getName(), u"\u00e9");
    }

    // A page that the replacing file holds is only checked, decided by its last href.
    const std::string english = page(R"({"href": "a.html", "refpurpose": "english a"},
                                        {"href": "b.html", "refpurpose": "english b", "href": "c.html"},
                                        {"href": "c.html", "refpurpose": "english c", "href": "b.html"})");
    const auto translation = parseRefItemFile(page(R"({"href": "a.html", "refpurpose": "a"},
                                                      {"href": "b.html", "refpurpose": "b"})"),
                                              nullptr, nullptr);
    const auto kept = parseRefItemFile(english, &translation, nullptr).at(u"p").getItems();
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(kept.begin()->first, u"c.html");
    EXPECT_EQ(kept.begin()->second.at(0).getPurpose(), u"english b");
}

} // namespace
