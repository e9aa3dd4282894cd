#pragma once

#include <refdoc/platform/Export.hpp>

#include <string>
#include <utility>
#include <vector>

namespace doc_products_shared {

// A documentation product as the host's product catalogue describes it.
class REFDOC_PLATFORM_API DocProduct {
public:
    using StringPairList = std::vector<std::pair<std::string, std::string>>;

    DocProduct(std::string shortName, std::string displayName, std::string helpLocation, std::string baseCode,
               std::string altShortName, std::string availability, StringPairList attributes = {});
    virtual ~DocProduct();

    DocProduct(const DocProduct&) = default;
    DocProduct& operator=(const DocProduct&) = default;
    DocProduct(DocProduct&&) noexcept = default;
    DocProduct& operator=(DocProduct&&) noexcept = default;

    const std::string& getShortName() const noexcept { return shortName_; }
    const std::string& getDisplayName() const noexcept { return displayName_; }
    const std::string& getHelpLocation() const noexcept { return helpLocation_; }
    const std::string& getBaseCode() const noexcept { return baseCode_; }
    const std::string& getAltShortName() const noexcept { return altShortName_; }
    const std::string& getAvailability() const noexcept { return availability_; }
    const StringPairList& getAttributes() const noexcept { return attributes_; }

private:
    std::string shortName_;
    std::string displayName_;
    std::string helpLocation_;
    std::string baseCode_;
    std::string altShortName_;
    std::string availability_;
    StringPairList attributes_;
};

// A product installed at the top level (as opposed to an add-on inside another product).
class REFDOC_PLATFORM_API TopLevelDocProduct : public DocProduct {
public:
    using DocProduct::DocProduct;
    ~TopLevelDocProduct() override;

    TopLevelDocProduct(const TopLevelDocProduct&) = default;
    TopLevelDocProduct& operator=(const TopLevelDocProduct&) = default;
    TopLevelDocProduct(TopLevelDocProduct&&) noexcept = default;
    TopLevelDocProduct& operator=(TopLevelDocProduct&&) noexcept = default;
};

} // namespace doc_products_shared
