#include "Search.hpp"

#include "Cli.hpp"
#include "Text.hpp"

#include <reference/property/RefEntityType.hpp>

#include <algorithm>

namespace refdoc::tool {

using reference::property::RefEntityType;
using reference::search::MatchKind;
using reference::search::SearchHit;

namespace {

// The entity type texts, in the order of their numbers.
std::vector<std::string> entityTypeTexts() {
    std::vector<std::string> texts;
    for (int value = 1;; ++value) {
        const std::string_view text = RefEntityType::toString(static_cast<RefEntityType::Value>(value));
        if (text.empty()) {
            return texts;
        }
        texts.emplace_back(text);
    }
}

// What raises a hit's grade within its kind of match.
const char* gradeMeaning(MatchKind kind) {
    switch (kind) {
    case MatchKind::Exact:
    case MatchKind::Prefix:
        return "every hit of this kind grades the same";
    case MatchKind::SegmentPrefix:
        return "an earlier segment grades higher";
    case MatchKind::Initials:
        return "fewer segments left over grade higher";
    case MatchKind::InOrder:
        return "segment starts and consecutive letters grade higher, gaps and a late start lower";
    case MatchKind::Typo:
        return "fewer edits, and the whole name over its start, grade higher";
    case MatchKind::Words:
        return "words in the name grade higher than words in the purpose, the purpose higher than the page";
    case MatchKind::Purpose:
        return "the entry's own purpose grades higher than its page's text, a whole word higher still";
    }
    return "";
}

const char* kindMeaning(MatchKind kind) {
    switch (kind) {
    case MatchKind::Exact:
        return "the whole name";
    case MatchKind::Prefix:
        return "the name starts with the text";
    case MatchKind::SegmentPrefix:
        return "a later segment of the name starts with the text";
    case MatchKind::Initials:
        return "the initials of the name's segments";
    case MatchKind::InOrder:
        return "the text's letters in order in the name";
    case MatchKind::Typo:
        return "the name, or its start, within a few edits of the text";
    case MatchKind::Words:
        return "each word in the name or the purpose";
    case MatchKind::Purpose:
        return "the text in the purpose or the page";
    }
    return "";
}

} // namespace

std::string entityTypeProblem(const std::string& text) {
    RefEntityType::Value value{};
    if (RefEntityType::tryStringToEnum(text, value) && value != RefEntityType::Unspecified) {
        return {};
    }
    return "'" + text + "' is no entity type (" + joinList(entityTypeTexts(), ", ") + ")";
}

reference::search::SearchQuery toQuery(const SearchOptions& options) {
    reference::search::SearchQuery query;
    query.text = toUtf16(options.text);
    query.limit = options.limit;
    for (const auto& key : options.products) {
        query.productKeys.push_back(toUtf16(key));
    }
    for (const auto& type : options.types) {
        if (const std::string problem = entityTypeProblem(type); !problem.empty()) {
            throw UsageError("--type: " + problem);
        }
        query.entityTypes.push_back(RefEntityType::stringToEnum(type));
    }
    query.installedOnly = options.installedOnly;
    query.hideDeprecated = options.hideDeprecated;
    return query;
}

boost::json::object hitJson(const SearchHit& hit) {
    const std::string_view type = RefEntityType::toString(hit.item->getEntityType());
    boost::json::object object{{"name", toUtf8(hit.item->getName())},
                               {"purpose", toUtf8(hit.item->getPurpose())},
                               {"href", toUtf8(hit.item->getHref())},
                               {"productKey", toUtf8(*hit.productKey)},
                               {"productName", toUtf8(hit.product->getProductName())},
                               {"installed", hit.installed},
                               {"match", std::string(toString(hit.match))},
                               {"score", hit.score},
                               {"deprecated", hit.deprecated}};
    object["type"] = type.empty() ? boost::json::value(nullptr) : boost::json::value(std::string(type));
    return object;
}

std::vector<std::string> nameRuns(const SearchHit& hit) {
    const std::u16string_view name = hit.item->getName();
    std::vector<std::string> runs;
    std::size_t at = 0;
    for (const auto& range : hit.nameRanges) {
        const std::size_t begin = std::min<std::size_t>(range.begin, name.size());
        const std::size_t end = std::min<std::size_t>(begin + range.length, name.size());
        runs.push_back(toUtf8(name.substr(at, begin - at)));
        runs.push_back(toUtf8(name.substr(begin, end - begin)));
        at = end;
    }
    if (at < name.size() || runs.empty()) {
        runs.push_back(toUtf8(name.substr(at)));
    }
    return runs;
}

std::string explainHit(const SearchHit& hit) {
    std::string marked;
    const auto runs = nameRuns(hit);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        marked += i % 2 == 1 ? "[" + runs[i] + "]" : runs[i];
    }
    const int band = reference::search::lowestScore(hit.match);
    std::string line = std::string(toString(hit.match)) + ": " + kindMeaning(hit.match);
    if (!hit.nameRanges.empty()) {
        line += ", " + marked;
    }
    line += "; score " + std::to_string(hit.score) + " = " + std::to_string(band) + " for the kind + " +
            std::to_string(hit.score - band) + " (" + gradeMeaning(hit.match) + "); ties: a name of " +
            std::to_string(hit.item->getName().size()) + " units, " + (hit.installed ? "installed" : "not installed") +
            ", key " + toUtf8(*hit.productKey);
    if (hit.deprecated) {
        line += "; deprecated";
    }
    return line;
}

} // namespace refdoc::tool
