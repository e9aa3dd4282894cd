#pragma once

// A streaming JSON writer, the one that test fixtures and the benchmark corpus are written with.
// Compact by default, the way documentation build tools emit their files; pretty-printed
// (two-space indentation, one member or element per line) for the corpus profile that stands for
// hand-edited or differently built data.

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace refdoc::test {

class JsonWriter {
public:
    explicit JsonWriter(bool pretty = false) : pretty_(pretty) {}

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }

    // A member name inside an object; the value follows with one of the value calls.
    void key(std::string_view name) {
        separate();
        appendString(name);
        out_.append(pretty_ ? ": " : ":");
        afterKey_ = true;
    }

    void string(std::string_view value) {
        separate();
        appendString(value);
    }
    void boolean(bool value) {
        separate();
        out_.append(value ? "true" : "false");
    }
    // A whole document tree, members in their stored order.
    void value(const boost::json::value& tree) {
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

    void member(std::string_view name, std::string_view value) {
        key(name);
        string(value);
    }
    void stringArray(std::string_view name, const std::vector<std::string>& values) {
        key(name);
        beginArray();
        for (const auto& value : values) {
            string(value);
        }
        endArray();
    }

    const std::string& text() const noexcept { return out_; }
    std::string take() { return std::move(out_); }

private:
    void open(char bracket) {
        separate();
        out_.push_back(bracket);
        first_.push_back(true);
    }
    void close(char bracket) {
        const bool empty = first_.back();
        first_.pop_back();
        if (pretty_ && !empty) {
            newline();
        }
        out_.push_back(bracket);
    }
    void newline() {
        out_.push_back('\n');
        out_.append(2 * first_.size(), ' ');
    }
    // A comma before every element but the first of its container; none right after a key.
    void separate() {
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
    void appendString(std::string_view value) {
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
                    out_.push_back(c); // UTF-8 passes through unescaped
                }
            }
        }
        out_.push_back('"');
    }

    std::string out_;
    std::vector<bool> first_;
    bool afterKey_ = false;
    bool pretty_ = false;
};

} // namespace refdoc::test
