#pragma once

#include <reference/docparser/Export.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace reference::docparser {

namespace detail {
class ZipArchive; ///< an open libzip archive; defined inside the library
}

class ZipPackage;

/// One leaf (file entry) of an opened zip package. Opaque to callers: only the package it was
/// listed from can read it. It shares ownership of the open archive, so a copy keeps the archive
/// alive for as long as the copy lives.
class REFDOC_API ZipEntry {
public:
    /// Position of the entry in the package's central directory.
    std::uint64_t getIndex() const noexcept { return index_; }
    /// The entry's full name inside the package, as stored (UTF-8, '/' separated).
    const std::string& getName() const noexcept { return name_; }

private:
    friend class ZipPackage;
    ZipEntry(std::shared_ptr<detail::ZipArchive> archive, std::uint64_t index, std::string name) noexcept;

    std::shared_ptr<detail::ZipArchive> archive_;
    std::uint64_t index_;
    std::string name_;
};

/// A product resource file to be read: its product name and whether it is a locale variant.
class REFDOC_API ProductData {
public:
    ProductData(std::u16string name, bool isNonEnglishLocale);

    const std::u16string& getName() const noexcept { return name_; }
    bool isNonEnglishLocale() const noexcept { return isNonEnglishLocale_; }

private:
    std::u16string name_;
    bool isNonEnglishLocale_;
};

/// A resource file on disk: a .json file or a .zip package.
class REFDOC_API ProductPathData : public ProductData {
public:
    ProductPathData(std::u16string name, bool isNonEnglishLocale, std::u16string fullPath);

    const std::u16string& getFullPath() const noexcept { return fullPath_; }

private:
    std::u16string fullPath_;
};

/// A resource file inside an opened zip package. The package is not owned: the record is valid
/// only while the package it was listed from stays open.
class REFDOC_API ProductZipData : public ProductData {
public:
    ProductZipData(std::u16string name, bool isNonEnglishLocale, const ZipEntry& entry, ZipPackage& package);

    const ZipEntry& getEntry() const noexcept { return entry_; }
    ZipPackage& getFileSystemManager() const noexcept { return *package_; }

private:
    ZipEntry entry_;
    ZipPackage* package_;
};

} // namespace reference::docparser
