#include "docparser/loading/ZipPackage.hpp"

#include "docparser/loading/FileNames.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <zip.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>
#include <utility>

namespace reference::docparser {

namespace detail {

// Owns one libzip archive handle. libzip handles are not safe for concurrent use, so every use
// of the handle goes through the mutex.
class ZipArchive {
public:
    explicit ZipArchive(zip_t* handle) noexcept : handle_(handle) {}
    ~ZipArchive() { zip_discard(handle_); } // read-only: nothing to write back
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    zip_t* handle() const noexcept { return handle_; }
    std::mutex& mutex() const noexcept { return mutex_; }

private:
    zip_t* handle_;
    mutable std::mutex mutex_;
};

} // namespace detail

namespace {

// First buffer for an entry's data; most entries fit in it, larger ones double it as data arrives.
constexpr std::size_t kFirstReadSize = std::size_t{1} << 20;

std::string libzipMessage(int code) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    std::string message = zip_error_strerror(&error);
    zip_error_fini(&error);
    return message;
}

struct FileCloser {
    void operator()(zip_file_t* file) const noexcept { zip_fclose(file); }
};
using ZipFile = std::unique_ptr<zip_file_t, FileCloser>;

[[noreturn]] void failEntry(const ZipEntry& entry, std::string_view reason) {
    throw ZipError("zip entry '" + entry.getName() + "': " + std::string(reason));
}

// Zip names use '/', but some writers store '\'; either ends a folder part.
bool isSeparator(char c) noexcept {
    return c == '/' || c == '\\';
}

} // namespace

ZipEntry::ZipEntry(std::shared_ptr<detail::ZipArchive> archive, std::uint64_t index, std::string name) noexcept
    : archive_(std::move(archive)), index_(index), name_(std::move(name)) {}

ZipPackage::ZipPackage(const std::u16string& path, ZipLimits limits) : limits_(limits) {
    const std::string nativePath = toNativePath(path).native();
    int errorCode = 0;
    zip_t* handle = zip_open(nativePath.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &errorCode);
    if (handle == nullptr) {
        throw ZipError("cannot open zip package '" + nativePath + "': " + libzipMessage(errorCode));
    }
    std::unique_ptr<zip_t, decltype(&zip_discard)> owner(handle, &zip_discard);
    const zip_int64_t count = zip_get_num_entries(handle, 0);
    if (count < 0 || static_cast<std::uint64_t>(count) > limits_.maxEntryCount) {
        throw ZipError("zip package '" + nativePath + "' has too many entries");
    }
    entryCount_ = static_cast<std::uint64_t>(count);

    // Entries of a sound package keep their data in disjoint parts of the file, so their stored
    // sizes add up to less than the file. Entries that share data would let a small package
    // expand many times over, each of them inflating the same bytes again.
    std::error_code sizeError;
    const std::uint64_t fileSize = std::filesystem::file_size(nativePath, sizeError);
    std::uint64_t storedLeft = sizeError ? 0 : fileSize;
    for (std::uint64_t index = 0; index < entryCount_; ++index) {
        zip_stat_t stat;
        zip_stat_init(&stat);
        if (zip_stat_index(handle, index, 0, &stat) != 0 || (stat.valid & ZIP_STAT_COMP_SIZE) == 0) {
            continue; // such an entry fails when it is read
        }
        if (stat.comp_size > storedLeft) {
            throw ZipError("zip package '" + nativePath + "' has entries that share their data");
        }
        storedLeft -= stat.comp_size;
    }
    archive_ = std::make_shared<detail::ZipArchive>(handle);
    owner.release();
}

ZipPackage::~ZipPackage() = default;

std::vector<ZipLeaf> ZipPackage::getAllLeafs() const {
    std::vector<ZipLeaf> leaves;
    leaves.reserve(static_cast<std::size_t>(entryCount_));
    std::lock_guard lock(archive_->mutex());
    for (std::uint64_t index = 0; index < entryCount_; ++index) {
        const char* rawName = zip_get_name(archive_->handle(), index, 0);
        if (rawName == nullptr) {
            continue;
        }
        std::string name(rawName);
        if (name.empty() || isSeparator(name.back())) {
            continue; // a folder entry
        }
        std::size_t baseStart = name.size();
        while (baseStart > 0 && !isSeparator(name[baseStart - 1])) {
            --baseStart;
        }
        std::u16string baseName = text::utf8ToUtf16(std::string_view(name).substr(baseStart));
        leaves.push_back(ZipLeaf{ZipEntry(archive_, index, std::move(name)), std::move(baseName)});
    }
    return leaves;
}

std::string ZipPackage::readEntry(const ZipEntry& entry) const {
    std::string content;
    readEntry(entry, content);
    return content;
}

void ZipPackage::readEntry(const ZipEntry& entry, std::string& content) const {
    if (entry.archive_ != archive_) {
        failEntry(entry, "belongs to another package");
    }
    std::lock_guard lock(archive_->mutex());
    zip_t* const handle = archive_->handle();

    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(handle, entry.index_, 0, &stat) != 0) {
        failEntry(entry, zip_strerror(handle));
    }
    if ((stat.valid & ZIP_STAT_SIZE) == 0) {
        failEntry(entry, "size unknown");
    }
    if (stat.size > limits_.maxEntrySize) {
        failEntry(entry, "declared size " + std::to_string(stat.size) + " exceeds the bound");
    }
    if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && stat.encryption_method != ZIP_EM_NONE) {
        failEntry(entry, "encrypted");
    }

    const ZipFile file(zip_fopen_index(handle, entry.index_, 0));
    if (!file) {
        failEntry(entry, zip_strerror(handle));
    }
    // libzip hands out the real data whatever the header declares, so reading stops at the
    // declared size (which is within the bound). The buffer grows with the data that actually
    // arrives, so a small entry that declares a large size cannot claim that memory.
    const auto declared = static_cast<std::size_t>(stat.size);
    // A reused buffer starts at the size it has (resizing within it writes nothing); a new one
    // at the first read size.
    content.resize(std::min(declared, std::max(kFirstReadSize, content.size())));
    std::size_t total = 0;
    while (total < declared) {
        if (total == content.size()) {
            content.resize(std::min(declared, content.size() * 2));
        }
        const zip_int64_t got = zip_fread(file.get(), content.data() + total, content.size() - total);
        if (got < 0) {
            failEntry(entry, zip_file_strerror(file.get()));
        }
        if (got == 0) {
            failEntry(entry, "shorter than its declared size");
        }
        total += static_cast<std::size_t>(got);
    }
    // libzip checks the CRC only when a read finds the end of the data, and a byte found here
    // means the entry is longer than it declares: either way the entry is not what it claims.
    char probe = 0;
    const zip_int64_t extra = zip_fread(file.get(), &probe, 1);
    if (extra < 0) {
        failEntry(entry, zip_file_strerror(file.get()));
    }
    if (extra > 0) {
        failEntry(entry, "longer than its declared size");
    }
}

} // namespace reference::docparser
