#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/EngineSlots.hpp>
#include <reference/property/ObjectInfo.hpp>
#include <reference/property/SyntaxType.hpp>

namespace reference::property {

/// One output argument of a page.
class REFDOC_API Output {
public:
    Output(ObjectInfo info, SyntaxType::Value syntaxType) noexcept;

    Output(const Output&) = default;
    Output(Output&&) noexcept = default;
    Output& operator=(const Output&) = default;
    Output& operator=(Output&&) noexcept = default;
    ~Output() = default;

    const ObjectInfo& getInfo() const noexcept { return info_; }
    SyntaxType::Value getSyntaxType() const noexcept { return syntaxType_; }

    const EngineSlots<1>& engineValues() const noexcept { return engineValues_; }
    EngineSlots<1>& engineValues() noexcept { return engineValues_; }

    bool operator==(const Output&) const = default;

private:
    ObjectInfo info_;
    SyntaxType::Value syntaxType_;
    EngineSlots<1> engineValues_;
};

} // namespace reference::property
