// refdoc check as a program: how it words and lays out what the library records (the records
// themselves are checked in tests/diagnostics), its own warnings, and its exit status.

#include "ZipWriter.hpp"
#include "support/DocrootBuilder.hpp"
#include "support/TempDir.hpp"
#include "support/ZipPatch.hpp"
#include "tool/ToolRunner.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace refdoc::test;
namespace json = boost::json;

const std::filesystem::path kLookup = "docCatalog/referenceapi_lookup";
const std::filesystem::path kPages = "docCatalog/referenceapi";

std::string lookupText(const std::string& key) {
    return fileText(lookupDocument({"Product " + key, key, key}, {{"item", "purpose"}}));
}

// The file's record in a --json report; null when the report has none.
json::value recordOf(const json::value& report, const std::string& path, const json::value& entry = nullptr) {
    for (const auto& file : report.at("files").as_array()) {
        if (file.at("path") == json::value("docCatalog/" + path) && file.at("entry") == entry) {
            return file;
        }
    }
    return nullptr;
}

ToolRun check(const TempDir& root, std::vector<std::string> args = {}) {
    args.insert(args.begin(), {"check", "--root", root.path().string()});
    return runTool(args);
}

// One file for each way the report words a drop, beside a sound file.
TEST(ToolCheck, WordsEachKindOfDropInTextAndJson) {
    const TempDir root;
    root.write(kLookup / "good.json", lookupText("good"));
    root.write(kLookup / "syntax.json",
               "{\n  \"productName\": \"S\",\n  \"refItems\": [\n    {\"name\": \"x\",}\n  ]\n}");
    root.write(kLookup / "kind.json", R"({"productName": "K", "baseCode": "K", "helpFolder": "k", "helpLocation": "h",
                                          "refItems": [{"name": "a", "refpurpose": ["p"], "href": "a"}]})");
    root.write(kLookup / "empty.json", "");
    const auto package = root.path() / kLookup / "pack.zip";
    ZipWriter().add("fine.json", lookupText("fine")).add("broken.json", lookupText("broken")).write(package);
    patchZipEntryCrc(package, "broken.json", 0xDEADBEEF);
    root.write(kLookup / "junk.zip", std::string(100, 'x'));
    root.write(kPages / "pages.json", R"({"productName": "P", "baseCode": "P", "helpFolder": "p",
                                          "helpLocation": "h", "refItems": [{"href": "p.html"}]})");

    const ToolRun text = check(root);
    EXPECT_EQ(text.status, 1) << ::testing::PrintToString(text);
    for (const char* expected : {
             "  ok       docCatalog/referenceapi_lookup/good.json  → good\n",
             "  DROPPED  docCatalog/referenceapi_lookup/syntax.json\n"
             "           JSON syntax error at line 4, column 18 (byte 57): syntax error\n",
             "  DROPPED  docCatalog/referenceapi_lookup/kind.json\n"
             "           expected a string, found an array at /refItems/0/refpurpose\n",
             "  DROPPED  docCatalog/referenceapi_lookup/empty.json\n           the file is empty\n",
             "  ok       docCatalog/referenceapi_lookup/pack.zip  (package)\n",
             "  DROPPED  docCatalog/referenceapi_lookup/pack.zip: broken.json\n"
             "           unreadable: zip entry 'broken.json': CRC error\n",
             "  DROPPED  docCatalog/referenceapi_lookup/junk.zip  (package)\n"
             "           unreadable: cannot open zip package",
             "Page files\n  DROPPED  docCatalog/referenceapi/pages.json\n"
             "           missing required member \"refpurpose\" at /refItems/0/refpurpose\n",
             "Summary: 3 files read, 6 dropped, 0 warnings, 0 not read\n",
         }) {
        EXPECT_TRUE(contains(text.out, expected)) << "missing:\n" << expected << "\nin:\n" << text.out;
    }

    const ToolRun asJson = check(root, {"--json"});
    EXPECT_EQ(asJson.status, 1);
    const json::value report = asJson.json();
    EXPECT_EQ(report.at("summary"),
              json::parse(R"({"read": 3, "dropped": 6, "warnings": 0, "warningsByKind": {}, "ignored": 0})"));
    // The reasons themselves are the library's; the report places them and the file's position.
    const json::value syntax = recordOf(report, "referenceapi_lookup/syntax.json");
    EXPECT_EQ(syntax.at("dropped"), true);
    EXPECT_EQ(syntax.at("reason"), "syntax error");
    EXPECT_EQ(syntax.at("line"), 4);
    EXPECT_EQ(syntax.at("column"), 18);
    EXPECT_EQ(syntax.at("jsonPath"), nullptr);
    const json::value kind = recordOf(report, "referenceapi_lookup/kind.json");
    EXPECT_FALSE(kind.as_object().contains("line"));
    EXPECT_EQ(kind.at("jsonPath"), "/refItems/0/refpurpose");
    EXPECT_EQ(recordOf(report, "referenceapi_lookup/pack.zip", "broken.json").at("reason"), "unreadable");
    EXPECT_EQ(recordOf(report, "referenceapi_lookup/good.json").at("dropped"), false);
}

TEST(ToolCheck, ReadsEveryLanguageVariantAndQuietListsOnlyProblems) {
    const TempDir root;
    // Entry and page agree: the page's entity is named for its href.
    const std::string lookup =
        fileText(lookupDocument({"Product alpha", "alpha", "alpha"}, {{"a.html", "A", "a.html"}}));
    for (const char* name : {"alpha.json", "alpha_ja.json", "alpha_ko.json"}) {
        root.write(kLookup / name, lookup);
    }
    for (const char* name : {"alpha.json", "alpha_ja.json"}) {
        root.write(kPages / name, fileText(pageDocument({"Alpha", "AL", "alpha"}, {{"a.html", "A"}})));
    }

    const ToolRun clean = check(root, {"--languages", "en,ja,ko", "--json"});
    ASSERT_EQ(clean.status, 0) << ::testing::PrintToString(clean);
    const json::value report = clean.json();
    EXPECT_EQ(report.at("summary").at("warnings"), 0);
    EXPECT_EQ(recordOf(report, "referenceapi_lookup/alpha_ko.json").at("localeVariant"), true);
    EXPECT_EQ(recordOf(report, "referenceapi/alpha_ja.json").at("localeVariant"), true);
    EXPECT_EQ(recordOf(report, "referenceapi/alpha.json").at("localeVariant"), false);
    const ToolRun quietClean = check(root, {"--languages", "en,ja,ko", "--quiet"});
    EXPECT_EQ(quietClean.status, 0);
    EXPECT_TRUE(contains(quietClean.out, "Lookup files\n  none dropped\n\nPage files\n  none dropped\n"))
        << quietClean.out;

    // A broken Korean variant is found even though the current language is English.
    root.write(kLookup / "alpha_ko.json", "{]");
    const ToolRun broken = check(root, {"--languages", "en,ja,ko", "--lang", "en", "--quiet"});
    EXPECT_EQ(broken.status, 1) << ::testing::PrintToString(broken);
    EXPECT_EQ(linesWith(broken.out, "docCatalog/"),
              std::vector<std::string>{"  DROPPED  docCatalog/referenceapi_lookup/alpha_ko.json  (locale variant)"})
        << broken.out;
}

// Which page file is a base file, which a variant of a supported language and which is passed
// over is the library's own enumeration; the languages come from the file names when neither
// the options nor a host file name them.
TEST(ToolCheck, PageFilesPlayTheRolesTheLibraryGivesThem) {
    const TempDir root;
    root.write(kLookup / "alpha.json", lookupText("alpha"));
    root.write(kLookup / "alpha_ko.json", lookupText("alpha"));
    const std::string pages = fileText(pageDocument({"Alpha", "AL", "alpha"}, {{"a.html", "A"}}));
    for (const char* name : {"alpha.json", "alpha_ja.json", "alpha_ko.json", "beta_fr.json", "gamma_ja.json"}) {
        root.write(kPages / name, pages);
    }
    ZipWriter().add("delta.json", pages).write(root.path() / kPages / "delta.zip");

    const ToolRun result = check(root, {"--json"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    const json::value report = result.json();
    EXPECT_EQ(report.at("languages"), json::parse(R"(["en", "ja", "ko"])"));
    const struct Case {
        std::string path;
        bool variant;
    } cases[] = {
        {"referenceapi/alpha.json", false},
        {"referenceapi/alpha_ja.json", true},
        {"referenceapi/alpha_ko.json", true},
        {"referenceapi/beta_fr.json", false}, // fr is no language of this root: a product of its own
        {"referenceapi/gamma_ja.json", true}, // a translation without its English file
        {"referenceapi_lookup/alpha_ko.json", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        const json::value record = recordOf(report, c.path);
        ASSERT_FALSE(record.is_null()) << "not read";
        EXPECT_EQ(record.at("localeVariant"), c.variant);
        EXPECT_EQ(record.at("dropped"), false);
    }
    EXPECT_EQ(report.at("ignored"), json::parse(R"(["docCatalog/referenceapi/delta.zip"])"));
    EXPECT_EQ(report.at("files").as_array().size(), 7u);
}

TEST(ToolCheck, WarnsAboutWhatIsReadOnlyLeniently) {
    const TempDir root;
    root.write(kLookup / "lenient.json", R"({
        "productName": "L", "baseCode": "L", "helpFolder": "lenient", "helpLocation": "h",
        "refItems": [{"name": "a", "refpurpose": "p", "href": "a.html", "type": "funktion"},
                     {"name": "b", "refpurpose": "p", "href": "b.html", "type": "klass"},
                     {"name": "c", "refpurpose": "p", "href": "c.html", "type": "funktion"}],
        "supportPackages": [{"productName": "Shadow", "baseCode": "lenient", "helpFolder": "s",
                             "helpLocation": "h", "refItems": []}]})");
    // fr is not supported: this translation is read as an English product of its own.
    root.write(kLookup / "lenient_fr.json", lookupText("lenient"));
    // Named for Japanese, but its only entry is not: never read in any language.
    ZipWriter().add("orphan.json", lookupText("orphan")).write(root.path() / kLookup / "orphan_ja.zip");
    root.write(kLookup / "notes.txt", "not data");
    root.write(kPages / "lenient.JSON", "{}");

    const ToolRun result = check(root, {"--languages", "en,ja"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    for (const char* expected : {
             "  warning  docCatalog/referenceapi_lookup/lenient.json  → lenient  [8 warnings]\n",
             // Each group ends with what to change, under each file when it names the file.
             "Warnings by kind\n"
             "  document key taken: 1 warning in 1 file (support packages dropped: an earlier document of the same "
             "file has their key)\n"
             "    docCatalog/referenceapi_lookup/lenient.json: key \"lenient\" at /supportPackages/0\n"
             "    fix: give the support package a baseCode of its own, or remove the repeated document\n"
             "  entry links to no page: 4 warnings in 1 file\n"
             "    docCatalog/referenceapi_lookup/lenient.json: entry \"a\" of lenient links to a.html, but no page "
             "file has the product lenient; entry \"b\" of lenient links to b.html, but no page file has the product "
             "lenient; entry \"c\" of lenient links to c.html, but no page file has the product lenient; entry "
             "\"item\" of lenient links to item.html, but no page file has the product lenient\n"
             "    fix: add the linked page to the product's page file, or correct the entry's href\n"
             "  locale variant read as English: 1 warning in 1 file\n"
             "    docCatalog/referenceapi_lookup/lenient_fr.json: the name ends in \"_fr\", but \"fr\" is not a "
             "supported language (en, ja): read as English data, never over English\n"
             "      fix: add fr to the supported languages (--languages, or \"supportedLanguages\" in "
             "refdoc-host.json), or rename the file if it is no translation of lenient\n"
             "  package never read: 1 warning in 1 file\n"
             "    docCatalog/referenceapi_lookup/orphan_ja.zip: no entry is read: a package named for a language is "
             "read only when that language is current, and then only an entry whose name ends in the same suffix\n"
             "    fix: put .json entries in the package, each named for the package's language when it has one, or "
             "remove the package\n"
             "  product key in several files: 1 warning in 1 file\n"
             "    docCatalog/referenceapi_lookup/lenient_fr.json: product key \"lenient\" is also in "
             "docCatalog/referenceapi_lookup/lenient.json, which the library reads first: its header and entries win, "
             "this file adds only the entries under names that one lacks\n"
             "      fix: keep the product lenient in one file: remove it here or in "
             "docCatalog/referenceapi_lookup/lenient.json, or give one of them another key (helpFolder; baseCode for a "
             "support package)\n"
             "  unknown enumeration text: 3 warnings in 1 file (enumeration texts that name no value: the default "
             "value is used)\n"
             "    docCatalog/referenceapi_lookup/lenient.json: \"funktion\" ×2 (first at /refItems/0/type); \"klass\" "
             "at /refItems/1/type\n"
             "    fix: use one of the texts the format defines (the JSON Schemas list them), or leave the member out\n",
             "Not read (only .json and .zip lookup files and .json page files are data): 2 files\n"
             "  docCatalog/referenceapi/lenient.JSON\n"
             "  docCatalog/referenceapi_lookup/notes.txt\n",
             "Summary: 3 files read, 0 dropped, 11 warnings (document key taken: 1, entry links to no page: 4, locale "
             "variant read as English: 1, package never read: 1, product key in several files: 1, unknown enumeration "
             "text: 3), 2 not read\n",
         }) {
        EXPECT_TRUE(contains(result.out, expected)) << "missing:\n" << expected << "\nin:\n" << result.out;
    }

    const ToolRun asJson = check(root, {"--languages", "en,ja", "--json"});
    ASSERT_EQ(asJson.status, 0);
    const json::array warnings = recordOf(asJson.json(), "referenceapi_lookup/lenient.json").at("warnings").as_array();
    ASSERT_EQ(warnings.size(), 7u); // and four entries that link to no page
    EXPECT_EQ(json::array(warnings.begin(), warnings.begin() + 3), json::parse(R"([
        {"kind": "unknown enumeration text", "jsonPath": "/refItems/0/type", "text": "funktion", "count": 2,
         "fix": "use one of the texts the format defines (the JSON Schemas list them), or leave the member out"},
        {"kind": "unknown enumeration text", "jsonPath": "/refItems/1/type", "text": "klass", "count": 1,
         "fix": "use one of the texts the format defines (the JSON Schemas list them), or leave the member out"},
        {"kind": "document key taken", "jsonPath": "/supportPackages/0", "text": "lenient", "count": 1,
         "fix": "give the support package a baseCode of its own, or remove the repeated document"}])"));
    EXPECT_EQ(recordOf(asJson.json(), "referenceapi_lookup/lenient_fr.json").at("warnings").at(0).at("kind"),
              "locale variant read as English");
    json::object summary = asJson.json().at("summary").as_object();
    for (auto& [kind, counts] : summary.at("warningsByKind").as_object()) {
        EXPECT_FALSE(counts.as_object().at("fix").as_string().empty()) << kind;
        counts.as_object().erase("fix");
    }
    EXPECT_EQ(summary, json::parse(R"({"read": 3, "dropped": 0, "warnings": 11, "ignored": 2,
        "warningsByKind": {"document key taken": {"warnings": 1, "files": 1},
                           "entry links to no page": {"warnings": 4, "files": 1},
                           "locale variant read as English": {"warnings": 1, "files": 1},
                           "package never read": {"warnings": 1, "files": 1},
                           "product key in several files": {"warnings": 1, "files": 1},
                           "unknown enumeration text": {"warnings": 3, "files": 1}}})"));
    EXPECT_EQ(asJson.json().at("ignored"),
              json::parse(R"(["docCatalog/referenceapi/lenient.JSON", "docCatalog/referenceapi_lookup/notes.txt"])"));

    // With French supported, the file is a proper variant and the warning goes away.
    const ToolRun withFrench = check(root, {"--languages", "en,ja,fr", "--quiet"});
    EXPECT_FALSE(contains(withFrench.out, "lenient_fr.json")) << withFrench.out;
}

// A root with many warned files: the report lists the first few of each kind unless asked for
// all, and --strict turns warnings into a failure.
TEST(ToolCheck, ListsTheFirstFewFilesOfEachKindAndFailsOnWarningsWhenStrict) {
    const TempDir root;
    for (int i = 0; i < 7; ++i) {
        const std::string key = "p" + std::to_string(i);
        // p6 has five unknown texts more than the others.
        std::string more;
        for (int t = 0; i == 6 && t < 5; ++t) {
            more += R"(, {"name": "c", "refpurpose": "p", "href": "c.html", "type": "t)" + std::to_string(t) + "\"}";
        }
        root.write(kLookup / (key + ".json"), R"({"productName": "P", "baseCode": "P", "helpFolder": ")" + key +
                                                  R"(", "helpLocation": "h", "refItems": [
                       {"name": "a", "refpurpose": "p", "href": "a.html", "type": "odd"},
                       {"name": "b", "refpurpose": "p", "href": "b.html", "type": "odd"})" +
                                                  more + "]}");
    }
    const std::string p6 = "/p6.json: \"odd\" ×2 (first at /refItems/0/type); \"t0\" at /refItems/2/type; \"t1\" at "
                           "/refItems/3/type; \"t2\" at /refItems/4/type; \"t3\" at /refItems/5/type";
    const struct Case {
        std::vector<std::string> args;
        int status;
        std::size_t fileLines; // lines naming a warned file
        bool more;             // the "… and 2 more" line
        std::string p6Line;    // the end of p6's line, or "" when it is not listed
    } cases[] = {
        // Each file once in the file list, five in each group: unknown texts, and entries that
        // link to no page.
        {{}, 0, 7 + 5 + 5, true, ""},
        {{"--quiet"}, 0, 5 + 5, true, ""},
        {{"--quiet", "--verbose"}, 0, 7 + 7, false, p6 + "; \"t4\" at /refItems/6/type\n"},
        {{"--quiet", "--strict"}, 1, 5 + 5, true, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.args));
        const ToolRun run = check(root, c.args);
        EXPECT_EQ(run.status, c.status) << ::testing::PrintToString(run);
        EXPECT_EQ(linesWith(run.out, "referenceapi_lookup/p").size(), c.fileLines) << run.out;
        EXPECT_EQ(contains(run.out, "    … and 2 more (--verbose lists them all)\n"), c.more) << run.out;
        EXPECT_TRUE(contains(run.out, "  unknown enumeration text: 19 warnings in 7 files")) << run.out;
        EXPECT_TRUE(contains(run.out, "/p0.json: \"odd\" ×2 (first at /refItems/0/type)\n")) << run.out;
        EXPECT_EQ(contains(run.out, "/p6.json: "), !c.p6Line.empty()) << run.out;
        if (!c.p6Line.empty()) {
            EXPECT_TRUE(contains(run.out, c.p6Line)) << run.out;
        }
    }
    // Sorted by name, p6 is among the first five only after p0 and p1 are gone.
    for (const char* gone : {"p0.json", "p1.json"}) {
        std::filesystem::remove(root.path() / kLookup / gone);
    }
    const ToolRun shortened = check(root, {"--quiet"});
    EXPECT_TRUE(contains(shortened.out, p6 + "; … 1 more\n")) << shortened.out;

    const ToolRun strictJson = check(root, {"--strict", "--json"});
    EXPECT_EQ(strictJson.status, 1);
    EXPECT_EQ(strictJson.json().at("summary").at("warningsByKind").at("unknown enumeration text"),
              json::parse(R"({"warnings": 15, "files": 5, "fix": "use one of the texts the format defines )"
                          R"((the JSON Schemas list them), or leave the member out"})"));
}

} // namespace
