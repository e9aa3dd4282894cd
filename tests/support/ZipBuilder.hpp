#pragma once

// Builds zip packages for tests with libzip, and damages them afterwards in controlled ways so
// that the library's handling of hostile packages can be exercised on real files.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace refdoc::test {

class ZipBuilder {
public:
    enum class Compression { Store, Deflate };

    // A file entry; `name` may hold folder parts ("a/b/c.json").
    ZipBuilder& add(std::string name, std::string content, Compression compression = Compression::Deflate);
    // A file entry encrypted with WinZip AES-256 under `password`.
    ZipBuilder& addEncrypted(std::string name, std::string content, std::string password);
    // A folder entry; libzip stores it with a trailing '/'.
    ZipBuilder& addDirectory(std::string name);

    // Writes the package to `path` (replacing any file there) and returns `path`. Throws
    // std::runtime_error when libzip fails.
    const std::filesystem::path& write(const std::filesystem::path& path) const;

private:
    struct Item {
        enum class Kind { File, EncryptedFile, Directory } kind;
        std::string name;
        std::string content;
        Compression compression;
        std::string password;
    };
    std::vector<Item> items_;
};

// Where one entry's fields and data sit in a written package.
struct ZipEntryLayout {
    std::uint64_t centralHeaderOffset = 0;
    std::uint64_t localHeaderOffset = 0;
    std::uint64_t dataOffset = 0;
    std::uint32_t crc = 0;
    std::uint32_t compressedSize = 0;
    std::uint32_t uncompressedSize = 0;
};

// Finds the entry named `entryName` through the package's central directory. Throws
// std::runtime_error if the package has no such entry or is not a plain (non-zip64) package.
ZipEntryLayout locateZipEntry(const std::filesystem::path& package, const std::string& entryName);

// Header edits. Each writes the field both in the central directory and in the local header,
// so the package stays self-consistent and only the entry's data disagrees with it.
void patchZipEntryCrc(const std::filesystem::path& package, const std::string& entryName, std::uint32_t crc);
void patchZipEntryUncompressedSize(const std::filesystem::path& package, const std::string& entryName,
                                   std::uint32_t size);
void patchZipEntryCompressedSize(const std::filesystem::path& package, const std::string& entryName,
                                 std::uint32_t size);

// Overwrites `count` bytes of the entry's stored data, starting `offset` bytes into it, with 0xFF.
void corruptZipEntryData(const std::filesystem::path& package, const std::string& entryName, std::uint64_t offset,
                         std::uint64_t count);

} // namespace refdoc::test
