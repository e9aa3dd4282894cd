#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/EngineSlots.hpp>
#include <reference/property/SyntaxType.hpp>

#include <string>
#include <vector>

namespace reference::property {

/// One form of calling a documented entity, with its syntax lines.
class REFDOC_API SyntaxGroup {
public:
    SyntaxGroup(std::u16string title, SyntaxType::Value syntaxType, std::vector<std::u16string> syntaxLines) noexcept;

    SyntaxGroup(const SyntaxGroup&) = default;
    SyntaxGroup(SyntaxGroup&&) noexcept = default;
    SyntaxGroup& operator=(const SyntaxGroup&) = default;
    SyntaxGroup& operator=(SyntaxGroup&&) noexcept = default;
    ~SyntaxGroup() = default;

    const std::u16string& getTitle() const noexcept { return title_; }
    SyntaxType::Value getSyntaxType() const noexcept { return syntaxType_; }
    const std::vector<std::u16string>& getSyntaxLines() const noexcept { return syntaxLines_; }

    const EngineSlots<2>& engineValues() const noexcept { return engineValues_; }
    EngineSlots<2>& engineValues() noexcept { return engineValues_; }

    bool operator==(const SyntaxGroup&) const = default;

private:
    std::u16string title_;
    SyntaxType::Value syntaxType_;
    std::vector<std::u16string> syntaxLines_;
    EngineSlots<2> engineValues_;
};

} // namespace reference::property
