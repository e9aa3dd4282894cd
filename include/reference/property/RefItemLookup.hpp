#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/FunctionType.hpp>
#include <reference/property/RefEntityType.hpp>

#include <string>

namespace reference::property {

/// One entry of a product's lookup index.
class REFDOC_API RefItemLookup {
public:
    RefItemLookup(std::u16string name, RefEntityType::Value entityType, std::u16string purpose, bool deprecated,
                  std::u16string href, FunctionType::Value functionType) noexcept;

    RefItemLookup(const RefItemLookup&) = default;
    RefItemLookup(RefItemLookup&&) noexcept = default;
    RefItemLookup& operator=(const RefItemLookup&) = default;
    RefItemLookup& operator=(RefItemLookup&&) noexcept = default;
    ~RefItemLookup() = default;

    const std::u16string& getName() const noexcept { return name_; }
    RefEntityType::Value getEntityType() const noexcept { return entityType_; }
    const std::u16string& getPurpose() const noexcept { return purpose_; }
    bool isDeprecated() const noexcept { return deprecated_; }
    std::u16string getHref() const { return href_; }
    FunctionType::Value getFunctionType() const noexcept { return functionType_; }

    bool operator==(const RefItemLookup&) const = default;

private:
    std::u16string name_;
    RefEntityType::Value entityType_;
    std::u16string purpose_;
    bool deprecated_;
    std::u16string href_;
    FunctionType::Value functionType_;
};

} // namespace reference::property
