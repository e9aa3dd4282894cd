#include "docparser/parsing/LookupParser.hpp"

#include "docparser/diagnostics/DiagnosticHooks.hpp"
#include "docparser/parsing/EventReader.hpp"
#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"
#include "docparser/parsing/ResourceText.hpp"
#include "docparser/parsing/ScratchMemory.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/parse_options.hpp>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace reference::docparser {

namespace {

using detail::StringParsingType;
using property::FunctionType;
using property::RefEntityType;
using property::RefItemLookup;

// The arena's first block; later blocks grow geometrically with the file.
constexpr std::size_t kFirstArenaBlock = 1024;

// The members of a lookup entry, found in one pass over it.
enum EntryMember : std::size_t { kEntryName, kEntryPurpose, kEntryHref, kEntryType, kEntryFcnType, kEntryDeprecated };
const detail::MemberLookup<6> kEntryMembers({keys::kName, keys::kRefPurpose, keys::kHref, keys::kType, keys::kFcnType,
                                             keys::kDeprecated});

} // namespace

DocResource<RefItemLookup> parseLookupDocument(const boost::json::object& document) {
    auto header = detail::readHeader(document);
    const auto& items = detail::requireArray(document, keys::kRefItems);

    DocResource<RefItemLookup>::ItemMap byName;
    // Files are mostly sorted by name: a name equal to the previous one joins its entry without
    // a search, and a new name is tried after the last entry first, which sorted input passes at
    // once. Unsorted input still finds its place (or its entry) by a search of the tree.
    auto hint = byName.end();
    for (const auto& element : items) {
        const auto& item = detail::asObject(element);
        const auto member = kEntryMembers.find(item);
        auto name = detail::requireString(member[kEntryName], keys::kName, StringParsingType::Utf8);
        auto purpose = detail::requireString(member[kEntryPurpose], keys::kRefPurpose, StringParsingType::Utf8);
        auto href = detail::requireString(member[kEntryHref], keys::kHref, StringParsingType::Ascii);
        const auto entityType = detail::readEnum<RefEntityType>(member[kEntryType], keys::kType);
        const auto functionType = detail::readEnum<FunctionType>(member[kEntryFcnType], keys::kFcnType);
        // Only the key's presence counts: "deprecated": false marks the entry as well.
        const bool deprecated = member[kEntryDeprecated] != nullptr;

        if (hint == byName.end() || !text::sameText(hint->first, name)) {
            hint = byName.try_emplace(byName.end(), name);
        }
        hint->second.emplace_back(std::move(name), entityType, std::move(purpose), deprecated, std::move(href),
                                  functionType);
    }
    return DocResource<RefItemLookup>(std::move(header), std::move(byName));
}

DocResourceParser::LookupResourceMap parseLookupFileTree(const std::string& text) {
    DocResourceParser::LookupResourceMap result;

    // The whole tree lives in one arena and goes with it at once, also when parsing fails.
    boost::json::monotonic_resource arena(kFirstArenaBlock);
    const boost::json::value root = parseResourceText(text, &arena);
    const diagnostics::WatchedDocument watch(root);
    const auto& mainDocument = detail::asObject(root);

    auto main = parseLookupDocument(mainDocument);
    result.emplace(main.getHeader().getHelpFolder(), std::move(main));

    if (const auto* packages = detail::optionalArray(mainDocument, keys::kSupportPackages)) {
        for (const auto& element : *packages) {
            auto package = parseLookupDocument(detail::asObject(element));
            // First come, first kept: the main document and earlier packages win a shared key.
            if (!result.try_emplace(package.getHeader().getBaseCode(), std::move(package)).second) {
                diagnostics::documentKeyTaken(element, package.getHeader().getBaseCode());
            }
        }
    }
    return result;
}

// ---- the lookup format as the event reader's tables ----------------------------------------

namespace {

namespace ev = events;

// The first four code units of a name as a number that orders as the names do: a smaller number
// means a smaller name (a shorter name is padded with zeros, so equal numbers settle nothing).
std::uint64_t namePrefix(const std::u16string& name) noexcept {
    std::uint64_t prefix = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        prefix = (prefix << 16) | (i < name.size() ? name[i] : 0u);
    }
    return prefix;
}

// The file being read: where its documents go, and the memory its entries pass through.
struct LookupFile {
    DocResourceParser::LookupResourceMap& result;
    ScratchMemory& scratch;
};

struct LookupDocumentDraft;

struct EntryDraft {
    explicit EntryDraft(LookupDocumentDraft*) noexcept {}

    std::u16string name;
    std::u16string purpose;
    std::u16string href;
    RefEntityType::Value type = RefEntityType::getDefaultValue();
    FunctionType::Value functionType = FunctionType::getDefaultValue();
    bool deprecated = false;
};

// The main document (whose parent is the file) or a support package (whose parent is the main
// document, which keeps it until every document's key is known).
//
// Entries are filed by name so that every list is allocated once, at its final size. While names
// come sorted, the entries of one name wait in the scratch memory and are filed at the map's end
// when the next name starts. Once a name comes out of order, the rest of the document's entries
// wait there and are sorted (stably) and filed when it closes. A package's entries wait after
// those of the main document.
struct LookupDocumentDraft {
    explicit LookupDocumentDraft(LookupFile* file) noexcept : scratch(file->scratch) { reset(file); }
    explicit LookupDocumentDraft(LookupDocumentDraft* main) noexcept : scratch(main->scratch) { reset(main); }

    void reset(LookupFile*) noexcept {
        scratch.lookupEntries.clear(); // what an unfinished read of an earlier file left
        clear(0);
    }
    void reset(LookupDocumentDraft*) noexcept { clear(scratch.lookupEntries.size()); }

    void clear(std::size_t first) noexcept {
        firstEntry = first;
        sorted = true;
        productName.clear();
        baseCode.clear();
        helpFolder.clear();
        helpLocation.clear();
        items.clear();
        packages.clear();
    }

    void add(RefItemLookup&& entry) {
        auto& waiting = scratch.lookupEntries;
        if (sorted) {
            const std::u16string* previous = waiting.size() > firstEntry ? &waiting.back().getName()
                                             : items.empty()             ? nullptr
                                                                         : &items.rbegin()->first;
            const int order = previous == nullptr ? -1 : text::compareText(*previous, entry.getName());
            if (order != 0) {
                fileRun();
            }
            sorted = order <= 0;
        }
        waiting.push_back(std::move(entry));
    }

    DocResource<RefItemLookup> take() {
        if (sorted) {
            fileRun();
        } else {
            fileRest();
        }
        return DocResource<RefItemLookup>(property::HeaderInfo(std::move(productName), std::move(baseCode),
                                                               std::move(helpFolder), std::move(helpLocation)),
                                          std::move(items));
    }

    // The waiting entries, all of one name that sorts after every name filed: a new list at the end.
    void fileRun() {
        auto& waiting = scratch.lookupEntries;
        if (waiting.size() == firstEntry) {
            return;
        }
        auto& list = items.try_emplace(items.end(), waiting[firstEntry].getName())->second;
        list.reserve(waiting.size() - firstEntry);
        for (auto it = waiting.begin() + static_cast<std::ptrdiff_t>(firstEntry); it != waiting.end(); ++it) {
            list.push_back(std::move(*it));
        }
        waiting.erase(waiting.begin() + static_cast<std::ptrdiff_t>(firstEntry), waiting.end());
    }

    // The waiting entries in any order: grouped by name in file order, each group appended to its
    // name's list (after the entries filed while the names were sorted, which came first).
    void fileRest() {
        auto& waiting = scratch.lookupEntries;
        RefItemLookup* const entry = waiting.data() + firstEntry;
        const auto count = static_cast<std::uint32_t>(waiting.size() - firstEntry);
        // Most comparisons are settled by the names' first four code units, compared as one
        // number; only names that share them compare in full.
        auto& order = scratch.order;
        order.resize(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            order[i] = {namePrefix(entry[i].getName()), i};
        }
        std::stable_sort(order.begin(), order.end(), [entry](const auto& a, const auto& b) {
            if (a.prefix != b.prefix) {
                return a.prefix < b.prefix;
            }
            return text::compareText(entry[a.index].getName(), entry[b.index].getName()) < 0;
        });
        for (std::uint32_t begin = 0; begin < count;) {
            const std::u16string& name = entry[order[begin].index].getName();
            std::uint32_t end = begin + 1;
            while (end < count && text::sameText(entry[order[end].index].getName(), name)) {
                ++end;
            }
            auto hint = items.lower_bound(name);
            if (hint == items.end() || !text::sameText(hint->first, name)) {
                hint = items.emplace_hint(hint, name, std::vector<RefItemLookup>());
            }
            auto& list = hint->second;
            list.reserve(list.size() + (end - begin));
            for (std::uint32_t i = begin; i < end; ++i) {
                list.push_back(std::move(entry[order[i].index]));
            }
            begin = end;
        }
        waiting.erase(waiting.begin() + static_cast<std::ptrdiff_t>(firstEntry), waiting.end());
    }

    ScratchMemory& scratch;
    std::size_t firstEntry = 0; // this document's waiting entries start here
    bool sorted = true;         // every name so far came in order
    std::u16string productName;
    std::u16string baseCode;
    std::u16string helpFolder;
    std::u16string helpLocation;
    DocResource<RefItemLookup>::ItemMap items;
    std::vector<DocResource<RefItemLookup>> packages;
};

void closeEntry(EntryDraft& entry, LookupDocumentDraft& document, std::uint32_t, ev::Reader&) {
    document.add(RefItemLookup(std::move(entry.name), entry.type, std::move(entry.purpose), entry.deprecated,
                               std::move(entry.href), entry.functionType));
}

void closePackage(LookupDocumentDraft& package, LookupDocumentDraft& main, std::uint32_t, ev::Reader&) {
    main.packages.push_back(package.take());
}

void closeMain(LookupDocumentDraft& main, LookupFile& file, std::uint32_t, ev::Reader&) {
    std::u16string key = main.helpFolder;
    file.result.emplace(std::move(key), main.take());
    // First come, first kept: the main document and earlier packages win a shared key.
    for (auto& package : main.packages) {
        file.result.try_emplace(package.getHeader().getBaseCode(), std::move(package));
    }
}

const ev::MemberRule kEntryRules[] = {
    ev::text<&EntryDraft::name, detail::utf8Field>(keys::kName, true),
    ev::text<&EntryDraft::purpose, detail::utf8Field>(keys::kRefPurpose, true),
    ev::text<&EntryDraft::href, detail::asciiField>(keys::kHref, true),
    ev::enumeration<RefEntityType, &EntryDraft::type>(keys::kType),
    ev::enumeration<FunctionType, &EntryDraft::functionType>(keys::kFcnType),
    // Only the key's presence counts: "deprecated": false marks the entry as well.
    ev::presence<&EntryDraft::deprecated>(keys::kDeprecated),
};
const ev::ObjectFormat kEntry = ev::objectFormat<closeEntry>(kEntryRules);

const ev::MemberRule kPackageMembers[] = {
    ev::text<&LookupDocumentDraft::productName, detail::utf8Field>(keys::kProductName, true),
    ev::text<&LookupDocumentDraft::baseCode, detail::asciiField>(keys::kBaseCode, true),
    ev::text<&LookupDocumentDraft::helpFolder, detail::asciiField>(keys::kHelpFolder, true),
    ev::text<&LookupDocumentDraft::helpLocation, detail::asciiField>(keys::kHelpLocation, true),
    ev::objects(keys::kRefItems, true, kEntry),
};
const ev::ObjectFormat kPackage = ev::objectFormat<closePackage>(kPackageMembers);

// The main document: a package document's members, and the packages (one level only: a package's
// own "supportPackages" is not read).
const ev::MemberRule kMainMembers[] = {
    kPackageMembers[0], kPackageMembers[1], kPackageMembers[2],
    kPackageMembers[3], kPackageMembers[4], ev::objects(keys::kSupportPackages, false, kPackage),
};
const ev::ObjectFormat kMain = ev::objectFormat<closeMain>(kMainMembers);

} // namespace

DocResourceParser::LookupResourceMap parseLookupFile(const std::string& text) {
    if (diagnostics::activeRecorder() == nullptr) {
        DocResourceParser::LookupResourceMap result;
        ScratchMemory ownScratch;
        ScratchMemory* scratch = ScratchScope::active();
        LookupFile file{result, scratch != nullptr ? *scratch : ownScratch};
        if (events::readDocument(text, kMain, &file) == events::Outcome::Read) {
            return result;
        }
    }
    return parseLookupFileTree(text);
}

DocResourceParser::LookupResourceMap lookupFileParser(const std::string& text) { return parseLookupFile(text); }

} // namespace reference::docparser
