#pragma once

#include <reference/docparser/Export.hpp>
#include <reference/property/HeaderInfo.hpp>
#include <reference/property/RefItemLookup.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace reference::search {

/// How an entry matched a query. The kinds rank in this order: every hit of a kind comes before
/// every hit of a later kind.
enum class MatchKind : std::uint8_t {
    Exact = 0,         ///< the whole name, ignoring case
    Prefix = 1,        ///< the name starts with the query
    SegmentPrefix = 2, ///< a later segment of the name starts with the query ("figure" in getCurrentFigure)
    Initials = 3,      ///< initials of the first segments, the last one going on ("gcf", "rcsv" for read_csv)
    InOrder = 4,       ///< the query's characters in order, the first starting the name or a segment
    Typo = 5,          ///< the name, or its start, is within a few edits of the query
    Words = 6,         ///< a query of several words, each found in the name or the purpose
    Purpose = 7,       ///< the query is found in the purpose text (or the reference page's text)
};

/// A short lower-case word for a match kind: "exact", "prefix", "segment", "initials", "inorder",
/// "typo", "words" or "purpose"; "" for a value outside the enumeration.
REFDOC_API std::string_view toString(MatchKind kind) noexcept;

/// The lowest score a hit of this kind can have. A hit's score less this is its grade within
/// its kind; every score of a kind lies below the lowest score of the kind before it.
REFDOC_API std::int32_t lowestScore(MatchKind kind) noexcept;

/// A run of the entry's name that the query matched, in UTF-16 code units of the name as the
/// lookup entry holds it (not folded), for highlighting.
struct MatchRange {
    std::uint32_t begin = 0;  ///< offset of the first matched code unit
    std::uint32_t length = 0; ///< number of matched code units

    /// Ranges are equal when they cover the same code units.
    bool operator==(const MatchRange&) const = default;
};

/// One result of a query. The pointers refer into the index that answered it and stay valid for
/// as long as that index lives.
struct SearchHit {
    const property::RefItemLookup* item = nullptr; ///< the lookup entry: name, purpose, href, entity type
    const std::u16string* productKey = nullptr;    ///< the key of its product (help folder or base code)
    const property::HeaderInfo* product = nullptr; ///< the header of its product (product name, help location)
    bool installed = false;                        ///< whether the product is installed
    bool deprecated = false;                       ///< whether the entry is marked deprecated
    MatchKind match = MatchKind::Exact;            ///< how it matched
    /// Higher is better. Kinds occupy separate bands (each kind's scores lie above every later
    /// kind's), so hits are in descending score order; within a band it grades the match (an
    /// earlier segment, fewer gaps, fewer edits, the entry's own purpose over its page's text).
    std::int32_t score = 0;
    /// The matched runs of the name, in order and not overlapping; empty for a purpose match.
    std::vector<MatchRange> nameRanges;
};

} // namespace reference::search
