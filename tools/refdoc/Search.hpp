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

using LookupResults =
    reference::docparser::DocResourceParser::ParsingResults<reference::docparser::DocResourceParser::LookupResourceMap>;

// The lookup names of one load, case-folded once, for searching them many times (the web view
// keeps one per loaded snapshot). It refers to `results`, which must outlive it.
class NameIndex {
public:
    explicit NameIndex(const LookupResults& results);

    // Every lookup entry whose name matches one of `queries` (already case-folded with
    // foldCase), ordered by match, folded name, name and product key; only the first `limit`
    // are made into hits, and `total` is set to how many there are.
    std::vector<Hit> find(const std::vector<std::u32string>& queries, std::size_t limit, std::size_t& total) const;

private:
    struct Name {
        std::u32string folded;
        std::string name;
        const std::string* productKey;
        const reference::docparser::DocResource<reference::property::RefItemLookup>* resource;
        const std::vector<reference::property::RefItemLookup>* entries;
        bool installed;
    };
    std::vector<std::string> keys_; // the product keys in UTF-8, which names_ point into
    std::vector<Name> names_;
};

// Every matching lookup entry, as NameIndex::find gives them.
std::vector<Hit> findHits(const LookupResults& results, const std::vector<std::u32string>& queries);

} // namespace refdoc::tool
