#include "support/ZipBuilder.hpp"

#include "support/TempDir.hpp"

#include <zip.h>

#include <stdexcept>

namespace refdoc::test {
namespace {

[[noreturn]] void fail(zip_t* archive, const std::string& what) {
    std::string message = what + ": " + zip_strerror(archive);
    zip_discard(archive);
    throw std::runtime_error(message);
}

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

ZipBuilder& ZipBuilder::add(std::string name, std::string content, Compression compression) {
    items_.push_back({Item::Kind::File, std::move(name), std::move(content), compression, {}});
    return *this;
}

ZipBuilder& ZipBuilder::addEncrypted(std::string name, std::string content, std::string password) {
    items_.push_back(
        {Item::Kind::EncryptedFile, std::move(name), std::move(content), Compression::Deflate, std::move(password)});
    return *this;
}

ZipBuilder& ZipBuilder::addDirectory(std::string name) {
    items_.push_back({Item::Kind::Directory, std::move(name), {}, Compression::Store, {}});
    return *this;
}

const std::filesystem::path& ZipBuilder::write(const std::filesystem::path& path) const {
    int error = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (archive == nullptr) {
        throw std::runtime_error("cannot create " + path.string());
    }
    for (const auto& item : items_) {
        if (item.kind == Item::Kind::Directory) {
            if (zip_dir_add(archive, item.name.c_str(), ZIP_FL_ENC_UTF_8) < 0) {
                fail(archive, "zip_dir_add " + item.name);
            }
            continue;
        }
        // The builder's own strings outlive zip_close, so the source need not copy them.
        zip_source_t* source = zip_source_buffer(archive, item.content.data(), item.content.size(), 0);
        if (source == nullptr) {
            fail(archive, "zip_source_buffer");
        }
        const zip_int64_t index = zip_file_add(archive, item.name.c_str(), source, ZIP_FL_ENC_UTF_8);
        if (index < 0) {
            zip_source_free(source);
            fail(archive, "zip_file_add " + item.name);
        }
        const auto entry = static_cast<zip_uint64_t>(index);
        const std::int32_t method = item.compression == Compression::Store ? ZIP_CM_STORE : ZIP_CM_DEFLATE;
        if (zip_set_file_compression(archive, entry, method, 0) != 0) {
            fail(archive, "zip_set_file_compression");
        }
        if (item.kind == Item::Kind::EncryptedFile &&
            zip_file_set_encryption(archive, entry, ZIP_EM_AES_256, item.password.c_str()) != 0) {
            fail(archive, "zip_file_set_encryption");
        }
    }
    if (zip_close(archive) != 0) {
        fail(archive, "zip_close");
    }
    return path;
}

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
