#include "ZipWriter.hpp"
#include "support/TempDir.hpp"
#include "support/ZipPatch.hpp"

#include "docparser/loading/ZipPackage.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using refdoc::test::ZipWriter;
using reference::docparser::DocResourceParser;
using reference::docparser::ProductZipData;
using reference::docparser::ZipError;
using reference::docparser::ZipLeaf;
using reference::docparser::ZipLimits;
using reference::docparser::ZipPackage;
namespace fs = std::filesystem;
using namespace std::string_literals;

std::string randomBytes(std::size_t size, unsigned seed) {
    std::mt19937 engine(seed);
    std::string bytes(size, '\0');
    for (auto& byte : bytes) {
        byte = static_cast<char>(engine() & 0xFFu);
    }
    return bytes;
}

const ZipLeaf& leafNamed(const std::vector<ZipLeaf>& leaves, const std::string& name) {
    for (const auto& leaf : leaves) {
        if (leaf.entry.getName() == name) {
            return leaf;
        }
    }
    throw std::runtime_error("no leaf " + name);
}

class ZipPackageTest : public ::testing::Test {
protected:
    fs::path packagePath(const char* name = "package.zip") const { return dir.path() / name; }

    refdoc::test::TempDir dir;
};

TEST_F(ZipPackageTest, ListsFileEntriesWithTheirBaseNames) {
    ZipWriter()
        .add("top.json", "1")
        .addDirectory("dir")
        .add("dir/inner.json", "2")
        .addDirectory("dir/sub/")
        .add("dir/sub/deep_ja.json", "3")
        .add("win\\style.json", "4")
        .add("readme.txt", "5")
        .add("\xe8\xa3\xbd\xe5\x93\x81.json", "6")
        .add("../escape.json", "7")
        .write(packagePath());

    const ZipPackage package(packagePath().u16string());
    EXPECT_EQ(package.getEntryCount(), 9u);
    const auto leaves = package.getAllLeafs();
    std::vector<std::pair<std::string, std::u16string>> listed;
    for (const auto& leaf : leaves) {
        listed.emplace_back(leaf.entry.getName(), leaf.baseName);
    }
    const std::vector<std::pair<std::string, std::u16string>> expected = {
        {"top.json", u"top.json"},
        {"dir/inner.json", u"inner.json"},
        {"dir/sub/deep_ja.json", u"deep_ja.json"},
        {"win\\style.json", u"style.json"},
        {"readme.txt", u"readme.txt"},
        {"\xe8\xa3\xbd\xe5\x93\x81.json", u"\u88fd\u54c1.json"},
        {"../escape.json", u"escape.json"},
    };
    EXPECT_EQ(listed, expected);
    EXPECT_EQ(package.readEntry(leafNamed(leaves, "dir/sub/deep_ja.json").entry), "3");
    EXPECT_EQ(package.readEntry(leafNamed(leaves, "../escape.json").entry), "7");
}

TEST_F(ZipPackageTest, ReadsEntriesByteForByte) {
    const std::string binary = "{\r\n\"a\":\0\"\xff\xfe\"\n}"s;
    const std::string large = randomBytes(3 << 20, 7);
    const std::string compressible(2 << 20, 'x');
    ZipWriter builder;
    for (auto compression : {ZipWriter::Compression::Store, ZipWriter::Compression::Deflate}) {
        const std::string prefix = compression == ZipWriter::Compression::Store ? "stored/" : "deflated/";
        builder.add(prefix + "empty.json", "", compression)
            .add(prefix + "binary.json", binary, compression)
            .add(prefix + "large.json", large, compression)
            .add(prefix + "compressible.json", compressible, compression);
    }
    builder.write(packagePath());

    const ZipPackage package(packagePath().u16string());
    const auto leaves = package.getAllLeafs();
    ASSERT_EQ(leaves.size(), 8u);
    for (const std::string prefix : {"stored/", "deflated/"}) {
        EXPECT_EQ(package.readEntry(leafNamed(leaves, prefix + "empty.json").entry), "");
        EXPECT_EQ(package.readEntry(leafNamed(leaves, prefix + "binary.json").entry), binary);
        EXPECT_EQ(package.readEntry(leafNamed(leaves, prefix + "large.json").entry), large);
        EXPECT_EQ(package.readEntry(leafNamed(leaves, prefix + "compressible.json").entry), compressible);
    }
    // Reading again gives the same bytes: nothing is consumed by a read.
    EXPECT_EQ(package.readEntry(leafNamed(leaves, "deflated/binary.json").entry), binary);
    // Into one reused buffer, large entries before small ones: each read leaves exactly its bytes.
    std::string reused;
    for (const char* name : {"deflated/large.json", "deflated/binary.json", "stored/compressible.json",
                             "stored/empty.json", "deflated/compressible.json"}) {
        package.readEntry(leafNamed(leaves, name).entry, reused);
        EXPECT_EQ(reused, package.readEntry(leafNamed(leaves, name).entry)) << name;
    }
}

// One damaged entry among healthy ones: the damaged one fails, the others still read.
TEST_F(ZipPackageTest, DamagedEntriesFailAlone) {
    const std::string content(4000, 'j');
    const struct Case {
        const char* what;
        ZipWriter::Compression compression;
        std::function<void(const fs::path&)> damage;
        ZipLimits limits;
    } cases[] = {
        {"actual size above the declared size",
         ZipWriter::Compression::Deflate,
         [](const fs::path& p) { refdoc::test::patchZipEntryUncompressedSize(p, "bad.json", 10); },
         {}},
        {"actual size above the bound, declared within",
         ZipWriter::Compression::Deflate,
         [](const fs::path& p) { refdoc::test::patchZipEntryUncompressedSize(p, "bad.json", 50); },
         {.maxEntrySize = 100}},
        {"size above the bound (stored)",
         ZipWriter::Compression::Store,
         [](const fs::path&) {},
         {.maxEntrySize = 3999}},
        {"declared size above the actual size",
         ZipWriter::Compression::Deflate,
         [](const fs::path& p) { refdoc::test::patchZipEntryUncompressedSize(p, "bad.json", 4001); },
         {}},
        {"CRC mismatch (stored)",
         ZipWriter::Compression::Store,
         [](const fs::path& p) { refdoc::test::patchZipEntryCrc(p, "bad.json", 0x12345678); },
         {}},
        {"CRC mismatch (deflated)",
         ZipWriter::Compression::Deflate,
         [](const fs::path& p) { refdoc::test::patchZipEntryCrc(p, "bad.json", 0x12345678); },
         {}},
        {"corrupt deflate stream",
         ZipWriter::Compression::Deflate,
         [](const fs::path& p) { refdoc::test::corruptZipEntryData(p, "bad.json", 0, 8); },
         {}},
        {"compressed data cut short",
         ZipWriter::Compression::Deflate,
         [](const fs::path& p) {
             const auto layout = refdoc::test::locateZipEntry(p, "bad.json");
             refdoc::test::patchZipEntryCompressedSize(p, "bad.json", layout.compressedSize / 2);
         },
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ZipWriter()
            .add("good.json", "{\"ok\":1}")
            .add("bad.json", content, c.compression)
            .add("after.json", "{\"ok\":2}")
            .write(packagePath());
        c.damage(packagePath());

        const ZipPackage package(packagePath().u16string(), c.limits);
        const auto leaves = package.getAllLeafs();
        ASSERT_EQ(leaves.size(), 3u);
        EXPECT_THROW(package.readEntry(leafNamed(leaves, "bad.json").entry), ZipError);
        EXPECT_EQ(package.readEntry(leafNamed(leaves, "good.json").entry), "{\"ok\":1}");
        EXPECT_EQ(package.readEntry(leafNamed(leaves, "after.json").entry), "{\"ok\":2}");
    }
}

TEST_F(ZipPackageTest, EntryAtTheBoundIsRead) {
    const std::string content(4000, 'j');
    ZipWriter().add("exact.json", content).write(packagePath());
    const ZipPackage package(packagePath().u16string(), {.maxEntrySize = 4000});
    EXPECT_EQ(package.readEntry(package.getAllLeafs().at(0).entry), content);
}

TEST_F(ZipPackageTest, UnopenablePackagesThrow) {
    ZipWriter().add("a.json", std::string(5000, 'a')).add("b.json", "{}").write(packagePath("whole.zip"));
    const std::string bytes = refdoc::test::readBytes(packagePath("whole.zip"));
    const struct {
        const char* what;
        std::optional<std::string> content; // nullopt: nothing is created at the path
    } cases[] = {
        {"missing file", std::nullopt},
        {"empty file", std::string()},
        {"JSON text", std::string("{\"not\":\"a zip\"}")},
        {"cut in half", bytes.substr(0, bytes.size() / 2)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const auto path = packagePath("damaged.zip");
        fs::remove(path);
        if (c.content) {
            dir.write("damaged.zip", *c.content);
        }
        EXPECT_THROW(ZipPackage(path.u16string()), ZipError);
    }
    fs::create_directory(packagePath("folder.zip"));
    EXPECT_THROW(ZipPackage(packagePath("folder.zip").u16string()), ZipError);
}

TEST_F(ZipPackageTest, EntryCountIsBounded) {
    ZipWriter builder;
    for (int i = 0; i < 8; ++i) {
        builder.add("entry" + std::to_string(i) + ".json", "{}");
    }
    builder.addDirectory("folder").write(packagePath());
    EXPECT_THROW(ZipPackage(packagePath().u16string(), {.maxEntryCount = 8}), ZipError) << "folders count too";
    EXPECT_EQ(ZipPackage(packagePath().u16string(), {.maxEntryCount = 9}).getAllLeafs().size(), 8u);
}

TEST_F(ZipPackageTest, EntryOfAnotherPackageIsRefused) {
    ZipWriter().add("a.json", "first").write(packagePath("first.zip"));
    ZipWriter().add("a.json", "second").write(packagePath("second.zip"));
    const ZipPackage first(packagePath("first.zip").u16string());
    const ZipPackage second(packagePath("second.zip").u16string());
    const auto entry = first.getAllLeafs().at(0).entry;
    EXPECT_THROW(second.readEntry(entry), ZipError);
    EXPECT_EQ(first.readEntry(entry), "first");
}

TEST_F(ZipPackageTest, EntriesOfOnePackageCanBeReadFromSeveralThreads) {
    ZipWriter builder;
    std::vector<std::string> contents;
    for (unsigned i = 0; i < 6; ++i) {
        contents.push_back(randomBytes(20000 + i, i));
        builder.add("e" + std::to_string(i) + ".json", contents.back());
    }
    builder.write(packagePath());
    const ZipPackage package(packagePath().u16string());
    const auto leaves = package.getAllLeafs();

    std::vector<int> mismatches(3, 0);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < mismatches.size(); ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < 20; ++round) {
                for (std::size_t i = 0; i < leaves.size(); ++i) {
                    if (package.readEntry(leaves[(i + t) % leaves.size()].entry) != contents[(i + t) % leaves.size()]) {
                        ++mismatches[t];
                    }
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(mismatches, std::vector<int>(3, 0));
}

} // namespace
