#pragma once

// Damages written zip packages in controlled ways, so that the handling of hostile packages can be
// exercised on real files. Packages are plain (non-zip64) ones; a missing entry throws.

#include <cstdint>
#include <filesystem>
#include <string>

namespace refdoc::test {

// Where one entry's headers and data sit in a package.
struct ZipEntryLayout {
    std::uint64_t centralHeaderOffset = 0;
    std::uint64_t localHeaderOffset = 0;
    std::uint64_t dataOffset = 0;
    std::uint32_t compressedSize = 0;
};

ZipEntryLayout locateZipEntry(const std::filesystem::path& package, const std::string& entryName);

// Writes the low `width` bytes of `value` at `offset`, least significant first, as zip headers hold them.
void putLittleEndian(std::string& bytes, std::uint64_t offset, std::uint32_t value, int width);

// The header fields a test may forge, in their order in the headers.
enum class ZipField { Crc, CompressedSize, UncompressedSize };

// Writes the field in the central directory and in the local header alike, so that only the
// entry's data disagrees with the package.
void patchZipEntry(const std::filesystem::path& package, const std::string& entryName, ZipField field,
                   std::uint32_t value);
inline void patchZipEntryCrc(const std::filesystem::path& package, const std::string& entryName, std::uint32_t crc) {
    patchZipEntry(package, entryName, ZipField::Crc, crc);
}

} // namespace refdoc::test
