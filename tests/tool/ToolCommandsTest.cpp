// refdoc lookup, page and find, run as a program on documentation roots generated in temp folders.

#include "support/DocrootBuilder.hpp"
#include "support/TempDir.hpp"
#include "support/ZipBuilder.hpp"
#include "tool/ToolRunner.hpp"

#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace refdoc::test;
namespace json = boost::json;

const std::filesystem::path kLookup = "docCatalog/referenceapi_lookup";
const std::filesystem::path kPages = "docCatalog/referenceapi";

// One page with every section, so that the rendering and the JSON of each can be checked.
const char* const kFullPage = R"json({
  "productName": "Alpha", "baseCode": "AL", "helpFolder": "alpha", "helpLocation": "help/alpha",
  "refItems": [{
    "href": "alpha/plot.html", "refpurpose": "Plot data",
    "refentity": [{"type": "function", "fcntype": "ordinary", "name": "plot"}],
    "packagename": "graphics", "introduced": "2.6", "description": "Draws lines through points.",
    "appthumbnail": {"fileref": "alpha/plot.png", "alt": "A line chart"},
    "deprecationstatus": "notrecommended",
    "syntaxgroup": [{"title": "Basic", "syntaxtype": "function", "syntax": ["plot(x,y)", "plot(y)"]}],
    "inputgroup": [
      {"title": "Required", "inputs": [{"name": "x", "htmlid": "in_x", "purpose": "x values",
                                          "value": ["vector"], "syntaxtype": "required"}]},
      {"namevaluepairs": [{"title": "Options", "inputs": [{"name": "Color", "htmlid": "nv_color",
                           "purpose": "Line colour", "defaultvalue": "\"blue\""}]}]}],
    "outputs": [{"name": "h", "htmlid": "out_h", "purpose": "Line handle"}],
    "classpropertygroup": [{"title": "Look", "classproperty": [{"name": "Width", "purpose": "Line width",
                                                                 "defaultvalue": "0.5"}]}],
    "seealso": [{"url": "alpha/scatter.html", "name": "scatter"}],
    "examples": [{"url": "alpha/ex1.html", "open_command": "showExample('plot1')", "title": "Plot a sine wave"}],
    "parameters": [{"name": "Größe", "htmlid": "p_size", "purpose": "Marker size", "defaultvalue": "6"}]
  }]
})json";

class ToolCommands : public ::testing::Test {
protected:
    void SetUp() override {
        write(kLookup / "alpha.json",
              fileText(lookupDocument({"Alpha", "AL", "alpha"}, {{"plot", "Plot data"},
                                                                 {"plotter", "A plotting object"},
                                                                 {"replot", "Plot again"},
                                                                 {"Plot", "Plot class"}}),
                       {lookupDocument({"Alpha Support", "sp_a", "sp_a"}, {{"spread", "Spread out"}})}));
        write(kLookup / "alpha_ja.json",
              fileText(lookupDocument({"アルファ", "AL", "alpha"}, {{"plot", "データをプロット"}})));
        ZipBuilder()
            .add("beta.json", fileText(lookupDocument({"Beta", "BE", "beta"}, {{"Ärger", "Trouble", "aerger.html"}})))
            .add("beta_ja.json",
                 fileText(lookupDocument({"ベータ", "BE", "beta"}, {{"Ärger", "トラブル", "aerger.html"}})))
            .write(root_.path() / kLookup / "beta.zip");
        write(kPages / "alpha.json", kFullPage);
        write(kPages / "alpha_ja.json",
              fileText(pageDocument({"アルファ", "AL", "alpha"}, {{"alpha/plot.html", "データをプロット"}})));
    }

    void write(const std::filesystem::path& relative, const std::string& text) const { root_.write(relative, text); }

    ToolRun run(std::vector<std::string> args) const {
        args.push_back("--root");
        args.push_back(root_.path().string());
        return runTool(args);
    }

    TempDir root_;
};

TEST_F(ToolCommands, LookupListsEachProductKeyWithInstalledStateCountAndName) {
    const ToolRun english = run({"lookup", "--installed", "alpha", "--support-packages", "sp_a"});
    ASSERT_EQ(english.status, 0) << ::testing::PrintToString(english);
    EXPECT_TRUE(english.err.empty());
    EXPECT_EQ(linesWith(english.out, "alpha  "), std::vector<std::string>{"alpha  yes            4  Alpha"});
    EXPECT_EQ(linesWith(english.out, "beta  "), std::vector<std::string>{"beta   no             1  Beta"});
    EXPECT_EQ(linesWith(english.out, "sp_a  "), std::vector<std::string>{"sp_a   yes            1  Alpha Support"});
    EXPECT_TRUE(contains(english.out, "3 products: 2 installed, 1 not installed"));

    // Japanese: the variants' product names win; nothing is installed without --installed.
    const ToolRun japanese = run({"lookup", "--lang", "ja", "--languages", "en,ja"});
    ASSERT_EQ(japanese.status, 0) << ::testing::PrintToString(japanese);
    EXPECT_EQ(linesWith(japanese.out, "alpha  "), std::vector<std::string>{"alpha  no             4  アルファ"});
    EXPECT_EQ(linesWith(japanese.out, "beta  "), std::vector<std::string>{"beta   no             1  ベータ"});
}

TEST_F(ToolCommands, LookupJsonHoldsTheWholeResult) {
    const ToolRun result = run({"lookup", "--json", "--lang", "ja", "--installed", "beta"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    const json::value value = result.json();
    const auto& installed = value.at("installedResources").as_object();
    const auto& uninstalled = value.at("uninstalledResources").as_object();
    EXPECT_EQ(installed.size(), 1u);
    EXPECT_EQ(uninstalled.size(), 2u);
    const json::value expectedBeta = json::parse(R"({
        "productName": "ベータ", "baseCode": "BE", "helpFolder": "beta", "helpLocation": "help/beta",
        "items": {"Ärger": [{"name": "Ärger", "type": "function", "purpose": "トラブル", "deprecated": false,
                             "href": "aerger.html", "fcntype": null}]}})");
    EXPECT_EQ(installed.at("beta"), expectedBeta) << json::serialize(installed.at("beta"));
    EXPECT_EQ(uninstalled.at("alpha").at("items").at("plot").at(0).at("purpose"), "データをプロット");
    EXPECT_EQ(uninstalled.at("alpha").at("items").at("plotter").at(0).at("purpose"), "A plotting object");
}

TEST_F(ToolCommands, HostFileSuppliesDefaultsThatTheCommandLineOverrides) {
    write("refdoc-host.json", R"({"language": "ja", "supportedLanguages": ["en", "ja"],
                                  "installedProducts": ["alpha"], "installedSupportPackages": []})");
    const ToolRun fromFile = run({"lookup"});
    ASSERT_EQ(fromFile.status, 0) << ::testing::PrintToString(fromFile);
    EXPECT_TRUE(contains(fromFile.out, "Language: ja (supported: en, ja)"));
    EXPECT_EQ(linesWith(fromFile.out, "alpha  "), std::vector<std::string>{"alpha  yes            4  アルファ"});

    const ToolRun overridden = run({"lookup", "--lang", "en", "--installed", ""});
    ASSERT_EQ(overridden.status, 0) << ::testing::PrintToString(overridden);
    EXPECT_EQ(linesWith(overridden.out, "alpha  "), std::vector<std::string>{"alpha  no             4  Alpha"});
}

TEST_F(ToolCommands, PageRendersEverySectionOfAPage) {
    const ToolRun result = run({"page", "alpha"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    for (const char* expected : {
             "══ Alpha  [alpha]  1 page, help in help/alpha",
             "── plot  [function]",
             "  Plot data",
             "  Link: alpha/plot.html",
             "  Package: graphics   Introduced: 2.6   Status: notrecommended",
             "  Draws lines through points.",
             "  Thumbnail: alpha/plot.png (A line chart)",
             "    Basic (function)\n        plot(x,y)\n        plot(y)\n",
             "  Inputs: Required\n    x — x values\n        values: vector\n        kind: required\n"
             "        anchor: alpha/plot.html#in_x\n",
             "  Inputs: Options\n    Color — Line colour\n        kind: name-value pair\n"
             "        default: \"blue\"\n        anchor: alpha/plot.html#nv_color\n",
             "  Outputs\n    h — Line handle\n        anchor: alpha/plot.html#out_h\n",
             // Class property anchors come from the name, not from an html id.
             "  Properties: Look\n    Width — Line width\n        default: 0.5\n"
             "        anchor: alpha/plot.html#prop_Width\n",
             "  Parameters\n    Größe — Marker size\n        default: 6\n        anchor: alpha/plot.html#p_size\n",
             "  Examples\n    Plot a sine wave\n        alpha/ex1.html\n        open: showExample('plot1')\n",
             "  See also\n    scatter  alpha/scatter.html\n",
         }) {
        EXPECT_TRUE(contains(result.out, expected)) << "missing:\n" << expected << "\nin:\n" << result.out;
    }
}

TEST_F(ToolCommands, PageJsonHoldsTheFullRecordsAndTheTranslationWins) {
    const ToolRun english = run({"page", "alpha", "--json"});
    ASSERT_EQ(english.status, 0) << ::testing::PrintToString(english);
    const json::value page = english.json().at("alpha").at("items").at("alpha/plot.html").at(0);
    EXPECT_EQ(page.at("deprecationStatus"), "notrecommended");
    EXPECT_EQ(page.at("thumbnail"), json::parse(R"({"fileRef": "alpha/plot.png", "altText": "A line chart"})"));
    EXPECT_EQ(page.at("inputGroups").at(1),
              json::parse(R"({"title": "Options", "inputs": [{"name": "Color", "purpose": "Line colour", "values": [],
                              "anchor": "alpha/plot.html#nv_color", "syntaxType": null,
                              "defaultValue": "\"blue\"", "nameValuePair": true}]})"));
    EXPECT_EQ(page.at("parameters").at(0).at("name"), "Größe");
    EXPECT_EQ(page.at("examples").at(0).at("openCommand"), "showExample('plot1')");

    const ToolRun japanese = run({"page", "alpha", "--json", "--lang", "ja"});
    ASSERT_EQ(japanese.status, 0) << ::testing::PrintToString(japanese);
    const json::value translated = japanese.json().at("alpha");
    EXPECT_EQ(translated.at("productName"), "アルファ");
    EXPECT_EQ(translated.at("items").at("alpha/plot.html").at(0).at("purpose"), "データをプロット");
}

TEST_F(ToolCommands, PageWithoutPagesSaysSoAndFails) {
    const ToolRun result = run({"page", "nosuchproduct"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.out.empty());
    EXPECT_TRUE(contains(result.err, "no reference pages for 'nosuchproduct'")) << result.err;
}

TEST_F(ToolCommands, FindRanksExactThenPrefixThenSubstringIgnoringCase) {
    const ToolRun result = run({"find", "PLOT"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    const auto names = linesWith(result.out, "  —  ");
    const std::vector<std::string> expected = {
        "Plot  —  Plot class",
        "plot  —  Plot data",
        "plotter  —  A plotting object",
        "replot  —  Plot again",
    };
    EXPECT_EQ(names, expected);
    EXPECT_TRUE(contains(result.out, "    plotter.html   Alpha [alpha, not installed]   (prefix)"));
    EXPECT_TRUE(contains(result.out, "    replot.html   Alpha [alpha, not installed]   (substring)"));
}

TEST_F(ToolCommands, FindTakesSeveralTextsFoldsNonAsciiAndLimits) {
    const ToolRun result = run({"find", "ärg", "SPREAD", "--json", "--installed", "beta"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    const json::value expected = json::parse(R"([
        {"match": "exact", "name": "spread", "purpose": "Spread out", "href": "spread.html",
         "productKey": "sp_a", "productName": "Alpha Support", "installed": false},
        {"match": "prefix", "name": "Ärger", "purpose": "Trouble", "href": "aerger.html",
         "productKey": "beta", "productName": "Beta", "installed": true}])");
    EXPECT_EQ(result.json(), expected) << result.out;

    const ToolRun limited = run({"find", "plot", "--limit", "2"});
    ASSERT_EQ(limited.status, 0) << ::testing::PrintToString(limited);
    EXPECT_EQ(linesWith(limited.out, "  —  ").size(), 2u);
    EXPECT_TRUE(contains(limited.out, "(2 more; raise --limit to see them)"));
}

TEST_F(ToolCommands, FindWithoutAMatchFails) {
    const ToolRun result = run({"find", "zzz"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.out.empty());
    EXPECT_TRUE(contains(result.err, "no lookup entry matches zzz"));
}

} // namespace
