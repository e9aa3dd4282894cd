#include "docparser/diagnostics/ReadFailure.hpp"

#include <algorithm>

namespace reference::docparser::diagnostics {

namespace {

std::string_view kindName(JsonKind kind) noexcept {
    switch (kind) {
    case JsonKind::Null:
        return "null";
    case JsonKind::Boolean:
        return "a boolean";
    case JsonKind::Number:
        return "a number";
    case JsonKind::String:
        return "a string";
    case JsonKind::Array:
        return "an array";
    case JsonKind::Object:
        return "an object";
    }
    return "a value";
}

} // namespace

void describeReadFailure(FileDiagnostic& record, ReadFailure failure, std::string_view key, JsonKind found,
                         std::string pointer) {
    record.jsonPath = std::move(pointer);
    if (failure == ReadFailure::MissingKey) {
        record.dropReason = DropReason::MissingKey;
        record.message.assign("missing required member \"").append(key).append("\"");
        return;
    }
    record.dropReason = DropReason::WrongKind;
    record.message = failure == ReadFailure::NotAnObject  ? "expected an object"
                     : failure == ReadFailure::NotAnArray ? "expected an array"
                                                          : "expected a string";
    record.message.append(", found ").append(kindName(found));
    if (record.jsonPath.empty()) {
        // The empty pointer is the whole document, which a reader would not recognise.
        record.message += " at the top level";
    }
}

void describeSyntaxError(FileDiagnostic& record, std::string_view text, std::size_t offset,
                         const boost::system::error_code& error) {
    record.dropReason = DropReason::SyntaxError;
    record.message = error.message();
    offset = std::min(offset, text.size());
    std::uint64_t line = 1;
    std::size_t lineStart = 0;
    for (std::size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    std::uint64_t column = 1;
    for (std::size_t i = lineStart; i < offset; ++i) {
        // Continuation bytes belong to the character before them.
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            ++column;
        }
    }
    record.offset = offset;
    record.line = line;
    record.column = column;
}

void appendPointerToken(std::string& pointer, std::string_view token) {
    pointer += '/';
    for (const char c : token) {
        if (c == '~') {
            pointer += "~0";
        } else if (c == '/') {
            pointer += "~1";
        } else {
            pointer += c;
        }
    }
}

} // namespace reference::docparser::diagnostics
