#pragma once

// What `refdoc check` finds under a documentation root: every lookup and page file read with
// each supported language current, what the library drops and why, and what it reads only
// leniently. `refdoc check` prints it; `refdoc serve` shows it as its problems view.

#include "Host.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace refdoc::tool {

enum class DataKind { Lookup, Page };

// A warning of the tool's own: about how the library reads a file's name, or about what the
// file's data links to (see CrossReferences.hpp). `fix` says what to change when it names more
// than the kind's fix (kindFix) does.
struct NameWarning {
    std::string kind;
    std::string text;
    std::string fix = {};
};

// A data file the library skips without reading it, so without a record of its own.
struct SkippedFile {
    std::string file; // relative to the root
    NameWarning warning;
};

struct CheckedFile {
    DataKind kind;
    reference::docparser::FileDiagnostic diagnostic;
    std::vector<NameWarning> nameWarnings;
};

struct Report {
    std::vector<std::string> languages; // the languages the files were read with
    std::vector<CheckedFile> files;
    std::vector<std::string> ignored; // files in the data folders that the library never reads
    std::vector<SkippedFile> skipped; // data files it passes over
    std::size_t dropped = 0;
    std::size_t warnings = 0;
};

// What each language's loads delivered, handed over as soon as a load returns, for reports made
// from the data itself (the translation coverage). Either may be empty. The data is shared with
// the report's own checks, so keeping it costs no copy.
struct LoadObserver {
    std::function<void(const std::string& language,
                       std::shared_ptr<const reference::docparser::DocResourceParser::ParsingResults<
                           reference::docparser::DocResourceParser::LookupResourceMap>>)>
        lookup;
    std::function<void(const std::string& language, const std::string& name,
                       std::shared_ptr<const reference::docparser::DocResourceParser::RefItemFileMap>)>
        pages;
};

// Reads every file under the root of `settings`, which applyHostSettings has made current. It
// switches the documentation language while it runs and sets it back to settings.language, so
// no other thread may load data meanwhile.
Report buildReport(const HostSettings& settings, const LoadObserver* observer = nullptr);

// Runs `load` with `language` as the current documentation language.
using LanguageRunner = std::function<void(const std::string& language, const std::function<void()>& load)>;
// The same report, with each language's loads run through `runIn`, for callers that share the
// language setting with other threads.
Report buildReport(const HostSettings& settings, const LanguageRunner& runIn, const LoadObserver* observer = nullptr);

// The page files of `folder` as the library's enumeration of a data folder sorts them with the
// current language and supported languages: the names the page loader takes (each base file's
// stem, each current-language variant's stem without its suffix) and the variants' paths.
// Variants of the other supported languages are passed over, as the library passes them over.
struct PageFileRoles {
    std::set<std::string> names;
    std::set<std::u16string> variants;
};
PageFileRoles pageFileRoles(const std::filesystem::path& folder);

// How many of the files a load recorded were dropped (a translation that does not exist is not
// counted), and the closing line of `refdoc lookup` and `refdoc find` that says so.
std::size_t droppedCount(const std::vector<reference::docparser::FileDiagnostic>& files);
std::string droppedLine(std::size_t dropped);

// The file's path relative to the root, with ": ENTRY" for a package entry.
std::string fileLabel(const reference::docparser::FileDiagnostic& file, const std::filesystem::path& root);
// Why a dropped file was dropped, in words.
std::string dropText(const reference::docparser::FileDiagnostic& file);
// What to change so that the library reads a dropped file (FixHints.cpp).
std::string dropFix(const reference::docparser::FileDiagnostic& file);
// What to change for a warning of `kind`, in general (FixHints.cpp).
std::string kindFix(const std::string& kind);
std::size_t warningCount(const CheckedFile& file);

// One of a file's warnings as the reports give it: an unknown enumeration text once per text,
// with how many items hold it and the JSON Pointer of the first; every other warning once.
struct WarningItem {
    std::string kind;
    std::string jsonPath; // "" for a warning about the file's name
    std::string text;
    std::size_t count = 1;
    std::string fix = {}; // the warning's own fix, or else its kind's
};
std::vector<WarningItem> warningItems(const CheckedFile& file);

// The report's warnings of one kind, one line per file that has any.
struct WarningGroup {
    struct Line {
        std::string file;               // fileLabel
        std::vector<std::string> texts; // the file's warnings of this kind, in words
        std::string fix = {};           // what to change in this file, when it says more than the kind's
    };
    std::string kind;
    std::string note;      // what the kind means for the data, or ""
    std::string fix;       // what to change, for every line without a fix of its own
    std::size_t count = 0; // warnings (items, for unknown enumeration texts)
    std::vector<Line> lines;
};
// The warnings grouped by kind, the kinds in alphabetical order, the files in the report's.
std::vector<WarningGroup> groupWarnings(const Report& report, const std::filesystem::path& root);

} // namespace refdoc::tool
