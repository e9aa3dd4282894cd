#include "docparser/parsing/RefItemParser.hpp"

#include "docparser/parsing/EventReader.hpp"
#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"
#include "docparser/parsing/ResourceFile.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <boost/json/value.hpp>

#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace reference::docparser {

namespace {

namespace ev = events;
using namespace reference::property;
using detail::asciiField;
using detail::StringParsingType;
using detail::utf8Field;
using PageMap = DocResource<RefItem>::ItemMap;
using RefItemFileMap = DocResourceParser::RefItemFileMap;

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

// Class property anchors follow the decoded name; "htmlid" is not read for them.
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
PageMap::iterator pageEntry(PageMap& pages, PageMap::iterator previous, const std::u16string& href) {
    if (previous == pages.end()) {
        return pages.try_emplace(pages.end(), href);
    }
    const int order = text::compareText(previous->first, href);
    if (order == 0) {
        return previous;
    }
    return pages.try_emplace(order < 0 ? std::next(previous) : previous, href);
}

// ---- what a page's records depend on ------------------------------------------------------
//
// Two things a page's records depend on may come later in the text than what depends on them, or
// change when their key comes again: the item's "href" (every argument's anchor starts with it,
// and it says whether a replacing file holds the page) and its "refentity" list (a block page
// reads its input and property names as UTF-8). An item whose records were built before these
// were final is irregular; the file is then read a second time, the same way, with each
// irregular item's final href and block flag known from its start. Real files name both first,
// so the second reading is for the odd file only.

struct ItemHint {
    std::uint64_t ordinal; // the item's place among every item object of the file
    std::u16string href;
    bool isBlock;
};

// One reading of a page file or of a part of one.
struct PageRead {
    const RefItemFileMap* replacement = nullptr;
    bool firstPass = true;  // pages are discarded as soon as their href says they are replaced
    bool irregular = false; // read again with the hints
    std::uint64_t nextOrdinal = 0;
    std::vector<ItemHint> hints;
    std::size_t nextHint = 0;

    void restart() noexcept {
        firstPass = false;
        irregular = false;
        nextOrdinal = 0;
        nextHint = 0;
    }
};

struct PageFile {
    RefItemFileMap& result;
    PageRead& read;
};

struct PageDocument {
    PageRead read;
    std::optional<DocResource<RefItem>> document;
};

struct ItemPart;

struct DocumentDraft {
    explicit DocumentDraft(PageFile* file) noexcept { reset(file); }
    explicit DocumentDraft(DocumentDraft* main) noexcept { reset(main); }
    explicit DocumentDraft(PageDocument* alone) noexcept { reset(alone); }

    void reset(PageFile* file) noexcept { clear(&file->read, true); }
    void reset(DocumentDraft* main) noexcept { clear(main->read, false); }
    void reset(PageDocument* alone) noexcept { clear(&alone->read, true); }

    void clear(PageRead* reading, bool main) noexcept {
        read = reading;
        isMain = main;
        keySeen = replacementKnown = mayHoldReplaced = false;
        replaced = nullptr;
        productName.clear();
        baseCode.clear();
        helpFolder.clear();
        helpLocation.clear();
        forgetPages();
        forgetPackages();
    }

    void forgetPackages() noexcept {
        packages.clear();
        packageIndex.clear();
    }

    void forgetPages() noexcept {
        items.clear();
        last = items.end();
        builtEarly.clear();
    }

    // The pages of this document that the replacement file holds; null when none. Known once
    // the document's key (help folder or base code) has been read.
    const PageMap* replacedPages() {
        if (read->replacement == nullptr) {
            return nullptr;
        }
        if (!replacementKnown && keySeen) {
            replacementKnown = read->firstPass; // the second reading asks once, at the end
            const auto found = read->replacement->find(isMain ? helpFolder : baseCode);
            replaced = found == read->replacement->end() ? nullptr : &found->second.getItems();
        }
        return replaced;
    }

    // Pages that the replacement holds are only checked when that is known in time; for those
    // built before it was, what was found in them is not reported either.
    void forgetReplacedWarnings(ev::Reader& reader) {
        if (const PageMap* pages = builtEarly.empty() ? nullptr : replacedPages()) {
            for (const auto& [href, index] : builtEarly) {
                if (pages->contains(href)) {
                    reader.forgetElementWarnings(keys::kRefItems, index);
                }
            }
        }
        builtEarly.clear();
    }

    // The document's key came again: pages discarded for the earlier key may be wanted.
    void forgetKey() noexcept {
        if (replacementKnown) {
            read->irregular = true;
        }
        replacementKnown = false;
        replaced = nullptr;
    }

    // The document as read, without the pages the replacement holds.
    DocResource<RefItem> take(ev::Reader& reader) {
        if (mayHoldReplaced) {
            if (const PageMap* pages = replacedPages()) {
                std::erase_if(items, [pages](const auto& entry) { return pages->contains(entry.first); });
            }
        }
        forgetReplacedWarnings(reader);
        PageMap taken = std::move(items);
        forgetPages();
        return DocResource<RefItem>(
            HeaderInfo(std::move(productName), std::move(baseCode), std::move(helpFolder), std::move(helpLocation)),
            std::move(taken));
    }

    PageRead* read = nullptr;
    bool isMain = true;
    bool keySeen = false;
    bool replacementKnown = false;
    bool mayHoldReplaced = false; // pages were kept before it was known which are replaced
    const PageMap* replaced = nullptr;
    std::u16string productName;
    std::u16string baseCode;
    std::u16string helpFolder;
    std::u16string helpLocation;
    PageMap items;
    PageMap::iterator last = items.end(); // the entry the previous page went to
    std::vector<DocResource<RefItem>> packages;
    std::vector<std::size_t> packageIndex; // each package's place in "supportPackages"
    // While a scope records: the pages built before it was known whether the replacement holds
    // them, with their place in "refItems".
    std::vector<std::pair<std::u16string, std::size_t>> builtEarly;
};

struct ItemDraft {
    explicit ItemDraft(DocumentDraft* owner) noexcept { reset(owner); }
    explicit ItemDraft(ItemPart* part) noexcept;
    // An item that a part of a page is read for, described by the caller.
    ItemDraft(PageRead* reading, std::u16string itemHref, bool block, bool pairs) noexcept
        : read(reading), hinted(true), isBlock(block), inputsArePairs(pairs), href(std::move(itemHref)) {}

    void reset(DocumentDraft* owner) noexcept {
        document = owner;
        read = owner->read;
        ordinal = read->nextOrdinal++;
        hinted = isBlock = irregular = discarded = argsBuilt = nonAsciiNameBuilt = false;
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
        if (read->nextHint < read->hints.size() && read->hints[read->nextHint].ordinal == ordinal) {
            const ItemHint& hint = read->hints[read->nextHint++];
            href = hint.href;
            isBlock = hint.isBlock;
            hinted = true;
        }
    }
    void reset(ItemPart* part) noexcept;

    // The name of an input or class property: UTF-8 on block pages, ASCII elsewhere.
    std::u16string memberName(std::string_view bytes) {
        if (!hinted && !nonAsciiNameBuilt && !text::isPlainAscii(bytes)) {
            nonAsciiNameBuilt = true; // its reading depends on the block flag from now on
        }
        return detail::toUtf16(bytes, isBlock ? StringParsingType::Utf8 : StringParsingType::Ascii);
    }

    // The block flag as the entities read so far set it.
    void setBlock(bool block) noexcept {
        if (!hinted) {
            irregular = irregular || (block != isBlock && nonAsciiNameBuilt);
            isBlock = block;
        }
    }

    DocumentDraft* document = nullptr;
    PageRead* read = nullptr;
    std::uint64_t ordinal = 0;
    bool hinted = false;            // href and block flag are final from the start
    bool isBlock = false;           // an entity has type Block: member names are UTF-8
    bool irregular = false;         // a record was built with an href or block flag that changed
    bool discarded = false;         // the replacement holds the page: only checked
    bool argsBuilt = false;         // an argument's anchor was built with the href known then
    bool nonAsciiNameBuilt = false; // a member name was decoded with the block flag known then
    bool inputsArePairs = false;    // the item's own input groups are name-value pairs
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
};

// A part of a page item read on its own: the item as the caller describes it, and what came of it.
struct ItemPart {
    ItemPart(std::u16string href, StringParsingType nameParsing, bool isNameValuePair)
        : item(&read, std::move(href), nameParsing != StringParsingType::Ascii, isNameValuePair) {}

    PageRead read;
    ItemDraft item;
    std::u16string name; // makeObjectInfo: the name and anchor given
    std::u16string anchor;
    std::optional<ObjectInfo> info;
};

ItemDraft::ItemDraft(ItemPart* part) noexcept { reset(part); }
void ItemDraft::reset(ItemPart* part) noexcept {
    read = &part->read;
    syntaxGroups.clear();
}

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
    void reset(ItemDraft* owner) noexcept { clear(owner, owner->inputsArePairs); }
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

// An input, output or parameter, or an object read on its own as one.
struct ArgumentDraft {
    explicit ArgumentDraft(InputGroupDraft* group) noexcept { reset(group); }
    explicit ArgumentDraft(ItemDraft* owner) noexcept { reset(owner); }
    explicit ArgumentDraft(ItemPart* part) noexcept { reset(part); }
    void reset(InputGroupDraft* group) noexcept { clear(group->item, true); }
    void reset(ItemDraft* owner) noexcept { clear(owner, false); }
    void reset(ItemPart* part) noexcept { clear(&part->item, true); }
    void clear(ItemDraft* owner, bool memberName) noexcept {
        item = owner;
        isMemberName = memberName;
        name.clear();
        purpose.clear();
        values.clear();
        htmlId.clear();
        defaultValue.clear();
        syntaxType = SyntaxType::getDefaultValue();
    }

    // Every argument's anchor starts with the page's href.
    ObjectInfo take() {
        item->argsBuilt = true;
        return ObjectInfo(std::move(name), std::move(purpose), ev::takeList(values),
                          argumentAnchor(item->href, htmlId));
    }

    ItemDraft* item = nullptr;
    bool isMemberName = false; // inputs: named like class properties; outputs, parameters: UTF-8
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

// ---- texts whose reading depends on the draft, and what a repeated key undoes -------------

void storeHelpFolder(DocumentDraft& document, std::string_view bytes, ev::Reader&) {
    document.helpFolder = asciiField(bytes);
    document.keySeen = document.keySeen || document.isMain;
}

void storeBaseCode(DocumentDraft& document, std::string_view bytes, ev::Reader&) {
    document.baseCode = asciiField(bytes);
    document.keySeen = document.keySeen || !document.isMain;
}

void forgetHelpFolder(DocumentDraft& document) {
    if (document.isMain) {
        document.forgetKey();
    }
}

void forgetBaseCode(DocumentDraft& document) {
    if (!document.isMain) {
        document.forgetKey();
    }
}

void forgetPages(DocumentDraft& document) { document.forgetPages(); }
void forgetPackages(DocumentDraft& document) { document.forgetPackages(); }

// A page that the replacement file holds is only checked.
void storeHref(ItemDraft& item, std::string_view bytes, ev::Reader& reader) {
    if (item.hinted) {
        return; // the final href is known already
    }
    item.irregular = item.irregular || item.argsBuilt || item.discarded;
    item.href = asciiField(bytes);
    if (item.read->firstPass && !item.discarded) {
        if (const PageMap* replaced = item.document->replacedPages();
            replaced != nullptr && replaced->contains(item.href)) {
            item.discarded = true;
            reader.discardInner();
        }
    }
}

void forgetEntities(ItemDraft& item) {
    item.entities.clear();
    item.setBlock(false);
}

void forgetThumbnail(ItemDraft& item) {
    item.thumbnailFileRef.clear();
    item.thumbnailAltText.clear();
}

void storeArgumentName(ArgumentDraft& argument, std::string_view bytes, ev::Reader&) {
    argument.name = argument.isMemberName ? argument.item->memberName(bytes) : utf8Field(bytes);
}

void storePropertyName(PropertyDraft& property, std::string_view bytes, ev::Reader&) {
    property.name = property.item->memberName(bytes);
}

void storeHtmlId(ArgumentDraft& argument, std::string_view bytes, ev::Reader&) { argument.htmlId.assign(bytes); }

// ---- records built as their objects close ---------------------------------------------------

void closeEntity(EntityDraft& entity, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.setBlock(item.isBlock || entity.type == RefEntityType::Block);
    item.entities.emplace_back(entity.type, std::move(entity.name), entity.functionType);
}

void closeThumbnail(ThumbnailDraft& thumbnail, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.thumbnailFileRef = std::move(thumbnail.fileRef);
    item.thumbnailAltText = std::move(thumbnail.altText);
}

void closeSyntaxGroup(SyntaxGroupDraft& group, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.syntaxGroups.emplace_back(std::move(group.title), group.type, ev::takeList(group.lines));
}

void closeInput(ArgumentDraft& input, InputGroupDraft& group, std::uint32_t, ev::Reader&) {
    auto info = input.take();
    group.inputs.emplace_back(std::move(info), input.syntaxType, std::move(input.defaultValue), group.isNameValuePair);
}

void closePairGroup(InputGroupDraft& group, InputGroupDraft& holder, std::uint32_t, ev::Reader&) {
    holder.pairGroups.emplace_back(std::move(group.title), ev::takeList(group.inputs));
}

void closeLoneGroup(InputGroupDraft& group, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.inputGroups.emplace_back(std::move(group.title), ev::takeList(group.inputs));
}

// A group either holds inputs under a title, or, with "namevaluepairs", stands for the groups
// listed there; then its own inputs and title are not read. Rows in reading order.
enum InputGroupRow : std::uint32_t { kGroupPairs, kGroupInputs, kGroupTitle };
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

void closeOutput(ArgumentDraft& output, ItemDraft& item, std::uint32_t, ev::Reader&) {
    item.outputs.emplace_back(output.take(), output.syntaxType);
}

void closeParameter(ArgumentDraft& parameter, ItemDraft& item, std::uint32_t, ev::Reader&) {
    auto info = parameter.take();
    item.parameters.emplace_back(std::move(info), std::move(parameter.defaultValue));
}

void closeObjectInfo(ArgumentDraft& argument, ItemPart& part, std::uint32_t, ev::Reader&) {
    part.info.emplace(argument.take());
}

void closeObjectInfoRest(ArgumentDraft& argument, ItemPart& part, std::uint32_t, ev::Reader&) {
    part.info.emplace(std::move(part.name), std::move(argument.purpose), ev::takeList(argument.values),
                      std::move(part.anchor));
}

void closeProperty(PropertyDraft& property, PropertyGroupDraft& group, std::uint32_t, ev::Reader&) {
    property.item->argsBuilt = true;
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
    PageRead& read = *item.read;
    if (item.irregular) {
        read.irregular = true;
        read.hints.push_back(ItemHint{item.ordinal, item.href, item.isBlock});
    }
    if (item.discarded) {
        return;
    }
    if (read.replacement != nullptr && (!read.firstPass || !document.replacementKnown)) {
        document.mayHoldReplaced = true;
        if (reader.recording()) {
            document.builtEarly.emplace_back(item.href, reader.elementIndex());
        }
    }
    document.last = pageEntry(document.items, document.last, item.href);
    document.last->second.emplace_back(
        std::move(item.href), ev::takeList(item.entities), std::move(item.packageName), std::move(item.purpose),
        std::move(item.introduced), std::move(item.description), std::move(item.thumbnailFileRef),
        std::move(item.thumbnailAltText), item.deprecationStatus, ev::takeList(item.syntaxGroups),
        ev::takeList(item.inputGroups), ev::takeList(item.outputs), ev::takeList(item.classPropertyGroups),
        ev::takeList(item.seeAlso), ev::takeList(item.examples), ev::takeList(item.parameters));
}

void closeSyntaxOnly(ItemDraft& item, ItemPart& part, std::uint32_t, ev::Reader&) {
    part.item.syntaxGroups = ev::takeList(item.syntaxGroups);
}

void closePackage(DocumentDraft& package, DocumentDraft& main, std::uint32_t, ev::Reader& reader) {
    main.packages.push_back(package.take(reader));
    main.packageIndex.push_back(reader.elementIndex());
}

// A package dropped for its key is only checked, as a replaced page is: what it holds is not
// reported.
void closeMain(DocumentDraft& main, PageFile& file, std::uint32_t, ev::Reader& reader) {
    fileDocuments(file.result, main.take(reader), main.packages, main.packageIndex, reader, false);
}

void abandonMain(DocumentDraft& main, ev::Reader& reader) {
    main.forgetReplacedWarnings(reader);
    reportTakenPackages(main.helpFolder, main.packages, main.packageIndex, reader, false);
}

void abandonPackage(DocumentDraft& package, ev::Reader& reader) { package.forgetReplacedWarnings(reader); }

void closeAlone(DocumentDraft& document, PageDocument& alone, std::uint32_t, ev::Reader& reader) {
    alone.document.emplace(document.take(reader));
}

// ---- the tables, innermost objects first ----------------------------------------------------

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

// The members of inputs, outputs and parameters; each kind lists its own first.
const ev::MemberRule kDefaultValueRule = ev::text<&ArgumentDraft::defaultValue, utf8Field>(keys::kDefaultValue, false);
const ev::MemberRule kSyntaxTypeRule = ev::enumeration<SyntaxType, &ArgumentDraft::syntaxType>(keys::kSyntaxType);
const ev::MemberRule kHtmlIdRule = ev::storedText<storeHtmlId>(keys::kHtmlId, false);
const ev::MemberRule kNameRule = ev::storedText<storeArgumentName>(keys::kName, true);
const ev::MemberRule kPurposeRule = ev::text<&ArgumentDraft::purpose, utf8Field>(keys::kPurpose, true);
const ev::MemberRule kValuesRule = ev::textList<&ArgumentDraft::values, utf8Field>(keys::kValue, false);

const ev::MemberRule kInputRules[] = {kDefaultValueRule, kSyntaxTypeRule, kHtmlIdRule,
                                      kNameRule,         kPurposeRule,    kValuesRule};
const ev::ObjectFormat kInput = ev::objectFormat<closeInput>(kInputRules);

const ev::MemberRule kPairGroupRules[] = {
    ev::objects<&InputGroupDraft::inputs>(keys::kInputs, false, kInput),
    ev::text<&InputGroupDraft::title, utf8Field>(keys::kTitle, true),
};
const ev::ObjectFormat kPairGroup = ev::objectFormat<closePairGroup>(kPairGroupRules);

const ev::MemberRule kInputGroupRules[] = {
    ev::objects<&InputGroupDraft::pairGroups>(keys::kNameValuePairs, false, kPairGroup),
    kPairGroupRules[0],
    ev::text<&InputGroupDraft::title, utf8Field>(keys::kTitle, false),
};

ev::ObjectFormat inputGroupFormat() {
    auto format = ev::objectFormat<closeInputGroup>(kInputGroupRules);
    format.requiredGiven = [](std::uint32_t seen) -> std::uint32_t {
        return (seen & bit(kGroupPairs)) != 0 ? 0 : bit(kGroupTitle);
    };
    format.ignoredGiven = [](std::uint32_t seen) -> std::uint32_t {
        return (seen & bit(kGroupPairs)) != 0 ? bit(kGroupInputs) | bit(kGroupTitle) : 0;
    };
    return format;
}
const ev::ObjectFormat kInputGroup = inputGroupFormat();

const ev::MemberRule kOutputRules[] = {kSyntaxTypeRule, kHtmlIdRule, kNameRule, kPurposeRule, kValuesRule};
const ev::ObjectFormat kOutput = ev::objectFormat<closeOutput>(kOutputRules);

const ev::MemberRule kParameterRules[] = {kDefaultValueRule, kHtmlIdRule, kNameRule, kPurposeRule, kValuesRule};
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
    ev::objects<&PropertyGroupDraft::properties>(keys::kClassProperty, true, kProperty),
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

const ev::MemberRule kSyntaxGroupsRule = ev::objects<&ItemDraft::syntaxGroups>(keys::kSyntaxGroup, false, kSyntaxGroup);

// The href is read also in a page the replacing file holds: a later href may say otherwise.
ev::MemberRule hrefRule() {
    auto rule = ev::storedText<storeHref>(keys::kHref, true);
    rule.evenDiscarded = true;
    return rule;
}

const ev::MemberRule kItemRules[] = {
    hrefRule(),
    ev::text<&ItemDraft::purpose, utf8Field>(keys::kRefPurpose, true),
    ev::objects<forgetEntities>(keys::kRefEntity, false, kEntity),
    ev::text<&ItemDraft::packageName, asciiField>(keys::kPackageName, false),
    ev::text<&ItemDraft::introduced, asciiField>(keys::kIntroduced, false),
    ev::text<&ItemDraft::description, utf8Field>(keys::kDescription, false),
    ev::object<forgetThumbnail>(keys::kAppThumbnail, false, kThumbnail),
    ev::enumeration<DeprecationStatus, &ItemDraft::deprecationStatus>(keys::kDeprecationStatus),
    kSyntaxGroupsRule,
    ev::objects<&ItemDraft::inputGroups>(keys::kInputGroup, false, kInputGroup),
    ev::objects<&ItemDraft::outputs>(keys::kOutputs, false, kOutput),
    ev::objects<&ItemDraft::classPropertyGroups>(keys::kClassPropertyGroup, false, kPropertyGroup),
    ev::objects<&ItemDraft::seeAlso>(keys::kSeeAlso, false, kSeeAlso),
    ev::objects<&ItemDraft::examples>(keys::kExamples, false, kExample),
    ev::objects<&ItemDraft::parameters>(keys::kParameters, false, kParameter),
};
const ev::ObjectFormat kItem = ev::objectFormat<closeItem>(kItemRules);

const ev::MemberRule kDocumentRules[] = {
    ev::text<&DocumentDraft::productName, utf8Field>(keys::kProductName, true),
    ev::storedText<storeBaseCode, forgetBaseCode>(keys::kBaseCode, true),
    ev::storedText<storeHelpFolder, forgetHelpFolder>(keys::kHelpFolder, true),
    ev::text<&DocumentDraft::helpLocation, asciiField>(keys::kHelpLocation, true),
    ev::objects<forgetPages>(keys::kRefItems, true, kItem),
};
const ev::ObjectFormat kPackage = ev::objectFormat<closePackage, abandonPackage>(kDocumentRules);
const ev::ObjectFormat kAlone = ev::objectFormat<closeAlone>(kDocumentRules);

// The main document: a package document's members, and the packages (one level only).
const ev::MemberRule kMainRules[] = {
    kDocumentRules[0], kDocumentRules[1], kDocumentRules[2],
    kDocumentRules[3], kDocumentRules[4], ev::objects<forgetPackages>(keys::kSupportPackages, false, kPackage),
};
const ev::ObjectFormat kMain = ev::objectFormat<closeMain, abandonMain>(kMainRules);

// Parts of a page read on their own.
const ev::ObjectFormat kSyntaxOnly = ev::objectFormat<closeSyntaxOnly>(std::span(&kSyntaxGroupsRule, 1));
const ev::ObjectFormat kLoneGroup = ev::objectFormat<closeLoneGroup>(kPairGroupRules);
const ev::MemberRule kObjectInfoRules[] = {kHtmlIdRule, kNameRule, kPurposeRule, kValuesRule};
const ev::ObjectFormat kObjectInfo = ev::objectFormat<closeObjectInfo>(kObjectInfoRules);
const ev::ObjectFormat kObjectInfoRest = ev::objectFormat<closeObjectInfoRest>(std::span(kObjectInfoRules).subspan(2));

// Reads with `readOnce` and, when some item turned out irregular, once more with its hints.
template <class ReadOnce>
void readPages(PageRead& read, FileDiagnostic* record, ReadOnce&& readOnce) {
    readOnce();
    if (read.irregular) {
        read.restart();
        if (record != nullptr) {
            record->warnings.clear();
        }
        readOnce();
    }
}

} // namespace

RefItemFileMap parseRefItemFile(std::string_view text, const RefItemFileMap* replacement, FileDiagnostic* record) {
    RefItemFileMap result;
    PageRead read;
    read.replacement = replacement;
    PageFile file{result, read};
    readPages(read, record, [&] {
        result.clear();
        events::readText(text, kMain, &file, record);
    });
    return result;
}

RefItemFileMap parseRefItemFile(const boost::json::value& value) {
    RefItemFileMap result;
    PageRead read;
    PageFile file{result, read};
    readPages(read, nullptr, [&] {
        result.clear();
        events::readValue(value, kMain, &file, nullptr);
    });
    return result;
}

DocResource<RefItem> parseRefItemDocument(const boost::json::value& document) {
    PageDocument alone;
    readPages(alone.read, nullptr, [&] { events::readValue(document, kAlone, &alone, nullptr); });
    return std::move(*alone.document);
}

std::vector<SyntaxGroup> parseSyntaxGroups(const boost::json::object& item) {
    ItemPart part({}, StringParsingType::Ascii, false);
    events::readValue(item, kSyntaxOnly, &part, nullptr);
    return std::move(part.item.syntaxGroups);
}

InputGroup parseInputGroup(const boost::json::object& group, const std::u16string& href, StringParsingType nameParsing,
                           bool isNameValuePair) {
    ItemPart part(href, nameParsing, isNameValuePair);
    events::readValue(group, kLoneGroup, &part.item, nullptr);
    return std::move(part.item.inputGroups.front());
}

ObjectInfo parseObjectInfo(const boost::json::object& object, const std::u16string& href,
                           StringParsingType nameParsing) {
    ItemPart part(href, nameParsing, false);
    events::readValue(object, kObjectInfo, &part, nullptr);
    return std::move(*part.info);
}

ObjectInfo makeObjectInfo(const boost::json::object& object, const std::u16string& name, const std::u16string& anchor) {
    ItemPart part({}, StringParsingType::Ascii, false);
    part.name = name;
    part.anchor = anchor;
    events::readValue(object, kObjectInfoRest, &part, nullptr);
    return std::move(*part.info);
}

} // namespace reference::docparser
