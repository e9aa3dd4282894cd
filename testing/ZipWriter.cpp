#include "ZipWriter.hpp"

#include <zip.h>

#include <stdexcept>

namespace refdoc::test {
namespace {

constexpr zip_uint32_t kDeflateLevel = 6;
constexpr time_t kEntryTime = 1700000000;

[[noreturn]] void fail(zip_t* archive, const std::string& what) {
    std::string message = what + ": " + zip_strerror(archive);
    zip_discard(archive);
    throw std::runtime_error(message);
}

} // namespace

ZipWriter& ZipWriter::add(std::string name, std::string content, Compression compression) {
    items_.push_back({Item::Kind::File, std::move(name), std::move(content), compression, {}});
    return *this;
}

ZipWriter& ZipWriter::addEncrypted(std::string name, std::string content, std::string password) {
    items_.push_back(
        {Item::Kind::EncryptedFile, std::move(name), std::move(content), Compression::Deflate, std::move(password)});
    return *this;
}

ZipWriter& ZipWriter::addDirectory(std::string name) {
    items_.push_back({Item::Kind::Directory, std::move(name), {}, Compression::Store, {}});
    return *this;
}

const std::filesystem::path& ZipWriter::write(const std::filesystem::path& path) const {
    int error = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (archive == nullptr) {
        throw std::runtime_error("cannot create " + path.string());
    }
    for (const auto& item : items_) {
        zip_int64_t index = -1;
        if (item.kind == Item::Kind::Directory) {
            index = zip_dir_add(archive, item.name.c_str(), ZIP_FL_ENC_UTF_8);
            if (index < 0) {
                fail(archive, "zip_dir_add " + item.name);
            }
        } else {
            // The writer's own strings outlive zip_close, so the source need not copy them.
            zip_source_t* source = zip_source_buffer(archive, item.content.data(), item.content.size(), 0);
            if (source == nullptr) {
                fail(archive, "zip_source_buffer");
            }
            index = zip_file_add(archive, item.name.c_str(), source, ZIP_FL_ENC_UTF_8);
            if (index < 0) {
                zip_source_free(source);
                fail(archive, "zip_file_add " + item.name);
            }
        }
        const auto entry = static_cast<zip_uint64_t>(index);
        if (zip_file_set_mtime(archive, entry, kEntryTime, 0) != 0) {
            fail(archive, "zip_file_set_mtime");
        }
        if (item.kind == Item::Kind::Directory) {
            continue;
        }
        const bool store = item.compression == Compression::Store;
        if (zip_set_file_compression(archive, entry, store ? ZIP_CM_STORE : ZIP_CM_DEFLATE,
                                     store ? 0 : kDeflateLevel) != 0) {
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

} // namespace refdoc::test
