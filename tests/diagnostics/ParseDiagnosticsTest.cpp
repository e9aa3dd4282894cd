#include <reference/docparser/DiagnosticLogger.hpp>
#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include "ZipWriter.hpp"
#include "diagnostics/RecordText.hpp"
#include "docparser/parsing/TextConversion.hpp"
#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/JsonFixtures.hpp"
#include "support/LogCapture.hpp"
#include "support/TempDir.hpp"
#include "support/ZipPatch.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <thread>

namespace {

using reference::docparser::DiagnosticSource;
using reference::docparser::DocResourceParser;
using reference::docparser::FileDiagnostic;
using reference::docparser::ParseDiagnosticsScope;
using reference::docparser::text::utf16ToUtf8;
using namespace refdoc::test;

const char* const kLookupFolder = "docCatalog/referenceapi_lookup";
const char* const kPageFolder = "docCatalog/referenceapi";

// A well-formed document with one item, as text to be broken in one place by the cases below.
std::string lookupText(const std::string& helpFolder) {
    return fileText(lookupDocument({"Product " + helpFolder, helpFolder, helpFolder}, {{"item", "does things"}}));
}

// A lookup file whose second support package has 12 items, the last without "href".
std::string deepMissingHref() {
    std::vector<Entry> items;
    for (int i = 0; i < 12; ++i) {
        items.push_back({"f" + std::to_string(i), "function " + std::to_string(i)});
    }
    std::string text = fileText(lookupDocument({"M", "MH", "missinghref"}, {{"a", "a"}}),
                                {lookupDocument({"P0", "p0", "p0"}, {}), lookupDocument({"P1", "p1", "p1"}, items)});
    const std::string last = "\"href\":\"f11.html\",";
    return text.replace(text.find(last), last.size(), "");
}

// Finds the record of the file (or package entry) whose last path part is `name`.
const FileDiagnostic* findRecord(const std::vector<FileDiagnostic>& files, const std::string& name) {
    const auto found = std::find_if(files.begin(), files.end(), [&name](const FileDiagnostic& file) {
        if (file.source == DiagnosticSource::PackageEntry) {
            return utf16ToUtf8(file.entry) == name;
        }
        return std::filesystem::path(utf16ToUtf8(file.path)).filename() == name;
    });
    return found == files.end() ? nullptr : &*found;
}

class ParseDiagnostics : public HostSettingsFixture {
protected:
    void SetUp() override {
        HostSettingsFixture::SetUp();
        DocResourceParser::setReferenceRoot(root_.u16());
        std::filesystem::create_directories(root_.path() / kLookupFolder);
    }

    void writeLookup(const std::string& name, const std::string& text) const {
        root_.write(std::filesystem::path(kLookupFolder) / name, text);
    }
    std::filesystem::path lookupPath(const std::string& name) const { return root_.path() / kLookupFolder / name; }

    // Loads the lookup files with a scope and without: a scope only watches, so what the loader
    // returns and logs is the same either way.
    static std::vector<FileDiagnostic> loadLookups() {
        const auto load = [] {
            LogCapture capture(reference::docparser::kFileAccessSeverity |
                               reference::docparser::kFileReadErrorSeverity);
            auto lookups = DocResourceParser::getResourceLookupFiles();
            auto records = capture.records();
            std::sort(records.begin(), records.end(),
                      [](const auto& a, const auto& b) { return a.message < b.message; });
            return std::make_pair(std::move(lookups), std::move(records));
        };
        const auto without = load();
        ParseDiagnosticsScope scope;
        const auto with = load();
        EXPECT_EQ(with.first, without.first);
        EXPECT_EQ(with.second, without.second);
        return scope.takeFiles();
    }

    TempDir root_;
};

// Each way a lookup file can be dropped, one file each, all in the same folder: every file
// gets its own reason, and one broken file does not disturb the record of the next.
TEST_F(ParseDiagnostics, EachDroppedLookupFileCarriesItsExactReason) {
    const std::string good = lookupText("good");
    const auto at = [](std::size_t column) { return "syntax error at 1:" + std::to_string(column) + ": "; };
    const struct Case {
        const char* file;
        std::string text;
        std::string record;
    } cases[] = {
        {"trailing.json", "{\n  \"productName\": \"T\",\n  \"refItems\": [1,],\n}",
         "syntax error at 3:18: syntax error"},
        // Columns count characters: the two Japanese characters before the error are two columns.
        {"wide.json", "{\"productName\": \"日本\" \"baseCode\": 1}", at(22) + "syntax error"},
        {"cut.json", good.substr(0, good.size() - 3), at(good.size() - 2) + "incomplete JSON"},
        {"extra.json", good + " {}", at(good.size() + 2) + "extra data"},
        {"deep.json", std::string(33, '[') + std::string(33, ']'), at(33) + "too deep"},
        {"badutf8.json", "{\"productName\": \"\xC3\x28\"}", at(18) + "syntax error"},
        {"empty.json", "", "no data: the file is empty"},
        // The pointer reaches into the second support package and past index 9.
        {"missinghref.json", deepMissingHref(),
         "missing key at /supportPackages/1/refItems/11/href: missing required member \"href\""},
    };
    for (const auto& c : cases) {
        writeLookup(c.file, c.text);
    }
    writeLookup("good.json", good);

    const auto files = loadLookups();
    ASSERT_EQ(files.size(), std::size(cases) + 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const FileDiagnostic* record = findRecord(files, c.file);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->source, DiagnosticSource::File);
        EXPECT_EQ(record->path, lookupPath(c.file).u16string());
        EXPECT_EQ(recordText(*record), c.record);
        EXPECT_TRUE(record->documentKeys.empty());
    }
    // The offset is where the parser stopped: the "]" after the trailing comma.
    EXPECT_EQ(findRecord(files, "trailing.json")->offset, 41u);
    const FileDiagnostic* kept = findRecord(files, "good.json");
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(recordText(*kept), "read");
    EXPECT_EQ(kept->documentKeys, std::vector<std::u16string>{u"good"});
}

TEST_F(ParseDiagnostics, PackagesAndTheirEntriesAreRecordedWithTheirOwnReasons) {
    ZipWriter()
        .add("okentry.json", lookupText("okentry"))
        .add("crc.json", lookupText("crc"))
        .add("blank.json", "")
        .add("nested/missing.json", R"({"productName": "N", "baseCode": "N", "helpFolder": "n"})")
        .write(lookupPath("pack.zip"));
    patchZipEntryCrc(lookupPath("pack.zip"), "crc.json", 0x12345678);
    writeLookup("notazip.zip", "this is not a zip package");

    const auto files = loadLookups();
    const struct {
        const char* name;
        DiagnosticSource source;
        std::string record;
    } expected[] = {
        {"pack.zip", DiagnosticSource::Package, "read"},
        {"notazip.zip", DiagnosticSource::Package,
         "unreadable: cannot open zip package '" + lookupPath("notazip.zip").string() + "': Not a zip archive"},
        {"okentry.json", DiagnosticSource::PackageEntry, "read"},
        {"crc.json", DiagnosticSource::PackageEntry, "unreadable: zip entry 'crc.json': CRC error"},
        {"blank.json", DiagnosticSource::PackageEntry, "no data: the entry is empty"},
        {"nested/missing.json", DiagnosticSource::PackageEntry,
         "missing key at /helpLocation: missing required member \"helpLocation\""},
    };
    ASSERT_EQ(files.size(), std::size(expected));
    for (const auto& e : expected) {
        SCOPED_TRACE(e.name);
        const FileDiagnostic* record = findRecord(files, e.name);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->source, e.source);
        const bool entry = e.source == DiagnosticSource::PackageEntry;
        EXPECT_EQ(record->path, lookupPath(entry ? "pack.zip" : e.name).u16string());
        EXPECT_EQ(recordText(*record), e.record);
    }
    // An entry in a folder of the package is named by its base name without extension.
    EXPECT_EQ(findRecord(files, "nested/missing.json")->productName, u"missing");
}

TEST_F(ParseDiagnostics, PageFilesRecordMissingTranslationsAndBrokenFiles) {
    root_.write(std::filesystem::path(kPageFolder) / "prod.json",
                fileText(pageDocument({"Prod", "PR", "prod"}, {{"prod/a.html", "A"}})));
    root_.write(std::filesystem::path(kPageFolder) / "broken_ja.json",
                R"({"productName": "B", "baseCode": "B", "helpFolder": "b", "helpLocation": "h",
                    "refItems": [{"href": "b.html", "refpurpose": "p", "syntaxgroup": [{"title": "t", "syntax": ["ok", 3]}]}]})");
    doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});
    doclanguage::DocLanguage::getInstance().setDocLanguage(u"ja");

    const auto without = DocResourceParser::getResourceFile(u"prod");
    ParseDiagnosticsScope scope;
    EXPECT_EQ(DocResourceParser::getResourceFile(u"prod"), without);
    EXPECT_TRUE(DocResourceParser::getResourceFile(u"broken").empty());
    const auto& files = scope.files();
    ASSERT_EQ(files.size(), 4u);
    for (const auto& file : files) {
        EXPECT_EQ(file.source, DiagnosticSource::PageFile);
    }
    // The translation is parsed before the English file, so that English pages it replaces are
    // only checked: the records come in that order.
    std::vector<std::string> records;
    for (const auto& file : files) {
        records.push_back(utf16ToUtf8(file.productName) + " " + recordText(file));
    }
    EXPECT_EQ(records,
              (std::vector<std::string>{
                  "prod_ja missing: no such file", "prod read",
                  "broken_ja wrong kind at /refItems/0/syntaxgroup/0/syntax/1: expected a string, found a number",
                  "broken missing: no such file"}));
    EXPECT_EQ(files[1].documentKeys, std::vector<std::u16string>{u"prod"});
}

TEST_F(ParseDiagnostics, AScopeSeesOnlyItsOwnThreadAndNestedScopesTakeOver) {
    writeLookup("one.json", lookupText("one"));
    writeLookup("two.json", "{");

    ParseDiagnosticsScope outer;
    std::size_t otherThreadRecords = 0;
    std::thread other([&otherThreadRecords] {
        DocResourceParser::getResourceLookupFiles(); // no scope on this thread: nothing recorded
        ParseDiagnosticsScope own;
        DocResourceParser::getResourceLookupFiles();
        otherThreadRecords = own.files().size();
    });
    other.join();
    EXPECT_EQ(otherThreadRecords, 2u);
    EXPECT_TRUE(outer.files().empty());

    {
        ParseDiagnosticsScope inner;
        DocResourceParser::getResourceLookupFiles();
        EXPECT_EQ(inner.files().size(), 2u);
    }
    EXPECT_TRUE(outer.files().empty());
    DocResourceParser::getResourceLookupFiles();
    EXPECT_EQ(outer.files().size(), 2u);
    EXPECT_EQ(outer.takeFiles().size(), 2u);
    EXPECT_TRUE(outer.files().empty());
}

} // namespace
