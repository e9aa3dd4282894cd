#pragma once

#include <reference/docparser/Export.hpp>

#include <cstdint>
#include <string_view>

namespace reference::property {

/// Where a documented entity stands in its retirement ("deprecationstatus" in the page data).
///
/// | Value          | Number | JSON text        |
/// |----------------|--------|------------------|
/// | Current        | 0      | "current"        |  default: key absent or text unknown
/// | NotRecommended | 1      | "notrecommended" |  still works, better alternatives exist
/// | Deprecated     | 2      | "deprecated"     |  scheduled for removal
/// | Warns          | 3      | "warns"          |  using it issues a warning
/// | Errors         | 4      | "errors"         |  using it raises an error
/// | Removed        | 5      | "removed"        |  no longer shipped
class REFDOC_API DeprecationStatus {
public:
    enum Value : std::int32_t {
        Current = 0,
        NotRecommended = 1,
        Deprecated = 2,
        Warns = 3,
        Errors = 4,
        Removed = 5,
    };

    /// Exact, case-sensitive match of a JSON text; throws std::invalid_argument otherwise.
    static Value stringToEnum(std::string_view text);
    /// The same match without an exception: false, and `value` untouched, for a text that names
    /// no value. The parsers use it, since data written elsewhere often has spellings not listed.
    static bool tryStringToEnum(std::string_view text, Value& value) noexcept;
    static Value getDefaultValue() noexcept { return Current; }
    /// The JSON text of a value; "" for numbers outside the table.
    static std::string_view toString(Value value) noexcept;
};

} // namespace reference::property
