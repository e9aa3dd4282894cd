#include "docparser/parsing/LookupParser.hpp"

#include "support/JsonFixtures.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using reference::docparser::DocResourceParser;
using reference::docparser::lookupFileParser;
using reference::docparser::parseLookupDocument;
using namespace reference::property;
using refdoc::test::documentObject;
using refdoc::test::toText;

// A lookup item with the three required keys.
std::string item(const std::string& name, const std::string& extra = "") {
    return R"({"name": ")" + name + R"(", "refpurpose": "Purpose of )" + name + R"(", "href": "ref/)" + name +
           R"(.html")" + (extra.empty() ? "" : ", " + extra) + "}";
}

std::vector<std::u16string> keysOf(const DocResourceParser::LookupResourceMap& map) {
    std::vector<std::u16string> keys;
    for (const auto& [key, resource] : map) {
        keys.push_back(key);
    }
    return keys;
}

// Every field of an entry; "deprecated" counts by its presence alone, whatever its value; absent
// or unknown enumeration texts take their defaults and the parse goes on past them.
TEST(LookupParser, ReadsHeaderAndEveryFieldOfAnEntry) {
    const std::string text = R"({
        "productName": "Signal Processing \u00ae", "baseCode": "SG", "helpFolder": "signal",
        "helpLocation": "help/signal", "unknownMember": [1, 2],
        "refItems": [
            {"name": "filt\u00e9r", "refpurpose": "1-D digital filter \u2014 fast", "href": "ref/filter.html",
             "type": "function", "fcntype": "builtin", "other": {"x": 1}},
            {"name": "d", "refpurpose": "p", "href": "d1", "deprecated": false, "type": "gadget", "fcntype": "odd"},
            {"name": "d", "refpurpose": "p", "href": "d2", "deprecated": null, "type": "class", "fcntype": "constructor"}
        ]
    })";
    const auto result = lookupFileParser(text);
    ASSERT_EQ(keysOf(result), std::vector<std::u16string>{u"signal"});

    const auto& resource = result.at(u"signal");
    EXPECT_EQ(resource.getHeader(), HeaderInfo(u"Signal Processing \u00AE", u"SG", u"signal", u"help/signal"));
    ASSERT_EQ(resource.getItems().size(), 2u);
    EXPECT_EQ(resource.getItems().at(u"filt\u00E9r"),
              std::vector<RefItemLookup>{RefItemLookup(u"filt\u00E9r", RefEntityType::Function,
                                                       u"1-D digital filter \u2014 fast", false, u"ref/filter.html",
                                                       FunctionType::Builtin)});
    EXPECT_EQ(
        resource.getItems().at(u"d"),
        (std::vector<RefItemLookup>{
            RefItemLookup(u"d", RefEntityType::getDefaultValue(), u"p", true, u"d1", FunctionType::getDefaultValue()),
            RefItemLookup(u"d", RefEntityType::Class, u"p", true, u"d2", FunctionType::Constructor)}));
}

TEST(LookupParser, EqualNamesGatherInFileOrderWhateverTheInputOrder) {
    // Unsorted names, repeats that are not adjacent, and a name that sorts before the last one:
    // the insertion hint must never misplace an entry.
    std::string items;
    int position = 0;
    for (const char* name : {"plot", "area", "plot", "zoom", "area", "plot", "Plot"}) {
        items += (items.empty() ? "" : ", ") + std::string(R"({"name": ")") + name + R"(", "refpurpose": ")" +
                 std::to_string(position++) + R"(", "href": "h"})";
    }
    const auto resource = parseLookupDocument(documentObject("f", "B", "[" + items + "]"));
    std::vector<std::u16string> gathered; // name:purpose
    for (const auto& [name, entries] : resource.getItems()) {
        for (const auto& entry : entries) {
            gathered.push_back(name + u":" + entry.getPurpose());
        }
    }
    // Code-unit order (upper case before lower case), then file order per name.
    EXPECT_EQ(gathered, (std::vector<std::u16string>{u"Plot:6", u"area:1", u"area:4", u"plot:0", u"plot:2", u"plot:5",
                                                     u"zoom:3"}));
}

TEST(LookupParser, SupportPackagesAreKeyedByBaseCodeAndTheFirstClaimWins) {
    auto root = documentObject("main", "MAIN", "[" + item("fromMain") + "]", "Main product");
    boost::json::array packages;
    packages.push_back(documentObject("pkgA-folder", "pkgA", "[" + item("a1") + "]", "Package A"));
    // Claims the main document's key (its help folder): dropped.
    packages.push_back(documentObject("other", "main", "[" + item("intruder") + "]", "Impostor"));
    packages.push_back(documentObject("pkgB-folder", "pkgB", "[" + item("b1") + "]", "Package B"));
    // Second package with base code pkgA: dropped, the first one stays.
    packages.push_back(documentObject("pkgA-later", "pkgA", "[" + item("a2") + "]", "Package A again"));
    // Only one level of nesting is read.
    auto nested = documentObject("pkgC-folder", "pkgC", "[]", "Package C");
    nested["supportPackages"] = boost::json::array{documentObject("deep", "DEEP", "[]")};
    packages.push_back(nested);
    root["supportPackages"] = packages;

    const auto result = lookupFileParser(toText(root));
    EXPECT_EQ(keysOf(result), (std::vector<std::u16string>{u"main", u"pkgA", u"pkgB", u"pkgC"}));
    EXPECT_EQ(result.at(u"main").getHeader().getProductName(), u"Main product");
    EXPECT_EQ(result.at(u"main").getItems().size(), 1u);
    EXPECT_EQ(result.at(u"pkgA").getHeader().getProductName(), u"Package A");
    EXPECT_TRUE(result.at(u"pkgA").getItems().contains(u"a1"));
    EXPECT_FALSE(result.at(u"pkgA").getItems().contains(u"a2"));
    EXPECT_EQ(result.at(u"pkgB").getHeader().getHelpFolder(), u"pkgB-folder");
}

} // namespace
