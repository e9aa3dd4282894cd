#pragma once

#include <reference/docparser/Export.hpp>

#include <cstdint>
#include <string_view>

namespace reference::property {

/// The form of a syntax group, or the role of an input or output ("syntaxtype" in the data).
///
/// | Value       | Number | JSON text     |
/// |-------------|--------|---------------|
/// | Unspecified | 0      | (none)        |  default: key absent or text unknown
/// | Function    | 1      | "function"    |  function-call syntax
/// | Command     | 2      | "command"     |  command syntax
/// | Method      | 3      | "method"      |  object.method syntax
/// | Property    | 4      | "property"    |  property access
/// | Constructor | 5      | "constructor" |
/// | Required    | 6      | "required"    |  argument roles from here on
/// | Optional    | 7      | "optional"    |
/// | NameValue   | 8      | "namevalue"   |
/// | Repeating   | 9      | "repeating"   |
/// | Flag        | 10     | "flag"        |
/// | Output      | 11     | "output"      |
class REFDOC_API SyntaxType {
public:
    enum Value : std::int32_t {
        Unspecified = 0,
        Function = 1,
        Command = 2,
        Method = 3,
        Property = 4,
        Constructor = 5,
        Required = 6,
        Optional = 7,
        NameValue = 8,
        Repeating = 9,
        Flag = 10,
        Output = 11,
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
