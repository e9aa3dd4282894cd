#pragma once

// What a search index holds. Everything is built once by the constructor and only read after,
// which is what lets any number of threads query one index at once.
//
// Entries are numbered in the order of the tie rules (shorter name, installed product, product
// key, name with numbers by value, file order), so among equally good matches the smaller
// number wins and an entry number is all a ranking needs. The folded names lie in one buffer;
// the tables that find them are sorted arrays of entry numbers searched by bisection.

#include "search/CodeText.hpp"

#include <reference/search/SearchIndex.hpp>

#include <array>
#include <compare>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace reference::search {

namespace detail {

struct IndexData {
    using LookupResults = SearchIndex::LookupResults;
    using PageFiles = SearchIndex::PageFiles;

    struct Product {
        const std::u16string* key;
        const property::HeaderInfo* header;
        bool installed;
    };

    struct Entry {
        const property::RefItemLookup* item;
        std::uint32_t nameOffset;    // into names
        std::uint32_t segmentOffset; // into segments
        std::uint32_t product;       // into products
        std::uint16_t nameLength;
        std::uint8_t segmentCount;
        std::uint8_t flags;
    };
    static constexpr std::uint8_t kInstalled = 1;
    static constexpr std::uint8_t kDeprecated = 2;
    // The entity type goes in the upper six bits of the flags, as its number + 1; 0 for a number
    // outside 0..62, which no filter names.
    static constexpr unsigned kTypeShift = 2;
    static std::uint8_t typeCode(std::int64_t type) noexcept {
        return type >= 0 && type < 63 ? static_cast<std::uint8_t>((type + 1) << kTypeShift) : 0;
    }

    // A later segment of a name, found by the folded text from its start on.
    struct SegmentRef {
        std::uint32_t entry;
        std::uint16_t offset;
        std::uint16_t index;
    };

    // Characters fall into this many classes for the in-order test: letters and digits of
    // ASCII and the separators have their own, everything else shares the rest by a hash.
    static constexpr std::size_t kLetterClasses = 64;
    // Name bigrams are posted for the first this many positions.
    static constexpr std::size_t kBigramPositions = 32;
    static constexpr std::uint32_t kMaxEntries = 1u << 27;

    std::shared_ptr<const LookupResults> lookups;
    std::vector<PageFiles> pages;
    std::vector<Product> products;
    std::vector<Entry> entries;
    // Per entry, the reference page that adds text to it (empty when no pages were given).
    std::vector<const property::RefItem*> entryPages;

    std::u16string names; // folded
    std::vector<detail::Segment> segments;

    std::vector<std::uint32_t> byName;     // entries by the sort key of the folded name, then number
    std::vector<SegmentRef> bySegment;     // segments after the first, by the key of the text from there
    std::u16string initials;               // per entry, the first folded unit of each letter segment
    std::vector<std::uint32_t> initialsAt; // per entry + 1, offsets into initials
    std::vector<std::uint32_t> byInitials; // entries with two letter segments or more, by key of initials

    std::size_t bitWords = 0;              // words per row of letterBits
    std::vector<std::uint64_t> letterBits; // kLetterClasses rows: which entries hold a character of the class
    std::vector<std::uint64_t> startBits;  // the same for the first character of the name or of a segment
    // kPairClasses rows: which entries hold two neighbouring characters of the pair's class, so
    // that an in-order query can bound, 64 entries at a time, how many of its pairs a name holds.
    std::vector<std::uint64_t> pairBits;
    static constexpr std::size_t kPairClasses = 64;

    // Unordered pairs of neighbouring characters (a transposition keeps its pair), sorted keys
    // with their postings, each list sorted by position, then entry.
    // Each key has a run of entries per position, kept as the gaps between ascending entry numbers
    // in seven-bit groups (most gaps take a byte where an entry number would take four).
    std::vector<std::uint32_t> bigramKeys;
    std::vector<std::uint32_t> bigramAt; // per key and position + 1: byte offsets into bigramRuns
    std::vector<std::uint8_t> bigramRuns;

    // The words of the purpose texts (and character pairs of unspaced scripts), sorted, with
    // postings (entry << 1) | fromPage, each list sorted by entry.
    std::u16string words;
    std::vector<std::uint32_t> wordAt;    // per word + 1, offsets into words
    std::vector<std::uint32_t> postingAt; // per word + 1
    std::vector<std::uint32_t> postings;

    std::u16string_view name(std::uint32_t entry) const noexcept {
        const Entry& e = entries[entry];
        return std::u16string_view(names).substr(e.nameOffset, e.nameLength);
    }
    std::span<const detail::Segment> segmentsOf(std::uint32_t entry) const noexcept {
        const Entry& e = entries[entry];
        return std::span<const detail::Segment>(segments).subspan(e.segmentOffset, e.segmentCount);
    }
    std::u16string_view initialsOf(std::uint32_t entry) const noexcept {
        return std::u16string_view(initials).substr(initialsAt[entry], initialsAt[entry + 1] - initialsAt[entry]);
    }
    std::u16string_view word(std::size_t index) const noexcept {
        return std::u16string_view(words).substr(wordAt[index], wordAt[index + 1] - wordAt[index]);
    }
};

// Letters and digits of ASCII and the separators have a class of their own, everything else
// shares the rest by a hash.
inline std::size_t letterClassBeyondAscii(char16_t c) noexcept {
    return 41 + (static_cast<std::uint32_t>(c) * 2654435761u >> 16) % 23;
}
inline constexpr auto kAsciiLetterClasses = [] {
    std::array<std::uint8_t, 128> classes{};
    for (std::size_t c = 0; c < 128; ++c) {
        classes[c] = static_cast<std::uint8_t>(41 + (static_cast<std::uint32_t>(c) * 2654435761u >> 16) % 23);
    }
    for (std::size_t c = 'a'; c <= 'z'; ++c) {
        classes[c] = static_cast<std::uint8_t>(c - 'a');
    }
    for (std::size_t c = '0'; c <= '9'; ++c) {
        classes[c] = static_cast<std::uint8_t>(26 + (c - '0'));
    }
    classes['_'] = 36;
    classes['.'] = 37;
    classes['-'] = 38;
    classes[':'] = 39;
    classes[' '] = 40;
    return classes;
}();
inline std::size_t letterClass(char16_t c) noexcept {
    return c < 128 ? kAsciiLetterClasses[c] : letterClassBeyondAscii(c);
}

// The class of two neighbouring characters, in this order.
inline std::size_t pairClass(char16_t a, char16_t b) noexcept {
    return ((static_cast<std::uint32_t>(a) * 31u + b) * 2654435761u >> 20) % IndexData::kPairClasses;
}

// The first eight code units of a text as two numbers, padded with `fill`: the sorted tables are
// in the order of these keys (then of entry), so that building them compares numbers only. Texts
// with a prefix p lie between the keys of p padded with 0 and with 0xFFFF; a prefix longer than
// eight units needs its rows checked.
struct SortKey {
    std::uint64_t high;
    std::uint64_t low;
    auto operator<=>(const SortKey&) const = default;
};

inline SortKey sortKey(std::u16string_view text, char16_t fill = 0) noexcept {
    std::uint64_t words[2] = {0, 0};
    for (std::size_t i = 0; i < 8; ++i) {
        words[i / 4] = (words[i / 4] << 16) | (i < text.size() ? text[i] : fill);
    }
    return SortKey{words[0], words[1]};
}
inline constexpr std::size_t kSortKeyUnits = 8;

// A number in seven-bit groups, low first, the high bit of each byte saying that more follow.
inline std::size_t gapBytes(std::uint32_t gap) noexcept {
    std::size_t bytes = 1;
    while (gap >= 0x80) {
        gap >>= 7;
        ++bytes;
    }
    return bytes;
}
inline std::uint8_t* putGap(std::uint8_t* out, std::uint32_t gap) noexcept {
    while (gap >= 0x80) {
        *out++ = static_cast<std::uint8_t>(gap | 0x80);
        gap >>= 7;
    }
    *out++ = static_cast<std::uint8_t>(gap);
    return out;
}
inline std::uint32_t takeGap(const std::uint8_t*& in) noexcept {
    std::uint32_t gap = 0;
    for (unsigned shift = 0;; shift += 7) {
        const std::uint8_t byte = *in++;
        gap |= static_cast<std::uint32_t>(byte & 0x7F) << shift;
        if ((byte & 0x80) == 0) {
            return gap;
        }
    }
}

inline std::uint32_t bigramKey(char16_t a, char16_t b) noexcept {
    return a < b ? (static_cast<std::uint32_t>(a) << 16) | b : (static_cast<std::uint32_t>(b) << 16) | a;
}

// Builds the tables (IndexBuild.cpp); the bytes they take.
std::unique_ptr<const IndexData> buildIndex(std::shared_ptr<const SearchIndex::LookupResults> lookups,
                                            std::vector<SearchIndex::PageFiles> pages);
std::size_t indexBytes(const IndexData& data) noexcept;

} // namespace detail
} // namespace reference::search
