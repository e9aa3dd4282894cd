#include "docparser/parsing/LookupParser.hpp"

#include "docparser/diagnostics/DiagnosticHooks.hpp"
#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/parse_options.hpp>

#include <utility>

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
    const boost::json::value root = diagnostics::parseResourceText(text, &arena);
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

DocResourceParser::LookupResourceMap parseLookupFile(const std::string& text) {
    return parseLookupFileTree(text);
}

DocResourceParser::LookupResourceMap lookupFileParser(const std::string& text) {
    return parseLookupFile(text);
}

} // namespace reference::docparser
