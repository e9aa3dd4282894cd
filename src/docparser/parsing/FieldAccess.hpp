#pragma once

// Checked reads of a parsed resource document. The exported ParsingTools members and the
// parsers share these, so the policy (required keys throw, optional strings default to "",
// every member is checked for its JSON kind) lives in one place.

#include "docparser/diagnostics/DiagnosticHooks.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/string.hpp>
#include <boost/json/value.hpp>

#include <stdexcept>
#include <string>
#include <string_view>

namespace reference::docparser::detail {

using StringParsingType = DocResourceParser::ParsingTools::StringParsingType;

// Why a read of resource data failed.
enum class ReadFailure {
    MissingKey,  // a required member is absent
    NotAnObject, // a document, an item or an object member is not a JSON object
    NotAnArray,  // an array member is not a JSON array
    NotAString,  // a string member or array element is not a JSON string
};

// Every failed read of resource data leaves through here and throws DocParserException.
// `key` names the member concerned; it is empty for an array element or a whole document.
// `node` is the value read (for a missing key, the object searched), for diagnostics.
// Keeping this the single exit lets a diagnostic observe where a read stopped.
[[noreturn]] void failRead(ReadFailure failure, std::string_view key, const void* node);

inline const boost::json::object& asObject(const boost::json::value& value, std::string_view key = {}) {
    if (const auto* object = value.if_object()) [[likely]] {
        return *object;
    }
    failRead(ReadFailure::NotAnObject, key, &value);
}

inline const boost::json::array& asArray(const boost::json::value& value, std::string_view key = {}) {
    if (const auto* array = value.if_array()) [[likely]] {
        return *array;
    }
    failRead(ReadFailure::NotAnArray, key, &value);
}

// The bytes of a JSON string, viewed in place in the document's memory.
inline std::string_view asStringBytes(const boost::json::value& value, std::string_view key = {}) {
    if (const auto* string = value.if_string()) [[likely]] {
        return {string->data(), string->size()};
    }
    failRead(ReadFailure::NotAString, key, &value);
}

inline const boost::json::value& requireMember(const boost::json::object& object, std::string_view key) {
    if (const auto* member = object.if_contains(key)) [[likely]] {
        return *member;
    }
    failRead(ReadFailure::MissingKey, key, &object);
}

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

inline std::u16string requireString(const boost::json::object& object, std::string_view key,
                                    StringParsingType type) {
    return toUtf16(asStringBytes(requireMember(object, key), key), type);
}

inline std::u16string optionalString(const boost::json::object& object, std::string_view key,
                                     StringParsingType type) {
    if (const auto* member = object.if_contains(key)) {
        return toUtf16(asStringBytes(*member, key), type);
    }
    return {};
}

inline const boost::json::array& requireArray(const boost::json::object& object, std::string_view key) {
    return asArray(requireMember(object, key), key);
}

// nullptr when the key is absent.
inline const boost::json::array* optionalArray(const boost::json::object& object, std::string_view key) {
    if (const auto* member = object.if_contains(key)) {
        return &asArray(*member, key);
    }
    return nullptr;
}

// An enumeration member: its raw bytes go to T::stringToEnum. Absent or unknown text gives the
// default; only a member that is not a string is an error.
template <class T>
typename T::Value readEnum(const boost::json::object& object, std::string_view key) {
    const typename T::Value fallback = T::getDefaultValue();
    const auto* member = object.if_contains(key);
    if (member == nullptr) {
        return fallback;
    }
    const std::string_view text = asStringBytes(*member, key);
    try {
        return T::stringToEnum(text);
    } catch (const std::invalid_argument&) {
        // The record library's answer to a text it does not know; anything else (out of
        // memory) is a real failure and passes on.
        diagnostics::unknownEnumText(*member, text);
        return fallback;
    }
}

property::HeaderInfo readHeader(const boost::json::object& document);

} // namespace reference::docparser::detail
