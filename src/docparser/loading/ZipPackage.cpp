#include "docparser/loading/ZipPackage.hpp"

#include "docparser/loading/FileNames.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <zip.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string_view>
#include <system_error>
#include <unordered_set>
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
bool isSeparator(char c) noexcept { return c == '/' || c == '\\'; }

// The end-of-central-directory record: its signature, where it keeps the central directory's size
// and offset, and its length before the trailing comment, whose length it states last.
constexpr std::string_view kEndRecordSignature{"PK\x05\x06", 4};
constexpr std::size_t kEndRecordSize = 22;
constexpr std::size_t kCentralSizeAt = 12;
constexpr std::size_t kCentralOffsetAt = 16;
constexpr std::size_t kCommentLengthAt = 20;
constexpr std::size_t kMaxCommentLength = 0xFFFF;

std::uint32_t littleEndian(std::string_view bytes, std::size_t at, std::size_t width) {
    std::uint32_t value = 0;
    for (std::size_t i = width; i-- > 0;) {
        value = (value << 8) | static_cast<unsigned char>(bytes[at + i]);
    }
    return value;
}

// The number of bytes in front of the archive proper, as self-extracting packages carry a program
// there: the end record then sits that much further into the file than the central directory it
// describes ends. 0 when the file has no such gap, no end record, or a 64-bit one.
std::uint64_t leadingStubSize(const std::string& nativePath, std::uint64_t fileSize) {
    std::ifstream file(nativePath, std::ios::binary);
    const std::uint64_t tailSize = std::min<std::uint64_t>(fileSize, kEndRecordSize + kMaxCommentLength);
    std::string tail(static_cast<std::size_t>(tailSize), '\0');
    if (!file.seekg(static_cast<std::streamoff>(fileSize - tailSize)) ||
        !file.read(tail.data(), static_cast<std::streamsize>(tail.size()))) {
        return 0;
    }
    for (std::size_t at = tail.rfind(kEndRecordSignature);
         at != std::string::npos && at + kEndRecordSize <= tail.size();
         at = at == 0 ? std::string::npos : tail.rfind(kEndRecordSignature, at - 1)) {
        if (littleEndian(tail, at + kCommentLengthAt, 2) != tail.size() - at - kEndRecordSize) {
            continue; // the signature's bytes inside the comment
        }
        const std::uint64_t centralSize = littleEndian(tail, at + kCentralSizeAt, 4);
        const std::uint64_t centralOffset = littleEndian(tail, at + kCentralOffsetAt, 4);
        const std::uint64_t recordAt = fileSize - tailSize + at;
        if (centralSize == 0xFFFFFFFF || centralOffset == 0xFFFFFFFF || centralOffset + centralSize >= recordAt) {
            return 0;
        }
        return recordAt - centralOffset - centralSize;
    }
    return 0;
}

// Opens the archive in the file read-only. libzip's open-time consistency check is left off: it
// refuses sound archives whose entries carry data descriptors, as streaming writers make them;
// the entries are checked one by one where they are listed and read. A file that starts with a
// stub is read as the archive that follows the stub. `archiveSize` is the archive's length.
zip_t* openArchive(const std::string& nativePath, std::uint64_t& archiveSize) {
    int errorCode = 0;
    zip_t* handle = zip_open(nativePath.c_str(), ZIP_RDONLY, &errorCode);
    std::error_code sizeError;
    const std::uint64_t fileSize = std::filesystem::file_size(nativePath, sizeError);
    if (handle != nullptr) {
        archiveSize = sizeError ? 0 : fileSize;
        return handle;
    }
    const std::uint64_t stub = errorCode == ZIP_ER_NOZIP && !sizeError ? leadingStubSize(nativePath, fileSize) : 0;
    if (stub == 0) {
        throw ZipError("cannot open zip package '" + nativePath + "': " + libzipMessage(errorCode));
    }
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source =
        zip_source_file_create(nativePath.c_str(), stub, static_cast<zip_int64_t>(fileSize - stub), &error);
    if (source != nullptr) {
        handle = zip_open_from_source(source, ZIP_RDONLY, &error);
        if (handle == nullptr) {
            zip_source_free(source);
        }
    }
    const int stubError = zip_error_code_zip(&error);
    zip_error_fini(&error);
    if (handle == nullptr) {
        throw ZipError(
            "cannot open zip package '" + nativePath + "': " + std::to_string(stub) +
            " bytes in front of the archive, and the archive after them is unreadable: " + libzipMessage(stubError));
    }
    archiveSize = fileSize - stub;
    return handle;
}

} // namespace

ZipEntry::ZipEntry(std::shared_ptr<detail::ZipArchive> archive, std::uint64_t index, std::string name) noexcept
    : archive_(std::move(archive)), index_(index), name_(std::move(name)) {}

ZipPackage::ZipPackage(const std::u16string& path, ZipLimits limits) : limits_(limits) {
    const std::string nativePath = toNativePath(path).native();
    std::uint64_t archiveSize = 0;
    zip_t* const handle = openArchive(nativePath, archiveSize);
    std::unique_ptr<zip_t, decltype(&zip_discard)> owner(handle, &zip_discard);
    const zip_int64_t count = zip_get_num_entries(handle, 0);
    if (count < 0 || static_cast<std::uint64_t>(count) > limits_.maxEntryCount) {
        throw ZipError("zip package '" + nativePath + "' has too many entries");
    }
    entryCount_ = static_cast<std::uint64_t>(count);

    // Entries of a sound package keep their data in disjoint parts of the file, so their stored
    // sizes add up to less than the file. Entries that share data would let a small package
    // expand many times over, each of them inflating the same bytes again. Two entries of one
    // name would leave open which of them is meant.
    std::uint64_t storedLeft = archiveSize;
    std::unordered_set<std::string_view> names;
    names.reserve(static_cast<std::size_t>(entryCount_));
    for (std::uint64_t index = 0; index < entryCount_; ++index) {
        if (const char* name = zip_get_name(handle, index, ZIP_FL_ENC_RAW);
            name != nullptr && !names.insert(name).second) {
            throw ZipError("zip package '" + nativePath + "' has two entries named '" + name + "'");
        }
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
        // Names are taken as the bytes the package stores, like the names of loose files on disk.
        const char* rawName = zip_get_name(archive_->handle(), index, ZIP_FL_ENC_RAW);
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
        const std::string_view baseBytes = std::string_view(name).substr(baseStart);
        if (!isValidUtf8Name(baseBytes)) {
            continue;
        }
        std::u16string baseName = text::utf8ToUtf16(baseBytes);
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
