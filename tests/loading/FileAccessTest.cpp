#include "ZipWriter.hpp"
#include "support/LogCapture.hpp"
#include "support/TempDir.hpp"
#include "support/ZipPatch.hpp"

#include "docparser/loading/FileAccess.hpp"
#include "docparser/loading/ZipPackage.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>
#include <reference/docparser/DocResourceParser.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace {

using refdoc::test::CapturedRecord;
using refdoc::test::LogCapture;
using reference::docparser::DocResourceParser;
using reference::docparser::DropReason;
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

class FileAccessTest : public ::testing::Test {
protected:
    refdoc::test::TempDir dir;
};

TEST_F(FileAccessTest, DiskFilesComeBackByteForByteIntoAReusedBuffer) {
    std::mt19937 engine(3);
    std::string random;
    std::generate_n(std::back_inserter(random), 1 << 20, [&] { return static_cast<char>(engine()); });
    const std::string contents[] = {
        random, "", "{}", "{\r\n\"a\":\0\"b\"\r\n}\n"s, "\xef\xbb\xbf{\"bom\":true}", "\xff\xfe\x00\x80"s,
    };
    LogCapture capture(kBoth);
    // Long contents before short ones: nothing of an earlier file may remain in the buffer.
    std::string reused = "left over from an earlier file";
    for (const auto& content : contents) {
        const auto path = dir.write("file.json", content).u16string();
        reference::docparser::readFileContents(path, reused);
        EXPECT_EQ(reused, content);
        capture.clear();
        EXPECT_EQ(DocResourceParser::openAndReadFile(path), content);
        EXPECT_EQ(DocResourceParser::openAndReadFile(ProductPathData(u"file", false, path)), content);
        const std::string narrowPath = fs::path(path).string();
        EXPECT_EQ(capture.records(), (std::vector<CapturedRecord>{reading(narrowPath), reading(narrowPath)}))
            << "no error record for a readable file, not even an empty one";
    }
}

// What each read path gives for files that cannot be read, and what it records.
TEST_F(FileAccessTest, UnreadableFilesGiveNothingAndRecordWhy) {
    fs::create_directory(dir.path() / "folder.json");
    ASSERT_EQ(::mkfifo((dir.path() / "pipe.json").c_str(), 0600), 0);
    const auto target = dir.write("target.json", "{\"via\":\"link\"}");
    fs::create_symlink(target, dir.path() / "link.json");
    fs::create_symlink(dir.path() / "nowhere.json", dir.path() / "dangling.json");
    // Sparse: no disk space is used, and the reader must refuse it before allocating.
    const auto oversized = dir.write("oversized.json", "x");
    fs::resize_file(oversized, reference::docparser::kMaxDataFileSize + 1);
    const auto nonAscii = dir.write("\xe8\xa3\xbd\xe5\x93\x81.json", "{\"n\":1}");
    const CapturedRecord tooLarge{kChannel, kFileReadErrorSeverity, "Problem reading JSON file: " + oversized.string()};

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

    // What openAndReadFile does for a file on disk or a package entry, with the reason of a read
    // that gives nothing.
    using reference::docparser::readResourceText;
    struct Case {
        std::function<reference::docparser::ReadResult(std::string&)> read;
        std::string content;
        DropReason reason;
        std::vector<CapturedRecord> records;
    };
    const auto disk = [&](const std::string& name, std::string content, DropReason reason,
                          std::vector<CapturedRecord> more = {}) {
        const fs::path path = dir.path() / name;
        more.insert(more.begin(), reading(path.string()));
        return Case{[path](std::string& text) {
                        return readResourceText(ProductPathData(u"p", false, path.u16string()), text);
                    },
                    std::move(content), reason, std::move(more)};
    };
    const Case cases[] = {
        disk("missing.json", "", DropReason::Missing),
        disk("folder.json", "", DropReason::Unreadable),
        disk("pipe.json", "", DropReason::Unreadable), // a FIFO, which must not block
        disk("dangling.json", "", DropReason::Missing),
        disk("link.json", "{\"via\":\"link\"}", DropReason::None),
        disk(nonAscii.filename().string(), "{\"n\":1}", DropReason::None),
        disk("oversized.json", "", DropReason::Unreadable, {tooLarge}),
        {[&](std::string& text) { return readResourceText(goodEntry, text); },
         "{\"zip\":1}",
         DropReason::None,
         {reading("goodProduct")}},
        {[&](std::string& text) { return readResourceText(badEntry, text); },
         "",
         DropReason::Unreadable,
         {reading(badName), {kChannel, kFileAccessSeverity, "Error reading file: " + badName}}},
    };
    LogCapture capture(kBoth);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.records.front().message);
        capture.clear();
        std::string text = "left over";
        EXPECT_EQ(c.read(text).reason, c.reason);
        EXPECT_EQ(text, c.content);
        EXPECT_EQ(capture.records(), c.records);
    }
    // The public operation gives the same text with the same records.
    capture.clear();
    EXPECT_EQ(DocResourceParser::openAndReadFile(oversized.u16string()), "");
    EXPECT_EQ(capture.records(), (std::vector<CapturedRecord>{reading(oversized.string()), tooLarge}));
}

} // namespace
