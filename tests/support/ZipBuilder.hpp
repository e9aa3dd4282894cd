#pragma once

// Zip packages for tests: written with the shared writer, and damaged afterwards in controlled ways
// so that the library's handling of hostile packages can be exercised on real files.

#include "ZipWriter.hpp"

#include <cstdint>
#include <filesystem>
#include <string>

namespace refdoc::test {

// The name the suites know the shared writer by.
using ZipBuilder = ZipWriter;

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
