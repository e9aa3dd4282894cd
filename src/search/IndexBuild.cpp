// Building a search index: numbering the entries in tie order, then the tables over their folded
// names and purpose texts.

#include "search/CodeText.hpp"
#include "search/IndexData.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <unordered_map>

namespace reference::search {
namespace {

using Data = detail::IndexData;
using detail::Segment;

// Sorts `items` (made in entry order) by the sort key of the text each one stands for, keeping
// entry order among equal keys. A counting pass first places them by their first two units (an
// ASCII pair has a bucket of its own, anything else shares one per first unit), so that the sort
// that follows works on small buckets.
template <class T, class TextOf>
void sortByKey(std::vector<T>& items, TextOf textOf) {
    constexpr std::size_t kAsciiBuckets = 128 * 129;
    const auto bucketOf = [](const detail::SortKey& key) -> std::size_t {
        const auto first = static_cast<std::size_t>(key.high >> 48);
        const auto second = static_cast<std::size_t>((key.high >> 32) & 0xFFFF);
        return first < 128 ? first * 129 + std::min<std::size_t>(second, 128) : kAsciiBuckets + (first - 128);
    };
    using Keyed = std::pair<detail::SortKey, std::uint32_t>;
    std::vector<Keyed> keys(items.size());
    std::vector<std::uint32_t> at(kAsciiBuckets + 0x10000 - 128 + 1, 0);
    for (std::size_t i = 0; i < items.size(); ++i) {
        keys[i] = {detail::sortKey(textOf(items[i])), static_cast<std::uint32_t>(i)};
        ++at[bucketOf(keys[i].first) + 1];
    }
    std::partial_sum(at.begin(), at.end(), at.begin());
    std::vector<Keyed> placed(keys.size());
    for (const Keyed& key : keys) {
        placed[at[bucketOf(key.first)]++] = key;
    }
    keys = {};
    // `at` now holds each bucket's end, so the previous one's is its start.
    std::size_t begin = 0;
    for (const std::uint32_t end : at) {
        if (end - begin > 1) {
            std::sort(placed.begin() + static_cast<std::ptrdiff_t>(begin), placed.begin() + end);
        }
        begin = std::max<std::size_t>(begin, end);
    }
    std::vector<T> sorted;
    sorted.reserve(items.size());
    for (const auto& key : placed) {
        sorted.push_back(items[key.second]);
    }
    items = std::move(sorted);
}

// Word numbers by text, numbered in order of first sight: open addressing over one buffer of
// the words' texts (a map of strings would allocate per word and cost most of the build).
class WordTable {
public:
    WordTable() : slots_(1u << 12, Slot{0, kEmpty}) {}

    std::uint32_t idOf(std::u16string_view word) { return idOf(word, hashOf(word)); }
    // `hash` is hashOf(word), found by the caller on the way.
    std::uint32_t idOf(std::u16string_view word, std::uint64_t hash) {
        if ((count() + 1) * 2 > slots_.size()) {
            grow();
        }
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
            Slot& slot = slots_[i];
            if (slot.id == kEmpty) {
                slot = Slot{static_cast<std::uint32_t>(hash >> 32), static_cast<std::uint32_t>(count())};
                buffer_.append(word);
                at_.push_back(static_cast<std::uint32_t>(buffer_.size()));
                return slot.id;
            }
            if (slot.hash == static_cast<std::uint32_t>(hash >> 32) && text(slot.id) == word) {
                return slot.id;
            }
        }
    }
    std::size_t count() const noexcept { return at_.size() - 1; }
    std::u16string_view text(std::uint32_t id) const noexcept {
        return std::u16string_view(buffer_).substr(at_[id], at_[id + 1] - at_[id]);
    }

private:
    struct Slot {
        std::uint32_t hash;
        std::uint32_t id;
    };
    static constexpr std::uint32_t kEmpty = UINT32_MAX;

public:
    // FNV-1a over the units, then mixed so that the low bits spread.
    static constexpr std::uint64_t kHashStart = 14695981039346656037ull;
    static std::uint64_t hashStep(std::uint64_t hash, char16_t unit) noexcept {
        return (hash ^ unit) * 1099511628211ull;
    }
    static std::uint64_t hashEnd(std::uint64_t hash) noexcept {
        hash ^= hash >> 29;
        hash *= 0xBF58476D1CE4E5B9ull;
        return hash ^ (hash >> 32);
    }
    static std::uint64_t hashOf(std::u16string_view word) noexcept {
        std::uint64_t hash = kHashStart;
        for (const char16_t unit : word) {
            hash = hashStep(hash, unit);
        }
        return hashEnd(hash);
    }

private:
    void grow() {
        std::vector<Slot> bigger(slots_.size() * 2, Slot{0, kEmpty});
        const std::size_t mask = bigger.size() - 1;
        for (std::uint32_t id = 0; id < count(); ++id) {
            const std::uint64_t hash = hashOf(text(id));
            std::size_t i = hash & mask;
            while (bigger[i].id != kEmpty) {
                i = (i + 1) & mask;
            }
            bigger[i] = Slot{static_cast<std::uint32_t>(hash >> 32), id};
        }
        slots_ = std::move(bigger);
    }

    std::vector<Slot> slots_;
    std::u16string buffer_;
    std::vector<std::uint32_t> at_{0};
};

// The words of a text of ASCII only, folded and split in the same pass (letters and digits make
// words, anything else parts them), as word ids shifted left by one with `fromPage` in bit 0.
// False, with nothing added, when the text holds anything beyond ASCII.
bool addAsciiWords(std::u16string_view text, std::uint32_t fromPage, WordTable& ids, std::u16string& word,
                   std::vector<std::uint32_t>& out) {
    const std::size_t before = out.size();
    word.clear();
    std::uint64_t hash = WordTable::kHashStart;
    for (char16_t unit : text) {
        if (unit >= 0x80) {
            out.resize(before);
            return false;
        }
        if (unit >= u'A' && unit <= u'Z') {
            unit = static_cast<char16_t>(unit + 0x20);
        }
        if ((unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9')) {
            word.push_back(unit);
            hash = WordTable::hashStep(hash, unit);
        } else if (!word.empty()) {
            out.push_back(ids.idOf(word, WordTable::hashEnd(hash)) << 1 | fromPage);
            word.clear();
            hash = WordTable::kHashStart;
        }
    }
    if (!word.empty()) {
        out.push_back(ids.idOf(word, WordTable::hashEnd(hash)) << 1 | fromPage);
    }
    return true;
}

// The words of one folded text, as word ids shifted left by one with `fromPage` in bit 0.
void addWords(std::u16string_view text, std::uint32_t fromPage, WordTable& ids, std::vector<detail::Word>& split,
              std::vector<std::uint32_t>& out) {
    split.clear();
    detail::splitWords(text, split);
    for (const auto& word : split) {
        const std::u16string_view piece = text.substr(word.begin, word.length);
        if (!word.unspaced) {
            out.push_back(ids.idOf(piece) << 1 | fromPage);
            continue;
        }
        // Unspaced text: every pair of neighbours, and the last character alone, so that a query
        // of one character finds it through the words that start with it.
        std::size_t i = 0;
        while (i < piece.size()) {
            const std::size_t first = (i + 1 < piece.size() && (piece[i] & 0xFC00) == 0xD800) ? 2 : 1;
            std::size_t second = 0;
            if (i + first < piece.size()) {
                second = (i + first + 1 < piece.size() && (piece[i + first] & 0xFC00) == 0xD800) ? 2 : 1;
            }
            out.push_back(ids.idOf(piece.substr(i, first + second)) << 1 | fromPage);
            i += first;
        }
    }
}

const property::RefItem* pageFor(const docparser::DocResource<property::RefItem>::ItemMap& pages,
                                 const std::u16string& href) {
    auto found = pages.find(href);
    if (found == pages.end()) {
        const auto hash = href.find(u'#');
        if (hash == std::u16string::npos) {
            return nullptr;
        }
        found = pages.find(href.substr(0, hash));
        if (found == pages.end()) {
            return nullptr;
        }
    }
    return found->second.empty() ? nullptr : &found->second.front();
}

template <class T>
std::size_t bytesOf(const std::vector<T>& v) {
    return v.capacity() * sizeof(T);
}

} // namespace

namespace detail {

// The constructors' common part.
std::unique_ptr<const IndexData> buildIndex(std::shared_ptr<const SearchIndex::LookupResults> lookups,
                                            std::vector<SearchIndex::PageFiles> pages) {
    if (!lookups) {
        throw std::invalid_argument("SearchIndex: no lookup results");
    }
    auto data = std::make_unique<Data>();
    data->lookups = std::move(lookups);
    data->pages = std::move(pages);
    const auto& results = *data->lookups;

    // Products, ranked by key (numbers by value) for the tie rules.
    for (const auto* map : {&results.installedResources, &results.uninstalledResources}) {
        const bool installed = map == &results.installedResources;
        for (const auto& [key, resource] : *map) {
            data->products.push_back(Data::Product{&key, &resource.getHeader(), installed});
        }
    }
    std::vector<std::uint32_t> productRank(data->products.size());
    {
        std::vector<std::uint32_t> order(data->products.size());
        std::iota(order.begin(), order.end(), 0u);
        std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
            return compareNatural(*data->products[a].key, *data->products[b].key) < 0;
        });
        for (std::size_t i = 0; i < order.size(); ++i) {
            productRank[order[i]] = static_cast<std::uint32_t>(i);
        }
    }

    // Entries in file order with their folded names, then numbered in tie order.
    struct Raw {
        const property::RefItemLookup* item;
        std::uint32_t product;
        std::uint32_t nameOffset;
        std::uint32_t segmentOffset; // into rawSegments
        std::uint16_t nameLength;
        std::uint8_t segmentCount;
        std::uint8_t flags; // type and deprecation, read while the entry is at hand
    };
    std::vector<Raw> raw;
    std::vector<Segment> rawSegments; // made while each name is at hand, copied in entry order below

    // Reference pages by product key, matched to entries by href while gathering.
    using PageItems = docparser::DocResource<property::RefItem>::ItemMap;
    std::vector<const PageItems*> productPages(data->products.size(), nullptr);
    for (const auto& files : data->pages) {
        for (const auto& [key, resource] : files) {
            for (std::size_t p = 0; p < data->products.size(); ++p) {
                if (productPages[p] == nullptr && *data->products[p].key == key) {
                    productPages[p] = &resource.getItems();
                }
            }
        }
    }
    std::vector<const property::RefItem*> pageOfFile; // when pages were given

    // Purpose words, read while the entry is at hand (its purpose lies beside its name): per
    // entry its word ids shifted left by one, deduplicated, its own purpose's before its page's.
    WordTable ids;
    std::vector<std::uint32_t> fileWords;
    std::vector<std::uint32_t> fileWordsAt{0}; // per entry in file order + 1
    std::vector<detail::Word> split;
    std::u16string text;
    std::vector<std::uint32_t> mine;
    const auto addPurposeWords = [&](const property::RefItemLookup& item, const property::RefItem* page) {
        mine.clear();
        const auto add = [&](const std::u16string& original, std::uint32_t fromPage) {
            if (!addAsciiWords(original, fromPage, ids, text, mine)) {
                text.clear();
                appendFolded(original, text);
                addWords(text, fromPage, ids, split, mine);
            }
        };
        add(item.getPurpose(), 0);
        if (page != nullptr) {
            add(page->getPurpose(), 1);
            add(page->getDescription(), 1);
        }
        std::sort(mine.begin(), mine.end());
        for (std::size_t i = 0; i < mine.size(); ++i) {
            if (i == 0 || (mine[i] >> 1) != (mine[i - 1] >> 1)) {
                fileWords.push_back(mine[i]);
            }
        }
        fileWordsAt.push_back(static_cast<std::uint32_t>(fileWords.size()));
    };
    // Room for as many entries as there are distinct names per product (most names have one
    // entry), so that the buffers seldom grow while they fill.
    std::size_t distinctNames = 0;
    for (const auto* map : {&results.installedResources, &results.uninstalledResources}) {
        for (const auto& [key, resource] : *map) {
            distinctNames += resource.getItems().size();
        }
    }
    raw.reserve(distinctNames);
    rawSegments.reserve(3 * distinctNames);
    data->names.reserve(24 * distinctNames);
    fileWords.reserve(8 * distinctNames);
    fileWordsAt.reserve(distinctNames + 1);
    std::uint32_t product = 0;
    for (const auto* map : {&results.installedResources, &results.uninstalledResources}) {
        for (const auto& [key, resource] : *map) {
            for (const auto& [name, list] : resource.getItems()) {
                for (const auto& item : list) {
                    const std::u16string_view itemName =
                        std::u16string_view(item.getName()).substr(0, std::numeric_limits<std::uint16_t>::max());
                    const auto offset = static_cast<std::uint32_t>(data->names.size());
                    appendFolded(itemName, data->names);
                    const auto segmentOffset = static_cast<std::uint32_t>(rawSegments.size());
                    appendSegments(itemName, rawSegments);
                    const std::size_t segmentCount = std::min<std::size_t>(rawSegments.size() - segmentOffset, 255);
                    rawSegments.resize(segmentOffset + segmentCount);
                    raw.push_back(Raw{&item, product, offset, segmentOffset,
                                      static_cast<std::uint16_t>(itemName.size()),
                                      static_cast<std::uint8_t>(segmentCount),
                                      static_cast<std::uint8_t>(Data::typeCode(item.getEntityType()) |
                                                                (item.isDeprecated() ? Data::kDeprecated : 0))});
                    const property::RefItem* page = nullptr;
                    if (productPages[product] != nullptr) {
                        page = pageFor(*productPages[product], item.getHref());
                    }
                    if (!data->pages.empty()) {
                        pageOfFile.push_back(page);
                    }
                    addPurposeWords(item, page);
                }
            }
            ++product;
        }
    }
    if (raw.size() >= Data::kMaxEntries) {
        throw std::length_error("SearchIndex: too many entries");
    }
    const std::u16string_view names = data->names;
    // Tie order in two steps. Counting sorts put the entries in order of length, then installed,
    // then product rank, keeping file order within; each run of equal length and product is then
    // sorted by the first eight units of the name (up to its first digit, which stands for all
    // digits: runs compare by value), so that the names are compared only on a tie.
    struct TieKey {
        std::uint64_t high; // the first eight units, digits as described
        std::uint64_t low;
        std::uint32_t index;
        std::uint32_t length;
        std::uint32_t group; // installed, then product rank
    };
    const std::size_t productGroups = 2 * data->products.size();
    // The keys made in file order, where the names lie one after the other, then moved twice.
    std::vector<TieKey> order(raw.size());
    std::vector<std::uint32_t> groupAt(productGroups + 1, 0);
    std::size_t longest = 0;
    for (std::uint32_t i = 0; i < raw.size(); ++i) {
        const Raw& r = raw[i];
        std::uint64_t words[2] = {0, 0};
        bool digit = false;
        for (std::size_t u = 0; u < 8; ++u) {
            char16_t unit = 0;
            if (!digit && u < r.nameLength) {
                unit = names[r.nameOffset + u];
                if (unit >= u'0' && unit <= u'9') {
                    unit = u'0';
                    digit = true;
                }
            }
            words[u / 4] = words[u / 4] << 16 | unit;
        }
        const auto group = static_cast<std::uint32_t>(
            (data->products[r.product].installed ? 0 : data->products.size()) + productRank[r.product]);
        order[i] = TieKey{words[0], words[1], i, r.nameLength, group};
        ++groupAt[group + 1];
        longest = std::max<std::size_t>(longest, r.nameLength);
    }
    {
        std::partial_sum(groupAt.begin(), groupAt.end(), groupAt.begin());
        std::vector<TieKey> byGroup(order.size());
        for (const TieKey& key : order) {
            byGroup[groupAt[key.group]++] = key;
        }
        std::vector<std::uint32_t> lengthAt(longest + 2, 0);
        for (const TieKey& key : byGroup) {
            ++lengthAt[key.length + 1];
        }
        std::partial_sum(lengthAt.begin(), lengthAt.end(), lengthAt.begin());
        for (const TieKey& key : byGroup) {
            order[lengthAt[key.length]++] = key;
        }
    }
    const auto before = [&](const TieKey& x, const TieKey& y) {
        if (x.high != y.high || x.low != y.low) {
            return x.high != y.high ? x.high < y.high : x.low < y.low;
        }
        const Raw& a = raw[x.index];
        const Raw& b = raw[y.index];
        const int natural =
            compareNatural(names.substr(a.nameOffset, a.nameLength), names.substr(b.nameOffset, b.nameLength));
        if (natural != 0) {
            return natural < 0;
        }
        const int exact = a.item->getName().compare(b.item->getName());
        return exact != 0 ? exact < 0 : x.index < y.index;
    };
    for (std::size_t first = 0; first < order.size();) {
        std::size_t last = first + 1;
        while (last < order.size() && order[last].length == order[first].length &&
               order[last].group == order[first].group) {
            ++last;
        }
        if (last - first > 1) {
            std::sort(order.begin() + static_cast<std::ptrdiff_t>(first),
                      order.begin() + static_cast<std::ptrdiff_t>(last), before);
        }
        first = last;
    }

    const std::size_t n = raw.size();
    data->entries.reserve(n);
    data->segments.reserve(rawSegments.size());
    // The folded names again, in entry order: queries visit candidates in that order.
    std::u16string ordered;
    ordered.reserve(data->names.size());
    for (const auto& ranked : order) {
        const Raw& r = raw[ranked.index];
        std::uint8_t flags = r.flags;
        if (data->products[r.product].installed) {
            flags |= Data::kInstalled;
        }
        data->entries.push_back(Data::Entry{r.item, static_cast<std::uint32_t>(ordered.size()),
                                            static_cast<std::uint32_t>(data->segments.size()), r.product, r.nameLength,
                                            r.segmentCount, flags});
        ordered.append(names.substr(r.nameOffset, r.nameLength));
        const auto first = rawSegments.begin() + r.segmentOffset;
        data->segments.insert(data->segments.end(), first, first + r.segmentCount);
    }
    data->names = std::move(ordered);
    std::vector<std::uint32_t> fileOfEntry(n);
    for (std::uint32_t e = 0; e < n; ++e) {
        fileOfEntry[e] = order[e].index;
    }
    if (!data->pages.empty()) {
        data->entryPages.resize(n);
        for (std::uint32_t e = 0; e < n; ++e) {
            data->entryPages[e] = pageOfFile[fileOfEntry[e]];
        }
    }
    pageOfFile = {};
    raw = {};
    rawSegments = {};
    order = {};

    // Whole names and later segments.
    data->byName.resize(n);
    std::iota(data->byName.begin(), data->byName.end(), 0u);
    sortByKey(data->byName, [&](std::uint32_t e) { return data->name(e); });
    for (std::uint32_t e = 0; e < n; ++e) {
        const auto segments = data->segmentsOf(e);
        for (std::size_t s = 1; s < segments.size(); ++s) {
            data->bySegment.push_back(Data::SegmentRef{e, segments[s].start, static_cast<std::uint16_t>(s)});
        }
    }
    sortByKey(data->bySegment, [&](const Data::SegmentRef& r) { return data->name(r.entry).substr(r.offset); });

    // Initials of the letter segments.
    data->initialsAt.reserve(n + 1);
    for (std::uint32_t e = 0; e < n; ++e) {
        data->initialsAt.push_back(static_cast<std::uint32_t>(data->initials.size()));
        const auto name = data->name(e);
        std::size_t letters = 0;
        for (const auto& segment : data->segmentsOf(e)) {
            if (!segment.digits) {
                data->initials.push_back(name[segment.start]);
                ++letters;
            }
        }
        if (letters >= 2) {
            data->byInitials.push_back(e);
        }
    }
    data->initialsAt.push_back(static_cast<std::uint32_t>(data->initials.size()));
    sortByKey(data->byInitials, [&](std::uint32_t e) { return data->initialsOf(e); });

    // Character classes per entry, for the in-order test.
    data->bitWords = (n + 63) / 64;
    data->letterBits.assign(Data::kLetterClasses * data->bitWords, 0);
    data->startBits.assign(Data::kLetterClasses * data->bitWords, 0);
    data->pairBits.assign(Data::kPairClasses * data->bitWords, 0);
    for (std::uint32_t e = 0; e < n; ++e) {
        const std::uint64_t bit = std::uint64_t{1} << (e % 64);
        const auto name = data->name(e);
        for (std::size_t i = 0; i < name.size(); ++i) {
            data->letterBits[detail::letterClass(name[i]) * data->bitWords + e / 64] |= bit;
            if (i > 0) {
                data->pairBits[detail::pairClass(name[i - 1], name[i]) * data->bitWords + e / 64] |= bit;
            }
        }
        if (!name.empty()) {
            data->startBits[detail::letterClass(name[0]) * data->bitWords + e / 64] |= bit;
        }
        for (const auto& segment : data->segmentsOf(e)) {
            data->startBits[detail::letterClass(name[segment.start]) * data->bitWords + e / 64] |= bit;
        }
    }

    // Name bigrams by position: a dense number per key, and per key and position the bytes its
    // run takes, in a first pass; in a second, each entry's gap goes straight to its place.
    {
        constexpr std::size_t kPositions = Data::kBigramPositions;
        std::array<std::uint32_t, 128 * 128> ascii;
        ascii.fill(UINT32_MAX);
        std::unordered_map<std::uint32_t, std::uint32_t> other;
        std::vector<std::uint32_t> keys;
        std::vector<std::uint32_t> places; // per dense key and position: its bytes, then its next place
        std::vector<std::uint32_t> last;   // per dense key and position: the entry posted last
        // The dense number of a key; both passes look it up, which costs less than keeping it.
        const auto slotOf = [&](std::uint32_t key) -> std::uint32_t& {
            if ((key >> 16) < 128 && (key & 0xFFFF) < 128) {
                return ascii[(key >> 16) << 7 | (key & 0x7F)];
            }
            return other.try_emplace(key, UINT32_MAX).first->second;
        };
        for (std::uint32_t e = 0; e < n; ++e) {
            const auto name = data->name(e);
            const std::size_t end = std::min(name.size(), kPositions + 1);
            for (std::size_t p = 0; p + 1 < end; ++p) {
                const std::uint32_t key = bigramKey(name[p], name[p + 1]);
                std::uint32_t& slot = slotOf(key);
                if (slot == UINT32_MAX) {
                    slot = static_cast<std::uint32_t>(keys.size());
                    keys.push_back(key);
                    places.resize(places.size() + kPositions, 0);
                    last.resize(last.size() + kPositions, 0);
                }
                const std::size_t run = slot * kPositions + p;
                places[run] += static_cast<std::uint32_t>(gapBytes(e - last[run]));
                last[run] = e;
            }
        }
        std::vector<std::uint32_t> rank(keys.size());
        std::iota(rank.begin(), rank.end(), 0u);
        std::sort(rank.begin(), rank.end(), [&](std::uint32_t a, std::uint32_t b) { return keys[a] < keys[b]; });
        data->bigramKeys.reserve(keys.size());
        data->bigramAt.reserve(keys.size() * kPositions + 1);
        std::uint32_t total = 0;
        for (const std::uint32_t d : rank) {
            data->bigramKeys.push_back(keys[d]);
            for (std::size_t p = 0; p < kPositions; ++p) {
                data->bigramAt.push_back(total);
                const std::uint32_t bytes = places[d * kPositions + p];
                places[d * kPositions + p] = total;
                total += bytes;
            }
        }
        data->bigramAt.push_back(total);
        data->bigramRuns.resize(total);
        std::fill(last.begin(), last.end(), 0);
        std::uint8_t* const runs = data->bigramRuns.data();
        for (std::uint32_t e = 0; e < n; ++e) {
            const auto name = data->name(e);
            const std::size_t end = std::min(name.size(), kPositions + 1);
            for (std::size_t p = 0; p + 1 < end; ++p) {
                const std::size_t run = slotOf(bigramKey(name[p], name[p + 1])) * kPositions + p;
                places[run] = static_cast<std::uint32_t>(putGap(runs + places[run], e - last[run]) - runs);
                last[run] = e;
            }
        }
    }

    // The purpose words sorted, with their lists in the same order, each list by entry.
    {
        std::vector<std::uint32_t> sortedIds(ids.count());
        std::iota(sortedIds.begin(), sortedIds.end(), 0u);
        std::sort(sortedIds.begin(), sortedIds.end(),
                  [&](std::uint32_t a, std::uint32_t b) { return ids.text(a) < ids.text(b); });
        std::vector<std::uint32_t> counts(ids.count(), 0);
        for (const std::uint32_t w : fileWords) {
            ++counts[w >> 1];
        }
        std::vector<std::uint32_t> next(ids.count());
        data->wordAt.reserve(ids.count() + 1);
        data->postingAt.reserve(ids.count() + 1);
        std::uint32_t total = 0;
        for (const std::uint32_t id : sortedIds) {
            data->wordAt.push_back(static_cast<std::uint32_t>(data->words.size()));
            data->words.append(ids.text(id));
            data->postingAt.push_back(total);
            next[id] = total;
            total += counts[id];
        }
        data->wordAt.push_back(static_cast<std::uint32_t>(data->words.size()));
        data->postingAt.push_back(total);
        data->postings.resize(total);
        for (std::uint32_t e = 0; e < n; ++e) {
            const std::uint32_t f = fileOfEntry[e];
            for (std::uint32_t i = fileWordsAt[f]; i < fileWordsAt[f + 1]; ++i) {
                const std::uint32_t w = fileWords[i];
                data->postings[next[w >> 1]++] = e << 1 | (w & 1);
            }
        }
    }
    data->names.shrink_to_fit();
    data->segments.shrink_to_fit();
    data->bySegment.shrink_to_fit();
    data->byInitials.shrink_to_fit();
    data->initials.shrink_to_fit();
    data->words.shrink_to_fit();
    return data;
}

std::size_t indexBytes(const IndexData& data) noexcept {
    return bytesOf(data.products) + bytesOf(data.entries) + bytesOf(data.entryPages) +
           data.names.capacity() * sizeof(char16_t) + bytesOf(data.segments) + bytesOf(data.byName) +
           bytesOf(data.bySegment) + data.initials.capacity() * sizeof(char16_t) + bytesOf(data.initialsAt) +
           bytesOf(data.byInitials) + bytesOf(data.letterBits) + bytesOf(data.startBits) + bytesOf(data.pairBits) +
           bytesOf(data.bigramKeys) + bytesOf(data.bigramAt) + bytesOf(data.bigramRuns) +
           data.words.capacity() * sizeof(char16_t) + bytesOf(data.wordAt) + bytesOf(data.postingAt) +
           bytesOf(data.postings);
}

} // namespace detail

SearchIndex::SearchIndex(LookupResults lookups)
    : SearchIndex(std::make_shared<const LookupResults>(std::move(lookups))) {}

SearchIndex::SearchIndex(std::shared_ptr<const LookupResults> lookups)
    : data_(detail::buildIndex(std::move(lookups), {})) {}

SearchIndex::SearchIndex(std::shared_ptr<const LookupResults> lookups, std::vector<PageFiles> pages)
    : data_(detail::buildIndex(std::move(lookups), std::move(pages))) {}

SearchIndex::SearchIndex(SearchIndex&&) noexcept = default;
SearchIndex& SearchIndex::operator=(SearchIndex&&) noexcept = default;
SearchIndex::~SearchIndex() = default;

std::size_t SearchIndex::size() const noexcept { return data_ ? data_->entries.size() : 0; }

const SearchIndex::LookupResults& SearchIndex::lookups() const {
    if (!data_) {
        throw std::logic_error("SearchIndex: moved from");
    }
    return *data_->lookups;
}

std::size_t SearchIndex::memoryUsage() const noexcept { return data_ ? detail::indexBytes(*data_) : 0; }

} // namespace reference::search
