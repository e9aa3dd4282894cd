#include "support/ZipBuilder.hpp"

#include "support/TempDir.hpp"

#include <stdexcept>

namespace refdoc::test {
namespace {

std::uint32_t readLe(const std::string& bytes, std::uint64_t offset, int width) {
    if (offset + static_cast<std::uint64_t>(width) > bytes.size()) {
        throw std::runtime_error("zip structure runs past the end of the file");
    }
    std::uint32_t value = 0;
    for (int i = width - 1; i >= 0; --i) {
        value = (value << 8) | static_cast<unsigned char>(bytes[offset + static_cast<std::uint64_t>(i)]);
    }
    return value;
}

void writeLe32(std::string& bytes, std::uint64_t offset, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        bytes[offset + static_cast<std::uint64_t>(i)] = static_cast<char>((value >> (8 * i)) & 0xFFu);
    }
}

constexpr std::uint32_t kEndOfCentralDirectory = 0x06054b50;
constexpr std::uint32_t kCentralHeader = 0x02014b50;
constexpr std::uint32_t kLocalHeader = 0x04034b50;

ZipEntryLayout locate(const std::string& bytes, const std::string& entryName) {
    if (bytes.size() < 22) {
        throw std::runtime_error("not a zip package");
    }
    std::uint64_t eocd = bytes.size() - 22;
    while (readLe(bytes, eocd, 4) != kEndOfCentralDirectory) {
        if (eocd == 0) {
            throw std::runtime_error("no end of central directory record");
        }
        --eocd;
    }
    const std::uint32_t count = readLe(bytes, eocd + 10, 2);
    std::uint64_t at = readLe(bytes, eocd + 16, 4);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (readLe(bytes, at, 4) != kCentralHeader) {
            throw std::runtime_error("bad central directory");
        }
        const std::uint32_t nameLength = readLe(bytes, at + 28, 2);
        const std::uint32_t extraLength = readLe(bytes, at + 30, 2);
        const std::uint32_t commentLength = readLe(bytes, at + 32, 2);
        if (bytes.compare(at + 46, nameLength, entryName) == 0 && nameLength == entryName.size()) {
            ZipEntryLayout layout;
            layout.centralHeaderOffset = at;
            layout.crc = readLe(bytes, at + 16, 4);
            layout.compressedSize = readLe(bytes, at + 20, 4);
            layout.uncompressedSize = readLe(bytes, at + 24, 4);
            layout.localHeaderOffset = readLe(bytes, at + 42, 4);
            if (readLe(bytes, layout.localHeaderOffset, 4) != kLocalHeader) {
                throw std::runtime_error("bad local header");
            }
            layout.dataOffset = layout.localHeaderOffset + 30 + readLe(bytes, layout.localHeaderOffset + 26, 2) +
                                readLe(bytes, layout.localHeaderOffset + 28, 2);
            return layout;
        }
        at += 46 + nameLength + extraLength + commentLength;
    }
    throw std::runtime_error("no entry named " + entryName);
}

// Offsets of a field in the central header and in the local header.
void patchField(const std::filesystem::path& package, const std::string& entryName, std::uint64_t centralOffset,
                std::uint64_t localOffset, std::uint32_t value) {
    std::string bytes = readBytes(package);
    const ZipEntryLayout layout = locate(bytes, entryName);
    writeLe32(bytes, layout.centralHeaderOffset + centralOffset, value);
    writeLe32(bytes, layout.localHeaderOffset + localOffset, value);
    writeBytes(package, bytes);
}

} // namespace

ZipEntryLayout locateZipEntry(const std::filesystem::path& package, const std::string& entryName) {
    return locate(readBytes(package), entryName);
}

void patchZipEntryCrc(const std::filesystem::path& package, const std::string& entryName, std::uint32_t crc) {
    patchField(package, entryName, 16, 14, crc);
}

void patchZipEntryUncompressedSize(const std::filesystem::path& package, const std::string& entryName,
                                   std::uint32_t size) {
    patchField(package, entryName, 24, 22, size);
}

void patchZipEntryCompressedSize(const std::filesystem::path& package, const std::string& entryName,
                                 std::uint32_t size) {
    patchField(package, entryName, 20, 18, size);
}

void corruptZipEntryData(const std::filesystem::path& package, const std::string& entryName, std::uint64_t offset,
                         std::uint64_t count) {
    std::string bytes = readBytes(package);
    const ZipEntryLayout layout = locate(bytes, entryName);
    if (offset + count > layout.compressedSize) {
        throw std::runtime_error("corruption range outside the entry's data");
    }
    for (std::uint64_t i = 0; i < count; ++i) {
        bytes[layout.dataOffset + offset + i] = '\xFF';
    }
    writeBytes(package, bytes);
}

} // namespace refdoc::test
