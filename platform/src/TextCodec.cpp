#include "TextCodec.hpp"

#include <cwchar>
#include <locale>

namespace platform::detail {
namespace {

using Facet = std::codecvt<char16_t, char8_t, std::mbstate_t>;

const Facet& facet() {
    static const Facet& f = std::use_facet<Facet>(std::locale::classic());
    return f;
}

} // namespace

std::string narrowFromUtf16(std::u16string_view text) {
    std::string out(text.size() * 3, '\0');
    std::mbstate_t state{};
    const char16_t* from = text.data();
    const char16_t* const fromEnd = text.data() + text.size();
    auto* to = reinterpret_cast<char8_t*>(out.data());
    auto* const toBegin = to;
    auto* const toEnd = to + out.size();
    while (from != fromEnd) {
        const char16_t* fromNext = from;
        char8_t* toNext = to;
        const auto result = facet().out(state, from, fromEnd, fromNext, to, toEnd, toNext);
        to = toNext;
        from = fromNext;
        if (result == Facet::ok) {
            break;
        }
        // A lone surrogate or a truncated pair: emit '?' and go on after it.
        *to++ = u8'?';
        ++from;
        state = std::mbstate_t{};
    }
    out.resize(static_cast<std::size_t>(to - toBegin));
    return out;
}

std::u16string widenFromUtf8(std::string_view text) {
    std::u16string out(text.size(), u'\0');
    std::mbstate_t state{};
    const auto* from = reinterpret_cast<const char8_t*>(text.data());
    const auto* const fromEnd = from + text.size();
    char16_t* to = out.data();
    char16_t* const toBegin = to;
    char16_t* const toEnd = to + out.size();
    while (from != fromEnd) {
        const char8_t* fromNext = from;
        char16_t* toNext = to;
        const auto result = facet().in(state, from, fromEnd, fromNext, to, toEnd, toNext);
        to = toNext;
        from = fromNext;
        if (result == Facet::ok) {
            break;
        }
        *to++ = u'\uFFFD';
        ++from;
        state = std::mbstate_t{};
    }
    out.resize(static_cast<std::size_t>(to - toBegin));
    return out;
}

} // namespace platform::detail
