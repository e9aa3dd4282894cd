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
