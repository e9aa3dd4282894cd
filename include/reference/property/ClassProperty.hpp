#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/EngineSlots.hpp>
#include <reference/property/ObjectInfo.hpp>

#include <string>
#include <vector>

namespace reference::property {

/// One property of a documented class.
class REFDOC_API ClassProperty {
public:
    ClassProperty(ObjectInfo info, std::u16string defaultValue) noexcept;

    ClassProperty(const ClassProperty&) = default;
    ClassProperty(ClassProperty&&) noexcept = default;
    ClassProperty& operator=(const ClassProperty&) = default;
    ClassProperty& operator=(ClassProperty&&) noexcept = default;
    ~ClassProperty() = default;

    const ObjectInfo& getInfo() const noexcept { return info_; }
    ObjectInfo& getInfo() noexcept { return info_; }
    const std::u16string& getDefaultValue() const noexcept { return defaultValue_; }

    bool operator==(const ClassProperty&) const = default;

private:
    ObjectInfo info_;
    std::u16string defaultValue_;
};

/// Class properties shown together under one title.
class REFDOC_API ClassPropertyGroup {
public:
    ClassPropertyGroup(std::u16string title, std::vector<ClassProperty> properties) noexcept;

    ClassPropertyGroup(const ClassPropertyGroup&) = default;
    ClassPropertyGroup(ClassPropertyGroup&&) noexcept = default;
    ClassPropertyGroup& operator=(const ClassPropertyGroup&) = default;
    ClassPropertyGroup& operator=(ClassPropertyGroup&&) noexcept = default;
    ~ClassPropertyGroup() = default;

    const std::u16string& getTitle() const noexcept { return title_; }
    const std::vector<ClassProperty>& getProperties() const noexcept { return properties_; }

    const EngineSlots<1>& engineValues() const noexcept { return engineValues_; }
    EngineSlots<1>& engineValues() noexcept { return engineValues_; }

    bool operator==(const ClassPropertyGroup&) const = default;

private:
    std::u16string title_;
    std::vector<ClassProperty> properties_;
    EngineSlots<1> engineValues_;
};

} // namespace reference::property
