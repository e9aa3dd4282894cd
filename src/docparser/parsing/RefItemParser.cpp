#include "docparser/parsing/RefItemParser.hpp"

#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace reference::docparser {

namespace {

using detail::StringParsingType;
using namespace reference::property;

// Pages that document a block give their inputs and class properties display names, which may
// be any text; every other page names its members with identifiers, read as ASCII.
static_assert(RefEntityType::Block == 12, "block pages switch member names to UTF-8");

// Made on first use (thread-safe) and kept until unload.
const std::u16string& propertyAnchorPrefix() {
    static const std::u16string prefix(u"#prop_");
    return prefix;
}

// href + "#" + the ASCII html id, built at its final size.
std::u16string argumentAnchor(const std::u16string& href, std::string_view htmlId) {
    std::u16string anchor(href.size() + 1 + htmlId.size(), u'\0');
    href.copy(anchor.data(), href.size());
    anchor[href.size()] = u'#';
    text::widenAscii(htmlId, anchor.data() + href.size() + 1);
    return anchor;
}

std::u16string propertyAnchor(const std::u16string& href, const std::u16string& name) {
    const std::u16string& prefix = propertyAnchorPrefix();
    std::u16string anchor;
    anchor.reserve(href.size() + prefix.size() + name.size());
    anchor.append(href).append(prefix).append(name);
    return anchor;
}

// Reads the optional array `key` of `item` into a list reserved to the array's length, one
// record per element; every element must be an object. An absent key gives an empty list.
template <class Record, class ReadOne>
std::vector<Record> readObjectList(const boost::json::object& item, std::string_view key, ReadOne&& readOne) {
    std::vector<Record> records;
    if (const auto* array = detail::optionalArray(item, key)) {
        records.reserve(array->size());
        for (const auto& element : *array) {
            readOne(records, detail::asObject(element));
        }
    }
    return records;
}

struct Entities {
    std::vector<RefEntity> list;
    StringParsingType memberNameParsing = StringParsingType::Ascii;
};

Entities parseEntities(const boost::json::object& item) {
    Entities entities;
    entities.list = readObjectList<RefEntity>(item, keys::kRefEntity, [&entities](auto& list, const auto& entity) {
        const auto type = detail::readEnum<RefEntityType>(entity, keys::kType);
        const auto functionType = detail::readEnum<FunctionType>(entity, keys::kFcnType);
        auto name = detail::requireString(entity, keys::kName, StringParsingType::Utf8);
        if (type == RefEntityType::Block) {
            entities.memberNameParsing = StringParsingType::Utf8;
        }
        list.emplace_back(type, std::move(name), functionType);
    });
    return entities;
}

std::vector<InputGroup> parseInputGroups(const boost::json::object& item, const std::u16string& href,
                                         StringParsingType memberNameParsing) {
    std::vector<InputGroup> groups;
    const auto* array = detail::optionalArray(item, keys::kInputGroup);
    if (array == nullptr) {
        return groups;
    }
    groups.reserve(array->size());
    for (const auto& element : *array) {
        const auto& group = detail::asObject(element);
        const auto* pairs = detail::optionalArray(group, keys::kNameValuePairs);
        if (pairs == nullptr) {
            groups.push_back(parseInputGroup(group, href, memberNameParsing, false));
            continue;
        }
        // Each element of "namevaluepairs" is a group of its own; the holder's own inputs and
        // title are not read. Room for them grows geometrically: reserving exactly the running
        // count each time would move every group again per holder, quadratic in their number.
        if (const std::size_t needed = groups.size() + pairs->size(); needed > groups.capacity()) {
            groups.reserve(std::max(needed, 2 * groups.capacity()));
        }
        for (const auto& pairGroup : *pairs) {
            groups.push_back(parseInputGroup(detail::asObject(pairGroup), href, memberNameParsing, true));
        }
    }
    return groups;
}

std::vector<Output> parseOutputs(const boost::json::object& item, const std::u16string& href) {
    return readObjectList<Output>(item, keys::kOutputs, [&href](auto& outputs, const auto& output) {
        const auto syntaxType = detail::readEnum<SyntaxType>(output, keys::kSyntaxType);
        outputs.emplace_back(parseObjectInfo(output, href, StringParsingType::Utf8), syntaxType);
    });
}

std::vector<ClassPropertyGroup> parseClassPropertyGroups(const boost::json::object& item, const std::u16string& href,
                                                         StringParsingType memberNameParsing) {
    return readObjectList<ClassPropertyGroup>(item, keys::kClassPropertyGroup, [&](auto& groups, const auto& group) {
        auto title = detail::optionalString(group, keys::kTitle, StringParsingType::Utf8);
        const auto& propertyArray = detail::requireArray(group, keys::kClassProperty);
        std::vector<ClassProperty> properties;
        properties.reserve(propertyArray.size());
        for (const auto& propertyElement : propertyArray) {
            const auto& property = detail::asObject(propertyElement);
            auto name = detail::requireString(property, keys::kName, memberNameParsing);
            // Property anchors follow the name; "htmlid" is not consulted.
            auto anchor = propertyAnchor(href, name);
            auto info = makeObjectInfo(property, std::move(name), std::move(anchor));
            auto defaultValue = detail::optionalString(property, keys::kDefaultValue, StringParsingType::Utf8);
            properties.emplace_back(std::move(info), std::move(defaultValue));
        }
        groups.emplace_back(std::move(title), std::move(properties));
    });
}

std::vector<SeeAlso> parseSeeAlso(const boost::json::object& item) {
    return readObjectList<SeeAlso>(item, keys::kSeeAlso, [](auto& links, const auto& link) {
        auto url = detail::requireString(link, keys::kUrl, StringParsingType::Ascii);
        auto name = detail::requireString(link, keys::kName, StringParsingType::Utf8);
        links.emplace_back(std::move(url), std::move(name));
    });
}

std::vector<Example> parseExamples(const boost::json::object& item) {
    return readObjectList<Example>(item, keys::kExamples, [](auto& examples, const auto& example) {
        auto url = detail::requireString(example, keys::kUrl, StringParsingType::Ascii);
        auto openCommand = detail::optionalString(example, keys::kOpenCommand, StringParsingType::Ascii);
        auto title = detail::requireString(example, keys::kTitle, StringParsingType::Utf8);
        examples.emplace_back(std::move(url), std::move(openCommand), std::move(title));
    });
}

std::vector<Parameter> parseParameters(const boost::json::object& item, const std::u16string& href) {
    return readObjectList<Parameter>(item, keys::kParameters, [&href](auto& parameters, const auto& parameter) {
        auto defaultValue = detail::optionalString(parameter, keys::kDefaultValue, StringParsingType::Utf8);
        parameters.emplace_back(parseObjectInfo(parameter, href, StringParsingType::Utf8), std::move(defaultValue));
    });
}

} // namespace

ObjectInfo makeObjectInfo(const boost::json::object& object, std::u16string&& name, std::u16string&& anchor) {
    auto purpose = detail::requireString(object, keys::kPurpose, StringParsingType::Utf8);
    std::vector<std::u16string> values;
    if (const auto* array = detail::optionalArray(object, keys::kValue)) {
        values.reserve(array->size());
        for (const auto& value : *array) {
            values.push_back(detail::toUtf16(detail::asStringBytes(value), StringParsingType::Utf8));
        }
    }
    return ObjectInfo(std::move(name), std::move(purpose), std::move(values), std::move(anchor));
}

ObjectInfo makeObjectInfo(const boost::json::object& object, const std::u16string& name,
                          const std::u16string& anchor) {
    return makeObjectInfo(object, std::u16string(name), std::u16string(anchor));
}

ObjectInfo parseObjectInfo(const boost::json::object& object, const std::u16string& href,
                           StringParsingType nameParsing) {
    std::string_view htmlId;
    if (const auto* member = object.if_contains(keys::kHtmlId)) {
        htmlId = detail::asStringBytes(*member, keys::kHtmlId);
    }
    auto anchor = argumentAnchor(href, htmlId);
    auto name = detail::requireString(object, keys::kName, nameParsing);
    return makeObjectInfo(object, std::move(name), std::move(anchor));
}

InputGroup parseInputGroup(const boost::json::object& group, const std::u16string& href,
                           StringParsingType nameParsing, bool isNameValuePair) {
    std::vector<Input> inputs;
    if (const auto* array = detail::optionalArray(group, keys::kInputs)) {
        inputs.reserve(array->size());
        for (const auto& element : *array) {
            const auto& input = detail::asObject(element);
            auto defaultValue = detail::optionalString(input, keys::kDefaultValue, StringParsingType::Utf8);
            const auto syntaxType = detail::readEnum<SyntaxType>(input, keys::kSyntaxType);
            inputs.emplace_back(parseObjectInfo(input, href, nameParsing), syntaxType, std::move(defaultValue),
                                isNameValuePair);
        }
    }
    auto title = detail::requireString(group, keys::kTitle, StringParsingType::Utf8);
    return InputGroup(std::move(title), std::move(inputs));
}

std::vector<SyntaxGroup> parseSyntaxGroups(const boost::json::object& item) {
    return readObjectList<SyntaxGroup>(item, keys::kSyntaxGroup, [](auto& groups, const auto& group) {
        const auto syntaxType = detail::readEnum<SyntaxType>(group, keys::kSyntaxType);
        auto title = detail::requireString(group, keys::kTitle, StringParsingType::Utf8);
        const auto& lineArray = detail::requireArray(group, keys::kSyntax);
        std::vector<std::u16string> lines;
        lines.reserve(lineArray.size());
        for (const auto& line : lineArray) {
            // Syntax lines are code, read as ASCII without a scan.
            lines.push_back(detail::toUtf16(detail::asStringBytes(line), StringParsingType::Ascii));
        }
        groups.emplace_back(std::move(title), syntaxType, std::move(lines));
    });
}

DocResource<RefItem> parseRefItemDocument(const boost::json::value& document) {
    const auto& object = detail::asObject(document);
    auto header = detail::readHeader(object);
    const auto& items = detail::requireArray(object, keys::kRefItems);

    DocResource<RefItem>::ItemMap byHref;
    auto hint = byHref.end();
    for (const auto& element : items) {
        const auto& item = detail::asObject(element);
        auto href = detail::requireString(item, keys::kHref, StringParsingType::Ascii);
        auto purpose = detail::requireString(item, keys::kRefPurpose, StringParsingType::Utf8);
        auto entities = parseEntities(item);
        auto packageName = detail::optionalString(item, keys::kPackageName, StringParsingType::Ascii);
        auto introduced = detail::optionalString(item, keys::kIntroduced, StringParsingType::Ascii);
        auto description = detail::optionalString(item, keys::kDescription, StringParsingType::Utf8);

        std::u16string thumbnailFileRef;
        std::u16string thumbnailAltText;
        if (const auto* member = item.if_contains(keys::kAppThumbnail)) {
            const auto& thumbnail = detail::asObject(*member, keys::kAppThumbnail);
            thumbnailFileRef = detail::requireString(thumbnail, keys::kFileRef, StringParsingType::Ascii);
            thumbnailAltText = detail::requireString(thumbnail, keys::kAlt, StringParsingType::Utf8);
        }

        const auto deprecationStatus = detail::readEnum<DeprecationStatus>(item, keys::kDeprecationStatus);
        auto syntaxGroups = parseSyntaxGroups(item);
        auto inputGroups = parseInputGroups(item, href, entities.memberNameParsing);
        auto outputs = parseOutputs(item, href);
        auto classPropertyGroups = parseClassPropertyGroups(item, href, entities.memberNameParsing);
        auto seeAlso = parseSeeAlso(item);
        auto examples = parseExamples(item);
        auto parameters = parseParameters(item, href);

        hint = byHref.try_emplace(hint, href);
        hint->second.emplace_back(std::move(href), std::move(entities.list), std::move(packageName),
                                  std::move(purpose), std::move(introduced), std::move(description),
                                  std::move(thumbnailFileRef), std::move(thumbnailAltText), deprecationStatus,
                                  std::move(syntaxGroups), std::move(inputGroups), std::move(outputs),
                                  std::move(classPropertyGroups), std::move(seeAlso), std::move(examples),
                                  std::move(parameters));
    }
    return DocResource<RefItem>(std::move(header), std::move(byHref));
}

} // namespace reference::docparser
