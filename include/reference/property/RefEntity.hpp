#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/EngineSlots.hpp>
#include <reference/property/FunctionType.hpp>
#include <reference/property/RefEntityType.hpp>

#include <string>

namespace reference::property {

/// One entity a page documents (a page may document several, e.g. a function and a method).
class REFDOC_API RefEntity {
public:
    RefEntity(RefEntityType::Value entityType, std::u16string name, FunctionType::Value functionType) noexcept;

    RefEntity(const RefEntity&) = default;
    RefEntity(RefEntity&&) noexcept = default;
    RefEntity& operator=(const RefEntity&) = default;
    RefEntity& operator=(RefEntity&&) noexcept = default;
    ~RefEntity() = default;

    RefEntityType::Value getEntityType() const noexcept { return entityType_; }
    const std::u16string& getName() const noexcept { return name_; }
    FunctionType::Value getFunctionType() const noexcept { return functionType_; }

    const EngineSlots<2>& engineValues() const noexcept { return engineValues_; }
    EngineSlots<2>& engineValues() noexcept { return engineValues_; }

    bool operator==(const RefEntity&) const = default;

private:
    RefEntityType::Value entityType_;
    std::u16string name_;
    FunctionType::Value functionType_;
    EngineSlots<2> engineValues_;
};

} // namespace reference::property
