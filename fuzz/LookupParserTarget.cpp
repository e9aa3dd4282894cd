#include "FuzzTargets.hpp"

#include "docparser/parsing/LookupParser.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/parse.hpp>
#include <boost/system/system_error.hpp>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace refdoc::fuzz {
namespace {

using reference::docparser::DocParserException;
using reference::docparser::DocResourceParser;
using reference::docparser::text::utf16ToUtf8;
using Resource = reference::docparser::DocResource<reference::property::RefItemLookup>;
using ResourceMap = DocResourceParser::LookupResourceMap;

std::string_view bytesOf(const boost::json::value& value) {
    const auto& string = value.as_string();
    return {string.data(), string.size()};
}

// ASCII fields are widened byte for byte, whatever the bytes.
std::u16string widened(std::string_view bytes) {
    std::u16string out;
    for (const char byte : bytes) {
        out.push_back(static_cast<unsigned char>(byte));
    }
    return out;
}

// The JSON parser only hands out well-formed UTF-8, so UTF-8 fields must survive a round trip
// through UTF-16 unchanged.
bool decodesLosslessly(const std::u16string& text, const boost::json::value& source) {
    return utf16ToUtf8(text) == bytesOf(source);
}

void checkDocument(const Resource& resource, const boost::json::object& document) {
    const auto& header = resource.getHeader();
    require(decodesLosslessly(header.getProductName(), document.at("productName")), "product name decodes losslessly");
    require(header.getBaseCode() == widened(bytesOf(document.at("baseCode"))), "base code is widened");
    require(header.getHelpFolder() == widened(bytesOf(document.at("helpFolder"))), "help folder is widened");
    require(header.getHelpLocation() == widened(bytesOf(document.at("helpLocation"))), "help location is widened");

    // The file's items grouped by the bytes of their name, in file order.
    std::map<std::string_view, std::vector<const boost::json::object*>> byName;
    for (const auto& element : document.at("refItems").as_array()) {
        const auto& item = element.as_object();
        byName[bytesOf(item.at("name"))].push_back(&item);
    }
    require(resource.getItems().size() == byName.size(), "one entry per distinct name");
    for (const auto& [name, items] : resource.getItems()) {
        const auto expected = byName.find(utf16ToUtf8(name));
        require(expected != byName.end(), "entry names are names of the file");
        require(items.size() == expected->second.size(), "every item of a name is kept");
        for (std::size_t i = 0; i < items.size(); ++i) {
            const auto& item = items[i];
            const auto& source = *expected->second[i];
            require(item.getName() == name, "an entry holds items of its name only");
            require(decodesLosslessly(item.getPurpose(), source.at("refpurpose")), "purpose decodes losslessly");
            require(item.getHref() == widened(bytesOf(source.at("href"))), "href is widened, items in file order");
            require(item.isDeprecated() == source.contains("deprecated"), "deprecated means the key is present");
        }
    }
}

// The merge rule written out plainly: the winner keeps its header and each of its lists; a list
// strictly shorter than the fallback's is completed by the fallback items whose link it lacks.
Resource mergedByRule(const Resource& winner, const Resource& fallback) {
    auto items = winner.getItems();
    for (const auto& [name, fallbackItems] : fallback.getItems()) {
        auto [entry, added] = items.try_emplace(name, fallbackItems);
        auto& own = entry->second;
        if (added || own.size() >= fallbackItems.size()) {
            continue;
        }
        for (const auto& item : fallbackItems) {
            const auto href = item.getHref();
            if (std::none_of(own.begin(), own.end(), [&href](const auto& o) { return o.getHref() == href; })) {
                own.push_back(item);
            }
        }
    }
    return Resource(winner.getHeader(), std::move(items));
}

void checkMerges(const ResourceMap& parsed) {
    const Resource& first = parsed.begin()->second;
    for (const auto& [key, other] : parsed) {
        for (const bool sourceTakesPrecedence : {false, true}) {
            Resource target = first;
            DocResourceParser::ParsingTools::mergeResourceFiles(target, Resource(other), sourceTakesPrecedence);
            const Resource expected = sourceTakesPrecedence ? mergedByRule(other, first) : mergedByRule(first, other);
            require(target == expected, "merging follows the merge rule");
        }
    }
}

} // namespace

void LookupParserTarget::run(std::string_view input) const {
    const std::string text(input);
    ResourceMap parsed;
    bool accepted = true;
    try {
        parsed = reference::docparser::lookupFileParser(text);
    } catch (const DocParserException&) {
        accepted = false; // valid JSON that breaks the lookup format
    } catch (const boost::system::system_error&) {
        return; // not strict JSON
    }

    // The same tables read the parsed value: the same records, or the same refusal.
    const boost::json::value root = boost::json::parse(text);
    bool valueAccepted = true;
    ResourceMap fromValue;
    try {
        fromValue = reference::docparser::parseLookupFile(root);
    } catch (const DocParserException&) {
        valueAccepted = false;
    }
    require(valueAccepted == accepted && fromValue == parsed, "the text and its parsed value give the same records");
    if (!accepted) {
        return;
    }
    // Accepted, so every member the format reads has its kind.
    const auto& main = root.as_object();
    std::vector<std::pair<std::u16string, const boost::json::object*>> claims{
        {widened(bytesOf(main.at("helpFolder"))), &main}};
    if (const auto* packages = main.if_contains("supportPackages")) {
        for (const auto& package : packages->as_array()) {
            claims.emplace_back(widened(bytesOf(package.as_object().at("baseCode"))), &package.as_object());
        }
    }
    std::map<std::u16string, const boost::json::object*> firstClaims;
    for (const auto& [key, document] : claims) {
        firstClaims.try_emplace(key, document);
    }
    require(parsed.size() == firstClaims.size(), "one resource per distinct document key");
    for (const auto& [key, document] : firstClaims) {
        const auto resource = parsed.find(key);
        require(resource != parsed.end(), "every document key is in the result");
        checkDocument(resource->second, *document);
    }
    checkMerges(parsed);
}

} // namespace refdoc::fuzz
