#include "SearchBench.hpp"

#include "Random.hpp"

#include "search/NameMatch.hpp"

#include <algorithm>
#include <cmath>

namespace refdoc::bench {
namespace {

namespace detail = reference::search::detail;
using reference::property::RefItemLookup;
using reference::search::SearchIndex;

constexpr std::size_t kMaxQueryUnits = 12;

struct Source {
    const RefItemLookup* item;
    std::u16string name; // folded
};

template <class Visit>
void forEachItem(const SearchIndex::LookupResults& lookups, Visit visit) {
    for (const auto* map : {&lookups.installedResources, &lookups.uninstalledResources}) {
        const bool installed = map == &lookups.installedResources;
        for (const auto& [key, resource] : *map) {
            for (const auto& [name, list] : resource.getItems()) {
                for (const auto& item : list) {
                    visit(item, installed);
                }
            }
        }
    }
}

bool isSurrogateLead(char16_t unit) noexcept { return (unit & 0xFC00) == 0xD800; }

// At most `units` units of `text` from its start, not splitting a surrogate pair.
std::u16string headOf(std::u16string_view text, std::size_t units) {
    units = std::min(units, text.size());
    if (units > 0 && units < text.size() && isSurrogateLead(text[units - 1])) {
        --units;
    }
    return std::u16string(text.substr(0, units));
}

char16_t randomLetter(Random& random) { return static_cast<char16_t>(u'a' + random.below(26)); }

// One edit at a random place: a substitution, a transposition, a dropped or an added letter.
void edit(std::u16string& text, Random& random) {
    const std::size_t at = 1 + random.below(text.size() - 2); // the first letter is rarely mistyped
    switch (random.below(4)) {
    case 0: {
        char16_t letter = randomLetter(random);
        if (letter == text[at]) {
            letter = letter == u'z' ? u'a' : static_cast<char16_t>(letter + 1);
        }
        text[at] = letter;
        break;
    }
    case 1:
        std::swap(text[at], text[at + 1]);
        break;
    case 2:
        text.erase(at, 1);
        break;
    default:
        text.insert(text.begin() + static_cast<std::ptrdiff_t>(at), randomLetter(random));
        break;
    }
}

// Typos are made within one word of a name (the index looks for them in single words only), and
// never more than the query's length allows: a second edit only from nine characters.
std::u16string typoQuery(const std::u16string& name, Random& random) {
    const std::size_t longest = std::min(name.size(), kMaxQueryUnits - 1);
    std::u16string text = headOf(name, 4 + random.below(longest - 3));
    if (text.find(u' ') != std::u16string::npos) {
        return {};
    }
    const bool twice = text.size() >= 9 && random.chance(0.5);
    edit(text, random);
    if (twice) {
        edit(text, random);
    }
    return text;
}

// The first letters of the first two or more letter segments; sometimes the last goes on into
// its segment ("gcf", "gcfig"). Empty when the name has fewer than two letter segments.
std::u16string initialsQuery(const Source& source, Random& random, std::vector<detail::Segment>& segments) {
    segments.clear();
    detail::appendSegments(source.item->getName(), segments);
    std::vector<std::size_t> letters;
    for (std::size_t s = 0; s < segments.size(); ++s) {
        if (!segments[s].digits && segments[s].start < source.name.size()) {
            letters.push_back(s);
        }
    }
    if (letters.size() < 2) {
        return {};
    }
    const std::size_t count = 2 + random.below(std::min<std::size_t>(letters.size(), kMaxQueryUnits / 2) - 1);
    std::u16string text;
    for (std::size_t i = 0; i < count; ++i) {
        text.push_back(source.name[segments[letters[i]].start]);
    }
    if (random.chance(0.3)) {
        const std::size_t s = letters[count - 1];
        const std::size_t end = s + 1 < segments.size() ? segments[s + 1].start : source.name.size();
        const std::size_t more = std::min<std::size_t>(end - segments[s].start - 1, 1 + random.below(3));
        text += source.name.substr(segments[s].start + 1, more);
    }
    return text;
}

// A word of the purpose: the start of a spaced word (three units or more unless shorter), or a
// piece of one to four characters of an unspaced run.
std::u16string purposeQuery(const Source& source, Random& random, std::vector<detail::Word>& words) {
    const std::u16string text = detail::folded(source.item->getPurpose());
    words.clear();
    detail::splitWords(text, words);
    if (words.empty()) {
        return {};
    }
    const detail::Word& word = words[random.below(words.size())];
    const std::u16string_view piece = std::u16string_view(text).substr(word.begin, word.length);
    if (!word.unspaced) {
        const std::size_t shortest = std::min<std::size_t>(3, piece.size());
        const std::size_t longest = std::min(piece.size(), kMaxQueryUnits);
        return headOf(piece, shortest + random.below(longest - shortest + 1));
    }
    std::size_t from = random.below(piece.size());
    if (from > 0 && isSurrogateLead(piece[from - 1])) {
        --from;
    }
    return headOf(piece.substr(from), 1 + random.below(4));
}

bool isPlainWord(std::u16string_view word, std::vector<detail::Word>& split) {
    split.clear();
    detail::splitWords(word, split);
    return split.size() == 1 && !split[0].unspaced && split[0].length == word.size();
}

} // namespace

std::string_view queryKindName(QueryKind kind) noexcept {
    switch (kind) {
    case QueryKind::Prefix:
        return "prefix";
    case QueryKind::Typo:
        return "typo";
    case QueryKind::Initials:
        return "initials";
    case QueryKind::Purpose:
        return "purpose";
    }
    return "";
}

std::vector<GeneratedQuery> makeQueries(const SearchIndex::LookupResults& lookups, std::size_t perKind,
                                        std::uint64_t seed) {
    std::vector<const RefItemLookup*> items;
    forEachItem(lookups, [&](const RefItemLookup& item, bool) { items.push_back(&item); });
    std::vector<GeneratedQuery> queries;
    if (items.empty()) {
        return queries;
    }
    std::vector<detail::Segment> segments;
    std::vector<detail::Word> words;
    for (const QueryKind kind : kQueryKinds) {
        Random random = Random::forStream(seed, static_cast<std::uint64_t>(kind));
        std::size_t made = 0;
        // Names too short or without segments or purposes are drawn again, a bounded number of times.
        for (std::size_t attempt = 0; made < perKind && attempt < 50 * perKind; ++attempt) {
            const RefItemLookup* item = items[random.below(items.size())];
            const Source source{item, detail::folded(item->getName())};
            if (source.name.empty()) {
                continue;
            }
            std::u16string text;
            switch (kind) {
            case QueryKind::Prefix:
                text = headOf(source.name, 1 + random.below(std::min(source.name.size(), kMaxQueryUnits)));
                break;
            case QueryKind::Typo:
                if (source.name.size() >= 4) {
                    text = typoQuery(source.name, random);
                }
                break;
            case QueryKind::Initials:
                text = initialsQuery(source, random, segments);
                break;
            case QueryKind::Purpose:
                text = purposeQuery(source, random, words);
                break;
            }
            // A query never starts or ends with a space (the index trims them anyway).
            while (!text.empty() && text.back() == u' ') {
                text.pop_back();
            }
            if (!text.empty() && text.front() != u' ' && text.size() <= kMaxQueryUnits) {
                queries.push_back(GeneratedQuery{std::move(text), kind});
                ++made;
            }
        }
    }
    // Kinds mixed, so that a run over a part of the list sees every kind.
    Random shuffle = Random::forStream(seed, 99);
    for (std::size_t i = queries.size(); i > 1; --i) {
        std::swap(queries[i - 1], queries[shuffle.below(i)]);
    }
    return queries;
}

ScanPeer::ScanPeer(const SearchIndex::LookupResults& lookups) {
    forEachItem(lookups, [&](const RefItemLookup& item, bool installed) {
        Entry entry{};
        entry.item = &item;
        entry.installed = installed;
        const std::u16string_view name = std::u16string_view(item.getName()).substr(0, 0xFFFF);
        entry.name = static_cast<std::uint32_t>(text_.size());
        detail::appendFolded(name, text_);
        entry.nameLength = static_cast<std::uint16_t>(name.size());
        entry.segments = static_cast<std::uint32_t>(segments_.size());
        detail::appendSegments(name, segments_);
        entry.segmentCount = static_cast<std::uint16_t>(std::min<std::size_t>(segments_.size() - entry.segments, 255));
        segments_.resize(entry.segments + entry.segmentCount);
        entry.purpose = static_cast<std::uint32_t>(text_.size());
        detail::appendFolded(item.getPurpose(), text_);
        entry.purposeLength = static_cast<std::uint32_t>(text_.size() - entry.purpose);
        entry.words = static_cast<std::uint32_t>(words_.size());
        detail::splitWords(std::u16string_view(text_).substr(entry.purpose), words_);
        entry.wordCount = static_cast<std::uint32_t>(words_.size() - entry.words);
        entries_.push_back(entry);
    });
}

// The band of each kind as the index scores it: exact 7000, prefix 6000, segment 5000, initials
// 4000, letters in order 3000, typo 2000, several words 1000, purpose 0; the grade within.
int ScanPeer::scoreName(const Entry& entry, std::u16string_view query, std::vector<int>& scratch) const {
    const std::u16string_view name = std::u16string_view(text_).substr(entry.name, entry.nameLength);
    const std::span<const detail::Segment> segments(segments_.data() + entry.segments, entry.segmentCount);
    if (name == query) {
        return 7900;
    }
    if (name.starts_with(query)) {
        return 6900;
    }
    for (std::size_t s = 1; s < segments.size(); ++s) {
        if (name.substr(segments[s].start).starts_with(query)) {
            return 5900 - 20 * static_cast<int>(std::min<std::size_t>(s - 1, 20));
        }
    }
    if (query.find(u' ') != std::u16string_view::npos) {
        return -1;
    }
    std::vector<reference::search::MatchRange> pieces;
    if (const auto grade = detail::matchInitials(query, name, segments, pieces)) {
        return 4000 + *grade;
    }
    if (const auto grade = detail::matchInOrder(query, name, segments, scratch, nullptr)) {
        return 3000 + *grade;
    }
    if (const auto typo = detail::matchTypo(query, name, detail::allowedTypos(query.size()), scratch)) {
        return 2000 + detail::typoGrade(*typo);
    }
    return -1;
}

bool ScanPeer::nameHolds(const Entry& entry, std::u16string_view word) const {
    const std::u16string_view name = std::u16string_view(text_).substr(entry.name, entry.nameLength);
    if (name.starts_with(word)) {
        return true;
    }
    for (std::size_t s = 0; s < entry.segmentCount; ++s) {
        if (name.substr(segments_[entry.segments + s].start).starts_with(word)) {
            return true;
        }
    }
    return false;
}

// 0: not in the purpose; 1: in it; 2: a whole word of it (a plain word only).
int ScanPeer::purposeHolds(const Entry& entry, std::u16string_view word) const {
    const std::u16string_view purpose = std::u16string_view(text_).substr(entry.purpose, entry.purposeLength);
    std::vector<detail::Word> split;
    if (!isPlainWord(word, split)) {
        return purpose.find(word) != std::u16string_view::npos ? 1 : 0;
    }
    int found = 0;
    for (std::size_t w = 0; w < entry.wordCount; ++w) {
        const detail::Word& piece = words_[entry.words + w];
        const std::u16string_view text = purpose.substr(piece.begin, piece.length);
        if (!piece.unspaced && (word.size() >= 3 ? text.starts_with(word) : text == word)) {
            found = std::max(found, text == word ? 2 : 1);
        }
    }
    return found;
}

std::vector<ScanPeer::Hit> ScanPeer::search(std::u16string_view queryText, std::size_t limit) const {
    const std::u16string foldedQuery = detail::folded(queryText);
    std::vector<std::u16string_view> words;
    for (std::size_t i = 0; i < foldedQuery.size();) {
        const std::size_t end = std::min(foldedQuery.find(u' ', i), foldedQuery.size());
        if (end > i) {
            words.push_back(std::u16string_view(foldedQuery).substr(i, end - i));
        }
        i = end + 1;
    }
    if (words.empty()) {
        return {};
    }
    std::u16string query;
    for (const auto word : words) {
        query += query.empty() ? u"" : u" ";
        query += word;
    }

    struct Scored {
        int score;
        std::uint32_t length;
        bool uninstalled;
        std::uint32_t index;
        bool operator<(const Scored& other) const noexcept {
            if (score != other.score) {
                return score > other.score;
            }
            if (length != other.length) {
                return length < other.length;
            }
            return uninstalled != other.uninstalled ? !uninstalled : index < other.index;
        }
    };
    std::vector<Scored> scored;
    std::vector<int> scratch;
    for (std::uint32_t i = 0; i < entries_.size(); ++i) {
        const Entry& entry = entries_[i];
        int score = scoreName(entry, query, scratch);
        if (score < 0 && words.size() == 1) {
            if (const int found = purposeHolds(entry, words[0]); found > 0) {
                score = found == 2 ? 950 : 900; // a whole word above the start of one
            }
        } else if (score < 0) {
            int grade = 999;
            for (const auto word : words) {
                if (nameHolds(entry, word)) {
                    continue;
                }
                if (purposeHolds(entry, word) == 0) {
                    grade = -1;
                    break;
                }
                grade -= 100;
            }
            score = grade >= 0 ? 1000 + grade : -1;
        }
        if (score >= 0) {
            scored.push_back(Scored{score, entry.nameLength, !entry.installed, i});
        }
    }
    const std::size_t count = std::min(limit == 0 ? scored.size() : limit, scored.size());
    std::partial_sort(scored.begin(), scored.begin() + static_cast<std::ptrdiff_t>(count), scored.end());
    std::vector<Hit> hits;
    for (std::size_t i = 0; i < count; ++i) {
        hits.push_back(Hit{entries_[scored[i].index].item, scored[i].score});
    }
    return hits;
}

double percentile(std::vector<double> values, double share) {
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(values.size())));
    return values[std::clamp<std::size_t>(rank, 1, values.size()) - 1];
}

} // namespace refdoc::bench
