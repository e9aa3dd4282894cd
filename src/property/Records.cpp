#include <reference/property/HeaderInfo.hpp>
#include <reference/property/RefItem.hpp>
#include <reference/property/RefItemLookup.hpp>

#include <utility>

namespace reference::property {

HeaderInfo::HeaderInfo(std::u16string productName, std::u16string baseCode, std::u16string helpFolder,
                       std::u16string helpLocation) noexcept
    : productName_(std::move(productName)), baseCode_(std::move(baseCode)), helpFolder_(std::move(helpFolder)),
      helpLocation_(std::move(helpLocation)) {}

RefItemLookup::RefItemLookup(std::u16string name, RefEntityType::Value entityType, std::u16string purpose,
                             bool deprecated, std::u16string href, FunctionType::Value functionType) noexcept
    : name_(std::move(name)), entityType_(entityType), purpose_(std::move(purpose)), deprecated_(deprecated),
      href_(std::move(href)), functionType_(functionType) {}

ObjectInfo::ObjectInfo(std::u16string name, std::u16string purpose, std::vector<std::u16string> values,
                       std::u16string anchor) noexcept
    : name_(std::move(name)), purpose_(std::move(purpose)), values_(std::move(values)), anchor_(std::move(anchor)) {}

Input::Input(ObjectInfo info, SyntaxType::Value syntaxType, std::u16string defaultValue, bool isNameValuePair) noexcept
    : info_(std::move(info)), syntaxType_(syntaxType), defaultValue_(std::move(defaultValue)),
      isNameValuePair_(isNameValuePair) {}

InputGroup::InputGroup(std::u16string title, std::vector<Input> inputs) noexcept
    : title_(std::move(title)), inputs_(std::move(inputs)) {}

Output::Output(ObjectInfo info, SyntaxType::Value syntaxType) noexcept
    : info_(std::move(info)), syntaxType_(syntaxType) {}

Parameter::Parameter(ObjectInfo info, std::u16string defaultValue) noexcept
    : info_(std::move(info)), defaultValue_(std::move(defaultValue)) {}

ClassProperty::ClassProperty(ObjectInfo info, std::u16string defaultValue) noexcept
    : info_(std::move(info)), defaultValue_(std::move(defaultValue)) {}

ClassPropertyGroup::ClassPropertyGroup(std::u16string title, std::vector<ClassProperty> properties) noexcept
    : title_(std::move(title)), properties_(std::move(properties)) {}

SyntaxGroup::SyntaxGroup(std::u16string title, SyntaxType::Value syntaxType,
                         std::vector<std::u16string> syntaxLines) noexcept
    : title_(std::move(title)), syntaxType_(syntaxType), syntaxLines_(std::move(syntaxLines)) {}

SeeAlso::SeeAlso(std::u16string url, std::u16string name) noexcept : url_(std::move(url)), name_(std::move(name)) {}

Example::Example(std::u16string url, std::u16string openCommand, std::u16string title) noexcept
    : url_(std::move(url)), openCommand_(std::move(openCommand)), title_(std::move(title)) {}

RefEntity::RefEntity(RefEntityType::Value entityType, std::u16string name, FunctionType::Value functionType) noexcept
    : entityType_(entityType), name_(std::move(name)), functionType_(functionType) {}

RefItem::RefItem(std::u16string href, std::vector<RefEntity> entities, std::u16string packageName,
                 std::u16string purpose, std::u16string introduced, std::u16string description,
                 std::u16string thumbnailFileRef, std::u16string thumbnailAltText,
                 DeprecationStatus::Value deprecationStatus, std::vector<SyntaxGroup> syntaxGroups,
                 std::vector<InputGroup> inputGroups, std::vector<Output> outputs,
                 std::vector<ClassPropertyGroup> classPropertyGroups, std::vector<SeeAlso> seeAlso,
                 std::vector<Example> examples, std::vector<Parameter> parameters) noexcept
    : href_(std::move(href)), entities_(std::move(entities)), packageName_(std::move(packageName)),
      purpose_(std::move(purpose)), introduced_(std::move(introduced)), description_(std::move(description)),
      thumbnailFileRef_(std::move(thumbnailFileRef)), thumbnailAltText_(std::move(thumbnailAltText)),
      deprecationStatus_(deprecationStatus), syntaxGroups_(std::move(syntaxGroups)),
      inputGroups_(std::move(inputGroups)), outputs_(std::move(outputs)),
      classPropertyGroups_(std::move(classPropertyGroups)), seeAlso_(std::move(seeAlso)),
      examples_(std::move(examples)), parameters_(std::move(parameters)) {}

} // namespace reference::property
