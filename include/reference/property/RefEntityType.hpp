#pragma once

#include <reference/docparser/Export.hpp>

#include <cstdint>
#include <string_view>

namespace reference::property {

/// The kind of reference entity a lookup entry or a page documents ("type" in the JSON data).
///
/// | Value        | Number | JSON text      |
/// |--------------|--------|----------------|
/// | Unspecified  | 0      | (none)         |  default: key absent or text unknown
/// | Function     | 1      | "function"     |
/// | Class        | 2      | "class"        |
/// | Method       | 3      | "method"       |
/// | Property     | 4      | "property"     |
/// | Object       | 5      | "object"       |
/// | Namespace    | 6      | "namespace"    |
/// | Package      | 7      | "package"      |
/// | Enumeration  | 8      | "enumeration"  |
/// | Event        | 9      | "event"        |
/// | Constant     | 10     | "constant"     |
/// | App          | 11     | "app"          |
/// | Block        | 12     | "block"        |
/// | SystemObject | 13     | "systemobject" |
/// | Operator     | 14     | "operator"     |
/// | Keyword      | 15     | "keyword"      |
/// | Script       | 16     | "script"       |
/// | Interface    | 17     | "interface"    |
/// | Setting      | 18     | "setting"      |
/// | DataType     | 19     | "datatype"     |
///
/// Block has the number 12 on purpose: the page parser decodes the names of the inputs and
/// class properties of a page that documents a block as UTF-8 (block parameters carry
/// display names), and every other page's member names as ASCII. The numbers are stored in
/// records and must not change.
class REFDOC_API RefEntityType {
public:
    enum Value : std::int32_t {
        Unspecified = 0,
        Function = 1,
        Class = 2,
        Method = 3,
        Property = 4,
        Object = 5,
        Namespace = 6,
        Package = 7,
        Enumeration = 8,
        Event = 9,
        Constant = 10,
        App = 11,
        Block = 12,
        SystemObject = 13,
        Operator = 14,
        Keyword = 15,
        Script = 16,
        Interface = 17,
        Setting = 18,
        DataType = 19,
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
