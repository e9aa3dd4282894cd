#include "docparser/parsing/LookupParser.hpp"

#include "docparser/diagnostics/DiagnosticHooks.hpp"
#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"

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

} // namespace

DocResource<RefItemLookup> parseLookupDocument(const boost::json::object& document) {
    auto header = detail::readHeader(document);
    const auto& items = detail::requireArray(document, keys::kRefItems);

    DocResource<RefItemLookup>::ItemMap byName;
    // Files are mostly sorted by name: with the last entry as hint, each insertion (or the
    // find of a repeated name) costs constant time.
    auto hint = byName.end();
    for (const auto& element : items) {
        const auto& item = detail::asObject(element);
        auto name = detail::requireString(item, keys::kName, StringParsingType::Utf8);
        auto purpose = detail::requireString(item, keys::kRefPurpose, StringParsingType::Utf8);
        auto href = detail::requireString(item, keys::kHref, StringParsingType::Ascii);
        const auto entityType = detail::readEnum<RefEntityType>(item, keys::kType);
        const auto functionType = detail::readEnum<FunctionType>(item, keys::kFcnType);
        // Only the key's presence counts: "deprecated": false marks the entry as well.
        const bool deprecated = item.contains(keys::kDeprecated);

        hint = byName.try_emplace(hint, name);
        hint->second.emplace_back(std::move(name), entityType, std::move(purpose), deprecated, std::move(href),
                                  functionType);
    }
    return DocResource<RefItemLookup>(std::move(header), std::move(byName));
}

DocResourceParser::LookupResourceMap parseLookupFile(const std::string& text) {
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

DocResourceParser::LookupResourceMap lookupFileParser(const std::string& text) {
    return parseLookupFile(text);
}

} // namespace reference::docparser
