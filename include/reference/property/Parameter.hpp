#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/ObjectInfo.hpp>

#include <string>

namespace reference::property {

/// One parameter of a page (for example of a block or an app).
class REFDOC_API Parameter {
public:
    Parameter(ObjectInfo info, std::u16string defaultValue) noexcept;

    Parameter(const Parameter&) = default;
    Parameter(Parameter&&) noexcept = default;
    Parameter& operator=(const Parameter&) = default;
    Parameter& operator=(Parameter&&) noexcept = default;
    ~Parameter() = default;

    const ObjectInfo& getInfo() const noexcept { return info_; }
    ObjectInfo& getInfo() noexcept { return info_; }
    const std::u16string& getDefaultValue() const noexcept { return defaultValue_; }

    bool operator==(const Parameter&) const = default;

private:
    ObjectInfo info_;
    std::u16string defaultValue_;
};

} // namespace reference::property
