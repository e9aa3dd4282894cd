#pragma once

// What the search benchmarks need besides the library: queries drawn from a corpus the way
// people type them, the straightforward peer (a linear scan that scores every name by the same
// rules as the index) and the statistics of per-query latencies.

#include "search/CodeText.hpp"

#include <reference/search/SearchIndex.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace refdoc::bench {

// How a generated query was made from the corpus.
enum class QueryKind : std::uint8_t {
    Prefix,   // the first 1-12 characters of a name, as typed
    Typo,     // 4-12 characters of a name with one edit (two from eight characters)
    Initials, // the initials of a name's first segments, perhaps going on into the last one
    Purpose,  // the start of a word of a purpose text (a piece of it for unspaced scripts)
};
inline constexpr QueryKind kQueryKinds[] = {QueryKind::Prefix, QueryKind::Typo, QueryKind::Initials,
                                            QueryKind::Purpose};
std::string_view queryKindName(QueryKind kind) noexcept;

struct GeneratedQuery {
    std::u16string text; // 1-12 UTF-16 units, folded
    QueryKind kind;
};

// `perKind` queries of each kind drawn from the entries of `lookups` (purpose words in whatever
// language the results hold); the same results and seed always give the same queries, in an
// order that mixes the kinds.
std::vector<GeneratedQuery> makeQueries(const reference::search::SearchIndex::LookupResults& lookups,
                                        std::size_t perKind, std::uint64_t seed);

// A linear scan over every entry, scoring each with the index's rules: the folded name is
// compared whole, by prefix and by segment, then tried as initials, letters in order and typos;
// a name that does not match is looked for in the purpose's words. Names, segments and purpose
// words are prepared once, so that a query pays for the scan and the scoring only.
class ScanPeer {
public:
    explicit ScanPeer(const reference::search::SearchIndex::LookupResults& lookups);

    struct Hit {
        const reference::property::RefItemLookup* item;
        int score;
    };
    // The best `limit` hits, best first (ties to the shorter name, then the installed product,
    // then the order of the results).
    std::vector<Hit> search(std::u16string_view query, std::size_t limit) const;

    std::size_t size() const noexcept { return entries_.size(); }

private:
    struct Entry {
        const reference::property::RefItemLookup* item;
        std::uint32_t name;     // into text_
        std::uint32_t purpose;  // into text_
        std::uint32_t segments; // into segments_
        std::uint32_t words;    // into words_
        std::uint16_t nameLength;
        std::uint16_t segmentCount;
        std::uint32_t purposeLength;
        std::uint32_t wordCount;
        bool installed;
    };
    int scoreName(const Entry& entry, std::u16string_view query, std::vector<int>& scratch) const;
    int purposeHolds(const Entry& entry, std::u16string_view word) const;
    bool nameHolds(const Entry& entry, std::u16string_view word) const;

    std::vector<Entry> entries_;
    std::u16string text_;
    std::vector<reference::search::detail::Segment> segments_;
    std::vector<reference::search::detail::Word> words_; // of the purposes, begins into text_
};

// The value below which `share` of `values` lie (nearest rank); 0 for no values. Sorts a copy.
double percentile(std::vector<double> values, double share);

} // namespace refdoc::bench
