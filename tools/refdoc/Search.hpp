#pragma once

// The name search of `refdoc find` and of the search box of `refdoc serve`: lookup names that
// equal, start with or contain a text, ignoring case, best matches first.

#include <reference/docparser/DocResourceParser.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace refdoc::tool {

// How well a name matches: lower is better.
enum class Match { Exact = 0, Prefix = 1, Substring = 2 };

std::string_view matchName(Match match);

struct Hit {
    Match match;
    std::u32string foldedName;
    std::string name;
    std::string purpose;
    std::string href;
    std::string productKey;
    std::string productName;
    bool installed;
};

// Every lookup entry whose name matches one of `queries` (already case-folded with foldCase),
// ordered by match, folded name, name and product key.
std::vector<Hit> findHits(const reference::docparser::DocResourceParser::ParsingResults<
                              reference::docparser::DocResourceParser::LookupResourceMap>& results,
                          const std::vector<std::u32string>& queries);

} // namespace refdoc::tool
