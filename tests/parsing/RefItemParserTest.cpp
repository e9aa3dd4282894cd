#include "docparser/parsing/RefItemParser.hpp"

#include "support/JsonFixtures.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using reference::docparser::DocParserException;
using reference::docparser::parseRefItemDocument;
using reference::docparser::parseSyntaxGroups;
using namespace reference::property;
using refdoc::test::documentObject;
using refdoc::test::parseJson;

// One page using every section, with names that need UTF-8 where the format allows it.
constexpr const char* kFullItem = R"json({
    "href": "ref/plot.html",
    "refpurpose": "2-D line plot \u2014 fast",
    "refentity": [{"type": "function", "fcntype": "ordinary", "name": "plot"},
                  {"type": "method", "name": "plot"}],
    "packagename": "graphics",
    "introduced": "1.0",
    "description": "Draws lines through \u00b5-points",
    "appthumbnail": {"fileref": "img/plot.png", "alt": "Line \u00e0 plot"},
    "deprecationstatus": "current",
    "syntaxgroup": [{"syntaxtype": "function", "title": "Basic \u00e9", "syntax": ["plot(X,Y)", "plot(Y)"]}],
    "inputgroup": [
        {"title": "Inputs", "inputs": [{"htmlid": "input_X", "name": "X", "purpose": "x-coordinates",
                                        "value": ["vector", "matrix \u00d7"], "defaultvalue": "[]",
                                        "syntaxtype": "required"}]},
        {"namevaluepairs": [{"title": "Line", "inputs": [{"htmlid": "nv_Color", "name": "Color",
                                                          "purpose": "line color", "syntaxtype": "namevalue"}]}]}
    ],
    "outputs": [{"htmlid": "output_h", "name": "h\u00b2", "purpose": "line handles", "syntaxtype": "output"}],
    "classpropertygroup": [{"title": "Appearance", "classproperty": [
        {"name": "LineWidth", "htmlid": "ignored", "purpose": "width", "value": ["positive"], "defaultvalue": "0.5"}]}],
    "seealso": [{"url": "ref/line.html", "name": "line \u00e9"}],
    "examples": [{"url": "ex/sine.html", "open_command": "showExample('sine')", "title": "Sine \u03c0"}],
    "parameters": [{"htmlid": "param_w", "name": "W\u00eft", "purpose": "weight", "defaultvalue": "1"}],
    "ignoredMember": {"a": 1}
})json";

boost::json::object fullItem() { return parseJson(kFullItem).as_object(); }

boost::json::object documentWith(const std::vector<boost::json::object>& items) {
    auto document = documentObject("tb", "TB");
    auto& array = document["refItems"].as_array();
    for (const auto& item : items) {
        array.push_back(item);
    }
    return document;
}

const RefItem& onlyItem(const reference::docparser::DocResource<RefItem>& resource) {
    EXPECT_EQ(resource.getItems().size(), 1u);
    const auto& items = resource.getItems().begin()->second;
    EXPECT_EQ(items.size(), 1u);
    return items.front();
}

TEST(RefItemParser, ReadsEverySectionOfAFullPage) {
    const auto resource = parseRefItemDocument(documentWith({fullItem()}));
    EXPECT_EQ(resource.getHeader(), HeaderInfo(u"Product", u"TB", u"tb", u"help/location"));

    const std::u16string href = u"ref/plot.html";
    const RefItem expected(
        href,
        {RefEntity(RefEntityType::Function, u"plot", FunctionType::Ordinary),
         RefEntity(RefEntityType::Method, u"plot", FunctionType::getDefaultValue())},
        u"graphics", u"2-D line plot \u2014 fast", u"1.0", u"Draws lines through \u00B5-points", u"img/plot.png",
        u"Line \u00E0 plot", DeprecationStatus::Current,
        {SyntaxGroup(u"Basic \u00E9", SyntaxType::Function, {u"plot(X,Y)", u"plot(Y)"})},
        {InputGroup(u"Inputs",
                    {Input(ObjectInfo(u"X", u"x-coordinates", {u"vector", u"matrix \u00D7"}, u"ref/plot.html#input_X"),
                           SyntaxType::Required, u"[]", false)}),
         InputGroup(u"Line", {Input(ObjectInfo(u"Color", u"line color", {}, u"ref/plot.html#nv_Color"),
                                    SyntaxType::NameValue, u"", true)})},
        {Output(ObjectInfo(u"h\u00B2", u"line handles", {}, u"ref/plot.html#output_h"), SyntaxType::Output)},
        {ClassPropertyGroup(u"Appearance", {ClassProperty(ObjectInfo(u"LineWidth", u"width", {u"positive"},
                                                                     u"ref/plot.html#prop_LineWidth"),
                                                          u"0.5")})},
        {SeeAlso(u"ref/line.html", u"line \u00E9")}, {Example(u"ex/sine.html", u"showExample('sine')", u"Sine \u03C0")},
        {Parameter(ObjectInfo(u"W\u00EFt", u"weight", {}, u"ref/plot.html#param_w"), u"1")});
    // Equality covers the engine value slots too: every one of them is empty after parsing.
    EXPECT_EQ(onlyItem(resource), expected);
    EXPECT_TRUE(onlyItem(resource).engineValues().allEmpty());
}

// Name-value pair groups expand in place (their holder's own title and inputs are not read);
// absent or unknown optional members take their defaults.
TEST(RefItemParser, NameValuePairGroupsExpandInPlaceAndOptionalMembersTakeTheirDefaults) {
    const auto item = parseJson(R"({
        "href": "ref/f.html", "refpurpose": "p", "deprecationstatus": "someday",
        "refentity": [{"type": "gadget", "fcntype": "odd", "name": "f"}],
        "syntaxgroup": [{"title": "no type", "syntax": []}, {"syntaxtype": "gadget", "title": "odd", "syntax": []}],
        "inputgroup": [
            {"title": "A", "inputs": [{"name": "a", "purpose": "p", "syntaxtype": "gadget"}]},
            {"title": "ignored", "inputs": [{"name": "ignored", "purpose": "p"}],
             "namevaluepairs": [{"title": "P1", "inputs": [{"name": "p1", "purpose": "p"}]},
                                {"title": "P2", "inputs": [{"name": "p2a", "purpose": "p"},
                                                           {"name": "p2b", "purpose": "p"}]}]},
            {"namevaluepairs": [{"title": "P3"}]},
            {"namevaluepairs": []},
            {"title": "B", "inputs": []}
        ],
        "classpropertygroup": [{"classproperty": []}],
        "examples": [{"url": "ex/a.html", "title": "A"}]
    })")
                          .as_object();
    const auto resource = parseRefItemDocument(documentWith({item}));
    const RefItem& page = onlyItem(resource);
    std::vector<std::u16string> titles;
    std::vector<std::u16string> names;
    std::vector<bool> pairFlags;
    for (const auto& group : page.getInputGroups()) {
        titles.push_back(group.getTitle());
        for (const auto& input : group.getInputs()) {
            names.push_back(input.getInfo().getName());
            pairFlags.push_back(input.isNameValuePair());
        }
    }
    EXPECT_EQ(titles, (std::vector<std::u16string>{u"A", u"P1", u"P2", u"P3", u"B"}));
    EXPECT_EQ(names, (std::vector<std::u16string>{u"a", u"p1", u"p2a", u"p2b"}));
    EXPECT_EQ(pairFlags, (std::vector<bool>{false, true, true, true}));

    EXPECT_EQ(page.getEntities().at(0),
              RefEntity(RefEntityType::getDefaultValue(), u"f", FunctionType::getDefaultValue()));
    EXPECT_EQ(page.getDeprecationStatus(), DeprecationStatus::getDefaultValue());
    EXPECT_EQ(page.getSyntaxGroups().at(0).getSyntaxType(), SyntaxType::getDefaultValue());
    EXPECT_EQ(page.getSyntaxGroups().at(1).getSyntaxType(), SyntaxType::getDefaultValue());
    EXPECT_EQ(page.getInputGroups().at(0).getInputs().at(0),
              Input(ObjectInfo(u"a", u"p", {}, u"ref/f.html#"), SyntaxType::getDefaultValue(), u"", false))
        << "no html id: the href and a bare '#'";
    EXPECT_EQ(page.getClassPropertyGroups().at(0).getTitle(), u"");
    EXPECT_EQ(page.getExamples().at(0).getOpenCommand(), u"");
}

// The parts of a page read on their own go through the page's own tables.
TEST(RefItemParser, PartsOfAPageReadOnTheirOwn) {
    using reference::docparser::makeObjectInfo;
    using reference::docparser::parseInputGroup;
    using reference::docparser::parseObjectInfo;
    using Parsing = reference::docparser::DocResourceParser::ParsingTools::StringParsingType;
    const auto argument =
        parseJson(R"({"htmlid": "in_x", "name": "\u00e9", "purpose": "p", "value": ["v"]})").as_object();
    EXPECT_EQ(parseObjectInfo(argument, u"ref/a.html", Parsing::Utf8),
              ObjectInfo(u"\u00e9", u"p", {u"v"}, u"ref/a.html#in_x"));
    EXPECT_EQ(parseObjectInfo(argument, u"ref/a.html", Parsing::Ascii).getName(), u"\u00c3\u00a9");
    EXPECT_EQ(makeObjectInfo(argument, u"N", u"A"), ObjectInfo(u"N", u"p", {u"v"}, u"A"));

    const auto group = parseJson(R"({"inputs": [{"name": "x", "purpose": "p"}], "title": "T",
                                     "namevaluepairs": "not read here"})")
                           .as_object();
    const auto read = parseInputGroup(group, u"ref/a.html", Parsing::Ascii, true);
    EXPECT_EQ(read.getTitle(), u"T");
    EXPECT_TRUE(read.getInputs().at(0).isNameValuePair());
    EXPECT_EQ(read.getInputs().at(0).getInfo().getAnchor(), u"ref/a.html#");
    EXPECT_THROW(parseInputGroup(parseJson(R"({"inputs": []})").as_object(), u"h", Parsing::Ascii, false),
                 DocParserException)
        << "the title is required even without inputs";

    // Syntax lines are widened byte by byte, titles decoded.
    const auto groups = parseSyntaxGroups(
        parseJson(R"({"syntaxgroup": [{"title": "\u00e9", "syntax": ["a = \u00e9", ""]}]})").as_object());
    EXPECT_EQ(groups, (std::vector<SyntaxGroup>{
                          SyntaxGroup(u"\u00E9", SyntaxType::getDefaultValue(), {u"a = \u00C3\u00A9", u""})}));
    EXPECT_TRUE(parseSyntaxGroups(boost::json::object{}).empty());
}

} // namespace
