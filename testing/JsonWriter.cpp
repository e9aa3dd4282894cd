#include "JsonWriter.hpp"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

namespace refdoc::test {

void JsonWriter::key(std::string_view name) {
    separate();
    appendString(name);
    out_.append(pretty_ ? ": " : ":");
    afterKey_ = true;
}

void JsonWriter::string(std::string_view value) {
    separate();
    appendString(value);
}

void JsonWriter::boolean(bool value) {
    separate();
    out_.append(value ? "true" : "false");
}

void JsonWriter::value(const boost::json::value& tree) {
    switch (tree.kind()) {
    case boost::json::kind::object:
        beginObject();
        for (const auto& [name, member] : tree.get_object()) {
            key(name);
            value(member);
        }
        endObject();
        break;
    case boost::json::kind::array:
        beginArray();
        for (const auto& element : tree.get_array()) {
            value(element);
        }
        endArray();
        break;
    case boost::json::kind::string:
        string(tree.get_string());
        break;
    default: // numbers, booleans and null, written as Boost.JSON writes them
        separate();
        out_.append(boost::json::serialize(tree));
    }
}

void JsonWriter::stringArray(std::string_view name, const std::vector<std::string>& values) {
    key(name);
    beginArray();
    for (const auto& value : values) {
        string(value);
    }
    endArray();
}

void JsonWriter::open(char bracket) {
    separate();
    out_.push_back(bracket);
    first_.push_back(true);
}

void JsonWriter::close(char bracket) {
    const bool empty = first_.back();
    first_.pop_back();
    if (pretty_ && !empty) {
        newline();
    }
    out_.push_back(bracket);
}

void JsonWriter::newline() {
    out_.push_back('\n');
    out_.append(2 * first_.size(), ' ');
}

// A comma before every element but the first of its container; none right after a key.
void JsonWriter::separate() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (!first_.empty()) {
        if (!first_.back()) {
            out_.push_back(',');
        }
        first_.back() = false;
        if (pretty_) {
            newline();
        }
    }
}

void JsonWriter::appendString(std::string_view value) {
    static constexpr char kHex[] = "0123456789abcdef";
    out_.push_back('"');
    for (const char c : value) {
        const auto byte = static_cast<unsigned char>(c);
        switch (c) {
        case '"':
            out_.append("\\\"");
            break;
        case '\\':
            out_.append("\\\\");
            break;
        case '\n':
            out_.append("\\n");
            break;
        case '\t':
            out_.append("\\t");
            break;
        default:
            if (byte < 0x20) {
                out_.append("\\u00");
                out_.push_back(kHex[byte >> 4]);
                out_.push_back(kHex[byte & 0xF]);
            } else {
                out_.push_back(c);
            }
        }
    }
    out_.push_back('"');
}

} // namespace refdoc::test
