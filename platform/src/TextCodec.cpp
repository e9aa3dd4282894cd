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

// Runs one direction of the facet over the whole input. Where the facet stops at ill-formed
// input, `replacement` is written and conversion resumes after the offending unit.
template <class To, class From, class Step>
std::basic_string<To> convertAll(std::basic_string_view<From> text, std::size_t maxPerUnit, To replacement, Step step) {
    std::basic_string<To> out(text.size() * maxPerUnit, To{});
    std::mbstate_t state{};
    const From* from = text.data();
    const From* const fromEnd = text.data() + text.size();
    To* to = out.data();
    To* const toEnd = to + out.size();
    while (from != fromEnd) {
        const From* fromNext = from;
        To* toNext = to;
        const auto result = step(state, from, fromEnd, fromNext, to, toEnd, toNext);
        to = toNext;
        from = fromNext;
        if (result == Facet::ok) {
            break;
        }
        *to++ = replacement;
        ++from;
        state = std::mbstate_t{};
    }
    out.resize(static_cast<std::size_t>(to - out.data()));
    return out;
}

} // namespace

std::string narrowFromUtf16(std::u16string_view text) {
    const auto utf8 = convertAll<char8_t>(text, 3, u8'?', [](auto&&... args) { return facet().out(args...); });
    return std::string(utf8.begin(), utf8.end());
}

std::u16string widenFromUtf8(std::string_view text) {
    const std::u8string_view bytes(reinterpret_cast<const char8_t*>(text.data()), text.size());
    return convertAll<char16_t>(bytes, 1, u'\uFFFD', [](auto&&... args) { return facet().in(args...); });
}

} // namespace platform::detail
