#include "docparser/parsing/LookupParser.hpp"

#include "docparser/parsing/EventReader.hpp"
#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"
#include "docparser/parsing/ResourceFile.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <boost/json/value.hpp>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace reference::docparser {

namespace {

using property::FunctionType;
using property::RefEntityType;
using property::RefItemLookup;

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
    detail::ScratchMemory& scratch;
};

// One document read on its own.
struct LookupDocument {
    std::optional<DocResource<RefItemLookup>> document;
    detail::ScratchMemory scratch;
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
    explicit LookupDocumentDraft(LookupDocument* alone) noexcept : scratch(alone->scratch) { reset(alone); }

    void reset(LookupFile*) noexcept {
        scratch.lookupEntries.clear(); // what an unfinished read of an earlier file left
        clear(0);
    }
    void reset(LookupDocument*) noexcept { reset(static_cast<LookupFile*>(nullptr)); }
    void reset(LookupDocumentDraft*) noexcept { clear(scratch.lookupEntries.size()); }

    void clear(std::size_t first) noexcept {
        firstEntry = first;
        sorted = true;
        productName.clear();
        baseCode.clear();
        helpFolder.clear();
        helpLocation.clear();
        items.clear();
        forgetPackages();
    }

    void forgetPackages() noexcept {
        packages.clear();
        packageIndex.clear();
    }

    // "refItems" came again: the entries of the earlier array go.
    void forgetEntries() noexcept {
        auto& waiting = scratch.lookupEntries;
        waiting.erase(waiting.begin() + static_cast<std::ptrdiff_t>(firstEntry), waiting.end());
        items.clear();
        sorted = true;
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

    detail::ScratchMemory& scratch;
    std::size_t firstEntry = 0; // this document's waiting entries start here
    bool sorted = true;         // every name so far came in order
    std::u16string productName;
    std::u16string baseCode;
    std::u16string helpFolder;
    std::u16string helpLocation;
    DocResource<RefItemLookup>::ItemMap items;
    std::vector<DocResource<RefItemLookup>> packages;
    std::vector<std::size_t> packageIndex; // each package's place in "supportPackages"
};

void closeEntry(EntryDraft& entry, LookupDocumentDraft& document, std::uint32_t, ev::Reader&) {
    document.add(RefItemLookup(std::move(entry.name), entry.type, std::move(entry.purpose), entry.deprecated,
                               std::move(entry.href), entry.functionType));
}

void closePackage(LookupDocumentDraft& package, LookupDocumentDraft& main, std::uint32_t, ev::Reader& reader) {
    main.packages.push_back(package.take());
    main.packageIndex.push_back(reader.elementIndex());
}

// A package that failed leaves its entries waiting after the main document's; they go, since a
// repeated "supportPackages" can make the failure not count.
void abandonPackage(LookupDocumentDraft& package, ev::Reader&) { package.forgetEntries(); }

void closeMain(LookupDocumentDraft& main, LookupFile& file, std::uint32_t, ev::Reader& reader) {
    fileDocuments(file.result, main.take(), main.packages, main.packageIndex, reader, true);
}

void abandonMain(LookupDocumentDraft& main, ev::Reader& reader) {
    reportTakenPackages(main.helpFolder, main.packages, main.packageIndex, reader, true);
}

void closeAlone(LookupDocumentDraft& document, LookupDocument& alone, std::uint32_t, ev::Reader&) {
    alone.document.emplace(document.take());
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

void forgetEntries(LookupDocumentDraft& document) { document.forgetEntries(); }
void forgetPackages(LookupDocumentDraft& document) { document.forgetPackages(); }

// A support package document; the main document has the same members and the packages (one
// level only: a package's own "supportPackages" is not read).
const ev::MemberRule kDocumentRules[] = {
    ev::text<&LookupDocumentDraft::productName, detail::utf8Field>(keys::kProductName, true),
    ev::text<&LookupDocumentDraft::baseCode, detail::asciiField>(keys::kBaseCode, true),
    ev::text<&LookupDocumentDraft::helpFolder, detail::asciiField>(keys::kHelpFolder, true),
    ev::text<&LookupDocumentDraft::helpLocation, detail::asciiField>(keys::kHelpLocation, true),
    ev::objects<forgetEntries>(keys::kRefItems, true, kEntry),
};
const ev::ObjectFormat kPackage = ev::objectFormat<closePackage, abandonPackage>(kDocumentRules);
const ev::ObjectFormat kAlone = ev::objectFormat<closeAlone>(kDocumentRules);

const ev::MemberRule kMainRules[] = {
    kDocumentRules[0], kDocumentRules[1], kDocumentRules[2],
    kDocumentRules[3], kDocumentRules[4], ev::objects<forgetPackages>(keys::kSupportPackages, false, kPackage),
};
const ev::ObjectFormat kMain = ev::objectFormat<closeMain, abandonMain>(kMainRules);

} // namespace

DocResourceParser::LookupResourceMap parseLookupFile(std::string_view text, detail::ScratchMemory& scratch,
                                                     FileDiagnostic* record) {
    DocResourceParser::LookupResourceMap result;
    LookupFile file{result, scratch};
    events::readText(text, kMain, &file, record);
    return result;
}

DocResourceParser::LookupResourceMap parseLookupFile(const boost::json::value& value) {
    DocResourceParser::LookupResourceMap result;
    detail::ScratchMemory scratch;
    LookupFile file{result, scratch};
    events::readValue(value, kMain, &file, nullptr);
    return result;
}

DocResource<RefItemLookup> parseLookupDocument(const boost::json::object& document) {
    LookupDocument alone;
    events::readValue(document, kAlone, &alone, nullptr);
    return std::move(*alone.document);
}

DocResourceParser::LookupResourceMap lookupFileParser(const std::string& text) {
    detail::ScratchMemory scratch;
    return parseLookupFile(text, scratch, nullptr);
}

} // namespace reference::docparser
