// refdoc check, run as a program on documentation roots that hold files broken in each of the
// ways the library drops a file, and files it reads only leniently.

#include "support/DocrootBuilder.hpp"
#include "support/TempDir.hpp"
#include "support/ZipBuilder.hpp"
#include "tool/ToolRunner.hpp"

#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

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
        if (file.at("path") == json::value(path) && file.at("entry") == entry) {
            return file;
        }
    }
    return nullptr;
}

ToolRun check(const TempDir& root, std::vector<std::string> args = {}) {
    args.insert(args.begin(), {"check", "--root", root.path().string()});
    return runTool(args);
}

// A lookup file whose second support package has 18 items, the last without "href".
std::string deepMissingHref() {
    std::vector<Entry> items;
    for (int i = 0; i < 18; ++i) {
        items.push_back({"f" + std::to_string(i), "function " + std::to_string(i)});
    }
    std::string text =
        fileText(lookupDocument({"Deep", "DP", "deep"}, {{"main", "main"}}),
                 {lookupDocument({"P0", "p0", "p0"}, {{"a", "a"}}), lookupDocument({"P1", "p1", "p1"}, items)});
    const std::string last = "\"href\":\"f17.html\",";
    return text.replace(text.find(last), last.size(), "");
}

// How the report lays out a drop: the position of a syntax error, the pointer of a missing key, the
// label of a package entry and of a package. The reasons themselves are the library's, checked
// where the library records them.
TEST(ToolCheck, ReportsEachDroppedFileWithTheLibrarysReason) {
    struct Case {
        const char* what;
        std::function<void(const TempDir&)> make;
        std::string path;
        json::value entry;
        std::string reason;
        std::string message;
        json::value jsonPath;
        json::value line;
        json::value column;
        std::string textLine; // the reason as the text report prints it
    };
    const Case cases[] = {
        {"JSON syntax error",
         [](const TempDir& root) {
             root.write(kLookup / "syntax.json",
                        "{\n  \"productName\": \"S\",\n  \"refItems\": [\n    {\"name\": \"x\",}\n  ]\n}");
         },
         "docCatalog/referenceapi_lookup/syntax.json", nullptr, "syntax error", "syntax error", nullptr, 4, 18,
         "JSON syntax error at line 4, column 18 (byte 57): syntax error"},
        {"missing key inside a support package",
         [](const TempDir& root) { root.write(kLookup / "deep.json", deepMissingHref()); },
         "docCatalog/referenceapi_lookup/deep.json", nullptr, "missing key", "missing required member \"href\"",
         "/supportPackages/1/refItems/17/href", nullptr, nullptr,
         "missing required member \"href\" at /supportPackages/1/refItems/17/href"},
        {"unreadable package entry",
         [](const TempDir& root) {
             const auto package = root.path() / kLookup / "pack.zip";
             ZipBuilder().add("fine.json", lookupText("fine")).add("broken.json", lookupText("broken")).write(package);
             patchZipEntryCrc(package, "broken.json", 0xDEADBEEF);
         },
         "docCatalog/referenceapi_lookup/pack.zip", "broken.json", "unreadable", "zip entry 'broken.json': CRC error",
         nullptr, nullptr, nullptr, "unreadable: zip entry 'broken.json': CRC error"},
        {"package that cannot be opened",
         [](const TempDir& root) { root.write(kLookup / "junk.zip", std::string(100, 'x')); },
         "docCatalog/referenceapi_lookup/junk.zip", nullptr, "unreadable", "", nullptr, nullptr, nullptr,
         "unreadable: cannot open zip package"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TempDir root;
        root.write(kLookup / "good.json", lookupText("good"));
        c.make(root);

        const ToolRun report = check(root, {"--json"});
        ASSERT_EQ(report.status, 1) << ::testing::PrintToString(report);
        const json::value value = report.json();
        EXPECT_EQ(value.at("summary").at("dropped"), 1);
        const json::value record = recordOf(value, c.path, c.entry);
        ASSERT_FALSE(record.is_null()) << report.out;
        EXPECT_EQ(record.at("dropped"), true);
        EXPECT_EQ(record.at("reason"), json::value(c.reason));
        if (!c.message.empty()) {
            EXPECT_EQ(record.at("message"), json::value(c.message));
        }
        EXPECT_EQ(record.at("jsonPath"), c.jsonPath);
        EXPECT_EQ(record.if_object()->if_contains("line") ? record.at("line") : json::value(nullptr), c.line);
        EXPECT_EQ(record.if_object()->if_contains("column") ? record.at("column") : json::value(nullptr), c.column);
        EXPECT_EQ(recordOf(value, "docCatalog/referenceapi_lookup/good.json").at("dropped"), false);

        const ToolRun text = check(root);
        EXPECT_EQ(text.status, 1);
        const std::string label = c.entry.is_null() ? c.path : c.path + ": " + std::string(c.entry.as_string());
        const auto dropped = linesWith(text.out, "  DROPPED  ");
        ASSERT_EQ(dropped.size(), 1u) << text.out;
        EXPECT_TRUE(dropped[0].starts_with("  DROPPED  " + label)) << text.out;
        EXPECT_TRUE(contains(text.out, "\n           " + c.textLine)) << text.out;
        EXPECT_TRUE(contains(text.out, "1 dropped")) << text.out;
    }
}

TEST(ToolCheck, CleanRootPassesAndEveryLanguageVariantIsRead) {
    const TempDir root;
    root.write(kLookup / "alpha.json", lookupText("alpha"));
    root.write(kLookup / "alpha_ja.json", lookupText("alpha"));
    root.write(kLookup / "alpha_ko.json", lookupText("alpha"));
    root.write(kPages / "alpha.json", fileText(pageDocument({"Alpha", "AL", "alpha"}, {{"a.html", "A"}})));
    root.write(kPages / "alpha_ja.json", fileText(pageDocument({"Alpha", "AL", "alpha"}, {{"a.html", "A"}})));

    const ToolRun clean = check(root, {"--languages", "en,ja,ko", "--json"});
    ASSERT_EQ(clean.status, 0) << ::testing::PrintToString(clean);
    const json::value report = clean.json();
    EXPECT_EQ(report.at("summary"), json::parse(R"({"read": 5, "dropped": 0, "warnings": 0})"));
    EXPECT_EQ(recordOf(report, "docCatalog/referenceapi_lookup/alpha_ko.json").at("localeVariant"), true);
    EXPECT_EQ(recordOf(report, "docCatalog/referenceapi/alpha_ja.json").at("localeVariant"), true);
    EXPECT_EQ(recordOf(report, "docCatalog/referenceapi/alpha.json").at("documents"), json::parse(R"(["alpha"])"));

    // A broken Korean variant is found even though the current language is English.
    root.write(kLookup / "alpha_ko.json", "{]");
    const ToolRun broken = check(root, {"--languages", "en,ja,ko", "--lang", "en"});
    EXPECT_EQ(broken.status, 1) << ::testing::PrintToString(broken);
    EXPECT_TRUE(contains(broken.out, "  DROPPED  docCatalog/referenceapi_lookup/alpha_ko.json  (locale variant)\n"
                                     "           JSON syntax error at line 1, column 2 (byte 1): syntax error"))
        << broken.out;
}

TEST(ToolCheck, WarnsAboutWhatIsReadOnlyLeniently) {
    const TempDir root;
    root.write(kLookup / "lenient.json", R"({
        "productName": "L", "baseCode": "L", "helpFolder": "lenient", "helpLocation": "h",
        "refItems": [{"name": "a", "refpurpose": "p", "href": "a.html", "type": "funktion"}],
        "supportPackages": [{"productName": "Shadow", "baseCode": "lenient", "helpFolder": "s",
                             "helpLocation": "h", "refItems": []}]})");
    // fr is not supported: this translation is read as an English product of its own.
    root.write(kLookup / "lenient_fr.json", lookupText("lenient"));
    // Named for Japanese, but its only entry is not: never read in any language.
    ZipBuilder().add("orphan.json", lookupText("orphan")).write(root.path() / kLookup / "orphan_ja.zip");
    root.write(kLookup / "notes.txt", "not data");
    root.write(kPages / "lenient.JSON", "{}");

    const ToolRun result = check(root, {"--languages", "en,ja"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    for (const char* expected : {
             "  warning  docCatalog/referenceapi_lookup/lenient.json  → lenient\n"
             "           unknown enumeration text \"funktion\" at /refItems/0/type: the default value is used\n"
             "           support package at /supportPackages/0 dropped: its key \"lenient\" is already taken by an "
             "earlier document of this file\n",
             "  warning  docCatalog/referenceapi_lookup/lenient_fr.json  → lenient\n"
             "           the name ends in \"_fr\", but \"fr\" is not a supported language (en, ja): read as English "
             "data, never over English\n",
             "  warning  docCatalog/referenceapi_lookup/orphan_ja.zip  (package)\n"
             "           no entry is read: a package named for a language is read only when that language is "
             "current, and then only an entry whose name ends in the same suffix\n",
             "Not read (only .json and .zip lookup files and .json page files are data)\n"
             "  docCatalog/referenceapi/lenient.JSON\n"
             "  docCatalog/referenceapi_lookup/notes.txt\n",
             "Summary: 3 files read, 0 dropped, 4 warnings\n",
         }) {
        EXPECT_TRUE(contains(result.out, expected)) << "missing:\n" << expected << "\nin:\n" << result.out;
    }

    // The same warnings in the JSON report, the library's with their JSON Pointers.
    const ToolRun asJson = check(root, {"--languages", "en,ja", "--json"});
    ASSERT_EQ(asJson.status, 0);
    const json::value warnings = recordOf(asJson.json(), "docCatalog/referenceapi_lookup/lenient.json").at("warnings");
    EXPECT_EQ(warnings, json::parse(R"([
        {"kind": "unknown enumeration text", "jsonPath": "/refItems/0/type", "text": "funktion"},
        {"kind": "document key taken", "jsonPath": "/supportPackages/0", "text": "lenient"}])"));
    EXPECT_EQ(asJson.json().at("ignored"),
              json::parse(R"(["docCatalog/referenceapi/lenient.JSON", "docCatalog/referenceapi_lookup/notes.txt"])"));

    // With French supported, the file is a proper variant and the warning goes away.
    const ToolRun withFrench = check(root, {"--languages", "en,ja,fr", "--quiet"});
    EXPECT_FALSE(contains(withFrench.out, "lenient_fr.json")) << withFrench.out;
}

TEST(ToolCheck, QuietListsOnlyProblems) {
    const TempDir root;
    root.write(kLookup / "good.json", lookupText("good"));
    root.write(kLookup / "bad.json", "[]");
    const ToolRun result = check(root, {"--quiet"});
    EXPECT_EQ(result.status, 1);
    EXPECT_FALSE(contains(result.out, "good.json"));
    EXPECT_TRUE(contains(result.out, "  DROPPED  docCatalog/referenceapi_lookup/bad.json\n"
                                     "           expected an object, found an array at the top level\n"))
        << result.out;
    EXPECT_TRUE(contains(result.out, "Page files\n  no problems\n"));
}

} // namespace
