#include <reference/docparser/ProductData.hpp>

#include <utility>

namespace reference::docparser {

ProductData::ProductData(std::u16string name, bool isNonEnglishLocale)
    : name_(std::move(name)), isNonEnglishLocale_(isNonEnglishLocale) {}

ProductPathData::ProductPathData(std::u16string name, bool isNonEnglishLocale, std::u16string fullPath)
    : ProductData(std::move(name), isNonEnglishLocale), fullPath_(std::move(fullPath)) {}

ProductZipData::ProductZipData(std::u16string name, bool isNonEnglishLocale, const ZipEntry& entry, ZipPackage& package)
    : ProductData(std::move(name), isNonEnglishLocale), entry_(entry), package_(&package) {}

} // namespace reference::docparser
