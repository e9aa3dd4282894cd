#include "docparser/parsing/LookupParser.hpp"

#include "support/JsonFixtures.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using reference::docparser::DocParserException;
using reference::docparser::DocResourceParser;
using reference::docparser::lookupFileParser;
using reference::docparser::parseLookupDocument;
using namespace reference::property;
using refdoc::test::documentObject;
using refdoc::test::parseJson;
using refdoc::test::toText;

// A lookup item with the three required keys.
std::string item(const std::string& name, const std::string& extra = "") {
    return R"({"name": ")" + name + R"(", "refpurpose": "Purpose of )" + name + R"(", "href": "ref/)" + name +
           R"(.html")" + (extra.empty() ? "" : ", " + extra) + "}";
}

std::vector<std::u16string> purposesOf(const std::vector<RefItemLookup>& entries) {
    std::vector<std::u16string> purposes;
    for (const auto& entry : entries) {
        purposes.push_back(entry.getPurpose());
    }
    return purposes;
}

std::vector<std::u16string> keysOf(const DocResourceParser::LookupResourceMap& map) {
    std::vector<std::u16string> keys;
    for (const auto& [key, resource] : map) {
        keys.push_back(key);
    }
    return keys;
}

TEST(LookupParser, ReadsHeaderAndEveryFieldOfAnEntry) {
    const std::string text = R"({
        "productName": "Signal Processing \u00ae", "baseCode": "SG", "helpFolder": "signal",
        "helpLocation": "help/signal", "unknownMember": [1, 2],
        "refItems": [
            {"name": "filt\u00e9r", "refpurpose": "1-D digital filter \u2014 fast", "href": "ref/filter.html",
             "type": "function", "fcntype": "builtin", "other": {"x": 1}}
        ]
    })";
    const auto result = lookupFileParser(text);
    ASSERT_EQ(keysOf(result), std::vector<std::u16string>{u"signal"});

    const auto& resource = result.at(u"signal");
    EXPECT_EQ(resource.getHeader(), HeaderInfo(u"Signal Processing \u00AE", u"SG", u"signal", u"help/signal"));
    ASSERT_EQ(resource.getItems().size(), 1u);
    const auto& entries = resource.getItems().at(u"filt\u00E9r");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0], RefItemLookup(u"filt\u00E9r", RefEntityType::Function, u"1-D digital filter \u2014 fast",
                                        false, u"ref/filter.html", FunctionType::Builtin));
}

TEST(LookupParser, DeprecatedFlagFollowsPresenceOnly) {
    struct Case {
        const char* member;
        bool deprecated;
    };
    const Case cases[] = {
        {"", false},
        {R"("deprecated": true)", true},
        {R"("deprecated": false)", true},
        {R"("deprecated": null)", true},
        {R"("deprecated": 0)", true},
        {R"("deprecated": "no")", true},
    };
    for (const auto& c : cases) {
        std::string items = "[";
        items += item("a", c.member);
        items += "]";
        const auto document = documentObject("f", "B", items);
        const auto resource = parseLookupDocument(document);
        EXPECT_EQ(resource.getItems().at(u"a").at(0).isDeprecated(), c.deprecated) << c.member;
    }
}

TEST(LookupParser, AbsentOrUnknownEnumerationsTakeTheirDefaults) {
    const auto document = documentObject("f", "B",
                                         "[" + item("a") + "," + item("b", R"("type": "gadget", "fcntype": "odd")") +
                                             "," + item("c", R"("type": "class", "fcntype": "constructor")") + "]");
    const auto resource = parseLookupDocument(document);
    const auto& items = resource.getItems();
    EXPECT_EQ(items.at(u"a")[0].getEntityType(), RefEntityType::getDefaultValue());
    EXPECT_EQ(items.at(u"a")[0].getFunctionType(), FunctionType::getDefaultValue());
    EXPECT_EQ(items.at(u"b")[0].getEntityType(), RefEntityType::getDefaultValue());
    EXPECT_EQ(items.at(u"b")[0].getFunctionType(), FunctionType::getDefaultValue());
    // The parse went on past the unknown texts.
    EXPECT_EQ(items.at(u"c")[0].getEntityType(), RefEntityType::Class);
    EXPECT_EQ(items.at(u"c")[0].getFunctionType(), FunctionType::Constructor);
}

TEST(LookupParser, EqualNamesGatherInFileOrderWhateverTheInputOrder) {
    // Unsorted names, repeats that are not adjacent, and a name that sorts before the last one:
    // the insertion hint must never misplace an entry.
    const auto document = documentObject("f", "B",
                                         R"([{"name": "plot", "refpurpose": "1", "href": "a.html"},
            {"name": "area", "refpurpose": "2", "href": "b.html"},
            {"name": "plot", "refpurpose": "3", "href": "c.html"},
            {"name": "zoom", "refpurpose": "4", "href": "d.html"},
            {"name": "area", "refpurpose": "5", "href": "e.html"},
            {"name": "plot", "refpurpose": "6", "href": "f.html"},
            {"name": "Plot", "refpurpose": "7", "href": "g.html"}])");
    const auto resource = parseLookupDocument(document);
    const auto& items = resource.getItems();

    std::vector<std::u16string> names;
    for (const auto& [name, entries] : items) {
        names.push_back(name);
    }
    // Code-unit order: upper case before lower case.
    EXPECT_EQ(names, (std::vector<std::u16string>{u"Plot", u"area", u"plot", u"zoom"}));
    EXPECT_EQ(purposesOf(items.at(u"plot")), (std::vector<std::u16string>{u"1", u"3", u"6"}));
    EXPECT_EQ(purposesOf(items.at(u"area")), (std::vector<std::u16string>{u"2", u"5"}));
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
    EXPECT_TRUE(result.at(u"main").getItems().contains(u"fromMain"));
    EXPECT_EQ(result.at(u"pkgA").getHeader().getProductName(), u"Package A");
    EXPECT_TRUE(result.at(u"pkgA").getItems().contains(u"a1"));
    EXPECT_FALSE(result.at(u"pkgA").getItems().contains(u"a2"));
    EXPECT_EQ(result.at(u"pkgB").getHeader().getHelpFolder(), u"pkgB-folder");
}

// Required keys: a file missing any of them fails whole, wherever the gap is, even in a
// package that would have been dropped as a duplicate.
TEST(LookupParser, MissingRequiredKeyFailsTheWholeFile) {
    const auto withPackages = [](boost::json::object root, std::vector<boost::json::object> packages) {
        boost::json::array array;
        for (auto& package : packages) {
            array.push_back(std::move(package));
        }
        root["supportPackages"] = std::move(array);
        return root;
    };
    const std::string goodItems = "[" + item("a") + "," + item("b") + "]";

    std::vector<std::pair<std::string, boost::json::object>> cases;
    for (const char* key : {"productName", "baseCode", "helpFolder", "helpLocation", "refItems"}) {
        auto main = documentObject("main", "MAIN", goodItems);
        main.erase(key);
        cases.emplace_back(std::string("main without ") + key, main);
        auto package = documentObject("p", "P", goodItems);
        package.erase(key);
        cases.emplace_back(std::string("package without ") + key,
                           withPackages(documentObject("main", "MAIN", goodItems), {package}));
    }
    for (const char* key : {"name", "refpurpose", "href"}) {
        auto items = parseJson(goodItems).as_array();
        items.back().as_object().erase(key);
        auto main = documentObject("main", "MAIN");
        main["refItems"] = items;
        cases.emplace_back(std::string("last main item without ") + key, main);
        auto package = documentObject("main", "DUPLICATE");
        package["refItems"] = items;
        cases.emplace_back(std::string("dropped package item without ") + key,
                           withPackages(documentObject("main", "MAIN", goodItems),
                                        {documentObject("d", "DUPLICATE", goodItems), package}));
    }
    for (const auto& [what, root] : cases) {
        EXPECT_THROW(lookupFileParser(toText(root)), DocParserException) << what;
    }
}

} // namespace
