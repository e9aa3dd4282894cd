#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace reference::property::detail {

template <class Value>
struct EnumSpelling {
    std::string_view text;
    Value value;
};

// Exact lookup of a JSON text in a short table. The tables have a few dozen rows at most, so a
// scan that first compares lengths is as fast as hashing and needs no set-up.
template <class Value, std::size_t N>
bool findSpelling(const EnumSpelling<Value> (&table)[N], std::string_view text, Value& value) noexcept {
    for (const auto& row : table) {
        if (row.text.size() == text.size() && row.text == text) {
            value = row.value;
            return true;
        }
    }
    return false;
}

template <class Value, std::size_t N>
Value lookupSpelling(const EnumSpelling<Value> (&table)[N], std::string_view text, const char* enumName) {
    Value value{};
    if (findSpelling(table, text, value)) {
        return value;
    }
    throw std::invalid_argument(std::string(enumName) + ": unknown text \"" + std::string(text) + "\"");
}

template <class Value, std::size_t N>
std::string_view spellingOf(const EnumSpelling<Value> (&table)[N], Value value) noexcept {
    for (const auto& row : table) {
        if (row.value == value) {
            return row.text;
        }
    }
    return {};
}

} // namespace reference::property::detail
