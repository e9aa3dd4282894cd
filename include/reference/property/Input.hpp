#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/EngineSlots.hpp>
#include <reference/property/ObjectInfo.hpp>
#include <reference/property/SyntaxType.hpp>

#include <string>
#include <vector>

namespace reference::property {

/// One input argument of a page.
class REFDOC_API Input {
public:
    Input(ObjectInfo info, SyntaxType::Value syntaxType, std::u16string defaultValue, bool isNameValuePair) noexcept;

    Input(const Input&) = default;
    Input(Input&&) noexcept = default;
    Input& operator=(const Input&) = default;
    Input& operator=(Input&&) noexcept = default;
    ~Input() = default;

    const ObjectInfo& getInfo() const noexcept { return info_; }
    SyntaxType::Value getSyntaxType() const noexcept { return syntaxType_; }
    const std::u16string& getDefaultValue() const noexcept { return defaultValue_; }
    /// True when the input came from a group of name-value pairs.
    bool isNameValuePair() const noexcept { return isNameValuePair_; }

    const EngineSlots<1>& engineValues() const noexcept { return engineValues_; }
    EngineSlots<1>& engineValues() noexcept { return engineValues_; }

    bool operator==(const Input&) const = default;

private:
    ObjectInfo info_;
    SyntaxType::Value syntaxType_;
    std::u16string defaultValue_;
    bool isNameValuePair_;
    EngineSlots<1> engineValues_;
};

/// Inputs shown together under one title.
class REFDOC_API InputGroup {
public:
    InputGroup(std::u16string title, std::vector<Input> inputs) noexcept;

    InputGroup(const InputGroup&) = default;
    InputGroup(InputGroup&&) noexcept = default;
    InputGroup& operator=(const InputGroup&) = default;
    InputGroup& operator=(InputGroup&&) noexcept = default;
    ~InputGroup() = default;

    const std::u16string& getTitle() const noexcept { return title_; }
    const std::vector<Input>& getInputs() const noexcept { return inputs_; }

    const EngineSlots<1>& engineValues() const noexcept { return engineValues_; }
    EngineSlots<1>& engineValues() noexcept { return engineValues_; }

    bool operator==(const InputGroup&) const = default;

private:
    std::u16string title_;
    std::vector<Input> inputs_;
    EngineSlots<1> engineValues_;
};

} // namespace reference::property
