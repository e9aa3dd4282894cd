// Answering a query: each kind of match in rank order, each from its own table, stopping as soon
// as the hits found so far fill the limit (a later kind cannot outrank them).

#include "search/CodeText.hpp"
#include "search/IndexData.hpp"
#include "search/NameMatch.hpp"

#include <unicode/uchar.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <optional>

namespace reference::search {

std::string_view toString(MatchKind kind) noexcept {
    switch (kind) {
    case MatchKind::Exact:
        return "exact";
    case MatchKind::Prefix:
        return "prefix";
    case MatchKind::SegmentPrefix:
        return "segment";
    case MatchKind::Initials:
        return "initials";
    case MatchKind::InOrder:
        return "inorder";
    case MatchKind::Typo:
        return "typo";
    case MatchKind::Words:
        return "words";
    case MatchKind::Purpose:
        return "purpose";
    }
    return "";
}

// Each kind scores within its own band of 1000, the first kind highest.
std::int32_t lowestScore(MatchKind kind) noexcept { return (7 - static_cast<int>(kind)) * 1000; }

namespace {

using detail::IndexData;

constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

int band(MatchKind kind) noexcept { return lowestScore(kind); }

// Grades of the kinds without a matcher of their own.
constexpr int kWholeGrade = 900;
constexpr int kPurposeGrade = 900;
constexpr int kPageGrade = 700;
constexpr int kWholeWordBonus = 50;

struct Found {
    int score;
    std::uint32_t entry;
    std::uint32_t aux; // the segment's offset for a segment match
};

bool better(const Found& a, const Found& b) noexcept {
    return a.score != b.score ? a.score > b.score : a.entry < b.entry;
}

// The best `capacity` matches of one kind, one per entry. Matches are kept unsorted and cut back
// to the best whenever twice the capacity has gathered; from then on anything not better than
// the worst kept one is turned away without a look at the entry.
class Collector {
public:
    explicit Collector(std::size_t capacity) : capacity_(capacity) {}

    bool wants(int score, std::uint32_t entry) const noexcept {
        return !full_ || better(Found{score, entry, 0}, worst_);
    }
    // Whether only matches better than the worst kept one are taken now, and its score.
    bool full() const noexcept { return full_; }
    int worstScore() const noexcept { return worst_.score; }
    void add(const Found& found) {
        items_.push_back(found);
        if (capacity_ != kUnlimited && items_.size() >= 2 * capacity_ + 64) {
            compact();
        }
    }
    std::vector<Found> finish() {
        compact();
        std::sort(items_.begin(), items_.end(), better);
        return std::move(items_);
    }

private:
    void compact() {
        std::sort(items_.begin(), items_.end(), [](const Found& a, const Found& b) {
            return a.entry != b.entry ? a.entry < b.entry : a.score > b.score;
        });
        items_.erase(std::unique(items_.begin(), items_.end(),
                                 [](const Found& a, const Found& b) { return a.entry == b.entry; }),
                     items_.end());
        if (items_.size() > capacity_) {
            std::nth_element(items_.begin(), items_.begin() + static_cast<std::ptrdiff_t>(capacity_), items_.end(),
                             better);
            items_.resize(capacity_);
        }
        if (capacity_ != kUnlimited && !items_.empty() && items_.size() == capacity_) {
            full_ = true;
            worst_ = *std::max_element(items_.begin(), items_.end(), better);
        }
    }

    std::size_t capacity_;
    std::vector<Found> items_;
    bool full_ = false;
    Found worst_{};
};

// A range of a sorted table: [begin, end).
struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t size() const noexcept { return end - begin; }
};

// The rows of a table sorted by sort key whose text starts with `prefix`: exactly those when it
// has at most eight units, else a superset (the rows that share its first eight).
template <class Table, class TextOf>
Range prefixRange(const Table& table, std::u16string_view prefix, TextOf textOf) {
    const detail::SortKey low = detail::sortKey(prefix, 0);
    const detail::SortKey high = detail::sortKey(prefix, 0xFFFF);
    const auto first =
        std::lower_bound(table.begin(), table.end(), low,
                         [&](const auto& row, const detail::SortKey& k) { return detail::sortKey(textOf(row)) < k; });
    const auto last = std::upper_bound(first, table.end(), high, [&](const detail::SortKey& k, const auto& row) {
        return k < detail::sortKey(textOf(row));
    });
    return Range{static_cast<std::size_t>(first - table.begin()), static_cast<std::size_t>(last - table.begin())};
}

// The entries of word `w` set in at least `count` of `rows`: the rows added up bit by bit, one
// bit plane per binary digit of the count, then compared with `count`.
std::uint64_t atLeast(const std::vector<const std::uint64_t*>& rows, std::size_t w, std::size_t count) noexcept {
    if (count > rows.size()) {
        return 0;
    }
    constexpr std::size_t kPlanes = 7; // up to 127 rows
    std::uint64_t planes[kPlanes] = {};
    for (const std::uint64_t* row : rows) {
        std::uint64_t carry = row[w];
        for (std::size_t k = 0; k < kPlanes && carry != 0; ++k) {
            const std::uint64_t next = planes[k] & carry;
            planes[k] ^= carry;
            carry = next;
        }
    }
    std::uint64_t greater = 0;
    std::uint64_t equal = ~std::uint64_t{0};
    for (std::size_t k = kPlanes; k-- > 0;) {
        if ((count >> k) & 1) {
            equal &= planes[k];
        } else {
            greater |= equal & planes[k];
            equal &= ~planes[k];
        }
    }
    return greater | equal;
}

bool isQuerySpace(char32_t c) noexcept {
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' ||
           (c >= 0x80 && u_isUWhiteSpace(static_cast<UChar32>(c)));
}

// How a query word is looked for in a purpose text: a plain word matches the start of a word
// of the text (the whole word when shorter than three characters); any other (unspaced script,
// punctuation inside) matches as a piece of the text.
struct QueryWord {
    std::u16string_view text;
    bool plain = false;
};

bool startsWordWith(std::u16string_view word, std::u16string_view query) {
    return query.size() >= 3 ? word.starts_with(query) : word == query;
}

class Search {
public:
    Search(const IndexData& data, const SearchQuery& query) : d_(data), q_(query) {
        limit_ = query.limit == 0 ? kUnlimited : query.limit;
        prepareText();
        if (!query.productKeys.empty()) {
            productAllowed_.assign(d_.products.size(), 0);
            for (std::size_t p = 0; p < d_.products.size(); ++p) {
                productAllowed_[p] = std::find(query.productKeys.begin(), query.productKeys.end(),
                                               *d_.products[p].key) != query.productKeys.end();
            }
        }
        if (!query.entityTypes.empty()) {
            typeMask_ = 0;
            for (const auto type : query.entityTypes) {
                if (const std::uint8_t code = IndexData::typeCode(type); code != 0) {
                    typeMask_ |= std::uint64_t{1} << (code >> IndexData::kTypeShift);
                }
            }
        }
    }

    std::vector<SearchHit> run() {
        if (text_.empty() || d_.entries.empty()) {
            return {};
        }
        const bool single = words_.size() == 1;
        bool done = names(MatchKind::Exact) || names(MatchKind::Prefix) || segmentPrefixes();
        if (!done && single) {
            done = initials() || inOrder() || typos();
        }
        if (!done) {
            if (single) {
                purpose();
            } else {
                severalWords();
            }
        }
        return hits();
    }

private:
    void prepareText() {
        const std::u16string foldedQuery = detail::folded(q_.text);
        std::size_t i = 0;
        std::vector<std::pair<std::size_t, std::size_t>> spans;
        std::size_t start = std::u16string::npos;
        while (i <= foldedQuery.size()) {
            bool space = true;
            std::size_t next = i + 1;
            if (i < foldedQuery.size()) {
                char32_t c = foldedQuery[i];
                if ((c & 0xFC00) == 0xD800 && i + 1 < foldedQuery.size() && (foldedQuery[i + 1] & 0xFC00) == 0xDC00) {
                    c = 0x10000 + ((c - 0xD800) << 10) + (foldedQuery[i + 1] - 0xDC00);
                    next = i + 2;
                }
                space = isQuerySpace(c);
            }
            if (!space && start == std::u16string::npos) {
                start = i;
            } else if (space && start != std::u16string::npos) {
                spans.emplace_back(start, i);
                start = std::u16string::npos;
            }
            i = next;
        }
        for (const auto& [b, e] : spans) {
            if (!text_.empty()) {
                text_.push_back(u' ');
            }
            text_.append(foldedQuery, b, e - b);
        }
        std::size_t at = 0;
        for (const auto& [b, e] : spans) {
            const std::u16string_view word = std::u16string_view(text_).substr(at, e - b);
            split_.clear();
            detail::splitWords(word, split_);
            const bool plain = split_.size() == 1 && !split_[0].unspaced && split_[0].length == word.size();
            words_.push_back(QueryWord{word, plain});
            at += e - b + 1;
        }
    }

    bool passes(std::uint32_t entry) const noexcept {
        const auto& e = d_.entries[entry];
        if (q_.installedOnly && (e.flags & IndexData::kInstalled) == 0) {
            return false;
        }
        if (q_.hideDeprecated && (e.flags & IndexData::kDeprecated) != 0) {
            return false;
        }
        if (!productAllowed_.empty() && !productAllowed_[e.product]) {
            return false;
        }
        return typeMask_ == kAnyType || ((typeMask_ >> (e.flags >> IndexData::kTypeShift)) & 1) != 0;
    }

    bool seen(std::uint32_t entry) const noexcept { return std::binary_search(seen_.begin(), seen_.end(), entry); }

    void offer(Collector& collector, int score, std::uint32_t entry, std::uint32_t aux = 0) {
        if (collector.wants(score, entry) && passes(entry) && !seen(entry)) {
            collector.add(Found{score, entry, aux});
        }
    }

    Collector collector() const { return Collector(limit_ == kUnlimited ? kUnlimited : limit_ - found_.size()); }

    // Takes a kind's matches; true when the limit is reached.
    bool keep(Collector& collector, MatchKind kind) {
        for (const auto& found : collector.finish()) {
            found_.push_back(found);
            kinds_.push_back(kind);
            seen_.push_back(found.entry);
        }
        std::sort(seen_.begin(), seen_.end());
        return found_.size() >= limit_;
    }

    Range nameRange(std::u16string_view prefix) const {
        return prefixRange(d_.byName, prefix, [&](std::uint32_t e) { return d_.name(e); });
    }
    Range segmentRange(std::u16string_view prefix) const {
        return prefixRange(d_.bySegment, prefix,
                           [&](const IndexData::SegmentRef& r) { return d_.name(r.entry).substr(r.offset); });
    }

    bool names(MatchKind kind) {
        Collector best = collector();
        const Range range = nameRange(text_);
        const int score = band(kind) + kWholeGrade;
        const bool check = text_.size() > detail::kSortKeyUnits;
        for (std::size_t i = range.begin; i < range.end; ++i) {
            const std::uint32_t e = d_.byName[i];
            const bool whole = d_.entries[e].nameLength == text_.size();
            if (whole != (kind == MatchKind::Exact)) {
                if (kind == MatchKind::Exact && text_.size() < detail::kSortKeyUnits) {
                    break; // a short whole name has the smallest key of the range: they come first
                }
                continue;
            }
            if (!check || d_.name(e).starts_with(text_)) {
                offer(best, score, e);
            }
        }
        return keep(best, kind);
    }

    static int segmentGrade(std::uint32_t index) noexcept {
        return kWholeGrade - 20 * static_cast<int>(std::min<std::uint32_t>(index - 1, 20));
    }

    bool segmentPrefixes() {
        Collector best = collector();
        const Range range = segmentRange(text_);
        const bool check = text_.size() > detail::kSortKeyUnits;
        for (std::size_t i = range.begin; i < range.end; ++i) {
            const auto& ref = d_.bySegment[i];
            if (!check || d_.name(ref.entry).substr(ref.offset).starts_with(text_)) {
                offer(best, band(MatchKind::SegmentPrefix) + segmentGrade(ref.index), ref.entry, ref.offset);
            }
        }
        return keep(best, MatchKind::SegmentPrefix);
    }

    bool initials() {
        Collector best = collector();
        if (text_.size() >= 2 && text_.size() <= detail::kMaxInOrderQuery) {
            // Every match has the query's first two characters as its first two initials.
            const auto initialsOf = [&](std::uint32_t e) { return d_.initialsOf(e); };
            const Range range = prefixRange(d_.byInitials, std::u16string_view(text_).substr(0, 2), initialsOf);
            const int top = band(MatchKind::Initials) + kWholeGrade;
            for (std::size_t i = range.begin; i < range.end; ++i) {
                const std::uint32_t e = d_.byInitials[i];
                if (!best.wants(top, e)) {
                    continue;
                }
                const auto grade = detail::matchInitials(text_, d_.name(e), d_.segmentsOf(e), ranges_);
                if (grade) {
                    offer(best, band(MatchKind::Initials) + *grade, e);
                }
            }
        }
        return keep(best, MatchKind::Initials);
    }

    bool inOrder() {
        Collector best = collector();
        if (text_.size() >= 2 && text_.size() <= detail::kMaxInOrderQuery) {
            std::uint64_t classes = 0;
            for (const char16_t c : text_) {
                classes |= std::uint64_t{1} << detail::letterClass(c);
            }
            const std::uint64_t* starts = d_.startBits.data() + detail::letterClass(text_[0]) * d_.bitWords;
            const int top = band(MatchKind::InOrder) + 999;
            // Each later character adds at most kMatch - 1 to a grade, 8 more where it can start a
            // segment and 7 more where it can follow the one before: per 64 entries, the rows
            // that say where it can tell which names cannot beat the hits kept.
            std::vector<const std::uint64_t*> rows;
            for (std::size_t i = 1; i < text_.size(); ++i) {
                rows.push_back(d_.startBits.data() + detail::letterClass(text_[i]) * d_.bitWords);
                rows.push_back(d_.pairBits.data() + detail::pairClass(text_[i - 1], text_[i]) * d_.bitWords);
            }
            const int base = 500 + detail::kInOrderFirstMost + static_cast<int>(text_.size() - 1) * 3;
            const detail::QueryPositions positions(text_);
            for (std::size_t w = 0; w < d_.bitWords; ++w) {
                std::uint64_t bits = starts[w];
                for (std::uint64_t rest = classes; rest != 0 && bits != 0; rest &= rest - 1) {
                    bits &= d_.letterBits[static_cast<std::size_t>(std::countr_zero(rest)) * d_.bitWords + w];
                }
                if (bits != 0 && best.full()) {
                    const int shortfall = best.worstScore() - band(MatchKind::InOrder) - base;
                    if (shortfall >= 0) {
                        bits &= atLeast(rows, w, static_cast<std::size_t>(shortfall / 8 + 1));
                    }
                }
                for (; bits != 0; bits &= bits - 1) {
                    const auto e =
                        static_cast<std::uint32_t>(w * 64 + static_cast<std::size_t>(std::countr_zero(bits)));
                    if (d_.entries[e].nameLength < text_.size() || !best.wants(top, e)) {
                        continue;
                    }
                    // A name that cannot match, or whose highest possible grade cannot beat the
                    // best kept, is passed over without grading it.
                    const auto bound = detail::inOrderBound(positions, d_.name(e), d_.segmentsOf(e));
                    if (!bound || !best.wants(band(MatchKind::InOrder) + *bound, e)) {
                        continue;
                    }
                    const auto grade = detail::matchInOrder(text_, d_.name(e), d_.segmentsOf(e), ints_, nullptr);
                    if (grade) {
                        offer(best, band(MatchKind::InOrder) + *grade, e);
                    }
                }
            }
        }
        return keep(best, MatchKind::InOrder);
    }

    bool typos() {
        Collector best = collector();
        const int edits = detail::allowedTypos(text_.size());
        if (edits > 0 && text_.size() <= detail::kMaxTypoQuery) {
            // Each edit spoils at most two of the query's character pairs (unordered, so a
            // transposition spoils only its neighbours) and moves the rest by at most one place:
            // a match shares all but 2 * edits pairs, each within `edits` places of its own.
            // The runs of each pair, one per position where it may be.
            std::vector<Range> runs;
            constexpr std::size_t kPositions = IndexData::kBigramPositions;
            for (std::size_t i = 0; i + 1 < text_.size(); ++i) {
                const std::uint32_t key = detail::bigramKey(text_[i], text_[i + 1]);
                const auto found = std::lower_bound(d_.bigramKeys.begin(), d_.bigramKeys.end(), key);
                if (found == d_.bigramKeys.end() || *found != key) {
                    continue;
                }
                const auto k = static_cast<std::size_t>(found - d_.bigramKeys.begin());
                const std::size_t low = i > static_cast<std::size_t>(edits) ? i - static_cast<std::size_t>(edits) : 0;
                const std::size_t high = std::min(i + static_cast<std::size_t>(edits) + 1, kPositions);
                for (std::size_t p = low; p < high; ++p) {
                    runs.push_back(Range{d_.bigramAt[k * kPositions + p], d_.bigramAt[k * kPositions + p + 1]});
                }
            }
            // Count the pairs each entry shares with the query where they may be; an entry
            // counted twice for one pair (it holds the pair twice nearby) only adds a candidate.
            const std::size_t needed = text_.size() - 1 - 2 * static_cast<std::size_t>(edits);
            std::vector<std::uint8_t> shared(d_.entries.size(), 0);
            std::vector<std::uint32_t> candidates;
            for (const auto& run : runs) {
                const std::uint8_t* at = d_.bigramRuns.data() + run.begin;
                const std::uint8_t* const end = d_.bigramRuns.data() + run.end;
                std::uint32_t e = 0;
                while (at < end) {
                    e += detail::takeGap(at);
                    if (shared[e] < 255 && ++shared[e] == needed) {
                        candidates.push_back(e);
                    }
                }
            }
            std::sort(candidates.begin(), candidates.end());
            // The best grade with k edits is the whole name's; each edit spoils at most two of
            // the pairs an entry shares, so it needs at least half the pairs it lacks (and one).
            // Edits that could not beat the worst hit kept are not looked for.
            const auto bestWith = [&](int k) {
                return band(MatchKind::Typo) + detail::typoGrade(detail::TypoMatch{k, 0, true});
            };
            const auto pairs = static_cast<int>(text_.size() - 1);
            for (const std::uint32_t e : candidates) {
                const int least = std::max(1, (pairs - std::min<int>(shared[e], pairs) + 1) / 2);
                int allowed = edits;
                while (allowed >= least && !best.wants(bestWith(allowed), e)) {
                    --allowed;
                }
                if (allowed < least) {
                    continue;
                }
                const auto match = detail::matchTypo(text_, d_.name(e), allowed, ints_);
                if (match) {
                    offer(best, band(MatchKind::Typo) + detail::typoGrade(*match), e);
                }
            }
        }
        return keep(best, MatchKind::Typo);
    }

    // Purpose texts.

    // Postings of the words that start with `prefix` (or equal it): one run of the lists, since
    // they are stored in the order of the words.
    Range wordPostings(std::u16string_view prefix, bool wholeOnly) const {
        const std::size_t count = d_.wordAt.size() - 1;
        std::size_t lo = 0;
        std::size_t hi = count;
        while (lo < hi) {
            const std::size_t mid = lo + (hi - lo) / 2;
            if (d_.word(mid) < prefix) {
                lo = mid + 1;
            } else {
                hi = mid;
            }
        }
        std::size_t end = lo;
        if (wholeOnly) {
            end = lo < count && d_.word(lo) == prefix ? lo + 1 : lo;
        } else {
            hi = count;
            while (end < hi) {
                const std::size_t mid = end + (hi - end) / 2;
                if (d_.word(mid).starts_with(prefix)) {
                    end = mid + 1;
                } else {
                    hi = mid;
                }
            }
        }
        return Range{d_.postingAt[lo], d_.postingAt[end]};
    }

    // A superset of the entries whose texts hold `word`, as one run of postings; false when the
    // word has no piece the lists can find.
    bool purposeCandidates(const QueryWord& word, Range& out) {
        if (word.plain) {
            out = wordPostings(word.text, word.text.size() < 3);
            return true;
        }
        split_.clear();
        detail::splitWords(word.text, split_);
        bool any = false;
        for (const auto& piece : split_) {
            const std::u16string_view text = word.text.substr(piece.begin, piece.length);
            Range range;
            if (piece.unspaced) {
                // Any pair of the piece will do; the rarest one is the best.
                const std::size_t first = (text.size() > 1 && (text[0] & 0xFC00) == 0xD800) ? 2 : 1;
                if (text.size() == first) {
                    range = wordPostings(text, false);
                } else {
                    bool set = false;
                    for (std::size_t i = 0; i < text.size();) {
                        const std::size_t a = (i + 1 < text.size() && (text[i] & 0xFC00) == 0xD800) ? 2 : 1;
                        if (i + a >= text.size()) {
                            break;
                        }
                        const std::size_t b = (i + a + 1 < text.size() && (text[i + a] & 0xFC00) == 0xD800) ? 2 : 1;
                        const Range pair = wordPostings(text.substr(i, a + b), true);
                        if (!set || pair.size() < range.size()) {
                            range = pair;
                            set = true;
                        }
                        i += a;
                    }
                }
            } else if (piece.begin > 0 && text.size() >= 3) {
                // After punctuation a piece starts a word of the text (the first piece may end
                // one); a shorter piece starts too many.
                range = wordPostings(text, false);
            } else {
                continue;
            }
            if (!any || range.size() < out.size()) {
                out = range;
                any = true;
            }
        }
        return any;
    }

    bool textHolds(std::u16string_view foldedText, const QueryWord& word) {
        if (!word.plain) {
            return foldedText.find(word.text) != std::u16string_view::npos;
        }
        textWords_.clear();
        detail::splitWords(foldedText, textWords_);
        for (const auto& w : textWords_) {
            if (!w.unspaced && startsWordWith(foldedText.substr(w.begin, w.length), word.text)) {
                return true;
            }
        }
        return false;
    }

    // 0: not in the entry's texts; else the grade: its own purpose above its page's text.
    int purposeGrade(std::uint32_t entry, const QueryWord& word, bool& folded, bool& pageFolded) {
        if (!folded) {
            purposeText_.clear();
            detail::appendFolded(d_.entries[entry].item->getPurpose(), purposeText_);
            folded = true;
        }
        if (textHolds(purposeText_, word)) {
            return kPurposeGrade;
        }
        if (d_.entryPages.empty() || d_.entryPages[entry] == nullptr) {
            return 0;
        }
        if (!pageFolded) {
            pageText_.clear();
            detail::appendFolded(d_.entryPages[entry]->getPurpose(), pageText_);
            pageText_.push_back(u'\n');
            detail::appendFolded(d_.entryPages[entry]->getDescription(), pageText_);
            pageFolded = true;
        }
        return textHolds(pageText_, word) ? kPageGrade : 0;
    }

    void purpose() {
        Collector best = collector();
        const QueryWord& word = words_.front();
        Range range;
        if (purposeCandidates(word, range)) {
            if (word.plain) {
                // The lists are exact for a plain word: no text need be read.
                const auto whole = wordPostings(word.text, true);
                for (std::size_t i = range.begin; i < range.end; ++i) {
                    const std::uint32_t posting = d_.postings[i];
                    int grade = (posting & 1) != 0 ? kPageGrade : kPurposeGrade;
                    if (i >= whole.begin && i < whole.end) {
                        grade += kWholeWordBonus;
                    }
                    offer(best, band(MatchKind::Purpose) + grade, posting >> 1);
                }
            } else {
                const int top = band(MatchKind::Purpose) + kPurposeGrade;
                for (std::size_t i = range.begin; i < range.end; ++i) {
                    const std::uint32_t e = d_.postings[i] >> 1;
                    if (!best.wants(top, e) || !passes(e) || seen(e)) {
                        continue;
                    }
                    bool folded = false;
                    bool pageFolded = false;
                    const int grade = purposeGrade(e, word, folded, pageFolded);
                    if (grade > 0) {
                        offer(best, band(MatchKind::Purpose) + grade, e);
                    }
                }
            }
        }
        keep(best, MatchKind::Purpose);
    }

    // Where the name holds the word: at its start or at the start of a segment.
    std::optional<std::uint32_t> wordInName(std::uint32_t entry, std::u16string_view word) const {
        const auto name = d_.name(entry);
        if (name.starts_with(word)) {
            return 0;
        }
        for (const auto& segment : d_.segmentsOf(entry)) {
            if (name.substr(segment.start).starts_with(word)) {
                return segment.start;
            }
        }
        return std::nullopt;
    }

    void severalWords() {
        Collector best = collector();
        // The word with the fewest candidates drives; the others are checked entry by entry.
        std::size_t driver = words_.size();
        std::size_t fewest = kUnlimited;
        Range driverPurpose;
        for (std::size_t w = 0; w < words_.size(); ++w) {
            Range purposeRange;
            if (!purposeCandidates(words_[w], purposeRange)) {
                continue;
            }
            const std::size_t count =
                nameRange(words_[w].text).size() + segmentRange(words_[w].text).size() + purposeRange.size();
            if (count < fewest) {
                fewest = count;
                driver = w;
                driverPurpose = purposeRange;
            }
        }
        if (driver < words_.size()) {
            std::vector<std::uint32_t> candidates;
            const Range names = nameRange(words_[driver].text);
            candidates.insert(candidates.end(), d_.byName.begin() + static_cast<std::ptrdiff_t>(names.begin),
                              d_.byName.begin() + static_cast<std::ptrdiff_t>(names.end));
            const Range segments = segmentRange(words_[driver].text);
            for (std::size_t i = segments.begin; i < segments.end; ++i) {
                candidates.push_back(d_.bySegment[i].entry);
            }
            for (std::size_t i = driverPurpose.begin; i < driverPurpose.end; ++i) {
                candidates.push_back(d_.postings[i] >> 1);
            }
            std::sort(candidates.begin(), candidates.end());
            candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
            const int top = band(MatchKind::Words) + 999;
            for (const std::uint32_t e : candidates) {
                if (!best.wants(top, e) || !passes(e) || seen(e)) {
                    continue;
                }
                bool folded = false;
                bool pageFolded = false;
                int grade = 999;
                for (const auto& word : words_) {
                    if (wordInName(e, word.text)) {
                        continue;
                    }
                    const int inText = purposeGrade(e, word, folded, pageFolded);
                    if (inText == 0) {
                        grade = -1;
                        break;
                    }
                    grade -= inText == kPurposeGrade ? 100 : 200;
                }
                if (grade >= 0) {
                    offer(best, band(MatchKind::Words) + grade, e);
                }
            }
        }
        keep(best, MatchKind::Words);
    }

    std::vector<SearchHit> hits() {
        std::vector<SearchHit> out;
        const std::size_t count = std::min(found_.size(), limit_);
        out.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const Found& found = found_[i];
            const auto& entry = d_.entries[found.entry];
            const auto& product = d_.products[entry.product];
            SearchHit hit;
            hit.item = entry.item;
            hit.productKey = product.key;
            hit.product = product.header;
            hit.installed = product.installed;
            hit.deprecated = entry.item->isDeprecated();
            hit.match = kinds_[i];
            hit.score = found.score;
            hit.nameRanges = rangesOf(found, kinds_[i]);
            out.push_back(std::move(hit));
        }
        return out;
    }

    std::vector<MatchRange> rangesOf(const Found& found, MatchKind kind) {
        const auto name = d_.name(found.entry);
        const auto length = static_cast<std::uint32_t>(text_.size());
        std::vector<MatchRange> ranges;
        switch (kind) {
        case MatchKind::Exact:
        case MatchKind::Prefix:
            ranges.push_back(MatchRange{0, length});
            break;
        case MatchKind::SegmentPrefix:
            ranges.push_back(MatchRange{found.aux, length});
            break;
        case MatchKind::Initials:
            detail::matchInitials(text_, name, d_.segmentsOf(found.entry), ranges);
            break;
        case MatchKind::InOrder:
            detail::matchInOrder(text_, name, d_.segmentsOf(found.entry), ints_, &ranges);
            break;
        case MatchKind::Typo:
            if (const auto match = detail::matchTypo(text_, name, detail::allowedTypos(text_.size()), ints_)) {
                ranges.push_back(MatchRange{0, static_cast<std::uint32_t>(match->matchedLength)});
            }
            break;
        case MatchKind::Words:
            for (const auto& word : words_) {
                if (const auto at = wordInName(found.entry, word.text)) {
                    ranges.push_back(MatchRange{*at, static_cast<std::uint32_t>(word.text.size())});
                }
            }
            std::sort(ranges.begin(), ranges.end(),
                      [](const MatchRange& a, const MatchRange& b) { return a.begin < b.begin; });
            // Words may overlap ("get" and "getter"): merge them.
            for (std::size_t i = 1; i < ranges.size();) {
                MatchRange& before = ranges[i - 1];
                if (ranges[i].begin <= before.begin + before.length) {
                    const std::uint32_t end =
                        std::max(before.begin + before.length, ranges[i].begin + ranges[i].length);
                    before.length = end - before.begin;
                    ranges.erase(ranges.begin() + static_cast<std::ptrdiff_t>(i));
                } else {
                    ++i;
                }
            }
            break;
        case MatchKind::Purpose:
            break;
        }
        return ranges;
    }

    const IndexData& d_;
    const SearchQuery& q_;
    std::size_t limit_ = 0;
    std::u16string text_;
    std::vector<QueryWord> words_;
    std::vector<char> productAllowed_;
    static constexpr std::uint64_t kAnyType = ~std::uint64_t{0};
    std::uint64_t typeMask_ = kAnyType; // bit n: type code n (see IndexData::typeCode)

    std::vector<Found> found_;
    std::vector<MatchKind> kinds_;
    std::vector<std::uint32_t> seen_;

    // Scratch, reused within the query.
    std::vector<int> ints_;
    std::vector<MatchRange> ranges_;
    std::vector<detail::Word> split_;
    std::vector<detail::Word> textWords_;
    std::u16string purposeText_;
    std::u16string pageText_;
};

} // namespace

std::vector<SearchHit> SearchIndex::search(const SearchQuery& query) const {
    if (!data_) {
        return {};
    }
    return Search(*data_, query).run();
}

std::vector<SearchHit> SearchIndex::search(std::u16string_view text, std::size_t limit) const {
    SearchQuery query;
    query.text = std::u16string(text);
    query.limit = limit;
    return search(query);
}

} // namespace reference::search
