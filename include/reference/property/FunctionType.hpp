#pragma once

#include <reference/docparser/Export.hpp>

#include <cstdint>
#include <string_view>

namespace reference::property {

/// How a documented function is implemented or called ("fcntype" in the JSON data).
///
/// | Value        | Number | JSON text      |
/// |--------------|--------|----------------|
/// | Unspecified  | 0      | (none)         |  default: key absent or text unknown
/// | Ordinary     | 1      | "ordinary"     |
/// | Builtin      | 2      | "builtin"      |
/// | Method       | 3      | "method"       |
/// | StaticMethod | 4      | "staticmethod" |
/// | Constructor  | 5      | "constructor"  |
/// | Operator     | 6      | "operator"     |
/// | Script       | 7      | "script"       |
/// | External     | 8      | "external"     |
/// | Conversion   | 9      | "conversion"   |
class REFDOC_API FunctionType {
public:
    enum Value : std::int32_t {
        Unspecified = 0,
        Ordinary = 1,
        Builtin = 2,
        Method = 3,
        StaticMethod = 4,
        Constructor = 5,
        Operator = 6,
        Script = 7,
        External = 8,
        Conversion = 9,
    };

    /// Exact, case-sensitive match of a JSON text; throws std::invalid_argument otherwise.
    static Value stringToEnum(std::string_view text);
    /// The same match without an exception: false, and `value` untouched, for a text that names
    /// no value. The parsers use it, since data written elsewhere often has spellings not listed.
    static bool tryStringToEnum(std::string_view text, Value& value) noexcept;
    static Value getDefaultValue() noexcept { return Unspecified; }
    /// The JSON text of a value; "" for Unspecified and for numbers outside the table.
    static std::string_view toString(Value value) noexcept;
};

} // namespace reference::property
