#pragma once

#include <reference/docparser/ParseDiagnostics.hpp>

#include <string>

namespace refdoc::test {

// A file's record in one line, for tables of expected records: the reason, where (JSON Pointer or
// line:column) and the message, then each warning in order.
inline std::string recordText(const reference::docparser::FileDiagnostic& record) {
    using reference::docparser::toString;
    std::string out(toString(record.dropReason));
    if (!record.jsonPath.empty()) {
        out += " at " + record.jsonPath;
    }
    if (record.line != 0) {
        out += " at " + std::to_string(record.line) + ":" + std::to_string(record.column);
    }
    if (!record.message.empty()) {
        out += ": " + record.message;
    }
    for (const auto& warning : record.warnings) {
        out += "; " + std::string(toString(warning.kind)) + " at " + warning.jsonPath + ": " + warning.text;
    }
    return out;
}

} // namespace refdoc::test
