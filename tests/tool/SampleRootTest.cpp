// The bundled sample documentation root: its packages are what their committed sources say,
// and the tool shows it as the README describes (products, one broken file).

#include "docparser/loading/ZipPackage.hpp"
#include "tool/ToolRunner.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

namespace {

using namespace refdoc::test;
using reference::docparser::ZipPackage;
namespace fs = std::filesystem;

const fs::path kExamples = REFDOC_EXAMPLES_DIR;
const fs::path kLookupFolder = kExamples / "docroot" / "docCatalog" / "referenceapi_lookup";

TEST(SampleRoot, EveryPackageHoldsExactlyItsCommittedSources) {
    std::size_t packages = 0;
    for (const auto& source : fs::directory_iterator(kExamples / "docroot-packages")) {
        SCOPED_TRACE(source.path().filename().string());
        std::map<std::string, std::string> expected;
        for (const auto& file : fs::directory_iterator(source.path())) {
            expected[file.path().filename().string()] = readWhole(file.path());
        }
        const ZipPackage package((kLookupFolder / (source.path().filename().string() + ".zip")).u16string());
        std::map<std::string, std::string> actual;
        for (const auto& leaf : package.getAllLeafs()) {
            actual[leaf.entry.getName()] = package.readEntry(leaf.entry);
        }
        EXPECT_EQ(actual, expected) << "run examples/make-docroot-packages.sh after changing the sources";
        ++packages;
    }
    std::size_t zips = 0;
    for (const auto& file : fs::directory_iterator(kLookupFolder)) {
        zips += file.path().extension() == ".zip" ? 1 : 0;
    }
    EXPECT_EQ(packages, zips) << "every package in the sample root has its sources";
    EXPECT_GE(packages, 2u);
}

TEST(SampleRoot, LookupWithoutArgumentsListsTheSampleProducts) {
    const ToolRun result = runTool({"lookup"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_TRUE(contains(result.out, "(bundled sample)"));
    const std::vector<std::string> expected = {
        "KEY      INSTALLED  ITEMS  PRODUCT",
        "geodesy  no             2  Geodesy Library",
        "mapping  yes            3  Mapping Kit",
        "optics   no             2  Optics Kit",
        "signal   yes            5  Signal Toolkit",
        "usbdaq   yes            2  Signal Toolkit Support Package for USB Data Acquisition",
    };
    std::vector<std::string> rows;
    for (const auto& row : expected) {
        const auto found = linesWith(result.out, row);
        rows.insert(rows.end(), found.begin(), found.end());
    }
    EXPECT_EQ(rows, expected) << result.out;
}

TEST(SampleRoot, CheckNamesTheOneBrokenFileAndItsReason) {
    const ToolRun result = runTool({"check", "--json"});
    ASSERT_EQ(result.status, 1) << ::testing::PrintToString(result);
    const auto report = result.json();
    EXPECT_EQ(report.at("summary").at("dropped"), 1);
    EXPECT_EQ(report.at("summary").at("warnings"), 0);
    for (const auto& file : report.at("files").as_array()) {
        if (file.at("dropped").as_bool()) {
            EXPECT_EQ(file.at("path"), "docCatalog/referenceapi_lookup/instrument.json");
            EXPECT_EQ(file.at("jsonPath"), "/supportPackages/0/refItems/1/href");
        }
    }
}

TEST(SampleRoot, JapanesePagesMergeOverEnglish) {
    const ToolRun result = runTool({"page", "signal", "--lang", "ja"});
    ASSERT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_TRUE(contains(result.out, "══ 信号ツールキット  [signal]  4 pages"));
    // ratechange has no translation: its English page stays.
    EXPECT_TRUE(contains(result.out, "  Resample uniform data at a rational factor p/q\n"));
    EXPECT_TRUE(contains(result.out, "  オーバーラップ加算法による FFT ベースの FIR フィルター処理\n"));
}

} // namespace
