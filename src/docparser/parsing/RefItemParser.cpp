#include "docparser/parsing/RefItemParser.hpp"

#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
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

// Every object of a page is read through its members found in one pass over it: a page item has
// a dozen keys, and a search per key went over it a dozen times.
enum ItemMember : std::size_t {
    kItemHref,
    kItemPurpose,
    kItemEntities,
    kItemPackageName,
    kItemIntroduced,
    kItemDescription,
    kItemThumbnail,
    kItemDeprecationStatus,
    kItemSyntaxGroups,
    kItemInputGroups,
    kItemOutputs,
    kItemClassPropertyGroups,
    kItemSeeAlso,
    kItemExamples,
    kItemParameters,
};
const detail::MemberLookup<15> kItemMembers({keys::kHref, keys::kRefPurpose, keys::kRefEntity, keys::kPackageName,
                                             keys::kIntroduced, keys::kDescription, keys::kAppThumbnail,
                                             keys::kDeprecationStatus, keys::kSyntaxGroup, keys::kInputGroup,
                                             keys::kOutputs, keys::kClassPropertyGroup, keys::kSeeAlso, keys::kExamples,
                                             keys::kParameters});

// Inputs, outputs, parameters and class properties share these.
enum ArgumentMember : std::size_t { kArgName, kArgPurpose, kArgValues, kArgHtmlId, kArgDefaultValue, kArgSyntaxType };
const detail::MemberLookup<6> kArgumentMembers({keys::kName, keys::kPurpose, keys::kValue, keys::kHtmlId,
                                                keys::kDefaultValue, keys::kSyntaxType});
using ArgumentMembers = detail::MemberLookup<6>::Members;

enum GroupMember : std::size_t { kGroupTitle, kGroupInputs, kGroupNameValuePairs, kGroupProperties };
const detail::MemberLookup<4> kGroupMembers({keys::kTitle, keys::kInputs, keys::kNameValuePairs, keys::kClassProperty});
using GroupMembers = detail::MemberLookup<4>::Members;

enum EntityMember : std::size_t { kEntityType, kEntityFcnType, kEntityName };
const detail::MemberLookup<3> kEntityMembers({keys::kType, keys::kFcnType, keys::kName});

enum SyntaxMember : std::size_t { kSyntaxType, kSyntaxTitle, kSyntaxLines };
const detail::MemberLookup<3> kSyntaxMembers({keys::kSyntaxType, keys::kTitle, keys::kSyntax});

enum LinkMember : std::size_t { kLinkUrl, kLinkName, kLinkTitle, kLinkOpenCommand, kLinkFileRef, kLinkAlt };
const detail::MemberLookup<6> kLinkMembers({keys::kUrl, keys::kName, keys::kTitle, keys::kOpenCommand, keys::kFileRef,
                                            keys::kAlt});

// Reads the optional array `key` (its member, nullptr when absent) into a list reserved to the
// array's length, one record per element; every element must be an object. An absent key gives
// an empty list.
template <class Record, class ReadOne>
std::vector<Record> readObjectList(const boost::json::value* member, std::string_view key, ReadOne&& readOne) {
    std::vector<Record> records;
    if (const auto* array = detail::optionalArray(member, key)) {
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

Entities parseEntities(const boost::json::value* entityList) {
    Entities entities;
    entities.list =
        readObjectList<RefEntity>(entityList, keys::kRefEntity, [&entities](auto& list, const auto& entity) {
            const auto member = kEntityMembers.find(entity);
            const auto type = detail::readEnum<RefEntityType>(member[kEntityType], keys::kType);
            const auto functionType = detail::readEnum<FunctionType>(member[kEntityFcnType], keys::kFcnType);
            auto name = detail::requireString(member[kEntityName], keys::kName, StringParsingType::Utf8);
            if (type == RefEntityType::Block) {
                entities.memberNameParsing = StringParsingType::Utf8;
            }
            list.emplace_back(type, std::move(name), functionType);
        });
    return entities;
}

// The purpose and values of an argument or property around its decoded name and anchor.
ObjectInfo readObjectInfo(const ArgumentMembers& member, std::u16string&& name, std::u16string&& anchor) {
    auto purpose = detail::requireString(member[kArgPurpose], keys::kPurpose, StringParsingType::Utf8);
    std::vector<std::u16string> values;
    if (const auto* array = detail::optionalArray(member[kArgValues], keys::kValue)) {
        values.reserve(array->size());
        for (const auto& value : *array) {
            values.push_back(detail::toUtf16(detail::asStringBytes(value), StringParsingType::Utf8));
        }
    }
    return ObjectInfo(std::move(name), std::move(purpose), std::move(values), std::move(anchor));
}

// An input, output or parameter: anchor href + "#" + "htmlid", name decoded with `nameParsing`.
ObjectInfo readArgument(const ArgumentMembers& member, const std::u16string& href, StringParsingType nameParsing) {
    std::string_view htmlId;
    if (const boost::json::value* id = member[kArgHtmlId]) {
        htmlId = detail::asStringBytes(*id, keys::kHtmlId);
    }
    auto anchor = argumentAnchor(href, htmlId);
    auto name = detail::requireString(member[kArgName], keys::kName, nameParsing);
    return readObjectInfo(member, std::move(name), std::move(anchor));
}

InputGroup readInputGroup(const GroupMembers& member, const std::u16string& href, StringParsingType nameParsing,
                          bool isNameValuePair) {
    std::vector<Input> inputs;
    if (const auto* array = detail::optionalArray(member[kGroupInputs], keys::kInputs)) {
        inputs.reserve(array->size());
        for (const auto& element : *array) {
            const auto input = kArgumentMembers.find(detail::asObject(element));
            auto defaultValue =
                detail::optionalString(input[kArgDefaultValue], keys::kDefaultValue, StringParsingType::Utf8);
            const auto syntaxType = detail::readEnum<SyntaxType>(input[kArgSyntaxType], keys::kSyntaxType);
            inputs.emplace_back(readArgument(input, href, nameParsing), syntaxType, std::move(defaultValue),
                                isNameValuePair);
        }
    }
    auto title = detail::requireString(member[kGroupTitle], keys::kTitle, StringParsingType::Utf8);
    return InputGroup(std::move(title), std::move(inputs));
}

std::vector<InputGroup> parseInputGroups(const boost::json::value* groupList, const std::u16string& href,
                                         StringParsingType memberNameParsing) {
    std::vector<InputGroup> groups;
    const auto* array = detail::optionalArray(groupList, keys::kInputGroup);
    if (array == nullptr) {
        return groups;
    }
    groups.reserve(array->size());
    for (const auto& element : *array) {
        const auto group = kGroupMembers.find(detail::asObject(element));
        const auto* pairs = detail::optionalArray(group[kGroupNameValuePairs], keys::kNameValuePairs);
        if (pairs == nullptr) {
            groups.push_back(readInputGroup(group, href, memberNameParsing, false));
            continue;
        }
        // Each element of "namevaluepairs" is a group of its own; the holder's own inputs and
        // title are not read. Room for them grows geometrically: reserving exactly the running
        // count each time would move every group again per holder, quadratic in their number.
        if (const std::size_t needed = groups.size() + pairs->size(); needed > groups.capacity()) {
            groups.reserve(std::max(needed, 2 * groups.capacity()));
        }
        for (const auto& pairGroup : *pairs) {
            groups.push_back(
                readInputGroup(kGroupMembers.find(detail::asObject(pairGroup)), href, memberNameParsing, true));
        }
    }
    return groups;
}

std::vector<Output> parseOutputs(const boost::json::value* outputList, const std::u16string& href) {
    return readObjectList<Output>(outputList, keys::kOutputs, [&href](auto& outputs, const auto& output) {
        const auto member = kArgumentMembers.find(output);
        const auto syntaxType = detail::readEnum<SyntaxType>(member[kArgSyntaxType], keys::kSyntaxType);
        outputs.emplace_back(readArgument(member, href, StringParsingType::Utf8), syntaxType);
    });
}

std::vector<ClassPropertyGroup> parseClassPropertyGroups(const boost::json::value* groupList,
                                                         const std::u16string& href,
                                                         StringParsingType memberNameParsing) {
    return readObjectList<ClassPropertyGroup>(
        groupList, keys::kClassPropertyGroup, [&](auto& groups, const auto& object) {
            const auto group = kGroupMembers.find(object);
            auto title = detail::optionalString(group[kGroupTitle], keys::kTitle, StringParsingType::Utf8);
            const auto& propertyArray = detail::requireArray(group[kGroupProperties], keys::kClassProperty);
            std::vector<ClassProperty> properties;
            properties.reserve(propertyArray.size());
            for (const auto& propertyElement : propertyArray) {
                const auto property = kArgumentMembers.find(detail::asObject(propertyElement));
                auto name = detail::requireString(property[kArgName], keys::kName, memberNameParsing);
                // Property anchors follow the name; "htmlid" is not consulted.
                auto anchor = propertyAnchor(href, name);
                auto info = readObjectInfo(property, std::move(name), std::move(anchor));
                auto defaultValue =
                    detail::optionalString(property[kArgDefaultValue], keys::kDefaultValue, StringParsingType::Utf8);
                properties.emplace_back(std::move(info), std::move(defaultValue));
            }
            groups.emplace_back(std::move(title), std::move(properties));
        });
}

std::vector<SeeAlso> parseSeeAlso(const boost::json::value* linkList) {
    return readObjectList<SeeAlso>(linkList, keys::kSeeAlso, [](auto& links, const auto& link) {
        const auto member = kLinkMembers.find(link);
        auto url = detail::requireString(member[kLinkUrl], keys::kUrl, StringParsingType::Ascii);
        auto name = detail::requireString(member[kLinkName], keys::kName, StringParsingType::Utf8);
        links.emplace_back(std::move(url), std::move(name));
    });
}

std::vector<Example> parseExamples(const boost::json::value* exampleList) {
    return readObjectList<Example>(exampleList, keys::kExamples, [](auto& examples, const auto& example) {
        const auto member = kLinkMembers.find(example);
        auto url = detail::requireString(member[kLinkUrl], keys::kUrl, StringParsingType::Ascii);
        auto openCommand =
            detail::optionalString(member[kLinkOpenCommand], keys::kOpenCommand, StringParsingType::Ascii);
        auto title = detail::requireString(member[kLinkTitle], keys::kTitle, StringParsingType::Utf8);
        examples.emplace_back(std::move(url), std::move(openCommand), std::move(title));
    });
}

std::vector<Parameter> parseParameters(const boost::json::value* parameterList, const std::u16string& href) {
    return readObjectList<Parameter>(
        parameterList, keys::kParameters, [&href](auto& parameters, const auto& parameter) {
            const auto member = kArgumentMembers.find(parameter);
            auto defaultValue =
                detail::optionalString(member[kArgDefaultValue], keys::kDefaultValue, StringParsingType::Utf8);
            parameters.emplace_back(readArgument(member, href, StringParsingType::Utf8), std::move(defaultValue));
        });
}

std::vector<SyntaxGroup> readSyntaxGroups(const boost::json::value* groupList) {
    return readObjectList<SyntaxGroup>(groupList, keys::kSyntaxGroup, [](auto& groups, const auto& group) {
        const auto member = kSyntaxMembers.find(group);
        const auto syntaxType = detail::readEnum<SyntaxType>(member[kSyntaxType], keys::kSyntaxType);
        auto title = detail::requireString(member[kSyntaxTitle], keys::kTitle, StringParsingType::Utf8);
        const auto& lineArray = detail::requireArray(member[kSyntaxLines], keys::kSyntax);
        std::vector<std::u16string> lines;
        lines.reserve(lineArray.size());
        for (const auto& line : lineArray) {
            // Syntax lines are code, read as ASCII without a scan.
            lines.push_back(detail::toUtf16(detail::asStringBytes(line), StringParsingType::Ascii));
        }
        groups.emplace_back(std::move(title), syntaxType, std::move(lines));
    });
}

// ---- checks without building -------------------------------------------------------------
//
// The same reads as above, in the same order, keeping only what can fail: a page that is checked
// fails exactly where reading it would. Loaders use this for pages they would discard.

void checkString(detail::FoundMember member, std::string_view key) {
    detail::asStringBytes(detail::requireMember(member, key), key);
}

// Optional strings and enumerations alike: only a member of the wrong kind fails.
void checkOptionalString(const boost::json::value* member, std::string_view key) {
    if (member != nullptr) {
        detail::asStringBytes(*member, key);
    }
}

template <class CheckOne>
void checkObjectList(const boost::json::value* member, std::string_view key, CheckOne&& checkOne) {
    if (const auto* array = detail::optionalArray(member, key)) {
        for (const auto& element : *array) {
            checkOne(detail::asObject(element));
        }
    }
}

void checkObjectInfo(const ArgumentMembers& member) {
    checkString(member[kArgPurpose], keys::kPurpose);
    if (const auto* array = detail::optionalArray(member[kArgValues], keys::kValue)) {
        for (const auto& value : *array) {
            detail::asStringBytes(value);
        }
    }
}

void checkArgument(const ArgumentMembers& member) {
    checkOptionalString(member[kArgHtmlId], keys::kHtmlId);
    checkString(member[kArgName], keys::kName);
    checkObjectInfo(member);
}

void checkInputGroup(const GroupMembers& group) {
    checkObjectList(group[kGroupInputs], keys::kInputs, [](const auto& object) {
        const auto input = kArgumentMembers.find(object);
        checkOptionalString(input[kArgDefaultValue], keys::kDefaultValue);
        checkOptionalString(input[kArgSyntaxType], keys::kSyntaxType);
        checkArgument(input);
    });
    checkString(group[kGroupTitle], keys::kTitle);
}

void checkItem(const detail::MemberLookup<15>::Members& member) {
    checkString(member[kItemHref], keys::kHref);
    checkString(member[kItemPurpose], keys::kRefPurpose);
    checkObjectList(member[kItemEntities], keys::kRefEntity, [](const auto& object) {
        const auto entity = kEntityMembers.find(object);
        checkOptionalString(entity[kEntityType], keys::kType);
        checkOptionalString(entity[kEntityFcnType], keys::kFcnType);
        checkString(entity[kEntityName], keys::kName);
    });
    checkOptionalString(member[kItemPackageName], keys::kPackageName);
    checkOptionalString(member[kItemIntroduced], keys::kIntroduced);
    checkOptionalString(member[kItemDescription], keys::kDescription);
    if (const boost::json::value* thumbnailMember = member[kItemThumbnail]) {
        const auto thumbnail = kLinkMembers.find(detail::asObject(*thumbnailMember, keys::kAppThumbnail));
        checkString(thumbnail[kLinkFileRef], keys::kFileRef);
        checkString(thumbnail[kLinkAlt], keys::kAlt);
    }
    checkOptionalString(member[kItemDeprecationStatus], keys::kDeprecationStatus);
    checkObjectList(member[kItemSyntaxGroups], keys::kSyntaxGroup, [](const auto& object) {
        const auto group = kSyntaxMembers.find(object);
        checkOptionalString(group[kSyntaxType], keys::kSyntaxType);
        checkString(group[kSyntaxTitle], keys::kTitle);
        for (const auto& line : detail::requireArray(group[kSyntaxLines], keys::kSyntax)) {
            detail::asStringBytes(line);
        }
    });
    checkObjectList(member[kItemInputGroups], keys::kInputGroup, [](const auto& object) {
        const auto group = kGroupMembers.find(object);
        const auto* pairs = detail::optionalArray(group[kGroupNameValuePairs], keys::kNameValuePairs);
        if (pairs == nullptr) {
            checkInputGroup(group);
            return;
        }
        for (const auto& pairGroup : *pairs) {
            checkInputGroup(kGroupMembers.find(detail::asObject(pairGroup)));
        }
    });
    checkObjectList(member[kItemOutputs], keys::kOutputs, [](const auto& object) {
        const auto output = kArgumentMembers.find(object);
        checkOptionalString(output[kArgSyntaxType], keys::kSyntaxType);
        checkArgument(output);
    });
    checkObjectList(member[kItemClassPropertyGroups], keys::kClassPropertyGroup, [](const auto& object) {
        const auto group = kGroupMembers.find(object);
        checkOptionalString(group[kGroupTitle], keys::kTitle);
        for (const auto& element : detail::requireArray(group[kGroupProperties], keys::kClassProperty)) {
            const auto property = kArgumentMembers.find(detail::asObject(element));
            checkString(property[kArgName], keys::kName);
            checkObjectInfo(property);
            checkOptionalString(property[kArgDefaultValue], keys::kDefaultValue);
        }
    });
    checkObjectList(member[kItemSeeAlso], keys::kSeeAlso, [](const auto& object) {
        const auto link = kLinkMembers.find(object);
        checkString(link[kLinkUrl], keys::kUrl);
        checkString(link[kLinkName], keys::kName);
    });
    checkObjectList(member[kItemExamples], keys::kExamples, [](const auto& object) {
        const auto example = kLinkMembers.find(object);
        checkString(example[kLinkUrl], keys::kUrl);
        checkOptionalString(example[kLinkOpenCommand], keys::kOpenCommand);
        checkString(example[kLinkTitle], keys::kTitle);
    });
    checkObjectList(member[kItemParameters], keys::kParameters, [](const auto& object) {
        const auto parameter = kArgumentMembers.find(object);
        checkOptionalString(parameter[kArgDefaultValue], keys::kDefaultValue);
        checkArgument(parameter);
    });
}

} // namespace

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

// The map entry for a page's href, found or made next to `previous`, the entry the last page went
// to. Page files are mostly in link order, with a link now and then a little out of it: a link is
// usually `previous`'s own (a page with several entries), right after it, or right before it,
// and only links far out of order take the map's search. The result is that of an ordinary
// find-or-insert.
DocResource<RefItem>::ItemMap::iterator pageEntry(DocResource<RefItem>::ItemMap& pages,
                                                  DocResource<RefItem>::ItemMap::iterator previous,
                                                  const std::u16string& href) {
    if (previous == pages.end()) {
        return pages.try_emplace(pages.end(), href);
    }
    const int order = text::compareText(previous->first, href);
    if (order == 0) {
        return previous;
    }
    return pages.try_emplace(order < 0 ? std::next(previous) : previous, href);
}

ObjectInfo makeObjectInfo(const boost::json::object& object, std::u16string&& name, std::u16string&& anchor) {
    return readObjectInfo(kArgumentMembers.find(object), std::move(name), std::move(anchor));
}

ObjectInfo makeObjectInfo(const boost::json::object& object, const std::u16string& name, const std::u16string& anchor) {
    return makeObjectInfo(object, std::u16string(name), std::u16string(anchor));
}

ObjectInfo parseObjectInfo(const boost::json::object& object, const std::u16string& href,
                           StringParsingType nameParsing) {
    return readArgument(kArgumentMembers.find(object), href, nameParsing);
}

InputGroup parseInputGroup(const boost::json::object& group, const std::u16string& href, StringParsingType nameParsing,
                           bool isNameValuePair) {
    return readInputGroup(kGroupMembers.find(group), href, nameParsing, isNameValuePair);
}

std::vector<SyntaxGroup> parseSyntaxGroups(const boost::json::object& item) {
    return readSyntaxGroups(item.if_contains(keys::kSyntaxGroup));
}

DocResource<RefItem> parseRefItemDocument(const boost::json::value& document) {
    return parseRefItemDocument(document, PageSelector());
}

DocResource<RefItem> parseRefItemDocument(const boost::json::value& document, const PageSelector& select) {
    const auto& object = detail::asObject(document);
    auto header = detail::readHeader(object);
    const auto& items = detail::requireArray(object, keys::kRefItems);
    const PageSelection selection = select ? select(header) : PageSelection();

    DocResource<RefItem>::ItemMap byHref;
    auto hint = byHref.end();
    std::u16string replacedHref; // reused: deciding to skip a page allocates nothing
    for (const auto& element : items) {
        const auto member = kItemMembers.find(detail::asObject(element));
        if (selection.dropDocument) {
            checkItem(member);
            continue;
        }
        if (selection.replacedPages != nullptr) {
            const auto hrefBytes =
                detail::asStringBytes(detail::requireMember(member[kItemHref], keys::kHref), keys::kHref);
            replacedHref.resize(hrefBytes.size());
            text::widenAscii(hrefBytes, replacedHref.data());
            if (selection.replacedPages->contains(replacedHref)) {
                checkItem(member);
                continue;
            }
        }
        auto href = detail::requireString(member[kItemHref], keys::kHref, StringParsingType::Ascii);
        auto purpose = detail::requireString(member[kItemPurpose], keys::kRefPurpose, StringParsingType::Utf8);
        auto entities = parseEntities(member[kItemEntities]);
        auto packageName =
            detail::optionalString(member[kItemPackageName], keys::kPackageName, StringParsingType::Ascii);
        auto introduced = detail::optionalString(member[kItemIntroduced], keys::kIntroduced, StringParsingType::Ascii);
        auto description =
            detail::optionalString(member[kItemDescription], keys::kDescription, StringParsingType::Utf8);

        std::u16string thumbnailFileRef;
        std::u16string thumbnailAltText;
        if (const boost::json::value* thumbnailMember = member[kItemThumbnail]) {
            const auto thumbnail = kLinkMembers.find(detail::asObject(*thumbnailMember, keys::kAppThumbnail));
            thumbnailFileRef = detail::requireString(thumbnail[kLinkFileRef], keys::kFileRef, StringParsingType::Ascii);
            thumbnailAltText = detail::requireString(thumbnail[kLinkAlt], keys::kAlt, StringParsingType::Utf8);
        }

        const auto deprecationStatus =
            detail::readEnum<DeprecationStatus>(member[kItemDeprecationStatus], keys::kDeprecationStatus);
        auto syntaxGroups = readSyntaxGroups(member[kItemSyntaxGroups]);
        auto inputGroups = parseInputGroups(member[kItemInputGroups], href, entities.memberNameParsing);
        auto outputs = parseOutputs(member[kItemOutputs], href);
        auto classPropertyGroups =
            parseClassPropertyGroups(member[kItemClassPropertyGroups], href, entities.memberNameParsing);
        auto seeAlso = parseSeeAlso(member[kItemSeeAlso]);
        auto examples = parseExamples(member[kItemExamples]);
        auto parameters = parseParameters(member[kItemParameters], href);

        hint = pageEntry(byHref, hint, href);
        hint->second.emplace_back(std::move(href), std::move(entities.list), std::move(packageName), std::move(purpose),
                                  std::move(introduced), std::move(description), std::move(thumbnailFileRef),
                                  std::move(thumbnailAltText), deprecationStatus, std::move(syntaxGroups),
                                  std::move(inputGroups), std::move(outputs), std::move(classPropertyGroups),
                                  std::move(seeAlso), std::move(examples), std::move(parameters));
    }
    return DocResource<RefItem>(std::move(header), std::move(byHref));
}

} // namespace reference::docparser
