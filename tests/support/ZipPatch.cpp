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

} // namespace

ZipEntryLayout locateZipEntry(const std::filesystem::path& package, const std::string& entryName) {
    return locate(readBytes(package), entryName);
}

void putLittleEndian(std::string& bytes, std::uint64_t offset, std::uint32_t value, int width) {
    for (int i = 0; i < width; ++i) {
        bytes.at(offset + static_cast<std::uint64_t>(i)) = static_cast<char>((value >> (8 * i)) & 0xFFu);
    }
}

void patchZipEntry(const std::filesystem::path& package, const std::string& entryName, ZipField field,
                   std::uint32_t value) {
    std::string bytes = readBytes(package);
    const ZipEntryLayout layout = locate(bytes, entryName);
    // The fields sit 16, 20 and 24 bytes into a central directory header, 2 bytes earlier in a local one.
    const auto central = layout.centralHeaderOffset + 16 + 4 * static_cast<std::uint64_t>(field);
    const auto local = layout.localHeaderOffset + 14 + 4 * static_cast<std::uint64_t>(field);
    putLittleEndian(bytes, central, value, 4);
    putLittleEndian(bytes, local, value, 4);
    writeBytes(package, bytes);
}

} // namespace refdoc::test
