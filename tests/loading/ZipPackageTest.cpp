#include "ZipWriter.hpp"
#include "support/TempDir.hpp"
#include "support/ZipPatch.hpp"

#include "docparser/loading/ZipPackage.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using refdoc::test::ZipWriter;
using reference::docparser::ZipError;
using reference::docparser::ZipLimits;
using reference::docparser::ZipPackage;
using Compression = ZipWriter::Compression;
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

std::string read(const ZipPackage& package, const std::string& name) {
    for (const auto& leaf : package.getAllLeafs()) {
        if (leaf.entry.getName() == name) {
            return package.readEntry(leaf.entry);
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
        .add("cafX.json", "8")
        .write(packagePath());
    // A name that is not UTF-8 (as Info-ZIP stores the bytes it finds on disk) is left out, as
    // such a loose file is.
    std::string bytes = refdoc::test::readBytes(packagePath());
    for (auto at = bytes.find("cafX"); at != std::string::npos; at = bytes.find("cafX", at)) {
        bytes[at + 3] = '\xe9';
    }
    refdoc::test::writeBytes(packagePath(), bytes);

    const ZipPackage package(packagePath().u16string());
    EXPECT_EQ(package.getEntryCount(), 10u);
    std::vector<std::pair<std::string, std::u16string>> listed;
    for (const auto& leaf : package.getAllLeafs()) {
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
    EXPECT_EQ(read(package, "dir/sub/deep_ja.json"), "3");
    EXPECT_EQ(read(package, "../escape.json"), "7");

    ZipWriter().add("top.json", "other").write(packagePath("other.zip"));
    EXPECT_THROW(ZipPackage(packagePath("other.zip").u16string()).readEntry(package.getAllLeafs().at(0).entry),
                 ZipError)
        << "an entry of another package";
}

TEST_F(ZipPackageTest, ReadsEntriesByteForByteIntoAReusedBuffer) {
    const std::string contents[] = {randomBytes(3 << 20, 7), std::string(2 << 20, 'x'), "{\r\n\"a\":\0\"\xff\xfe\"\n}"s,
                                    ""};
    ZipWriter builder;
    for (std::size_t i = 0; i < std::size(contents); ++i) {
        builder.add("stored" + std::to_string(i), contents[i], Compression::Store)
            .add("deflated" + std::to_string(i), contents[i], Compression::Deflate);
    }
    builder.write(packagePath());

    const ZipPackage package(packagePath().u16string());
    // Large entries before small ones: each read leaves exactly its own bytes in the buffer.
    std::string reused;
    for (const auto& leaf : package.getAllLeafs()) {
        package.readEntry(leaf.entry, reused);
        EXPECT_EQ(reused, contents[leaf.entry.getName().back() - '0']) << leaf.entry.getName();
    }
    EXPECT_EQ(read(package, "deflated2"), contents[2]) << "a second read gives the same bytes";
}

// Packages as everyday zip writers make them, written at test time by the real tools: data
// descriptors after the entries (also from a writer that cannot seek), stored entries, and a
// program in front of the archive with its offsets left as they were or adjusted ("zip -A"). A
// writer that is not installed is left out.
TEST_F(ZipPackageTest, PackagesOfEverydayWritersReadLikeTheirFiles) {
    const struct {
        const char* tool;
        const char* command; // writes pkg.zip of a.json and data/b_ja.json
    } writers[] = {
        {"zip", "zip -q -fd -r pkg.zip a.json data"},
        {"zip", "zip -q -0 -r - a.json data | cat > pkg.zip"},
        {"jar", "jar cfM pkg.zip a.json data"},
        {"unzipsfx", "zip -q -r p.zip a.json data && cat \"$(command -v unzipsfx)\" p.zip > pkg.zip"},
        {"unzipsfx",
         "zip -q -r p.zip a.json data && cat \"$(command -v unzipsfx)\" p.zip > pkg.zip && zip -q -A pkg.zip"},
    };
    const std::map<std::string, std::string> files = {{"a.json", "{\"a\": \"Focal length\"}"},
                                                      {"data/b_ja.json", randomBytes(70000, 5)}};
    for (const auto& [name, content] : files) {
        dir.write(name, content);
    }
    for (const auto& writer : writers) {
        SCOPED_TRACE(writer.command);
        if (std::system(("command -v " + std::string(writer.tool) + " >/dev/null 2>&1").c_str()) != 0) {
            continue;
        }
        const std::string shell = "cd '" + dir.path().string() + "' && rm -f p.zip pkg.zip && (" + writer.command + ")";
        ASSERT_EQ(std::system(shell.c_str()), 0);
        const ZipPackage package(packagePath("pkg.zip").u16string());
        std::map<std::string, std::string> read;
        for (const auto& leaf : package.getAllLeafs()) {
            read[leaf.entry.getName()] = package.readEntry(leaf.entry);
        }
        EXPECT_EQ(read, files);
    }
}

// One entry among healthy ones, damaged or at a bound: a failing entry fails alone.
TEST_F(ZipPackageTest, DamagedOrOversizedEntriesFailAlone) {
    using refdoc::test::ZipField;
    const std::string content(4000, 'j');
    const auto patch = [](ZipField field, std::uint32_t value) {
        return [=](const fs::path& p) { refdoc::test::patchZipEntry(p, "bad.json", field, value); };
    };
    const auto declare = [&](std::uint32_t size) { return patch(ZipField::UncompressedSize, size); };
    const auto crc = patch(ZipField::Crc, 0x12345678);
    const struct Case {
        const char* what;
        Compression compression;
        std::function<void(const fs::path&)> damage;
        ZipLimits limits;
        bool readable = false;
    } cases[] = {
        {"actual size above the declared size", Compression::Deflate, declare(10), {}},
        {"actual size above the bound, declared within", Compression::Deflate, declare(50), {.maxEntrySize = 100}},
        {"size above the bound (stored)", Compression::Store, [](const fs::path&) {}, {.maxEntrySize = 3999}},
        {"size at the bound", Compression::Store, [](const fs::path&) {}, {.maxEntrySize = 4000}, true},
        {"declared size above the actual size", Compression::Deflate, declare(4001), {}},
        {"CRC mismatch (stored)", Compression::Store, crc, {}},
        {"CRC mismatch (deflated)", Compression::Deflate, crc, {}},
        {"corrupt deflate stream",
         Compression::Deflate,
         [](const fs::path& p) {
             std::string bytes = refdoc::test::readBytes(p);
             bytes.replace(refdoc::test::locateZipEntry(p, "bad.json").dataOffset, 8, 8, '\xFF');
             refdoc::test::writeBytes(p, bytes);
         },
         {}},
        {"compressed data cut short",
         Compression::Deflate,
         [](const fs::path& p) {
             const auto size = refdoc::test::locateZipEntry(p, "bad.json").compressedSize;
             refdoc::test::patchZipEntry(p, "bad.json", ZipField::CompressedSize, size / 2);
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
        if (c.readable) {
            EXPECT_EQ(read(package, "bad.json"), content);
        } else {
            EXPECT_THROW(read(package, "bad.json"), ZipError);
        }
        EXPECT_EQ(read(package, "good.json"), "{\"ok\":1}");
        EXPECT_EQ(read(package, "after.json"), "{\"ok\":2}");
    }
}

TEST_F(ZipPackageTest, UnopenableOrTooCrowdedPackagesThrow) {
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
        // The end record put back after the cut: the directory it points at runs past the end.
        {"central directory cut short", bytes.substr(0, bytes.size() - 30) + bytes.substr(bytes.size() - 22)},
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

    // Folders count towards the entry bound too.
    ZipWriter builder;
    for (int i = 0; i < 8; ++i) {
        builder.add("entry" + std::to_string(i) + ".json", "{}");
    }
    builder.addDirectory("folder").write(packagePath());
    EXPECT_THROW(ZipPackage(packagePath().u16string(), {.maxEntryCount = 8}), ZipError);
    EXPECT_EQ(ZipPackage(packagePath().u16string(), {.maxEntryCount = 9}).getAllLeafs().size(), 8u);
}

// Reads are serialised per package: threads sharing one each get their own entry's bytes.
TEST_F(ZipPackageTest, EntriesOfOnePackageCanBeReadFromSeveralThreads) {
    ZipWriter builder;
    for (unsigned i = 0; i < 6; ++i) {
        builder.add("e" + std::to_string(i), randomBytes(20000, i));
    }
    builder.write(packagePath());
    const ZipPackage package(packagePath().u16string());
    const auto leaves = package.getAllLeafs();

    std::atomic<int> mismatches{0};
    std::vector<std::jthread> threads;
    for (unsigned t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            for (unsigned i = 0; i < 20 * leaves.size(); ++i) {
                const unsigned at = (i + t) % leaves.size();
                mismatches += package.readEntry(leaves[at].entry) != randomBytes(20000, at) ? 1 : 0;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(mismatches.load(), 0);
}

} // namespace
