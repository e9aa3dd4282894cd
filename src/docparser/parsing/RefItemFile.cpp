#include "docparser/parsing/RefItemFile.hpp"

#include "docparser/diagnostics/DiagnosticHooks.hpp"
#include "docparser/parsing/EventReader.hpp"
#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"
#include "docparser/parsing/RefItemParser.hpp"
#include "docparser/parsing/ResourceText.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <boost/json/monotonic_resource.hpp>

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace reference::docparser {

using RefItemFileMap = DocResourceParser::RefItemFileMap;

RefItemFileMap parseRefItemFileTree(const std::string& text, const RefItemFileMap* replacement) {
    RefItemFileMap result;
    boost::json::monotonic_resource arena(1024);
    const boost::json::value root = parseResourceText(text, &arena);
    const diagnostics::WatchedDocument watch(root);

    const auto replacedPages =
        [replacement](const std::u16string& key) -> const DocResource<property::RefItem>::ItemMap* {
        if (replacement == nullptr) {
            return nullptr;
        }
        const auto found = replacement->find(key);
        return found == replacement->end() ? nullptr : &found->second.getItems();
    };

    DocResource<property::RefItem> mainDocument = parseRefItemDocument(root, [&](const property::HeaderInfo& header) {
        return PageSelection{false, replacedPages(header.getHelpFolder())};
    });
    result.try_emplace(mainDocument.getHeader().getHelpFolder(), std::move(mainDocument));

    if (const auto* packages = detail::optionalArray(detail::asObject(root), keys::kSupportPackages)) {
        for (const auto& document : *packages) {
            DocResource<property::RefItem> package =
                parseRefItemDocument(document, [&](const property::HeaderInfo& header) {
                    const std::u16string key = header.getBaseCode();
                    return PageSelection{result.contains(key), replacedPages(key)};
                });
            if (!result.try_emplace(package.getHeader().getBaseCode(), std::move(package)).second) {
                diagnostics::documentKeyTaken(document, package.getHeader().getBaseCode());
            }
        }
    }
    return result;
}

// ---- the page format as the event reader's tables -----------------------------------------
//
// Two things a page's records depend on may come later in the text than what depends on them:
// the item's "href" (every argument's anchor starts with it) and its "refentity" list (a block
// page reads its input and property names as UTF-8). A page that names an argument before its
// href, or a non-ASCII member name before the entities that make it a block page, is left to
// the tree reading.

namespace {

namespace ev = events;
using namespace reference::property;
using detail::asciiField;
using detail::utf8Field;
using PageMap = DocResource<RefItem>::ItemMap;

// The file being read, and the file that will replace some of its pages.
struct PageFile {
    RefItemFileMap& result;
    const RefItemFileMap* replacement;
};

struct DocumentDraft {
    explicit DocumentDraft(PageFile* file) noexcept { reset(file); }
    explicit DocumentDraft(DocumentDraft* main) noexcept { reset(main); }

    void reset(PageFile* pageFile) noexcept { clear(pageFile, true); }
    void reset(DocumentDraft* main) noexcept { clear(main->file, false); }

    void clear(PageFile* pageFile, bool main) noexcept {
        file = pageFile;
        isMain = main;
        keySeen = replacementKnown = mayHoldReplaced = false;
        replaced = nullptr;
        productName.clear();
        baseCode.clear();
        helpFolder.clear();
        helpLocation.clear();
        items.clear();
        last = items.end();
        packages.clear();
    }

    // The pages of this document that the replacement file holds; null when none. Known once
    // the document's key (help folder or base code) has been read.
    const PageMap* replacedPages() {
        if (!replacementKnown && (file->replacement == nullptr || keySeen)) {
            replacementKnown = true;
            if (file->replacement != nullptr) {
                const auto found = file->replacement->find(isMain ? helpFolder : baseCode);
                replaced = found == file->replacement->end() ? nullptr : &found->second.getItems();
            }
        }
        return replaced;
    }

    // The document as read, without the pages the replacement holds.
    DocResource<RefItem> take() {
        if (mayHoldReplaced) {
            if (const PageMap* pages = replacedPages()) {
                std::erase_if(items, [pages](const auto& entry) { return pages->contains(entry.first); });
            }
        }
        PageMap taken = std::move(items);
        items.clear();
        last = items.end();
        return DocResource<RefItem>(
            HeaderInfo(std::move(productName), std::move(baseCode), std::move(helpFolder), std::move(helpLocation)),
            std::move(taken));
    }

    PageFile* file = nullptr;
    bool isMain = true;
    bool keySeen = false;
    bool replacementKnown = false;
    bool mayHoldReplaced = false; // pages were kept before the key told which are replaced
    const PageMap* replaced = nullptr;
    std::u16string productName;
    std::u16string baseCode;
    std::u16string helpFolder;
    std::u16string helpLocation;
    PageMap items;
    PageMap::iterator last = items.end(); // the entry the previous page went to
    std::vector<DocResource<RefItem>> packages;
};

struct ItemDraft {
    explicit ItemDraft(DocumentDraft* document) noexcept { reset(document); }

    void reset(DocumentDraft* owner) noexcept {
        document = owner;
        hrefSeen = entitiesSeen = isBlock = namesBeforeEntities = false;
        href.clear();
        purpose.clear();
        entities.clear();
        packageName.clear();
        introduced.clear();
        description.clear();
        thumbnailFileRef.clear();
        thumbnailAltText.clear();
        deprecationStatus = DeprecationStatus::getDefaultValue();
        syntaxGroups.clear();
        inputGroups.clear();
        outputs.clear();
        classPropertyGroups.clear();
        seeAlso.clear();
        examples.clear();
        parameters.clear();
    }

    DocumentDraft* document = nullptr;
    bool hrefSeen = false;
    bool entitiesSeen = false;
    bool isBlock = false;             // an entity has type Block: member names are UTF-8
    bool namesBeforeEntities = false; // a non-ASCII member name came before "refentity"
    std::u16string href;
    std::u16string purpose;
    std::vector<RefEntity> entities;
    std::u16string packageName;
    std::u16string introduced;
    std::u16string description;
    std::u16string thumbnailFileRef;
    std::u16string thumbnailAltText;
    DeprecationStatus::Value deprecationStatus = DeprecationStatus::getDefaultValue();
    std::vector<SyntaxGroup> syntaxGroups;
    std::vector<InputGroup> inputGroups;
    std::vector<Output> outputs;
    std::vector<ClassPropertyGroup> classPropertyGroups;
    std::vector<SeeAlso> seeAlso;
    std::vector<Example> examples;
    std::vector<Parameter> parameters;

    // The name of an input or class property: UTF-8 on block pages, ASCII elsewhere.
    std::u16string memberName(std::string_view bytes) {
        if (!entitiesSeen && !text::isPlainAscii(bytes)) {
            namesBeforeEntities = true;
        }
        return detail::toUtf16(bytes, isBlock ? detail::StringParsingType::Utf8 : detail::StringParsingType::Ascii);
    }
};

struct EntityDraft {
    explicit EntityDraft(ItemDraft*) noexcept {}
    RefEntityType::Value type = RefEntityType::getDefaultValue();
    FunctionType::Value functionType = FunctionType::getDefaultValue();
    std::u16string name;
};

struct ThumbnailDraft {
    explicit ThumbnailDraft(ItemDraft*) noexcept {}
    std::u16string fileRef;
    std::u16string altText;
};

struct SyntaxGroupDraft {
    explicit SyntaxGroupDraft(ItemDraft* item) noexcept { reset(item); }
    void reset(ItemDraft*) noexcept {
        type = SyntaxType::getDefaultValue();
        title.clear();
        lines.clear();
    }
    SyntaxType::Value type = SyntaxType::getDefaultValue();
    std::u16string title;
    std::vector<std::u16string> lines;
};

// An element of "inputgroup", or one of the groups in its "namevaluepairs".
struct InputGroupDraft {
    explicit InputGroupDraft(ItemDraft* owner) noexcept { reset(owner); }
    explicit InputGroupDraft(InputGroupDraft* holder) noexcept { reset(holder); }
    void reset(ItemDraft* owner) noexcept { clear(owner, false); }
    void reset(InputGroupDraft* holder) noexcept { clear(holder->item, true); }
    void clear(ItemDraft* owner, bool pairs) noexcept {
        item = owner;
        isNameValuePair = pairs;
        title.clear();
        inputs.clear();
        pairGroups.clear();
    }
    ItemDraft* item = nullptr;
    bool isNameValuePair = false;
    std::u16string title;
    std::vector<Input> inputs;
    std::vector<InputGroup> pairGroups;
};

// An input, output or parameter.
struct ArgumentDraft {
    explicit ArgumentDraft(InputGroupDraft* group) noexcept { reset(group); }
    explicit ArgumentDraft(ItemDraft* owner) noexcept { reset(owner); }
    void reset(InputGroupDraft* group) noexcept { reset(group->item); }
    void reset(ItemDraft* owner) noexcept {
        item = owner;
        name.clear();
        purpose.clear();
        values.clear();
        htmlId.clear();
        defaultValue.clear();
        syntaxType = SyntaxType::getDefaultValue();
    }

    // Every argument's anchor starts with the page's href.
    ObjectInfo take(ev::Reader& reader) {
        if (!item->hrefSeen) {
            reader.unsure();
        }
        return ObjectInfo(std::move(name), std::move(purpose), ev::takeList(values),
                          argumentAnchor(item->href, htmlId));
    }

    ItemDraft* item = nullptr;
    std::u16string name;
    std::u16string purpose;
    std::vector<std::u16string> values;
    std::string htmlId; // the raw bytes, widened into the anchor
    std::u16string defaultValue;
    SyntaxType::Value syntaxType = SyntaxType::getDefaultValue();
};

struct PropertyGroupDraft {
    explicit PropertyGroupDraft(ItemDraft* owner) noexcept { reset(owner); }
    void reset(ItemDraft* owner) noexcept {
        item = owner;
        title.clear();
        properties.clear();
    }
    ItemDraft* item = nullptr;
    std::u16string title;
    std::vector<ClassProperty> properties;
};

struct PropertyDraft {
    explicit PropertyDraft(PropertyGroupDraft* group) noexcept { reset(group); }
    void reset(PropertyGroupDraft* group) noexcept {
        item = group->item;
        name.clear();
        purpose.clear();
        values.clear();
        defaultValue.clear();
    }
    ItemDraft* item = nullptr;
    std::u16string name;
    std::u16string purpose;
    std::vector<std::u16string> values;
    std::u16string defaultValue;
};

struct SeeAlsoDraft {
    explicit SeeAlsoDraft(ItemDraft*) noexcept {}
    std::u16string url;
    std::u16string name;
};

struct ExampleDraft {
    explicit ExampleDraft(ItemDraft*) noexcept {}
    std::u16string url;
    std::u16string openCommand;
    std::u16string title;
};

// -- texts whose reading depends on the draft

void storeHelpFolder(DocumentDraft& document, std::string_view bytes, ev::Reader&) {
    document.helpFolder = asciiField(bytes);
    document.keySeen = document.keySeen || document.isMain;
}

void storeBaseCode(DocumentDraft& document, std::string_view bytes, ev::Reader&) {
    document.baseCode = asciiField(bytes);
    document.keySeen = document.keySeen || !document.isMain;
}

// A page that the replacement file holds is only checked.
void storeHref(ItemDraft& item, std::string_view bytes, ev::Reader& reader) {
    item.href = asciiField(bytes);
    item.hrefSeen = true;
    if (const PageMap* replaced = item.document->replacedPages();
        replaced != nullptr && replaced->contains(item.href)) {
        reader.discardCurrent();
    }
}

void storeInputName(ArgumentDraft& argument, std::string_view bytes, ev::Reader&) {
    argument.name = argument.item->memberName(bytes);
}

void storePropertyName(PropertyDraft& property, std::string_view bytes, ev::Reader&) {
    property.name = property.item->memberName(bytes);
}

void storeHtmlId(ArgumentDraft& argument, std::string_view bytes, ev::Reader&) { argument.htmlId.assign(bytes); }

void entitiesPresent(void* item) { static_cast<ItemDraft*>(item)->entitiesSeen = true; }

// -- records built as their objects close

void closeEntity(EntityDraft& entity, ItemDraft& item, std::uint32_t, ev::Reader&) {
    // Pages that document a block name their inputs and class properties with display names.
    item.isBlock = item.isBlock || entity.type == RefEntityType::Block;
    item.entities.emplace_back(entity.type, std::move(entity.name), entity.functionType);
}

void closeThumbnail(ThumbnailDraft& thumbnail, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.thumbnailFileRef = std::move(thumbnail.fileRef);
    item.thumbnailAltText = std::move(thumbnail.altText);
}

void closeSyntaxGroup(SyntaxGroupDraft& group, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.syntaxGroups.emplace_back(std::move(group.title), group.type, ev::takeList(group.lines));
}

void closeInput(ArgumentDraft& input, InputGroupDraft& group, std::uint32_t, ev::Reader& reader) {
    auto info = input.take(reader);
    group.inputs.emplace_back(std::move(info), input.syntaxType, std::move(input.defaultValue), group.isNameValuePair);
}

void closePairGroup(InputGroupDraft& group, InputGroupDraft& holder, std::uint32_t, ev::Reader&) {
    holder.pairGroups.emplace_back(std::move(group.title), ev::takeList(group.inputs));
}

void closeOutput(ArgumentDraft& output, ItemDraft& item, std::uint32_t, ev::Reader& reader) {
    item.outputs.emplace_back(output.take(reader), output.syntaxType);
}

void closeParameter(ArgumentDraft& parameter, ItemDraft& item, std::uint32_t, ev::Reader& reader) {
    auto info = parameter.take(reader);
    item.parameters.emplace_back(std::move(info), std::move(parameter.defaultValue));
}

void closeProperty(PropertyDraft& property, PropertyGroupDraft& group, std::uint32_t, ev::Reader& reader) {
    if (!property.item->hrefSeen) {
        reader.unsure();
    }
    auto anchor = propertyAnchor(property.item->href, property.name);
    group.properties.emplace_back(ObjectInfo(std::move(property.name), std::move(property.purpose),
                                             ev::takeList(property.values), std::move(anchor)),
                                  std::move(property.defaultValue));
}

void closePropertyGroup(PropertyGroupDraft& group, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.classPropertyGroups.emplace_back(std::move(group.title), ev::takeList(group.properties));
}

void closeSeeAlso(SeeAlsoDraft& link, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.seeAlso.emplace_back(std::move(link.url), std::move(link.name));
}

void closeExample(ExampleDraft& example, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.examples.emplace_back(std::move(example.url), std::move(example.openCommand), std::move(example.title));
}

void closeItem(ItemDraft& item, DocumentDraft& document, std::uint32_t, ev::Reader& reader) {
    if (item.namesBeforeEntities && item.isBlock) {
        reader.unsure(); // those names were read as ASCII
        return;
    }
    document.mayHoldReplaced =
        document.mayHoldReplaced || (document.file->replacement != nullptr && !document.replacementKnown);
    document.last = pageEntry(document.items, document.last, item.href);
    document.last->second.emplace_back(
        std::move(item.href), ev::takeList(item.entities), std::move(item.packageName), std::move(item.purpose),
        std::move(item.introduced), std::move(item.description), std::move(item.thumbnailFileRef),
        std::move(item.thumbnailAltText), item.deprecationStatus, ev::takeList(item.syntaxGroups),
        ev::takeList(item.inputGroups), ev::takeList(item.outputs), ev::takeList(item.classPropertyGroups),
        ev::takeList(item.seeAlso), ev::takeList(item.examples), ev::takeList(item.parameters));
}

void closePackage(DocumentDraft& package, DocumentDraft& main, std::uint32_t, ev::Reader&) {
    main.packages.push_back(package.take());
}

void closeMain(DocumentDraft& main, PageFile& file, std::uint32_t, ev::Reader&) {
    std::u16string key = main.helpFolder;
    file.result.try_emplace(std::move(key), main.take());
    // First come, first kept: the main document and earlier packages win a shared key.
    for (auto& package : main.packages) {
        file.result.try_emplace(package.getHeader().getBaseCode(), std::move(package));
    }
}

// -- the tables, innermost objects first

const ev::MemberRule kEntityRules[] = {
    ev::enumeration<RefEntityType, &EntityDraft::type>(keys::kType),
    ev::enumeration<FunctionType, &EntityDraft::functionType>(keys::kFcnType),
    ev::text<&EntityDraft::name, utf8Field>(keys::kName, true),
};
const ev::ObjectFormat kEntity = ev::objectFormat<closeEntity>(kEntityRules);

const ev::MemberRule kThumbnailRules[] = {
    ev::text<&ThumbnailDraft::fileRef, asciiField>(keys::kFileRef, true),
    ev::text<&ThumbnailDraft::altText, utf8Field>(keys::kAlt, true),
};
const ev::ObjectFormat kThumbnail = ev::objectFormat<closeThumbnail>(kThumbnailRules);

const ev::MemberRule kSyntaxGroupRules[] = {
    ev::enumeration<SyntaxType, &SyntaxGroupDraft::type>(keys::kSyntaxType),
    ev::text<&SyntaxGroupDraft::title, utf8Field>(keys::kTitle, true),
    // Syntax lines are code, read as ASCII without a scan.
    ev::textList<&SyntaxGroupDraft::lines, asciiField>(keys::kSyntax, true),
};
const ev::ObjectFormat kSyntaxGroup = ev::objectFormat<closeSyntaxGroup>(kSyntaxGroupRules);

const ev::MemberRule kInputRules[] = {
    ev::text<&ArgumentDraft::defaultValue, utf8Field>(keys::kDefaultValue, false),
    ev::enumeration<SyntaxType, &ArgumentDraft::syntaxType>(keys::kSyntaxType),
    ev::storedText<storeHtmlId>(keys::kHtmlId, false),
    ev::storedText<storeInputName>(keys::kName, true),
    ev::text<&ArgumentDraft::purpose, utf8Field>(keys::kPurpose, true),
    ev::textList<&ArgumentDraft::values, utf8Field>(keys::kValue, false),
};
const ev::ObjectFormat kInput = ev::objectFormat<closeInput>(kInputRules);

const ev::MemberRule kPairGroupRules[] = {
    ev::objects(keys::kInputs, false, kInput),
    ev::text<&InputGroupDraft::title, utf8Field>(keys::kTitle, true),
};
const ev::ObjectFormat kPairGroup = ev::objectFormat<closePairGroup>(kPairGroupRules);

// A group either holds inputs under a title, or, with "namevaluepairs", stands for the groups
// listed there; then its own inputs and title are not read.
enum InputGroupRow : std::uint32_t { kGroupInputs, kGroupTitle, kGroupPairs };
const ev::MemberRule kInputGroupRules[] = {
    ev::objects(keys::kInputs, false, kInput),
    ev::text<&InputGroupDraft::title, utf8Field>(keys::kTitle, false),
    ev::objects(keys::kNameValuePairs, false, kPairGroup),
};
constexpr std::uint32_t bit(InputGroupRow row) { return std::uint32_t{1} << row; }

void closeInputGroup(InputGroupDraft& group, ItemDraft& item, std::uint32_t seen, ev::Reader&) {
    if ((seen & bit(kGroupPairs)) == 0) {
        item.inputGroups.emplace_back(std::move(group.title), ev::takeList(group.inputs));
        return;
    }
    for (auto& pairGroup : group.pairGroups) {
        item.inputGroups.push_back(std::move(pairGroup));
    }
}

ev::ObjectFormat inputGroupFormat() {
    auto format = ev::objectFormat<closeInputGroup>(kInputGroupRules);
    format.requiredGiven = [](std::uint32_t seen) -> std::uint32_t {
        return (seen & bit(kGroupPairs)) != 0 ? 0 : bit(kGroupTitle);
    };
    return format;
}
const ev::ObjectFormat kInputGroup = inputGroupFormat();

const ev::MemberRule kOutputRules[] = {
    ev::enumeration<SyntaxType, &ArgumentDraft::syntaxType>(keys::kSyntaxType),
    ev::storedText<storeHtmlId>(keys::kHtmlId, false),
    ev::text<&ArgumentDraft::name, utf8Field>(keys::kName, true),
    ev::text<&ArgumentDraft::purpose, utf8Field>(keys::kPurpose, true),
    ev::textList<&ArgumentDraft::values, utf8Field>(keys::kValue, false),
};
const ev::ObjectFormat kOutput = ev::objectFormat<closeOutput>(kOutputRules);

const ev::MemberRule kParameterRules[] = {
    ev::text<&ArgumentDraft::defaultValue, utf8Field>(keys::kDefaultValue, false),
    ev::storedText<storeHtmlId>(keys::kHtmlId, false),
    ev::text<&ArgumentDraft::name, utf8Field>(keys::kName, true),
    ev::text<&ArgumentDraft::purpose, utf8Field>(keys::kPurpose, true),
    ev::textList<&ArgumentDraft::values, utf8Field>(keys::kValue, false),
};
const ev::ObjectFormat kParameter = ev::objectFormat<closeParameter>(kParameterRules);

// Class property anchors follow the name; "htmlid" is not read.
const ev::MemberRule kPropertyRules[] = {
    ev::storedText<storePropertyName>(keys::kName, true),
    ev::text<&PropertyDraft::purpose, utf8Field>(keys::kPurpose, true),
    ev::textList<&PropertyDraft::values, utf8Field>(keys::kValue, false),
    ev::text<&PropertyDraft::defaultValue, utf8Field>(keys::kDefaultValue, false),
};
const ev::ObjectFormat kProperty = ev::objectFormat<closeProperty>(kPropertyRules);

const ev::MemberRule kPropertyGroupRules[] = {
    ev::text<&PropertyGroupDraft::title, utf8Field>(keys::kTitle, false),
    ev::objects(keys::kClassProperty, true, kProperty),
};
const ev::ObjectFormat kPropertyGroup = ev::objectFormat<closePropertyGroup>(kPropertyGroupRules);

const ev::MemberRule kSeeAlsoRules[] = {
    ev::text<&SeeAlsoDraft::url, asciiField>(keys::kUrl, true),
    ev::text<&SeeAlsoDraft::name, utf8Field>(keys::kName, true),
};
const ev::ObjectFormat kSeeAlso = ev::objectFormat<closeSeeAlso>(kSeeAlsoRules);

const ev::MemberRule kExampleRules[] = {
    ev::text<&ExampleDraft::url, asciiField>(keys::kUrl, true),
    ev::text<&ExampleDraft::openCommand, asciiField>(keys::kOpenCommand, false),
    ev::text<&ExampleDraft::title, utf8Field>(keys::kTitle, true),
};
const ev::ObjectFormat kExample = ev::objectFormat<closeExample>(kExampleRules);

const ev::MemberRule kItemRules[] = {
    ev::storedText<storeHref>(keys::kHref, true),
    ev::text<&ItemDraft::purpose, utf8Field>(keys::kRefPurpose, true),
    ev::objects(keys::kRefEntity, false, kEntity, entitiesPresent),
    ev::text<&ItemDraft::packageName, asciiField>(keys::kPackageName, false),
    ev::text<&ItemDraft::introduced, asciiField>(keys::kIntroduced, false),
    ev::text<&ItemDraft::description, utf8Field>(keys::kDescription, false),
    ev::object(keys::kAppThumbnail, false, kThumbnail),
    ev::enumeration<DeprecationStatus, &ItemDraft::deprecationStatus>(keys::kDeprecationStatus),
    ev::objects(keys::kSyntaxGroup, false, kSyntaxGroup),
    ev::objects(keys::kInputGroup, false, kInputGroup),
    ev::objects(keys::kOutputs, false, kOutput),
    ev::objects(keys::kClassPropertyGroup, false, kPropertyGroup),
    ev::objects(keys::kSeeAlso, false, kSeeAlso),
    ev::objects(keys::kExamples, false, kExample),
    ev::objects(keys::kParameters, false, kParameter),
};
const ev::ObjectFormat kItem = ev::objectFormat<closeItem>(kItemRules);

const ev::MemberRule kPackageRules[] = {
    ev::text<&DocumentDraft::productName, utf8Field>(keys::kProductName, true),
    ev::storedText<storeBaseCode>(keys::kBaseCode, true),
    ev::storedText<storeHelpFolder>(keys::kHelpFolder, true),
    ev::text<&DocumentDraft::helpLocation, asciiField>(keys::kHelpLocation, true),
    ev::objects(keys::kRefItems, true, kItem),
};
const ev::ObjectFormat kPackage = ev::objectFormat<closePackage>(kPackageRules);

// The main document: a package document's members, and the packages (one level only).
const ev::MemberRule kMainRules[] = {
    kPackageRules[0], kPackageRules[1], kPackageRules[2],
    kPackageRules[3], kPackageRules[4], ev::objects(keys::kSupportPackages, false, kPackage),
};
const ev::ObjectFormat kMain = ev::objectFormat<closeMain>(kMainRules);

} // namespace

RefItemFileMap parseRefItemFile(const std::string& text, const RefItemFileMap* replacement) {
    if (diagnostics::activeRecorder() == nullptr) {
        RefItemFileMap result;
        PageFile file{result, replacement};
        if (events::readDocument(text, kMain, &file) == events::Outcome::Read) {
            return result;
        }
    }
    return parseRefItemFileTree(text, replacement);
}

} // namespace reference::docparser
