#pragma once

// How the search reads names and texts: case folding, the segments of code names, the words of
// purpose texts and the order of names with numbers in them.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace reference::search::detail {

// Appends `text` with each character replaced by its simple case folding. A character whose
// folding would need a different number of UTF-16 units stays as it is, so every offset into the
// folded text is the same offset into the original (ranges found in the one mark the other).
void appendFolded(std::u16string_view text, std::u16string& out);
std::u16string folded(std::u16string_view text);

// One segment of a code name: its first code unit and whether it is a run of digits.
struct Segment {
    std::uint16_t start;
    bool digits;
};

// The segments of a name: split at separators (any character that is neither a letter, a mark
// nor a digit, such as '_', '.', '-', ':' and spaces, which belong to no segment), at camelCase
// humps ("getCurrent" -> get|Current, "HTMLParser" -> HTML|Parser) and around digit runs
// ("system938" -> system|938). Offsets past 65535 are not segmented. Reads the original name,
// since the humps are in its case.
void appendSegments(std::u16string_view name, std::vector<Segment>& out);

// Characters of scripts written without spaces between words (Han, kana, Thai and the like):
// their texts are indexed by character pairs rather than by words.
bool isUnspacedLetter(char32_t c) noexcept;
// Letters, marks and digits: what words are made of.
bool isWordCharacter(char32_t c) noexcept;

// The words of an already folded text, in order: runs of word characters, where a run of
// unspaced letters is one word of its own (a neighbouring spaced word ends there).
struct Word {
    std::uint32_t begin;
    std::uint32_t length;
    bool unspaced;
};
void splitWords(std::u16string_view foldedText, std::vector<Word>& out);

// Order of names with numbers in them: as code units, except that runs of ASCII digits compare
// by their value ("system111" < "system1020"); equal values with more leading zeros come later.
int compareNatural(std::u16string_view a, std::u16string_view b) noexcept;

} // namespace reference::search::detail
