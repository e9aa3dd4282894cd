// refdoc lookup, page and find, run as a program on documentation roots generated in temp folders
// and on the bundled sample root.

#include "ZipWriter.hpp"
#include "support/DocrootBuilder.hpp"
#include "support/TempDir.hpp"
#include "tool/ToolRunner.hpp"

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
        ZipWriter()
            .add("beta.json", fileText(lookupDocument({"Beta", "BE", "beta"}, {{"Ärger", "Trouble", "aerger.html"}})))
            .add("beta_ja.json",
                 fileText(lookupDocument({"ベータ", "BE", "beta"}, {{"Ärger", "トラブル", "aerger.html"}})))
            .write(root_.path() / kLookup / "beta.zip");
        write(kPages / "alpha.json", kFullPage);
    }

    void write(const std::filesystem::path& relative, const std::string& text) const { root_.write(relative, text); }

    ToolRun run(std::vector<std::string> args) const {
        args.push_back("--root");
        args.push_back(root_.path().string());
        return runTool(args);
    }

    TempDir root_;
};

TEST_F(ToolCommands, LookupListsEachProductAndItsJsonHoldsTheWholeResult) {
    const ToolRun text = run({"lookup", "--installed", "alpha", "--support-packages", "sp_a"});
    ASSERT_EQ(text.status, 0) << ::testing::PrintToString(text);
    EXPECT_TRUE(contains(text.out, "KEY    INSTALLED  ITEMS  PRODUCT\n"
                                   "alpha  yes            4  Alpha\n"
                                   "beta   no             1  Beta\n"
                                   "sp_a   yes            1  Alpha Support\n"))
        << text.out;
    EXPECT_TRUE(contains(text.out, "3 products: 2 installed, 1 not installed"));

    const ToolRun asJson = run({"lookup", "--json", "--lang", "ja", "--installed", "beta"});
    ASSERT_EQ(asJson.status, 0) << ::testing::PrintToString(asJson);
    const json::value value = asJson.json();
    EXPECT_EQ(value.at("installedResources"), json::parse(R"({"beta": {
        "productName": "ベータ", "baseCode": "BE", "helpFolder": "beta", "helpLocation": "help/beta",
        "items": {"Ärger": [{"name": "Ärger", "type": "function", "purpose": "トラブル", "deprecated": false,
                             "href": "aerger.html", "fcntype": null}]}}})"))
        << asJson.out;
    EXPECT_EQ(value.at("uninstalledResources").as_object().size(), 2u);
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

// Without a list from the options or the host file, the supported languages are those the data
// files are named for: a suffix counts only beside the file it translates.
TEST_F(ToolCommands, SupportedLanguagesDefaultToThoseTheDataFilesAreNamedFor) {
    write(kPages / "alpha_de.json", kFullPage);
    write(kLookup / "orphan_ko.json", fileText(lookupDocument({"Orphan", "OR", "orphan"}, {{"o", "O"}})));
    write(kLookup / "gamma_zh_CN.json", fileText(lookupDocument({"Gamma CN", "GA", "gamma"}, {{"g", "G"}})));
    write(kLookup / "gamma.json", fileText(lookupDocument({"Gamma", "GA", "gamma"}, {{"g", "G"}})));
    const struct Case {
        std::vector<std::string> args;
        int status;
        std::string text; // in the output, or the message when the status is 2
    } cases[] = {
        {{"lookup"}, 0, "Language: en (supported: en, de, ja, zh_CN)"},
        {{"lookup", "--lang", "JA"}, 0, "Language: ja (supported: en, de, ja, zh_CN)"},
        {{"lookup", "--lang", "ZH_cn"}, 0, "Language: zh_CN (supported: en, de, ja, zh_CN)"},
        {{"lookup", "--lang", "ko"},
         2,
         "refdoc: no data file of " + root_.path().string() +
             " is named for the language 'ko'; the languages present are en, de, ja, zh_CN (--languages names "
             "others)\n"},
        {{"lookup", "--lang", "KO", "--languages", "en,ko"}, 0, "Language: ko (supported: en, ko)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.args));
        const ToolRun result = run(c.args);
        EXPECT_EQ(result.status, c.status) << ::testing::PrintToString(result);
        EXPECT_TRUE(contains(c.status == 2 ? result.err : result.out, c.text)) << ::testing::PrintToString(result);
    }
    // JA reads the Japanese variants as ja does.
    const auto alpha = linesWith(run({"lookup", "--lang", "JA"}).out, "alpha ");
    ASSERT_EQ(alpha.size(), 1u);
    EXPECT_TRUE(alpha.front().ends_with("  アルファ")) << alpha.front();
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

    const ToolRun asJson = run({"page", "alpha", "--json"});
    ASSERT_EQ(asJson.status, 0) << ::testing::PrintToString(asJson);
    const json::value page = asJson.json().at("alpha").at("items").at("alpha/plot.html").at(0);
    EXPECT_EQ(page.at("thumbnail"), json::parse(R"({"fileRef": "alpha/plot.png", "altText": "A line chart"})"));
    EXPECT_EQ(page.at("inputGroups").at(1),
              json::parse(R"({"title": "Options", "inputs": [{"name": "Color", "purpose": "Line colour", "values": [],
                              "anchor": "alpha/plot.html#nv_color", "syntaxType": null,
                              "defaultValue": "\"blue\"", "nameValuePair": true}]})"));
}

// What a user knows of a page: the page file, the product key, an entry's name or its link. The
// page file of delta is named for neither its key nor its links' folder.
TEST_F(ToolCommands, PageFindsPagesByFileKeyEntryNameOrLink) {
    write(kLookup / "delta.json",
          fileText(lookupDocument({"Delta", "DE", "delta"}, {{"resample", "Resample data", "delta/ref/resample.html"},
                                                             {"Plot", "Plot in delta", "delta/ref/plot.html"},
                                                             {"nopage", "No page", "delta/ref/none.html"}})));
    write(kPages / "deltadocs.json",
          fileText(pageDocument({"Delta", "DE", "delta"}, {{"delta/ref/resample.html", "Resample data"},
                                                           {"delta/ref/plot.html", "Plot in delta"}})));
    const std::string resample = "  Link: delta/ref/resample.html\n";
    const std::string plot = "  Link: delta/ref/plot.html\n";
    const struct Case {
        std::string name;
        int status;
        std::vector<std::string> shown; // in stdout, or in stderr when the status is 1
        std::vector<std::string> notShown;
    } cases[] = {
        {"alpha", 0, {"══ Alpha  [alpha]  1 page", "  Link: alpha/plot.html\n"}, {}},
        {"deltadocs", 0, {"══ Delta  [delta]  2 pages", resample, plot}, {}},
        {"delta", 0, {"══ Delta  [delta]  2 pages", resample, plot}, {}},
        {"resample", 0, {"══ Delta  [delta], help in help/delta\n", resample}, {plot, "pages"}},
        {"RESAMPLE", 0, {resample}, {plot}},
        {"delta/ref/plot.html#input_x", 0, {plot}, {resample}},
        // Two products have an entry named Plot: the user picks one by its link.
        {"Plot",
         1,
         {"2 pages have the name 'Plot'", "  refdoc page delta/ref/plot.html   (Delta [delta])\n",
          "  refdoc page Plot.html   (Alpha [alpha])\n"},
         {}},
        {"nopage", 1, {"the lookup entry 'nopage' links to delta/ref/none.html, but no page file has that page"}, {}},
        {"delta/ref/none.html", 1, {"no page file has the page 'delta/ref/none.html'"}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ToolRun result = run({"page", c.name});
        EXPECT_EQ(result.status, c.status) << ::testing::PrintToString(result);
        const std::string& text = c.status == 0 ? result.out : result.err;
        for (const auto& part : c.shown) {
            EXPECT_TRUE(contains(text, part)) << part << " not in\n" << text;
        }
        for (const auto& part : c.notShown) {
            EXPECT_FALSE(contains(text, part)) << part << " in\n" << text;
        }
    }
    const ToolRun asJson = run({"page", "resample", "--json"});
    ASSERT_EQ(asJson.status, 0) << ::testing::PrintToString(asJson);
    ASSERT_EQ(asJson.json().as_array().size(), 1u);
    EXPECT_EQ(asJson.json().at(0).at("href"), "delta/ref/resample.html");
}

// lookup and find end by saying how many lookup files were dropped.
TEST_F(ToolCommands, LookupAndFindSayHowManyFilesWereDropped) {
    const struct Case {
        std::vector<std::string> args;
        bool toErr;
    } cases[] = {{{"lookup"}, false}, {{"find", "plot"}, false}, {{"find", "zzz"}, true}};
    for (const bool broken : {false, true}) {
        if (broken) {
            write(kLookup / "broken.json", "{");
            write(kLookup / "empty.json", "");
        }
        for (const auto& c : cases) {
            SCOPED_TRACE(::testing::PrintToString(c.args) + (broken ? " broken" : ""));
            const ToolRun result = run(c.args);
            const std::string& text = c.toErr ? result.err : result.out;
            EXPECT_TRUE(text.ends_with(broken ? "\n2 lookup files were dropped; 'refdoc check' says why.\n"
                                              : "\nNo lookup file was dropped.\n"))
                << text;
        }
    }
    EXPECT_EQ(run({"lookup", "--json"}).json().at("droppedFiles"), 2);
}

// find asks the library's search index with the tool's options: the TEXTs are one query, the
// filters narrow it, --explain says why, and the JSON carries every hit's fields.
TEST_F(ToolCommands, FindRanksFiltersAndExplainsTheIndexsHits) {
    boost::json::object gamma = lookupDocument({"Gamma", "GA", "gamma"},
                                               {{"plotHistory", "Plots drawn so far"}, {"legacyPlot", "Old plotting"}});
    auto& items = gamma["refItems"].as_array();
    items[0].as_object()["type"] = "class";
    items[1].as_object()["deprecated"] = true;
    write(kLookup / "gamma.json", fileText(gamma));

    const ToolRun result = run({"find", "PLOT", "--limit", "4"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_EQ(linesWith(result.out, "  —  "),
              (std::vector<std::string>{"Plot  —  Plot class", "plot  —  Plot data", "plotter  —  A plotting object",
                                        "plotHistory  —  Plots drawn so far"}));
    EXPECT_TRUE(contains(result.out, "    plotter.html   Alpha [alpha, not installed]   (prefix)\n"));
    EXPECT_TRUE(contains(result.out, "(2 more; raise --limit to see them)")) << result.out;

    // Two TEXTs are two words, each found in the name or the purpose; non-ASCII folded.
    const ToolRun words = run({"find", "ÄRG", "trouble", "--json", "--installed", "beta"});
    ASSERT_EQ(words.status, 0) << ::testing::PrintToString(words);
    ASSERT_EQ(words.json().as_array().size(), 1u) << words.out;
    json::object hit = words.json().at(0).as_object();
    EXPECT_GT(hit["score"].as_int64(), 0);
    hit.erase("score");
    EXPECT_EQ(hit, json::parse(R"({"match": "words", "name": "Ärger", "purpose": "Trouble", "href": "aerger.html",
        "productKey": "beta", "productName": "Beta", "installed": true, "type": "function",
        "deprecated": false})"))
        << words.out;

    // Filters: entity type, product keys, installed products, deprecated entries.
    const auto names = [&](std::vector<std::string> args) {
        args.push_back("--json");
        const json::value listed = run(args).json();
        std::vector<std::string> found;
        for (const auto& entry : listed.as_array()) {
            found.emplace_back(entry.at("name").as_string());
        }
        return found;
    };
    EXPECT_EQ(names({"find", "plot", "--type", "class"}), std::vector<std::string>{"plotHistory"});
    EXPECT_EQ(names({"find", "plot", "--product", "gamma"}), (std::vector<std::string>{"plotHistory", "legacyPlot"}));
    EXPECT_EQ(names({"find", "plot", "--product", "gamma", "--hide-deprecated"}),
              std::vector<std::string>{"plotHistory"});
    EXPECT_EQ(names({"find", "plot", "--installed-only", "--installed", "gamma"}),
              (std::vector<std::string>{"plotHistory", "legacyPlot"}));
    EXPECT_EQ(run({"find", "plot", "--type", "funktion"}).status, 2);

    // The explanation: kind, matched runs, score, tie facts, deprecation.
    const ToolRun explained = run({"find", "lp", "--explain", "--product", "gamma"});
    EXPECT_TRUE(contains(explained.out, "(initials, deprecated)\n    why: initials: the initials of the name's "
                                        "segments, [l]egacy[P]lot; score "))
        << explained.out;
    EXPECT_TRUE(contains(explained.out, "ties: a name of 10 units, not installed, key gamma; deprecated\n"))
        << explained.out;
}

// The bundled sample root, shown when no --root is given, as the README describes it.
TEST(SampleRoot, ToolShowsItsProductsAndItsBrokenFile) {
    const ToolRun lookup = runTool({"lookup"});
    ASSERT_EQ(lookup.status, 0) << ::testing::PrintToString(lookup);
    EXPECT_TRUE(contains(lookup.out, "(bundled sample)"));
    EXPECT_TRUE(contains(lookup.out,
                         "KEY      INSTALLED  ITEMS  PRODUCT\n"
                         "geodesy  no             2  Geodesy Library\n"
                         "mapping  yes            3  Mapping Kit\n"
                         "optics   no             2  Optics Kit\n"
                         "signal   yes            5  Signal Toolkit\n"
                         "usbdaq   yes            2  Signal Toolkit Support Package for USB Data Acquisition\n"))
        << lookup.out;

    // The sample's README: find by purpose and by initials.
    const ToolRun acquisition = runTool({"find", "acquisition"});
    EXPECT_EQ(linesWith(acquisition.out, "(purpose)"),
              (std::vector<std::string>{
                  "    usbdaq/ref/usbacquire.html   Signal Toolkit Support Package for USB Data Acquisition [usbdaq]   "
                  "(purpose)",
                  "    usbdaq/ref/usbdevices.html   Signal Toolkit Support Package for USB Data Acquisition [usbdaq]   "
                  "(purpose)"}))
        << acquisition.out;
    const ToolRun initials = runTool({"find", "lpf"});
    EXPECT_TRUE(initials.out.starts_with("Low-Pass Filter  —  ")) << initials.out;

    const ToolRun check = runTool({"check", "--quiet"});
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(linesWith(check.out, "docCatalog/"),
              (std::vector<std::string>{"  DROPPED  docCatalog/referenceapi_lookup/instrument.json",
                                        "    docCatalog/referenceapi/optics.json: page optics/ref/lensmaker.html: "
                                        "see-also \"thicklens\" links to optics/ref/thicklens.html, which no page "
                                        "file has"}))
        << check.out;
    // Its one cross-reference warning, the broken see-also link the README points out.
    EXPECT_TRUE(contains(check.out, "Summary: 14 files read, 1 dropped, 1 warning (broken see-also link: 1), "))
        << check.out;
}

} // namespace
