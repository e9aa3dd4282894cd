#include "docparser/parsing/TextConversion.hpp"

#include <cstdint>

namespace reference::docparser::text {

std::u16string asciiToUtf16(std::string_view bytes) {
    std::u16string out(bytes.size(), u'\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        out[i] = static_cast<unsigned char>(bytes[i]);
    }
    return out;
}

std::u16string utf8ToUtf16(std::string_view bytes) {
    std::u16string out;
    out.reserve(bytes.size());
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* const end = p + bytes.size();
    while (p < end) {
        const unsigned char b0 = *p;
        if (b0 < 0x80) {
            out.push_back(b0);
            ++p;
            continue;
        }
        int length = 0;
        std::uint32_t cp = 0;
        unsigned char lo = 0x80, hi = 0xBF; // allowed range of the second byte
        if (b0 >= 0xC2 && b0 <= 0xDF) {
            length = 2; cp = b0 & 0x1Fu;
        } else if (b0 >= 0xE0 && b0 <= 0xEF) {
            length = 3; cp = b0 & 0x0Fu;
            if (b0 == 0xE0) lo = 0xA0;
            if (b0 == 0xED) hi = 0x9F;
        } else if (b0 >= 0xF0 && b0 <= 0xF4) {
            length = 4; cp = b0 & 0x07u;
            if (b0 == 0xF0) lo = 0x90;
            if (b0 == 0xF4) hi = 0x8F;
        } else {
            out.push_back(u'\uFFFD');
            ++p;
            continue;
        }
        const unsigned char* q = p + 1;
        bool ok = true;
        for (int i = 1; i < length; ++i, ++q) {
            const unsigned char lower = (i == 1) ? lo : 0x80;
            const unsigned char upper = (i == 1) ? hi : 0xBF;
            if (q >= end || *q < lower || *q > upper) {
                ok = false;
                break;
            }
            cp = (cp << 6) | (*q & 0x3Fu);
        }
        if (!ok) {
            out.push_back(u'\uFFFD'); // the maximal subpart up to q is replaced once
            p = q;
            continue;
        }
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(cp));
        }
        p = q;
    }
    return out;
}

std::string utf16ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t cp = text[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            cp = 0xFFFD;
        }
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return out;
}

} // namespace reference::docparser::text
