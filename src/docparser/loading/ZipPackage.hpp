#pragma once

// Read-only access to the zip packages in which product data may ship. Package contents come
// from documentation authors and are not trusted: every entry is read within fixed bounds, and a
// package or entry that is damaged, encrypted or too large fails with ZipError instead of
// allocating without limit or returning partial data.

#include <reference/docparser/ProductData.hpp>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace reference::docparser {

// Largest uncompressed size of one entry, declared or actual. Lookup data of a product is a few
// MiB at most; the bound only has to stop hostile packages from exhausting memory.
inline constexpr std::uint64_t kMaxZipEntrySize = std::uint64_t{256} << 20; // 256 MiB
// Largest number of entries (files and folders) in one package: the classic zip format's own
// limit. Listing makes a record per entry, so a forged count must not drive that allocation.
inline constexpr std::uint64_t kMaxZipEntryCount = 65535;

struct ZipLimits {
    std::uint64_t maxEntrySize = kMaxZipEntrySize;
    std::uint64_t maxEntryCount = kMaxZipEntryCount;
};

// A package that cannot be opened or an entry that cannot be read.
class ZipError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A file entry of a package together with its base name (the part after the last '/').
struct ZipLeaf {
    ZipEntry entry;
    std::u16string baseName;
};

// An open zip package. Entries listed from it share ownership of the underlying archive; the
// package itself is neither copyable nor movable because ProductZipData records point at it.
// Reads are serialised per package, so entries may be read from several threads.
class ZipPackage {
public:
    // Opens the package at `path` read-only; a package behind a leading stub (a self-extracting
    // program) is read as the archive that follows it. Throws ZipError when the file is missing or
    // is not a zip package, has too many entries, has entries that share their data or two
    // entries of one name.
    explicit ZipPackage(const std::u16string& path, ZipLimits limits = {});
    ~ZipPackage();
    ZipPackage(const ZipPackage&) = delete;
    ZipPackage& operator=(const ZipPackage&) = delete;

    // Number of entries in the central directory, folders included.
    std::uint64_t getEntryCount() const noexcept { return entryCount_; }

    // The file entries (folder entries left out) in central directory order. Names are taken as
    // stored; an entry whose base name is not valid UTF-8 is left out, as such a loose file is.
    std::vector<ZipLeaf> getAllLeafs() const;

    // The whole uncompressed content of `entry`. Throws ZipError when the entry belongs to another
    // package, is encrypted or compressed in an unsupported way, exceeds the size bound, does not
    // match its declared size, fails its CRC, or the package data is damaged.
    std::string readEntry(const ZipEntry& entry) const;
    // The same into `content`, whose memory is reused: a caller reading many entries keeps one
    // buffer. `content` is left unspecified when the read throws.
    void readEntry(const ZipEntry& entry, std::string& content) const;

private:
    std::shared_ptr<detail::ZipArchive> archive_;
    ZipLimits limits_;
    std::uint64_t entryCount_ = 0;
};

} // namespace reference::docparser
