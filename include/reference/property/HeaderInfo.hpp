#pragma once

#include <reference/docparser/Export.hpp>

#include <string>

namespace reference::property {

/// The header of one document of a resource file: which product (or support package) the
/// items belong to and where its help lives.
class REFDOC_API HeaderInfo {
public:
    HeaderInfo(std::u16string productName, std::u16string baseCode, std::u16string helpFolder,
               std::u16string helpLocation) noexcept;

    HeaderInfo(const HeaderInfo&) = default;
    HeaderInfo(HeaderInfo&&) noexcept = default;
    HeaderInfo& operator=(const HeaderInfo&) = default;
    HeaderInfo& operator=(HeaderInfo&&) noexcept = default;
    ~HeaderInfo() = default;

    const std::u16string& getProductName() const noexcept { return productName_; }
    std::u16string getBaseCode() const { return baseCode_; }
    std::u16string getHelpFolder() const { return helpFolder_; }
    const std::u16string& getHelpLocation() const noexcept { return helpLocation_; }

    bool operator==(const HeaderInfo&) const = default;

private:
    std::u16string productName_;
    std::u16string baseCode_;
    std::u16string helpFolder_;
    std::u16string helpLocation_;
};

} // namespace reference::property
