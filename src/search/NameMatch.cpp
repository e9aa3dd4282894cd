#include "search/NameMatch.hpp"

#include <algorithm>
#include <bit>
#include <limits>

namespace reference::search::detail {
namespace {

constexpr int kImpossible = std::numeric_limits<int>::min() / 4;

} // namespace

std::optional<int> matchInitials(std::u16string_view query, std::u16string_view name, std::span<const Segment> segments,
                                 std::vector<MatchRange>& pieces) {
    pieces.clear();
    if (query.size() < 2 || query.size() > kMaxInOrderQuery) {
        return std::nullopt;
    }
    // The letter segments, each with where it ends (the next segment of any kind, or the end).
    std::size_t letters = 0;
    std::size_t initials = 0; // how many leading letter segments start with the query's letters
    for (std::size_t s = 0; s < segments.size(); ++s) {
        if (segments[s].digits) {
            continue;
        }
        if (initials == letters && initials < query.size() && name[segments[s].start] == query[initials]) {
            ++initials;
        }
        ++letters;
    }
    // The most segments first: `last` is the letter segment the last piece starts.
    for (std::size_t last = std::min(initials, query.size() - 1); last >= 1; --last) {
        std::size_t letter = 0;
        for (std::size_t s = 0; s < segments.size(); ++s) {
            if (segments[s].digits) {
                continue;
            }
            const std::size_t start = segments[s].start;
            if (letter < last) {
                pieces.push_back(MatchRange{static_cast<std::uint32_t>(start), 1});
                ++letter;
                continue;
            }
            const std::size_t end = s + 1 < segments.size() ? segments[s + 1].start : name.size();
            const std::u16string_view rest = query.substr(last);
            if (rest.size() <= end - start && name.substr(start, rest.size()) == rest) {
                pieces.push_back(
                    MatchRange{static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(rest.size())});
                const auto unused = static_cast<int>(letters - last - 1);
                return 900 - 40 * std::min(unused, 10);
            }
            break;
        }
        pieces.clear();
    }
    return std::nullopt;
}

namespace {
// The grades of matchInOrder: per matched character, at the start of the name or of a segment,
// right after the previous matched one.
constexpr int kMatch = 4;
constexpr int kConsecutive = 6;
constexpr int kNameStart = 10;
constexpr int kSegmentStart = 8;
} // namespace

QueryPositions::QueryPositions(std::u16string_view query) noexcept : query_(query), ascii_{} {
    for (std::size_t i = 0; i < query.size() && i < 32; ++i) {
        if (query[i] < 128) {
            ascii_[query[i]] |= std::uint32_t{1} << i;
        }
    }
}

std::optional<int> inOrderBound(const QueryPositions& positions, std::u16string_view name,
                                std::span<const Segment> segments) noexcept {
    const std::u16string_view query = positions.query();
    const std::size_t m = query.size();
    const std::size_t n = name.size();
    if (m < 2 || m > kMaxInOrderQuery || n < m || n > kMaxInOrderName) {
        return std::nullopt;
    }
    // The first character: the earlier it starts, the better (a late start costs its offset).
    // Later characters, all after that start: bit i set when query[i] starts a segment there, or
    // when query[i - 1] query[i] stand side by side there.
    int first = name[0] == query[0] ? 0 : -1;
    std::uint32_t starts = 0;
    for (const auto& segment : segments) {
        if (segment.start == 0 || segment.start >= n) {
            continue;
        }
        const std::uint32_t here = positions.of(name[segment.start]);
        if (first < 0 && (here & 1) != 0) {
            first = segment.start;
        } else if (first >= 0) {
            starts |= here; // only a segment after the first start can hold a later character
        }
    }
    if (first < 0) {
        return std::nullopt;
    }
    // The rest must follow in order; from the earliest start is where they most likely do.
    std::size_t next = 1;
    for (std::size_t j = static_cast<std::size_t>(first) + 1; j < n && next < m; ++j) {
        next += name[j] == query[next] ? 1 : 0;
    }
    if (next < m) {
        return std::nullopt;
    }
    // Pairs before the first start cannot be part of the match.
    std::uint32_t pairs = 0;
    std::uint32_t previous = positions.of(name[static_cast<std::size_t>(first)]);
    for (std::size_t j = static_cast<std::size_t>(first) + 1; j < n; ++j) {
        const std::uint32_t here = positions.of(name[j]);
        pairs |= here & (previous << 1);
        previous = here;
    }
    const std::uint32_t later = m >= 32 ? ~std::uint32_t{1} : ((std::uint32_t{1} << m) - 2);
    const int starting = std::popcount(starts & later);
    const int following = std::popcount(pairs & later);
    const int raw = kMatch + (first == 0 ? kNameStart : kSegmentStart - std::min(first, 20)) +
                    static_cast<int>(m - 1) * (kMatch - 1) + starting * kSegmentStart + following * (kConsecutive + 1);
    return std::clamp(500 + raw, 0, 999);
}

std::optional<int> matchInOrder(std::u16string_view query, std::u16string_view name, std::span<const Segment> segments,
                                std::vector<int>& scratch, std::vector<MatchRange>* ranges) {
    const std::size_t m = query.size();
    const std::size_t n = name.size();
    if (m < 2 || m > kMaxInOrderQuery || n < m || n > kMaxInOrderName) {
        return std::nullopt;
    }
    // Cheap test first: most candidates fail it.
    std::size_t at = 0;
    for (std::size_t j = 0; j < n && at < m; ++j) {
        if (name[j] == query[at]) {
            ++at;
        }
    }
    if (at < m) {
        return std::nullopt;
    }

    // Bonus per name position: the start of the name, the start of a segment.
    // Every row is kept only when the path is wanted; a grade needs the last two.
    const bool keepRows = ranges != nullptr;
    scratch.assign(n + (keepRows ? m : 2) * n, kImpossible);
    int* bonus = scratch.data();
    for (std::size_t j = 0; j < n; ++j) {
        bonus[j] = 0;
    }
    for (const auto& segment : segments) {
        if (segment.start < n) {
            bonus[segment.start] = kSegmentStart;
        }
    }
    bonus[0] = kNameStart;
    int* best = scratch.data() + n; // rowOf(i)[j]: q[0..i] matched, q[i] at name[j]
    const auto rowOf = [&](std::size_t i) { return best + (keepRows ? i : i % 2) * n; };
    for (std::size_t j = 0; j < n; ++j) {
        if (name[j] == query[0] && bonus[j] > 0) {
            best[j] = kMatch + bonus[j] - std::min<int>(static_cast<int>(j), 20);
        }
    }
    for (std::size_t i = 1; i < m; ++i) {
        const int* previous = rowOf(i - 1);
        int* row = rowOf(i);
        if (!keepRows) {
            std::fill(row, row + n, kImpossible);
        }
        int reach = kImpossible; // max over j' <= j - 2 of previous[j'] + j' + 1
        for (std::size_t j = 1; j < n; ++j) {
            if (j >= 2 && previous[j - 2] > kImpossible) {
                reach = std::max(reach, previous[j - 2] + static_cast<int>(j) - 1);
            }
            if (name[j] != query[i]) {
                continue;
            }
            int value = kImpossible;
            if (previous[j - 1] > kImpossible) {
                value = previous[j - 1] + kConsecutive;
            }
            if (reach > kImpossible) {
                value = std::max(value, reach - static_cast<int>(j));
            }
            if (value > kImpossible) {
                row[j] = value + kMatch + bonus[j];
            }
        }
    }
    const int* last = rowOf(m - 1);
    std::size_t end = 0;
    for (std::size_t j = 1; j < n; ++j) {
        if (last[j] > last[end]) {
            end = j;
        }
    }
    if (last[end] <= kImpossible) {
        return std::nullopt;
    }
    const int raw = last[end];
    if (ranges != nullptr) {
        std::vector<std::uint32_t> positions(m);
        std::size_t j = end;
        for (std::size_t i = m; i-- > 0;) {
            positions[i] = static_cast<std::uint32_t>(j);
            if (i == 0) {
                break;
            }
            const int own = best[i * n + j] - kMatch - bonus[j];
            const int* previous = best + (i - 1) * n;
            if (previous[j - 1] > kImpossible && previous[j - 1] + kConsecutive == own) {
                j -= 1;
                continue;
            }
            for (std::size_t k = j - 1; k-- > 0;) {
                if (previous[k] > kImpossible && previous[k] - static_cast<int>(j - k - 1) == own) {
                    j = k;
                    break;
                }
            }
        }
        ranges->clear();
        for (const auto position : positions) {
            if (!ranges->empty() && ranges->back().begin + ranges->back().length == position) {
                ++ranges->back().length;
            } else {
                ranges->push_back(MatchRange{position, 1});
            }
        }
    }
    return std::clamp(500 + raw, 0, 999);
}

int allowedTypos(std::size_t queryLength) noexcept {
    if (queryLength < 4) {
        return 0;
    }
    return queryLength < 8 ? 1 : 2;
}

std::optional<TypoMatch> matchTypo(std::u16string_view query, std::u16string_view name, int maxEdits,
                                   std::vector<int>& scratch) {
    const std::size_t m = query.size();
    if (maxEdits <= 0 || m == 0 || m > kMaxTypoQuery) {
        return std::nullopt;
    }
    const std::size_t rows = std::min(name.size(), m + static_cast<std::size_t>(maxEdits));
    if (rows + static_cast<std::size_t>(maxEdits) < m) {
        return std::nullopt;
    }
    // Optimal string alignment distance, one row per character of the name: cell i of row j is the
    // distance between the first j characters of the name and the first i of the query.
    const std::size_t width = m + 1;
    scratch.assign(3 * width, 0);
    int* before = scratch.data();
    int* above = before + width;
    int* row = above + width;
    for (std::size_t i = 0; i <= m; ++i) {
        above[i] = static_cast<int>(i);
    }
    std::optional<TypoMatch> best;
    for (std::size_t j = 1; j <= rows; ++j) {
        row[0] = static_cast<int>(j);
        int smallest = row[0];
        for (std::size_t i = 1; i <= m; ++i) {
            const int cost = name[j - 1] == query[i - 1] ? 0 : 1;
            int value = std::min({above[i] + 1, row[i - 1] + 1, above[i - 1] + cost});
            if (i > 1 && j > 1 && name[j - 1] == query[i - 2] && name[j - 2] == query[i - 1]) {
                value = std::min(value, before[i - 2] + 1);
            }
            row[i] = value;
            smallest = std::min(smallest, value);
        }
        if (row[m] <= maxEdits) {
            const bool whole = j == name.size();
            const TypoMatch here{row[m], j, whole};
            if (!best || typoGrade(here) > typoGrade(*best)) {
                best = here;
            }
        }
        if (smallest > maxEdits) {
            break;
        }
        std::swap(before, above);
        std::swap(above, row);
    }
    if (best && best->edits == 0 && !best->wholeName) {
        return std::nullopt; // a plain prefix, not a typo
    }
    return best;
}

int typoGrade(const TypoMatch& match) noexcept { return 900 - 200 * match.edits - (match.wholeName ? 0 : 100); }

} // namespace reference::search::detail
