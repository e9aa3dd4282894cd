#include "search/CodeText.hpp"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <limits>

namespace reference::search::detail {
namespace {

enum class Kind { Separator, Upper, Lower, Digit };

Kind kindOf(char32_t c) noexcept {
    if (c < 0x80) {
        if (c >= 'a' && c <= 'z') {
            return Kind::Lower;
        }
        if (c >= 'A' && c <= 'Z') {
            return Kind::Upper;
        }
        if (c >= '0' && c <= '9') {
            return Kind::Digit;
        }
        return Kind::Separator;
    }
    const auto c32 = static_cast<UChar32>(c);
    if (u_isdigit(c32)) {
        return Kind::Digit;
    }
    if (u_isupper(c32) || u_istitle(c32)) {
        return Kind::Upper;
    }
    return isWordCharacter(c) ? Kind::Lower : Kind::Separator;
}

char32_t codePointAt(std::u16string_view text, std::size_t& i) noexcept {
    UChar32 c;
    const auto length =
        static_cast<std::int32_t>(std::min<std::size_t>(text.size(), std::numeric_limits<std::int32_t>::max()));
    std::int32_t at = static_cast<std::int32_t>(i);
    U16_NEXT(text.data(), at, length, c);
    i = static_cast<std::size_t>(at);
    return static_cast<char32_t>(c);
}

} // namespace

void appendFolded(std::u16string_view text, std::u16string& out) {
    out.reserve(out.size() + text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        if (text[i] < 0x80) {
            // A run of ASCII in one step.
            std::size_t end = i + 1;
            while (end < text.size() && text[end] < 0x80) {
                ++end;
            }
            const std::size_t at = out.size();
            out.append(text.substr(i, end - i));
            for (std::size_t k = at; k < out.size(); ++k) {
                if (out[k] >= u'A' && out[k] <= u'Z') {
                    out[k] = static_cast<char16_t>(out[k] + 0x20);
                }
            }
            i = end;
            continue;
        }
        const std::size_t start = i;
        const auto c = static_cast<UChar32>(codePointAt(text, i));
        const UChar32 f = u_foldCase(c, U_FOLD_CASE_DEFAULT);
        if (U16_LENGTH(f) != static_cast<std::int32_t>(i - start)) {
            out.append(text.substr(start, i - start));
        } else if (U16_LENGTH(f) == 1) {
            out.push_back(static_cast<char16_t>(f));
        } else {
            out.push_back(U16_LEAD(f));
            out.push_back(U16_TRAIL(f));
        }
    }
}

std::u16string folded(std::u16string_view text) {
    std::u16string out;
    appendFolded(text, out);
    return out;
}

namespace {

// Whether a character of `kind` after one of `previous` starts a segment: after a separator, at
// a change between digits and the rest, at a capital after a small letter, and at the last
// capital of a run that a small letter follows (HTML|Parser). `next` gives the kind of the
// character after it (Separator at the end), asked only in that last case.
template <class NextKind>
bool startsSegment(Kind previous, Kind kind, const NextKind& next) {
    if (kind == Kind::Separator) {
        return false;
    }
    if (previous == Kind::Separator) {
        return true;
    }
    if (kind == Kind::Digit || previous == Kind::Digit) {
        return kind != previous;
    }
    if (kind != Kind::Upper) {
        return false;
    }
    return previous == Kind::Lower || (previous == Kind::Upper && next() == Kind::Lower);
}

} // namespace

void appendSegments(std::u16string_view name, std::vector<Segment>& out) {
    const std::size_t end = std::min<std::size_t>(name.size(), std::numeric_limits<std::uint16_t>::max());
    // Most code names are ASCII: their kinds come from a table, a unit at a time.
    if (std::all_of(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(end),
                    [](char16_t unit) { return unit < 0x80; })) {
        static constexpr auto kAsciiKinds = [] {
            std::array<Kind, 128> kinds{};
            kinds.fill(Kind::Separator);
            for (char c = 'a'; c <= 'z'; ++c) {
                kinds[static_cast<std::size_t>(c)] = Kind::Lower;
                kinds[static_cast<std::size_t>(c - 'a' + 'A')] = Kind::Upper;
            }
            for (char c = '0'; c <= '9'; ++c) {
                kinds[static_cast<std::size_t>(c)] = Kind::Digit;
            }
            return kinds;
        }();
        Kind previous = Kind::Separator;
        for (std::size_t i = 0; i < end; ++i) {
            const Kind kind = kAsciiKinds[name[i]];
            const bool starts =
                startsSegment(previous, kind, [&] { return i + 1 < end ? kAsciiKinds[name[i + 1]] : Kind::Separator; });
            if (starts) {
                out.push_back(Segment{static_cast<std::uint16_t>(i), kind == Kind::Digit});
            }
            previous = kind;
        }
        return;
    }
    Kind previous = Kind::Separator;
    std::size_t i = 0;
    while (i < end) {
        const std::size_t at = i;
        const Kind kind = kindOf(codePointAt(name, i));
        const bool starts = startsSegment(previous, kind, [&] {
            std::size_t next = i;
            return i < end ? kindOf(codePointAt(name, next)) : Kind::Separator;
        });
        if (starts) {
            out.push_back(Segment{static_cast<std::uint16_t>(at), kind == Kind::Digit});
        }
        previous = kind;
    }
}

bool isUnspacedLetter(char32_t c) noexcept {
    if (c < 0x0E00) {
        return false;
    }
    const auto lineBreak = u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_LINE_BREAK);
    return (lineBreak == U_LB_IDEOGRAPHIC || lineBreak == U_LB_CONDITIONAL_JAPANESE_STARTER ||
            lineBreak == U_LB_COMPLEX_CONTEXT) &&
           isWordCharacter(c);
}

bool isWordCharacter(char32_t c) noexcept {
    if (c < 0x80) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    }
    const auto c32 = static_cast<UChar32>(c);
    return u_isalnum(c32) || (U_GET_GC_MASK(c32) & U_GC_M_MASK) != 0;
}

void splitWords(std::u16string_view foldedText, std::vector<Word>& out) {
    std::size_t i = 0;
    bool inWord = false;
    Word word{};
    while (i < foldedText.size()) {
        const std::size_t at = i;
        bool wordCharacter = false;
        bool unspaced = false;
        if (foldedText[i] < 0x80) {
            const char16_t u = foldedText[i++];
            wordCharacter = (u >= u'a' && u <= u'z') || (u >= u'0' && u <= u'9') || (u >= u'A' && u <= u'Z');
        } else {
            const char32_t c = codePointAt(foldedText, i);
            wordCharacter = isWordCharacter(c);
            // Marks continue the word they follow, whatever its kind.
            const bool mark = (U_GET_GC_MASK(static_cast<UChar32>(c)) & U_GC_M_MASK) != 0;
            unspaced = wordCharacter && !mark ? isUnspacedLetter(c) : word.unspaced;
        }
        if (inWord && (!wordCharacter || unspaced != word.unspaced)) {
            word.length = static_cast<std::uint32_t>(at - word.begin);
            out.push_back(word);
            inWord = false;
        }
        if (wordCharacter && !inWord) {
            word = Word{static_cast<std::uint32_t>(at), 0, unspaced};
            inWord = true;
        }
    }
    if (inWord) {
        word.length = static_cast<std::uint32_t>(foldedText.size() - word.begin);
        out.push_back(word);
    }
}

int compareNatural(std::u16string_view a, std::u16string_view b) noexcept {
    const auto isDigit = [](char16_t c) { return c >= u'0' && c <= u'9'; };
    // Most names differ away from any digit: find where they first differ, and when no digit run
    // reaches that place, the unit there (or the length) decides, as in the walk below. Equal
    // digit runs before it have equal values and equal leading zeros.
    const std::size_t common = std::min(a.size(), b.size());
    std::size_t k = 0;
    while (k < common && a[k] == b[k]) {
        ++k;
    }
    if (k == common) {
        if (a.size() == b.size()) {
            return 0;
        }
        if (!(k > 0 && isDigit(a[k - 1]))) {
            return a.size() < b.size() ? -1 : 1;
        }
    } else if (!isDigit(a[k]) && !isDigit(b[k]) && !(k > 0 && isDigit(a[k - 1]))) {
        return a[k] < b[k] ? -1 : 1;
    }
    std::size_t i = 0;
    std::size_t j = 0;
    int zeros = 0; // the first difference in leading zeros, used when all else is equal
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            std::size_t ia = i;
            std::size_t jb = j;
            while (ia < a.size() && a[ia] == u'0') {
                ++ia;
            }
            while (jb < b.size() && b[jb] == u'0') {
                ++jb;
            }
            std::size_t ea = ia;
            std::size_t eb = jb;
            while (ea < a.size() && isDigit(a[ea])) {
                ++ea;
            }
            while (eb < b.size() && isDigit(b[eb])) {
                ++eb;
            }
            if (ea - ia != eb - jb) {
                return ea - ia < eb - jb ? -1 : 1;
            }
            const int digits = a.substr(ia, ea - ia).compare(b.substr(jb, eb - jb));
            if (digits != 0) {
                return digits < 0 ? -1 : 1;
            }
            if (zeros == 0 && ia - i != jb - j) {
                zeros = ia - i < jb - j ? -1 : 1;
            }
            i = ea;
            j = eb;
            continue;
        }
        if (a[i] != b[j]) {
            return a[i] < b[j] ? -1 : 1;
        }
        ++i;
        ++j;
    }
    if (i < a.size() || j < b.size()) {
        return i < a.size() ? 1 : -1;
    }
    return zeros;
}

} // namespace reference::search::detail
