#include "support/TempDir.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

namespace {

using reference::docparser::DocResourceParser;
using reference::docparser::ProductPathData;
using Strings = std::vector<std::u16string>;

// (name, flag, file name) of each record, sorted: the listing order is the folder's own.
using Row = std::tuple<std::u16string, bool, std::u16string>;

std::vector<Row> rows(const std::vector<ProductPathData>& files, const std::filesystem::path& folder) {
    std::vector<Row> out;
    for (const auto& file : files) {
        const std::filesystem::path full(file.getFullPath());
        EXPECT_EQ(full.parent_path(), folder) << "full path of " << full;
        out.emplace_back(file.getName(), file.isNonEnglishLocale(), full.filename().u16string());
    }
    std::sort(out.begin(), out.end());
    return out;
}

TEST(IsValidFilenameTest, OnlyLowerCaseJsonAndZipExtensionsAreDataFiles) {
    const struct {
        const char* path;
        bool valid;
    } cases[] = {
        {"pname.json", true},     {"pname.zip", true},      {"pname_ja.json", true},
        {"/abs/dir/p.zip", true}, {"a.txt.json", true},     {".json", true},
        {"pname.JSON", false},    {"pname.Zip", false},     {"pname.json.txt", false},
        {"pname.jsonx", false},   {"json", false},          {"pname.", false},
        {"pname", false},         {"dir.json/file", false}, {"", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(DocResourceParser::isValidFilename(c.path), c.valid) << c.path;
    }
}

class ProductEnumerationTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"pname.json", "pname_ja.json", "pname_ko.json", "pname_fr.json", "other.zip",
                                 "other_ja.zip", "readme.txt", "upper.JSON", "upper.ZIP", "nodot", "_ja.json",
                                 "\xe8\xa3\xbd\xe5\x93\x81_ja.json", // 製品_ja.json
                                 "\xff\xfe.json"}) {                 // not UTF-8: cannot name a product
            dir.write(name, "{}");
        }
        std::filesystem::create_directory(dir.path() / "folder.json"); // taken: the kind is not checked
    }

    refdoc::test::TempDir dir;
};

TEST_F(ProductEnumerationTest, KeepsBaseFilesAndTheCurrentLanguagesVariants) {
    const Row folder{u"folder", false, u"folder.json"};
    const Row pname{u"pname", false, u"pname.json"};
    const Row fr{u"pname_fr", false, u"pname_fr.json"};
    const Row ja{u"pname_ja", true, u"pname_ja.json"};
    const Row bareJa{u"_ja", true, u"_ja.json"};
    const Row nonAsciiJa{u"\u88fd\u54c1_ja", true, u"\u88fd\u54c1_ja.json"};
    const Row other{u"other", false, u"other.zip"};
    const Row otherJa{u"other_ja", true, u"other_ja.zip"};
    const struct {
        Strings suffixes;
        std::u16string current;
        std::vector<Row> json;
        std::vector<Row> zip;
    } cases[] = {
        {{u"_ja", u"_ko"}, u"_ja", {bareJa, folder, pname, fr, ja, nonAsciiJa}, {other, otherJa}},
        {{u"_ja", u"_ko"}, u"_ko", {folder, pname, fr, {u"pname_ko", true, u"pname_ko.json"}}, {other}},
        {{u"_ja", u"_ko"}, u"_en", {folder, pname, fr}, {other}},
        // _ko is not supported here, so pname_ko is a base file named with its suffix.
        {{u"_ja"},
         u"_ja",
         {bareJa, folder, pname, fr, ja, {u"pname_ko", false, u"pname_ko.json"}, nonAsciiJa},
         {other, otherJa}},
        // An empty supported suffix makes every file a variant.
        {{u"", u"_ja"}, u"_ja", {bareJa, ja, nonAsciiJa}, {otherJa}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("case " + std::to_string(&c - cases));
        const auto [json, zip] = DocResourceParser::getAllProducts(dir.u16(), c.suffixes, c.current);
        EXPECT_EQ(rows(json, dir.path()), c.json);
        EXPECT_EQ(rows(zip, dir.path()), c.zip);
    }
}

TEST_F(ProductEnumerationTest, EntriesComeInListingOrder) {
    std::vector<std::u16string> expected;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path())) {
        const auto name = entry.path().filename().string(); // bytes: one name is not UTF-8
        if (name == "pname.json" || name == "pname_fr.json" || name == "folder.json") {
            expected.push_back(entry.path().u16string());
        }
    }
    std::vector<std::u16string> actual;
    for (const auto& file : DocResourceParser::getAllProducts(dir.u16(), {u"_ja", u"_ko"}, u"_en").first) {
        actual.push_back(file.getFullPath());
    }
    EXPECT_EQ(actual, expected);
}

TEST(ProductEnumerationEdgeTest, MissingOrUnlistableFoldersGiveNothing) {
    refdoc::test::TempDir dir;
    const auto file = dir.write("plain.json", "{}");
    const std::u16string folders[] = {u"", (dir.path() / "missing").u16string(), file.u16string(),
                                      dir.u16() + u"/missing/deeper"};
    for (const auto& folder : folders) {
        const auto [json, zip] = DocResourceParser::getAllProducts(folder, {u"_ja"}, u"_ja");
        EXPECT_TRUE(json.empty() && zip.empty());
    }
    const auto [json, zip] = DocResourceParser::getAllProducts(dir.u16() + u"/", {}, u"_en");
    ASSERT_EQ(json.size(), 1u) << "a trailing separator on the folder is fine";
    EXPECT_EQ(json.front().getName(), u"plain");
}

} // namespace
