#pragma once

// An opt-in account of what the loading operations do with each file they read, for tools that
// check documentation data. While a ParseDiagnosticsScope lives, the library records, on the
// thread that made the scope, every file that getResourceLookupFiles and getResourceFile read:
// whether it was kept or dropped and why (with the line and column of a JSON syntax error, or
// the JSON Pointer of a missing or mistyped member), which documents it delivered, and what was
// read leniently (an enumeration text that names no value, a support package whose key an
// earlier document of the same file holds).
//
// The reasons come from the parsing code itself, so a checker that uses them cannot disagree
// with the loaders about what is valid. Results are the same with or without a scope; nothing
// is logged either way. Without a scope the library records nothing: the cost is reading one
// thread-local pointer when a loading call starts.

#include <reference/docparser/Export.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace reference::docparser {

namespace diagnostics {
class Recorder; ///< defined inside the library
}

/// Where a recorded file came from.
enum class DiagnosticSource : std::uint8_t {
    File,         ///< a loose lookup file in the lookup folder
    PackageEntry, ///< a lookup file inside a zip package (`path` is the package, `entry` the file)
    Package,      ///< a zip package as a whole: opening it and listing its entries
    PageFile,     ///< a reference page file
    Text,         ///< JSON read by the field-access tools outside a loading operation
};

/// Why a file counts as absent. None: it was read.
enum class DropReason : std::uint8_t {
    None,
    Missing,     ///< no file at that path (for page files usually a translation that does not exist)
    NoData,      ///< the file or package entry is empty
    Unreadable,  ///< a package that cannot be opened or listed, a file or entry that cannot be read
    SyntaxError, ///< not strict JSON: comments, trailing commas, invalid UTF-8, nesting deeper than 32, ...
    MissingKey,  ///< a required member is absent
    WrongKind,   ///< a member or array element has the wrong JSON kind
    Other,       ///< anything else, for example memory exhausted
};

/// Things read leniently; the file is still kept.
enum class WarningKind : std::uint8_t {
    DocumentKeyTaken, ///< a support package document whose key an earlier document of the file holds: dropped
    UnknownEnumText,  ///< an enumeration text that names no value: the enumeration's default is used
};

struct ParseWarning {
    WarningKind kind;
    std::string jsonPath; ///< JSON Pointer of the member or document concerned
    std::string text;     ///< the unknown text, or the key that was already taken (UTF-8)

    bool operator==(const ParseWarning&) const = default;
};

/// What happened to one file.
struct FileDiagnostic {
    DiagnosticSource source = DiagnosticSource::Text;
    std::u16string path;        ///< the file, or for Package and PackageEntry the package
    std::u16string entry;       ///< the entry's full name inside the package (PackageEntry only)
    std::u16string productName; ///< the product name the loader gave the file (the file name's stem)
    bool localeVariant = false; ///< whether the lookup loader read it as a non-English variant (pages: false)

    DropReason dropReason = DropReason::None;
    std::string message;  ///< the reason in words (UTF-8); empty for a file that was read
    std::string jsonPath; ///< MissingKey, WrongKind: JSON Pointer of the member, e.g. "/refItems/17/href"
    /// SyntaxError: where the JSON parser stopped (0 otherwise). The offset counts bytes from 0;
    /// line and column count from 1, the column in characters (a UTF-8 sequence counts one).
    std::uint64_t offset = 0;
    std::uint64_t line = 0;
    std::uint64_t column = 0;

    std::vector<std::u16string> documentKeys; ///< keys of the documents the file delivered, in key order
    std::vector<ParseWarning> warnings;

    bool dropped() const noexcept { return dropReason != DropReason::None; }
    bool operator==(const FileDiagnostic&) const = default;
};

/// Records, while it lives, what the loading operations called on this thread do with each file.
/// Scopes nest: an inner scope takes the records until it ends. A scope must end on the thread
/// that made it; it sees nothing of what other threads read.
class REFDOC_API ParseDiagnosticsScope {
public:
    ParseDiagnosticsScope();
    ~ParseDiagnosticsScope();
    ParseDiagnosticsScope(const ParseDiagnosticsScope&) = delete;
    ParseDiagnosticsScope& operator=(const ParseDiagnosticsScope&) = delete;

    /// The files recorded so far, in the order in which they were read.
    const std::vector<FileDiagnostic>& files() const noexcept;
    /// Hands the records over and starts a fresh list.
    std::vector<FileDiagnostic> takeFiles() noexcept;

private:
    std::unique_ptr<diagnostics::Recorder> recorder_;
    diagnostics::Recorder* previous_;
};

/// Short lower-case names ("syntax error", "package entry", ...), for reports.
REFDOC_API std::string_view toString(DiagnosticSource source) noexcept;
REFDOC_API std::string_view toString(DropReason reason) noexcept;
REFDOC_API std::string_view toString(WarningKind kind) noexcept;

} // namespace reference::docparser
