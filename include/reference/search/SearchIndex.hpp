#pragma once

// Searching the lookup entries of every product by name and purpose, the way people type code
// names: whole names, prefixes, segments of camelCase and snake_case names, initials, letters in
// order, typos, several words, and purpose text in any language.

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/Export.hpp>
#include <reference/search/SearchHit.hpp>
#include <reference/search/SearchQuery.hpp>

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace reference::search {

namespace detail {
struct IndexData; ///< the index's tables, inside the library
}

/// An immutable index of lookup entries, built once from the results of a lookup load and then
/// queried. Every member function is const and touches no shared mutable state, so any number of
/// threads may query one index at once without locks. The index keeps the results it was built
/// from (shared or moved in) and answers with pointers into them.
///
/// Ranking: by kind of match (see MatchKind), then by score within the kind; ties go to the
/// shorter name, then to installed products, then to the product key, then to the name, digit
/// runs comparing as numbers (`system111` before `system1020`). The order is total, so a query
/// always gives the same hits in the same order.
class REFDOC_API SearchIndex {
public:
    /// The results of DocResourceParser::getResourceLookupFiles.
    using LookupResults = docparser::DocResourceParser::ParsingResults<docparser::DocResourceParser::LookupResourceMap>;
    /// The reference pages of one product, as DocResourceParser::getResourceFile returns them.
    using PageFiles = docparser::DocResourceParser::RefItemFileMap;

    /// Indexes every entry of `lookups`, installed and uninstalled.
    explicit SearchIndex(LookupResults lookups);
    /// The same over results shared with the caller, which must not change them while the index lives.
    explicit SearchIndex(std::shared_ptr<const LookupResults> lookups);
    /// Also makes the purposes and descriptions of reference pages searchable: a page counts for
    /// the lookup entry of the same product key and href.
    SearchIndex(std::shared_ptr<const LookupResults> lookups, std::vector<PageFiles> pages);

    SearchIndex(SearchIndex&&) noexcept;            ///< takes the other's index, leaving it empty
    SearchIndex& operator=(SearchIndex&&) noexcept; ///< takes the other's index, leaving it empty
    SearchIndex(const SearchIndex&) = delete;
    SearchIndex& operator=(const SearchIndex&) = delete;
    ~SearchIndex();

    /// The best hits for `query`, best first.
    std::vector<SearchHit> search(const SearchQuery& query) const;
    /// The best `limit` hits for `text` over every entry (0: all hits), best first.
    std::vector<SearchHit> search(std::u16string_view text, std::size_t limit = 20) const;

    /// The number of entries indexed.
    std::size_t size() const noexcept;
    /// The results the index was built from.
    const LookupResults& lookups() const;
    /// Bytes of heap the index holds besides the results and pages it keeps.
    std::size_t memoryUsage() const noexcept;

private:
    std::unique_ptr<const detail::IndexData> data_;
};

} // namespace reference::search
