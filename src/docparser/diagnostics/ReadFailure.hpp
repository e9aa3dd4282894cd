#pragma once

// Why a read of resource data failed, in the words a diagnostics record carries.

#include <reference/docparser/ParseDiagnostics.hpp>

#include <boost/system/error_code.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace reference::docparser::diagnostics {

enum class ReadFailure : std::uint8_t {
    MissingKey,  // a required member is absent
    NotAnObject, // a document, an item or an object member is not a JSON object
    NotAnArray,  // an array member is not a JSON array
    NotAString,  // a string member or array element is not a JSON string
};

// The kind of JSON value found where another was wanted.
enum class JsonKind : std::uint8_t { Null, Boolean, Number, String, Array, Object };

// Sets the record's reason, message and JSON Pointer: `key` is the missing member (MissingKey),
// `found` the kind of the value that is there instead (the others). `pointer` is that of the
// missing member or of the mistyped value; empty for the whole document.
void describeReadFailure(FileDiagnostic& record, ReadFailure failure, std::string_view key, JsonKind found,
                         std::string pointer);

// The text is not strict JSON: the parser stopped after `offset` bytes. Sets the reason, the
// parser's message and the position (line and column from 1, the column in UTF-8 characters).
void describeSyntaxError(FileDiagnostic& record, std::string_view text, std::size_t offset,
                         const boost::system::error_code& error);

// Appends one reference token to a JSON Pointer, '~' and '/' escaped.
void appendPointerToken(std::string& pointer, std::string_view token);

} // namespace reference::docparser::diagnostics
