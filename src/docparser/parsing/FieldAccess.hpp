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

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace reference::docparser::detail {

using StringParsingType = DocResourceParser::ParsingTools::StringParsingType;

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

// A member as a lookup found it (value nullptr when absent), with the object it was looked for
// in, so that a missing required member can still say where it was missing. Converts to the
// plain member pointer everywhere else.
struct FoundMember {
    const boost::json::value* value = nullptr;
    const boost::json::object* owner = nullptr;

    operator const boost::json::value*() const noexcept { return value; }
};

inline const boost::json::value& requireMember(FoundMember member, std::string_view key) {
    if (member.value != nullptr) [[likely]] {
        return *member.value;
    }
    failRead(ReadFailure::MissingKey, key, member.owner);
}

inline const boost::json::value& requireMember(const boost::json::object& object, std::string_view key) {
    return requireMember(FoundMember{object.if_contains(key), &object}, key);
}

// The members of an object named by a fixed list of keys, found in one pass over the object
// rather than one search of it per key. A JSON object holds each key once (the parser keeps the
// last of duplicates), so each slot gets exactly what object::find would return, or nullptr.
template <std::size_t N>
class MemberLookup {
public:
    static_assert(N <= 32, "one bit per key");
    // What find() gives: one slot per key, and the object searched.
    struct Members {
        std::array<const boost::json::value*, N> slots{};
        const boost::json::object* owner = nullptr;

        FoundMember operator[](std::size_t index) const noexcept { return {slots[index], owner}; }
    };

    // `keys` must outlive the lookup (the library's key constants live until unload).
    explicit MemberLookup(const std::array<std::string_view, N>& keys) noexcept : keys_(keys) {
        for (std::size_t i = 0; i < N; ++i) {
            byLength_[bucket(keys[i].size())] |= std::uint32_t{1} << i;
        }
    }

    Members find(const boost::json::object& object) const noexcept {
        Members found{};
        found.owner = &object;
        for (const auto& member : object) {
            const std::string_view key = member.key();
            // Keys are told apart by length first; only same-length candidates compare bytes.
            for (auto candidates = byLength_[bucket(key.size())]; candidates != 0; candidates &= candidates - 1) {
                const auto index = static_cast<std::size_t>(std::countr_zero(candidates));
                if (sameKey(keys_[index], key)) {
                    found.slots[index] = &member.value();
                    break;
                }
            }
        }
        return found;
    }

private:
    static constexpr std::size_t kBuckets = 32; // keys of 31 bytes or more share the last bucket
    static bool sameKey(std::string_view wanted, std::string_view key) noexcept { return text::sameBytes(wanted, key); }
    static constexpr std::size_t bucket(std::size_t length) noexcept {
        return length < kBuckets ? length : kBuckets - 1;
    }

    std::array<std::string_view, N> keys_;
    std::array<std::uint32_t, kBuckets> byLength_{};
};

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

// The two readings of a text field, as functions for the streaming formats' tables.
inline std::u16string asciiField(std::string_view bytes) { return toUtf16(bytes, StringParsingType::Ascii); }
inline std::u16string utf8Field(std::string_view bytes) { return toUtf16(bytes, StringParsingType::Utf8); }

// The readers below take either the object and the key, or the member already found (nullptr
// when absent) and its key, which names it when the read fails.

inline std::u16string requireString(FoundMember member, std::string_view key, StringParsingType type) {
    return toUtf16(asStringBytes(requireMember(member, key), key), type);
}

inline std::u16string requireString(const boost::json::object& object, std::string_view key, StringParsingType type) {
    return requireString(FoundMember{object.if_contains(key), &object}, key, type);
}

inline std::u16string optionalString(const boost::json::value* member, std::string_view key, StringParsingType type) {
    if (member != nullptr) {
        return toUtf16(asStringBytes(*member, key), type);
    }
    return {};
}

inline std::u16string optionalString(const boost::json::object& object, std::string_view key, StringParsingType type) {
    return optionalString(object.if_contains(key), key, type);
}

inline const boost::json::array& requireArray(FoundMember member, std::string_view key) {
    return asArray(requireMember(member, key), key);
}

inline const boost::json::array& requireArray(const boost::json::object& object, std::string_view key) {
    return requireArray(FoundMember{object.if_contains(key), &object}, key);
}

// nullptr when the key is absent.
inline const boost::json::array* optionalArray(const boost::json::value* member, std::string_view key) {
    if (member != nullptr) {
        return &asArray(*member, key);
    }
    return nullptr;
}

inline const boost::json::array* optionalArray(const boost::json::object& object, std::string_view key) {
    return optionalArray(object.if_contains(key), key);
}

// An enumeration member: its raw bytes are matched against T's spellings. Absent or unknown
// text gives the default, without an exception (unknown texts are common in data written
// elsewhere); only a member that is not a string is an error.
template <class T>
typename T::Value readEnum(const boost::json::value* member, std::string_view key) {
    typename T::Value value = T::getDefaultValue();
    if (member == nullptr) {
        return value;
    }
    const std::string_view text = asStringBytes(*member, key);
    if (!T::tryStringToEnum(text, value)) [[unlikely]] {
        diagnostics::unknownEnumText(*member, text);
    }
    return value;
}

template <class T>
typename T::Value readEnum(const boost::json::object& object, std::string_view key) {
    return readEnum<T>(object.if_contains(key), key);
}

property::HeaderInfo readHeader(const boost::json::object& document);

} // namespace reference::docparser::detail
