#include "support/ZipPatch.hpp"

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

ZipEntryLayout locate(const std::string& bytes, const std::string& entryName) {
    const auto eocd = bytes.rfind("PK\x05\x06");
    if (eocd == std::string::npos) {
        throw std::runtime_error("no end of central directory record");
    }
    std::uint64_t at = readLe(bytes, eocd + 16, 4);
    for (std::uint32_t i = 0, count = readLe(bytes, eocd + 10, 2); i < count; ++i) {
        const std::uint32_t nameLength = readLe(bytes, at + 28, 2);
        if (readLe(bytes, at, 4) != 0x02014b50) {
            throw std::runtime_error("bad central directory");
        }
        if (bytes.compare(at + 46, nameLength, entryName) == 0 && nameLength == entryName.size()) {
            ZipEntryLayout layout{at, readLe(bytes, at + 42, 4), 0, readLe(bytes, at + 20, 4)};
            const auto local = layout.localHeaderOffset;
            layout.dataOffset = local + 30 + readLe(bytes, local + 26, 2) + readLe(bytes, local + 28, 2);
            return layout;
        }
        at += 46 + nameLength + readLe(bytes, at + 30, 2) + readLe(bytes, at + 32, 2);
    }
    throw std::runtime_error("no entry named " + entryName);
}

// `centralOffset` and `localOffset`: where the field sits in the two headers.
void patchField(const std::filesystem::path& package, const std::string& entryName, std::uint64_t centralOffset,
                std::uint64_t localOffset, std::uint32_t value) {
    std::string bytes = readBytes(package);
    const ZipEntryLayout layout = locate(bytes, entryName);
    for (int i = 0; i < 4; ++i) {
        const auto byte = static_cast<char>((value >> (8 * i)) & 0xFFu);
        bytes[layout.centralHeaderOffset + centralOffset + static_cast<std::uint64_t>(i)] = byte;
        bytes[layout.localHeaderOffset + localOffset + static_cast<std::uint64_t>(i)] = byte;
    }
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
    bytes.replace(layout.dataOffset + offset, count, count, '\xFF');
    writeBytes(package, bytes);
}

} // namespace refdoc::test
