// Loaders skip building pages they would discard, but those pages must still fail a document
// exactly where building them would: checking and building are compared here, mutation by
// mutation, over every section of a page.

#include "docparser/parsing/RefItemParser.hpp"

#include "support/JsonFixtures.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

using reference::docparser::DocParserException;
using reference::docparser::PageSelection;
using reference::docparser::parseRefItemDocument;
using namespace reference::property;
using refdoc::test::documentObject;
using refdoc::test::parseJson;

constexpr const char* kPage = R"json({
    "href": "ref/plot.html",
    "refpurpose": "Plot \u00b5 data",
    "refentity": [{"type": "block", "fcntype": "ordinary", "name": "plot"}],
    "packagename": "graphics",
    "introduced": "v2",
    "description": "Draws lines",
    "appthumbnail": {"fileref": "img/plot.png", "alt": "Line plot"},
    "deprecationstatus": "current",
    "syntaxgroup": [{"syntaxtype": "function", "title": "Syntax", "syntax": ["plot(X,Y)"]}],
    "inputgroup": [
        {"title": "Inputs", "inputs": [{"htmlid": "input_X", "name": "X", "purpose": "x", "value": ["vector"],
                                        "defaultvalue": "[]", "syntaxtype": "required"}]},
        {"namevaluepairs": [{"title": "Line", "inputs": [{"htmlid": "nv_Color", "name": "Color", "purpose": "c"}]}]}
    ],
    "outputs": [{"htmlid": "output_h", "name": "h", "purpose": "handles", "value": ["line"], "syntaxtype": "output"}],
    "classpropertygroup": [{"title": "Look", "classproperty": [{"name": "Width", "purpose": "w", "value": ["1"],
                                                                  "defaultvalue": "0.5"}]}],
    "seealso": [{"url": "ref/line.html", "name": "line"}],
    "examples": [{"url": "ex/sine.html", "open_command": "openExample('sine')", "title": "Sine"}],
    "parameters": [{"htmlid": "param_w", "name": "W", "purpose": "weight", "value": ["1"], "defaultvalue": "1"}]
})json";

using Mutation = std::function<void(boost::json::object&)>;

boost::json::object& at(boost::json::object& object, const char* key) { return object.at(key).as_object(); }
boost::json::object& first(boost::json::object& object, const char* key) {
    return object.at(key).as_array().at(0).as_object();
}
boost::json::object& firstInput(boost::json::object& item) { return first(first(item, "inputgroup"), "inputs"); }
boost::json::object& firstPairInput(boost::json::object& item) {
    return first(item.at("inputgroup").as_array().at(1).as_object().at("namevaluepairs").as_array().at(0).as_object(),
                 "inputs");
}
boost::json::object& firstProperty(boost::json::object& item) {
    return first(first(item, "classpropertygroup"), "classproperty");
}

struct Case {
    const char* what;
    Mutation mutate;
    bool fails;
};

std::vector<Case> cases() {
    const boost::json::value number = 7;
    const boost::json::value object = boost::json::object{};
    return {
        {"complete page", [](auto&) {}, false},
        {"unknown enumeration texts",
         [](auto& i) {
             i["deprecationstatus"] = "someday";
             first(i, "refentity")["type"] = "gadget";
             first(i, "syntaxgroup")["syntaxtype"] = "odd";
         },
         false},
        {"no optional members",
         [](auto& i) {
             for (const char* key :
                  {"refentity", "packagename", "introduced", "description", "appthumbnail", "deprecationstatus",
                   "syntaxgroup", "inputgroup", "outputs", "classpropertygroup", "seealso", "examples", "parameters"}) {
                 i.erase(key);
             }
         },
         false},
        {"class property group without title", [](auto& i) { first(i, "classpropertygroup").erase("title"); }, false},
        {"name-value holder without title or inputs",
         [](auto& i) { i["inputgroup"] = parseJson(R"([{"namevaluepairs": [{"title": "t", "inputs": []}]}])"); },
         false},

        {"href missing", [](auto& i) { i.erase("href"); }, true},
        {"purpose missing", [](auto& i) { i.erase("refpurpose"); }, true},
        {"entities object", [=](auto& i) { i["refentity"] = object; }, true},
        {"entity type number", [=](auto& i) { first(i, "refentity")["type"] = number; }, true},
        {"entity name missing", [](auto& i) { first(i, "refentity").erase("name"); }, true},
        {"package name number", [=](auto& i) { i["packagename"] = number; }, true},
        {"thumbnail string", [](auto& i) { i["appthumbnail"] = "img.png"; }, true},
        {"thumbnail file missing", [](auto& i) { at(i, "appthumbnail").erase("fileref"); }, true},
        {"deprecation status bool", [](auto& i) { i["deprecationstatus"] = true; }, true},
        {"syntax groups string", [](auto& i) { i["syntaxgroup"] = "x"; }, true},
        {"syntax type number", [=](auto& i) { first(i, "syntaxgroup")["syntaxtype"] = number; }, true},
        {"syntax lines missing", [](auto& i) { first(i, "syntaxgroup").erase("syntax"); }, true},
        {"syntax line number", [](auto& i) { first(i, "syntaxgroup")["syntax"] = parseJson("[1]"); }, true},
        {"input groups object", [=](auto& i) { i["inputgroup"] = object; }, true},
        {"input group title missing", [](auto& i) { first(i, "inputgroup").erase("title"); }, true},
        {"empty inputs without title", [](auto& i) { i["inputgroup"] = parseJson(R"([{"inputs": []}])"); }, true},
        {"input default number", [=](auto& i) { firstInput(i)["defaultvalue"] = number; }, true},
        {"input name missing", [](auto& i) { firstInput(i).erase("name"); }, true},
        {"input value number", [](auto& i) { firstInput(i)["value"] = parseJson("[1]"); }, true},
        {"name-value pairs string",
         [](auto& i) { i.at("inputgroup").as_array().at(1).as_object()["namevaluepairs"] = "x"; }, true},
        {"name-value group null",
         [](auto& i) { i.at("inputgroup").as_array().at(1).as_object()["namevaluepairs"] = parseJson("[null]"); },
         true},
        {"name-value group title missing",
         [](auto& i) { i["inputgroup"] = parseJson(R"([{"namevaluepairs": [{"inputs": []}]}])"); }, true},
        {"name-value input name missing", [](auto& i) { firstPairInput(i).erase("name"); }, true},
        {"outputs string", [](auto& i) { i["outputs"] = "h"; }, true},
        {"output html id number", [=](auto& i) { first(i, "outputs")["htmlid"] = number; }, true},
        {"output name missing", [](auto& i) { first(i, "outputs").erase("name"); }, true},
        {"output value number", [](auto& i) { first(i, "outputs")["value"] = parseJson("[1]"); }, true},
        {"property groups object", [=](auto& i) { i["classpropertygroup"] = object; }, true},
        {"property group title array", [](auto& i) { first(i, "classpropertygroup")["title"] = parseJson("[]"); },
         true},
        {"property list missing", [](auto& i) { first(i, "classpropertygroup").erase("classproperty"); }, true},
        {"property name missing", [](auto& i) { firstProperty(i).erase("name"); }, true},
        {"property value number", [](auto& i) { firstProperty(i)["value"] = parseJson("[1]"); }, true},
        {"see-also array element", [](auto& i) { i["seealso"] = parseJson("[[]]"); }, true},
        {"see-also url missing", [](auto& i) { first(i, "seealso").erase("url"); }, true},
        {"example number", [](auto& i) { i["examples"] = parseJson("[1]"); }, true},
        {"example url missing", [](auto& i) { first(i, "examples").erase("url"); }, true},
        {"parameters string", [](auto& i) { i["parameters"] = "p"; }, true},
        {"parameter default null", [](auto& i) { first(i, "parameters")["defaultvalue"] = nullptr; }, true},
        {"parameter name missing", [](auto& i) { first(i, "parameters").erase("name"); }, true},
    };
}

// The mutated page between two complete ones, so that a failure cannot hide at an edge.
boost::json::object documentAround(const boost::json::object& page) {
    auto document = documentObject("tb", "TB");
    auto& items = document["refItems"].as_array();
    auto before = parseJson(kPage).as_object();
    before["href"] = "ref/before.html";
    auto after = parseJson(kPage).as_object();
    after["href"] = "ref/after.html";
    items.push_back(before);
    items.push_back(page);
    items.push_back(after);
    return document;
}

enum class Outcome { Parsed, Failed };

template <class Parse>
Outcome outcomeOf(Parse&& parse) {
    try {
        parse();
        return Outcome::Parsed;
    } catch (const DocParserException&) {
        return Outcome::Failed;
    }
}

TEST(RefItemCheck, CheckingAPageFailsExactlyWhereBuildingItFails) {
    // The pages a loader discards: every page of a dropped document, or the ones it replaces.
    const auto replaced = parseRefItemDocument(documentAround(parseJson(kPage).as_object())).getItems();
    for (const auto& c : cases()) {
        auto page = parseJson(kPage).as_object();
        c.mutate(page);
        const auto document = documentAround(page);
        const Outcome expected = c.fails ? Outcome::Failed : Outcome::Parsed;

        EXPECT_EQ(outcomeOf([&] { parseRefItemDocument(document); }), expected) << c.what;
        EXPECT_EQ(outcomeOf([&] {
                      parseRefItemDocument(document, [](const HeaderInfo&) { return PageSelection{true, nullptr}; });
                  }),
                  expected)
            << c.what << ", document dropped";
        EXPECT_EQ(
            outcomeOf([&] {
                parseRefItemDocument(document, [&](const HeaderInfo&) { return PageSelection{false, &replaced}; });
            }),
            expected)
            << c.what << ", page replaced";
    }
}

TEST(RefItemCheck, DiscardedPagesAreNotBuiltAndTheOthersAreBuiltAsUsual) {
    auto page = parseJson(kPage).as_object();
    const auto document = documentAround(page);
    const auto full = parseRefItemDocument(document);
    ASSERT_EQ(full.getItems().size(), 3u);

    const auto dropped = parseRefItemDocument(document, [](const HeaderInfo&) { return PageSelection{true, nullptr}; });
    EXPECT_EQ(dropped.getHeader(), full.getHeader());
    EXPECT_TRUE(dropped.getItems().empty());

    // Replaced by links: only ref/plot.html is replaced; the header decides what is replaced.
    auto replacement = parseRefItemDocument(documentObject("tb", "TB", R"([{"href": "ref/plot.html",
                                                                          "refpurpose": "other"}])"))
                           .getItems();
    const auto selective = parseRefItemDocument(document, [&](const HeaderInfo& header) {
        EXPECT_EQ(header, full.getHeader());
        return PageSelection{false, &replacement};
    });
    auto expected = full.getItems();
    expected.erase(u"ref/plot.html");
    EXPECT_EQ(selective.getItems(), expected);
}

// Pages are filed by href next to the previous page's entry when the order allows; in any order
// the grouping must be that of a plain find-or-insert, each group in file order.
TEST(RefItemCheck, PagesGatherByHrefWhateverTheirOrder) {
    const std::vector<std::vector<std::string>> orders = {
        {"a", "b", "c", "d"},
        {"d", "c", "b", "a"},
        {"a", "b", "b", "c", "b", "a"},
        {"b", "a", "c", "ab", "aa", "b", "ca", "c"},
        {"ref/x.html", "ref/X.html", "ref/x.html", "ref/w.html", "ref/y.html", "ref/X.html"},
    };
    for (const auto& hrefs : orders) {
        auto document = documentObject("tb", "TB");
        std::map<std::u16string, std::vector<std::u16string>> expected;
        for (std::size_t i = 0; i < hrefs.size(); ++i) {
            const std::string purpose = "page " + std::to_string(i);
            document["refItems"].as_array().push_back(boost::json::object{{"href", hrefs[i]}, {"refpurpose", purpose}});
            expected[refdoc::test::widen(hrefs[i])].push_back(refdoc::test::widen(purpose));
        }
        const auto resource = parseRefItemDocument(document);
        std::map<std::u16string, std::vector<std::u16string>> actual;
        for (const auto& [href, pages] : resource.getItems()) {
            for (const auto& page : pages) {
                actual[href].push_back(page.getPurpose());
            }
        }
        EXPECT_EQ(actual, expected) << hrefs.size() << " pages, first " << hrefs.front();
    }
}

} // namespace
