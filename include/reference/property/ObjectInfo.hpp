#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/EngineSlots.hpp>

#include <string>
#include <vector>

namespace reference::property {

/// What inputs, outputs, parameters and class properties have in common.
class REFDOC_API ObjectInfo {
public:
    ObjectInfo(std::u16string name, std::u16string purpose, std::vector<std::u16string> values,
               std::u16string anchor) noexcept;

    ObjectInfo(const ObjectInfo&) = default;
    ObjectInfo(ObjectInfo&&) noexcept = default;
    ObjectInfo& operator=(const ObjectInfo&) = default;
    ObjectInfo& operator=(ObjectInfo&&) noexcept = default;
    ~ObjectInfo() = default;

    const std::u16string& getName() const noexcept { return name_; }
    const std::u16string& getPurpose() const noexcept { return purpose_; }
    const std::vector<std::u16string>& getValues() const noexcept { return values_; }
    /// The link to the argument's place on its page, e.g. "ref/foo.html#input_x".
    const std::u16string& getAnchor() const noexcept { return anchor_; }

    const EngineSlots<1>& engineValues() const noexcept { return engineValues_; }
    EngineSlots<1>& engineValues() noexcept { return engineValues_; }

    bool operator==(const ObjectInfo&) const = default;

private:
    std::u16string name_;
    std::u16string purpose_;
    std::vector<std::u16string> values_;
    std::u16string anchor_;
    EngineSlots<1> engineValues_;
};

} // namespace reference::property
