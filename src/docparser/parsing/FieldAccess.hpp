#pragma once

// Checked reads of a parsed JSON value, behind the exported ParsingTools members: required
// strings throw when missing, optional strings default to "", and every member is checked for
// its JSON kind. The library's own formats are read by the event reader (EventReader.hpp); the
// text conversions of a field are shared with it.

#include "docparser/parsing/TextConversion.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/fwd.hpp>

#include <string>
#include <string_view>

namespace reference::docparser::detail {

using StringParsingType = DocResourceParser::ParsingTools::StringParsingType;

// UTF-8 bytes of a JSON string to UTF-16. Ascii widens; any other type scans first and sends
// only text with a byte outside 0x01..0x7E to the UTF-8 decoder.
inline std::u16string toUtf16(std::string_view bytes, StringParsingType type) {
    if (bytes.empty()) {
        return {};
    }
    if (type == StringParsingType::Ascii || text::isPlainAscii(bytes)) {
        return text::asciiToUtf16(bytes);
    }
    return text::utf8ToUtf16(bytes);
}

// The two readings of a text field, as functions for the formats' tables.
inline std::u16string asciiField(std::string_view bytes) { return toUtf16(bytes, StringParsingType::Ascii); }
inline std::u16string utf8Field(std::string_view bytes) { return toUtf16(bytes, StringParsingType::Utf8); }

} // namespace reference::docparser::detail
