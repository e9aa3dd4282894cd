#pragma once

// The search of `refdoc find`, of the web view's search box and of its /api/search: the
// library's search index asked with the tool's options, and its hits in the forms the tool
// shows them (JSON fields, an explanation, a name with its matched runs marked).

#include <reference/search/SearchIndex.hpp>

#include <boost/json/object.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace refdoc::tool {

using LookupResults = reference::search::SearchIndex::LookupResults;

struct SearchOptions {
    std::string text;                  // words separated by blanks, UTF-8
    std::size_t limit = 20;            // 0: every hit
    std::vector<std::string> products; // product keys; empty: every product
    std::vector<std::string> types;    // entity type texts ("function", ...); empty: every type
    bool installedOnly = false;
    bool hideDeprecated = false;
};

// The library's query for the options. Throws UsageError for a type that is no entity type.
reference::search::SearchQuery toQuery(const SearchOptions& options);

// "" for a known entity type text, else what is wrong with it, naming the known ones.
std::string entityTypeProblem(const std::string& text);

// One hit's fields, as `find --json` and /api/search give them: name, purpose, href,
// productKey, productName, installed, match, score, type (null when the entry has none) and
// deprecated.
boost::json::object hitJson(const reference::search::SearchHit& hit);

// Why the hit ranks where it does, in one line: how it matched, the matched runs of the name,
// its score and what breaks ties with equal scores.
std::string explainHit(const reference::search::SearchHit& hit);

// The hit's name cut into runs, UTF-8, alternately not matched and matched (the first may be
// empty), for marking the matched ones.
std::vector<std::string> nameRuns(const reference::search::SearchHit& hit);

} // namespace refdoc::tool
