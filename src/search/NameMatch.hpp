#pragma once

// The ways a folded query can match a folded code name that need more than a comparison: initials
// of segments, letters in order, and typos. Each gives a grade within its kind (higher is better,
// 0..999) and, when asked, the matched runs of the name.

#include "search/CodeText.hpp"

#include <reference/search/SearchHit.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace reference::search::detail {

// The longest name and query the letter-by-letter matchers look at; longer ones match by prefix,
// segment and words only.
inline constexpr std::size_t kMaxInOrderName = 256;
inline constexpr std::size_t kMaxInOrderQuery = 32;
inline constexpr std::size_t kMaxTypoQuery = 24;

// The query is the initials of the name's letter segments, consecutive from the first, the last
// of which may go on into its segment ("gcf" in getCurrentFigure, "rcsv" in read_csv; digit runs
// are passed over). Fewer segments left over grades higher. `pieces` receives the matched runs.
std::optional<int> matchInitials(std::u16string_view query, std::u16string_view name, std::span<const Segment> segments,
                                 std::vector<MatchRange>& pieces);

// The query's characters appear in the name in this order, the first at the start of the name or
// of a segment. Matches at the start of a segment and runs of consecutive characters grade
// higher; gaps and a late first character lower. `scratch` is reused from call to call.
std::optional<int> matchInOrder(std::u16string_view query, std::u16string_view name, std::span<const Segment> segments,
                                std::vector<int>& scratch, std::vector<MatchRange>* ranges);

// A grade that matchInOrder cannot exceed for this name, found without grading it: the first
// character's best start, and for each later one whether it starts a segment somewhere and
// whether it follows the previous query character somewhere in the name. Empty exactly when
// there is no match at all (the first character starts neither the name nor a segment, or the
// rest do not follow it in order).
// What the first character of an in-order match adds at most: kMatch and the start of the name.
inline constexpr int kInOrderFirstMost = 14;
// `positions` tells where each character stands in the query (made once per query).
class QueryPositions {
public:
    explicit QueryPositions(std::u16string_view query) noexcept;
    // Bit i set when query[i] == c (the first 32 characters).
    std::uint32_t of(char16_t c) const noexcept {
        if (c < 128) {
            return ascii_[c];
        }
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < query_.size() && i < 32; ++i) {
            bits |= query_[i] == c ? std::uint32_t{1} << i : 0;
        }
        return bits;
    }
    std::u16string_view query() const noexcept { return query_; }

private:
    std::u16string_view query_;
    std::uint32_t ascii_[128];
};
std::optional<int> inOrderBound(const QueryPositions& positions, std::u16string_view name,
                                std::span<const Segment> segments) noexcept;

// Edits allowed for a query of this many characters: none below 4, one up to 7, two from 8.
int allowedTypos(std::size_t queryLength) noexcept;

// The query is within `maxEdits` edits (insertion, deletion, substitution, or a transposition of
// two neighbours) of the whole name or of its start. The whole name grades above its start, fewer
// edits above more. `matchedLength` is the length of the name (or start) matched.
struct TypoMatch {
    int edits;
    std::size_t matchedLength;
    bool wholeName;
};
std::optional<TypoMatch> matchTypo(std::u16string_view query, std::u16string_view name, int maxEdits,
                                   std::vector<int>& scratch);
int typoGrade(const TypoMatch& match) noexcept;

} // namespace reference::search::detail
