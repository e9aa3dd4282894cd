#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/ClassProperty.hpp>
#include <reference/property/DeprecationStatus.hpp>
#include <reference/property/EngineSlots.hpp>
#include <reference/property/Example.hpp>
#include <reference/property/Input.hpp>
#include <reference/property/Output.hpp>
#include <reference/property/Parameter.hpp>
#include <reference/property/RefEntity.hpp>
#include <reference/property/SeeAlso.hpp>
#include <reference/property/SyntaxGroup.hpp>

#include <string>
#include <vector>

namespace reference::property {

/// One full reference page. Members are declared in the order of the constructor; they are
/// destroyed in reverse: the engine value slots (last first), the lists from the last to the
/// first, the strings, then the entities and the href.
class REFDOC_API RefItem {
public:
    RefItem(std::u16string href, std::vector<RefEntity> entities, std::u16string packageName, std::u16string purpose,
            std::u16string introduced, std::u16string description, std::u16string thumbnailFileRef,
            std::u16string thumbnailAltText, DeprecationStatus::Value deprecationStatus,
            std::vector<SyntaxGroup> syntaxGroups, std::vector<InputGroup> inputGroups, std::vector<Output> outputs,
            std::vector<ClassPropertyGroup> classPropertyGroups, std::vector<SeeAlso> seeAlso,
            std::vector<Example> examples, std::vector<Parameter> parameters) noexcept;

    RefItem(const RefItem&) = default;
    RefItem(RefItem&&) noexcept = default;
    RefItem& operator=(const RefItem&) = default;
    RefItem& operator=(RefItem&&) noexcept = default;
    ~RefItem() = default;

    const std::u16string& getHref() const noexcept { return href_; }
    const std::vector<RefEntity>& getEntities() const noexcept { return entities_; }
    const std::u16string& getPackageName() const noexcept { return packageName_; }
    const std::u16string& getPurpose() const noexcept { return purpose_; }
    const std::u16string& getIntroduced() const noexcept { return introduced_; }
    const std::u16string& getDescription() const noexcept { return description_; }
    const std::u16string& getThumbnailFileRef() const noexcept { return thumbnailFileRef_; }
    const std::u16string& getThumbnailAltText() const noexcept { return thumbnailAltText_; }
    DeprecationStatus::Value getDeprecationStatus() const noexcept { return deprecationStatus_; }
    const std::vector<SyntaxGroup>& getSyntaxGroups() const noexcept { return syntaxGroups_; }
    const std::vector<InputGroup>& getInputGroups() const noexcept { return inputGroups_; }
    const std::vector<Output>& getOutputs() const noexcept { return outputs_; }
    const std::vector<ClassPropertyGroup>& getClassPropertyGroups() const noexcept { return classPropertyGroups_; }
    const std::vector<SeeAlso>& getSeeAlso() const noexcept { return seeAlso_; }
    const std::vector<Example>& getExamples() const noexcept { return examples_; }
    const std::vector<Parameter>& getParameters() const noexcept { return parameters_; }

    const EngineSlots<10>& engineValues() const noexcept { return engineValues_; }
    EngineSlots<10>& engineValues() noexcept { return engineValues_; }

    bool operator==(const RefItem&) const = default;

private:
    std::u16string href_;
    std::vector<RefEntity> entities_;
    std::u16string packageName_;
    std::u16string purpose_;
    std::u16string introduced_;
    std::u16string description_;
    std::u16string thumbnailFileRef_;
    std::u16string thumbnailAltText_;
    DeprecationStatus::Value deprecationStatus_;
    std::vector<SyntaxGroup> syntaxGroups_;
    std::vector<InputGroup> inputGroups_;
    std::vector<Output> outputs_;
    std::vector<ClassPropertyGroup> classPropertyGroups_;
    std::vector<SeeAlso> seeAlso_;
    std::vector<Example> examples_;
    std::vector<Parameter> parameters_;
    EngineSlots<10> engineValues_;
};

} // namespace reference::property
