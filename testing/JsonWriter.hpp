#pragma once

// A streaming JSON writer, the one that test fixtures and the benchmark corpus are written with.
// Compact by default, the way documentation build tools emit their files; pretty-printed
// (two-space indentation, one member or element per line) for data that stands for hand-edited
// or differently built files. Strings pass through as bytes: UTF-8 (or anything else a hostile
// fixture holds) is not escaped, only quotes, backslashes and control characters are.

#include <boost/json/fwd.hpp>

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
    void key(std::string_view name);

    void string(std::string_view value);
    void boolean(bool value);
    // A whole document tree, members in their stored order.
    void value(const boost::json::value& tree);

    void member(std::string_view name, std::string_view value) {
        key(name);
        string(value);
    }
    void stringArray(std::string_view name, const std::vector<std::string>& values);

    const std::string& text() const noexcept { return out_; }
    std::string take() { return std::move(out_); }

private:
    void open(char bracket);
    void close(char bracket);
    void newline();
    void separate();
    void appendString(std::string_view value);

    std::string out_;
    std::vector<bool> first_;
    bool afterKey_ = false;
    bool pretty_ = false;
};

} // namespace refdoc::test
