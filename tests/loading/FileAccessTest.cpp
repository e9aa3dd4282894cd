#include "ZipWriter.hpp"
#include "support/LogCapture.hpp"
#include "support/TempDir.hpp"
#include "support/ZipPatch.hpp"

#include "docparser/loading/FileAccess.hpp"
#include "docparser/loading/ZipPackage.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>
#include <reference/docparser/DocResourceParser.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace {

using refdoc::test::CapturedRecord;
using refdoc::test::LogCapture;
using reference::docparser::DropReason;
using reference::docparser::DocResourceParser;
using reference::docparser::kFileAccessSeverity;
using reference::docparser::kFileReadErrorSeverity;
using reference::docparser::ProductPathData;
using reference::docparser::ProductZipData;
using reference::docparser::ZipPackage;
namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr const char* kChannel = "referenceApi::docparser";
constexpr std::uint32_t kBoth = kFileAccessSeverity | kFileReadErrorSeverity;

CapturedRecord reading(const std::string& name) { return {kChannel, kFileAccessSeverity, "Reading file: " + name}; }
CapturedRecord zipError(const std::string& name) {
    return {kChannel, kFileAccessSeverity, "Error reading file: " + name};
}
CapturedRecord diskError(const std::string& path) {
    return {kChannel, kFileReadErrorSeverity, "Problem reading JSON file: " + path};
}

class FileAccessTest : public ::testing::Test {
protected:
    refdoc::test::TempDir dir;
};

TEST_F(FileAccessTest, DiskFilesComeBackByteForByte) {
    std::mt19937 engine(3);
    std::string random(1 << 20, '\0');
    for (auto& byte : random) {
        byte = static_cast<char>(engine() & 0xFFu);
    }
    const std::string contents[] = {
        "", "{}", "{\r\n\"a\":\0\"b\"\r\n}\n"s, "\xef\xbb\xbf{\"bom\":true}", "\xff\xfe\x00\x80"s, random,
    };
    LogCapture capture(kBoth);
    // One buffer for every read, as a loading call keeps it: long contents are followed by short
    // ones, and nothing of an earlier file may remain.
    std::string reused = "left over from an earlier file";
    for (const auto& content : contents) {
        const auto path = dir.write("file.json", content).u16string();
        EXPECT_EQ(reference::docparser::readFileContents(path, reused).reason,
                  content.empty() ? DropReason::NoData : DropReason::None);
        EXPECT_EQ(reused, content);
        capture.clear();
        EXPECT_EQ(DocResourceParser::openAndReadFile(path), content);
        EXPECT_EQ(DocResourceParser::openAndReadFile(ProductPathData(u"file", false, path)), content);
        const std::string narrowPath = fs::path(path).string();
        EXPECT_EQ(capture.records(), (std::vector<CapturedRecord>{reading(narrowPath), reading(narrowPath)}))
            << "no error record for a readable file, not even an empty one";
    }
}

TEST_F(FileAccessTest, PathsThatAreNoRegularFileGiveNothingSilently) {
    fs::create_directory(dir.path() / "folder.json");
    ASSERT_EQ(::mkfifo((dir.path() / "pipe.json").c_str(), 0600), 0);
    const auto target = dir.write("target.json", "{\"via\":\"link\"}");
    fs::create_symlink(target, dir.path() / "link.json");
    fs::create_symlink(dir.path() / "nowhere.json", dir.path() / "dangling.json");

    const struct {
        const char* name;
        std::string content;
        DropReason reason; // what the reader says of it
    } cases[] = {
        {"missing.json", "", DropReason::Missing},
        {"folder.json", "", DropReason::Unreadable},
        {"pipe.json", "", DropReason::Unreadable}, // a FIFO must not block the reader
        {"dangling.json", "", DropReason::Missing},
        {"link.json", "{\"via\":\"link\"}", DropReason::None},
    };
    LogCapture capture(kBoth);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        capture.clear();
        const auto path = dir.path() / c.name;
        EXPECT_EQ(DocResourceParser::openAndReadFile(path.u16string()), c.content);
        EXPECT_EQ(capture.records(), std::vector<CapturedRecord>{reading(path.string())});
        std::string text;
        EXPECT_EQ(reference::docparser::readFileContents(path.u16string(), text).reason, c.reason);
    }
}

// The records of each read path, with the logger's mask letting through one, both or neither of
// the two levels.
TEST_F(FileAccessTest, EachReadPathWritesItsRecordsUnderEveryMask) {
    const auto oversized = dir.write("oversized.json", "x");
    // Sparse: no disk space is used, and the reader must refuse it before allocating.
    fs::resize_file(oversized, reference::docparser::kMaxDataFileSize + 1);
    const auto nonAscii = dir.write("\xe8\xa3\xbd\xe5\x93\x81.json", "{\"n\":1}");

    const auto package = refdoc::test::ZipWriter()
                             .add("good.json", "{\"zip\":1}")
                             .add("bad.json", "{\"zip\":2}")
                             .write(dir.path() / "package.zip");
    refdoc::test::patchZipEntryCrc(package, "bad.json", 0);
    ZipPackage zip(package.u16string());
    const auto leaves = zip.getAllLeafs();
    const ProductZipData goodEntry(u"goodProduct", false, leaves.at(0).entry, zip);
    const ProductZipData badEntry(u"\u88fd\u54c1_ja", true, leaves.at(1).entry, zip);
    const std::string badName = "\xe8\xa3\xbd\xe5\x93\x81_ja";

    const struct Case {
        const char* what;
        std::function<std::string()> read;
        std::string content;
        std::vector<CapturedRecord> records; // with both levels enabled
    } cases[] = {
        {"non-ASCII path",
         [&] { return DocResourceParser::openAndReadFile(nonAscii.u16string()); },
         "{\"n\":1}",
         {reading(nonAscii.string())}},
        {"oversized path",
         [&] { return DocResourceParser::openAndReadFile(oversized.u16string()); },
         "",
         {reading(oversized.string()), diskError(oversized.string())}},
        {"oversized record",
         [&] { return DocResourceParser::openAndReadFile(ProductPathData(u"big", false, oversized.u16string())); },
         "",
         {reading(oversized.string()), diskError(oversized.string())}},
        {"good zip entry",
         [&] { return DocResourceParser::openAndReadFile(goodEntry); },
         "{\"zip\":1}",
         {reading("goodProduct")}},
        {"bad zip entry",
         [&] { return DocResourceParser::openAndReadFile(badEntry); },
         "",
         {reading(badName), zipError(badName)}},
    };
    for (const std::uint32_t mask : {kBoth, kFileAccessSeverity, kFileReadErrorSeverity, std::uint32_t{0}}) {
        LogCapture capture(mask);
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(c.what) + ", mask " + std::to_string(mask));
            capture.clear();
            EXPECT_EQ(c.read(), c.content);
            std::vector<CapturedRecord> expected;
            for (const auto& record : c.records) {
                if ((record.severity & mask) != 0) {
                    expected.push_back(record);
                }
            }
            EXPECT_EQ(capture.records(), expected);
        }
    }
}

} // namespace
