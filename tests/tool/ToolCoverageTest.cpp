// refdoc check --coverage: what each translation has of its own, what is read in English, and
// which translated pages lack sections of their English page, in text and JSON.

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

std::string pageFile(const std::string& product, const std::string& folder, const std::string& pages) {
    return R"({"productName": ")" + product + R"(", "baseCode": "X", "helpFolder": ")" + folder +
           R"(", "helpLocation": "help/x", "refItems": [)" + pages + "]}";
}

// A page with the sections named: "syntax", "inputs", "examples", "seealso".
std::string page(const std::string& href, const std::string& purpose, const std::vector<std::string>& sections) {
    std::string out = R"({"href": ")" + href + R"(", "refpurpose": ")" + purpose +
                      R"(", "refentity": [{"type": "function", "name": "f"}])";
    for (const auto& section : sections) {
        if (section == "syntax") {
            out += R"j(, "syntaxgroup": [{"title": "Basic", "syntax": ["f(x)"]}])j";
        } else if (section == "inputs") {
            out += R"(, "inputgroup": [{"title": "In", "inputs": [{"name": "x", "purpose": "x"}]}])";
        } else if (section == "examples") {
            out += R"(, "examples": [{"url": "a/e.html", "title": "Example"}])";
        } else if (section == "seealso") {
            out += R"(, "seealso": [{"url": "a/b.html", "name": "b"}])";
        }
    }
    return out + "}";
}

// alpha: four English entries, of which the Japanese variant translates two, repeats one as it
// is and leaves one out, plus one of its own; three English pages, two translated, one of them
// without its examples and see-also links. beta: no Japanese data at all.
void writeRoot(const TempDir& root) {
    root.write(kLookup / "alpha.json",
               fileText(lookupDocument({"Alpha", "AL", "alpha"},
                                       {{"one", "first"}, {"two", "second"}, {"same", "same"}, {"left", "left"}})));
    root.write(kLookup / "alpha_ja.json",
               fileText(lookupDocument({"アルファ", "AL", "alpha"},
                                       {{"one", "一"}, {"two", "二"}, {"same", "same"}, {"new", "新"}})));
    root.write(kLookup / "beta.json", fileText(lookupDocument({"Beta", "BE", "beta"}, {{"b1", "p"}, {"b2", "p"}})));
    const std::vector<std::string> full{"syntax", "inputs", "examples", "seealso"};
    root.write(kPages / "alpha.json", pageFile("Alpha", "alpha",
                                               page("a/a.html", "A", full) + "," + page("a/b.html", "B", {"syntax"}) +
                                                   "," + page("a/c.html", "C", {})));
    root.write(kPages / "alpha_ja.json",
               pageFile("アルファ", "alpha",
                        page("a/a.html", "エー", {"syntax", "inputs"}) + "," + page("a/b.html", "ビー", {"syntax"})));
    root.write(kPages / "beta.json", pageFile("Beta", "beta", page("b/x.html", "X", {"syntax"})));
}

struct Counts {
    int total, localized, fallback, onlyTranslated;
};

json::value countsJson(const Counts& c) {
    return json::object{
        {"total", c.total}, {"localized", c.localized}, {"fallback", c.fallback}, {"onlyTranslated", c.onlyTranslated}};
}

const struct ProductCase {
    std::string key;
    Counts entries;
    Counts pages;
    std::string textRow; // the row of the text table
} kProducts[] = {
    {"alpha", {4, 2, 2, 1}, {3, 2, 1, 0}, "  alpha          4          2        2      3          2        1"},
    {"beta", {2, 0, 2, 0}, {1, 0, 1, 0}, "  beta           2          0        2      1          0        1"},
};

TEST(ToolCoverage, CountsTranslatedAndEnglishEntriesAndPagesInTextAndJson) {
    const TempDir root;
    writeRoot(root);
    // With English supported the check's own loads are compared; without it the English data is
    // loaded for the comparison alone. The report is the same.
    for (const std::string languages : {"en,ja", "ja"}) {
        SCOPED_TRACE(languages);
        const std::vector<std::string> base{"check",  "--root", root.path().string(), "--languages", languages,
                                            "--lang", "ja"};
        auto args = base;
        args.push_back("--coverage");
        const ToolRun text = runTool(args);
        ASSERT_EQ(text.status, 0) << ::testing::PrintToString(text);
        // The check's report comes first, unchanged.
        const ToolRun plain = runTool(base);
        EXPECT_EQ(text.out.substr(0, plain.out.size()), plain.out);
        const std::string coverage = text.out.substr(plain.out.size());
        for (const std::string expected : {
                 "\nTranslation coverage (entries and pages a language lacks are read in English)\n\n",
                 "ja: lookup entries 2 of 6 localized, 4 in English; pages 2 of 4 localized, 2 in English\n"
                 "  product  entries  localized  English  pages  localized  English\n",
                 "  only in ja, not in English: alpha: 1 entry, 0 pages\n",
                 "  Localized pages lacking sections of their English page: 1\n"
                 "    a/a.html: Examples, See also\n",
             }) {
            EXPECT_TRUE(contains(coverage, expected)) << "missing:\n" << expected << "\nin:\n" << coverage;
        }
        const json::value report = [&] {
            args.push_back("--json");
            return runTool(args).json();
        }();
        const json::array& languagesJson = report.at("coverage").as_array();
        ASSERT_EQ(languagesJson.size(), 1u) << report.at("coverage");
        const json::value& ja = languagesJson.at(0);
        EXPECT_EQ(ja.at("language"), "ja");
        EXPECT_EQ(ja.at("entries"), countsJson({6, 2, 4, 1}));
        EXPECT_EQ(ja.at("pages"), countsJson({4, 2, 2, 0}));
        EXPECT_EQ(ja.at("lackingPages"), 1);
        const json::array& products = ja.at("products").as_array();
        ASSERT_EQ(products.size(), std::size(kProducts));
        for (std::size_t i = 0; i < products.size(); ++i) {
            const ProductCase& c = kProducts[i];
            SCOPED_TRACE(c.key);
            EXPECT_EQ(products[i].at("key"), json::value(c.key));
            EXPECT_EQ(products[i].at("entries"), countsJson(c.entries));
            EXPECT_EQ(products[i].at("pages"), countsJson(c.pages));
            EXPECT_EQ(linesWith(coverage, "  " + c.key + " ").size(), 1u) << coverage;
        }
        EXPECT_EQ(products[0].at("productName"), "Alpha");
        EXPECT_EQ(products[0].at("lackingSections"),
                  json::parse(R"([{"href": "a/a.html", "sections": ["examples", "seealso"]}])"));
        EXPECT_EQ(products[1].at("lackingSections"), json::array());
    }
}

TEST(ToolCoverage, TableRowsLineUpUnderTheirHeadings) {
    const TempDir root;
    writeRoot(root);
    const ToolRun run = runTool({"check", "--root", root.path().string(), "--coverage"});
    ASSERT_EQ(run.status, 0) << ::testing::PrintToString(run);
    for (const auto& c : kProducts) {
        EXPECT_TRUE(contains(run.out, c.textRow + "\n")) << c.textRow << "\nin:\n" << run.out;
    }
}

TEST(ToolCoverage, LeavesTheExitStatusAndEnglishOnlyRootsAlone) {
    const struct Case {
        const char* name;
        bool broken;
        std::string languages;
        int status;
        std::string shown;
    } cases[] = {
        {"dropped file", true, "en,ja", 1, "ja: lookup entries 2 of 6 localized"},
        {"English only", false, "en", 0,
         "Translation coverage (entries and pages a language lacks are read in English)\n"
         "  no supported language other than English\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TempDir root;
        writeRoot(root);
        if (c.broken) {
            root.write(kLookup / "broken.json", "{");
        }
        const ToolRun run =
            runTool({"check", "--root", root.path().string(), "--languages", c.languages, "--coverage"});
        EXPECT_EQ(run.status, c.status) << ::testing::PrintToString(run);
        EXPECT_TRUE(contains(run.out, c.shown)) << run.out;
        const ToolRun asJson =
            runTool({"check", "--root", root.path().string(), "--languages", c.languages, "--coverage", "--json"});
        EXPECT_EQ(asJson.status, c.status);
        EXPECT_EQ(asJson.json().at("coverage").as_array().empty(), c.languages == "en");
    }
}

// The sample root's README shows the end of `refdoc check --coverage` for that root.
TEST(ToolCoverage, SampleReadmeShowsTheSamplesCoverage) {
    const ToolRun run = runTool({"check", "--coverage"});
    ASSERT_EQ(run.status, 1) << ::testing::PrintToString(run); // instrument.json is broken on purpose
    // "Checking ROOT (bundled sample)": the README beside the root the tool read.
    const std::string first = run.out.substr(0, run.out.find('\n'));
    const std::string prefix = "Checking ";
    const std::string suffix = " (bundled sample)";
    ASSERT_TRUE(first.starts_with(prefix) && first.ends_with(suffix)) << first;
    const std::string readme = readBytes(
        std::filesystem::path(first.substr(prefix.size(), first.size() - prefix.size() - suffix.size())) / "README.md");
    const std::string command = "$ refdoc check --coverage\n…\n";
    const std::size_t start = readme.find(command);
    ASSERT_NE(start, std::string::npos) << "the README shows no coverage excerpt";
    const std::size_t begin = start + command.size();
    const std::string excerpt = readme.substr(begin, readme.find("```", begin) - begin);
    ASSERT_TRUE(excerpt.starts_with("Translation coverage")) << excerpt;
    EXPECT_TRUE(run.out.ends_with("\n" + excerpt)) << "README:\n" << excerpt << "\ntool:\n" << run.out;
}

} // namespace
