// refdoc check: reads every lookup and page file under a documentation root through the
// library's own loading operations, with a ParseDiagnosticsScope recording what happens to each
// file, and reports every file the library drops with its exact reason, plus what it reads
// only leniently, grouped by kind. Exit status 1 when a file is dropped (with --strict, also
// when there is a warning).

#include "CheckReport.hpp"
#include "Commands.hpp"
#include "Coverage.hpp"
#include "CrossReferences.hpp"
#include "Host.hpp"
#include "Json.hpp"
#include "Text.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include <doclanguage/DocLanguage.hpp>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <system_error>
#include <tuple>

namespace refdoc::tool {
namespace {

using reference::docparser::DiagnosticSource;
using reference::docparser::DocResourceParser;
using reference::docparser::DropReason;
using reference::docparser::FileDiagnostic;
using reference::docparser::ParseDiagnosticsScope;
using reference::docparser::WarningKind;

using Identity = std::tuple<DiagnosticSource, std::u16string, std::u16string>;

Identity identityOf(const FileDiagnostic& file) { return {file.source, file.path, file.entry}; }

// Adds what one loading call recorded; a file read again by a later call (the English files
// are read with every language) is kept once. `variants` are the page files that are
// translations into the current language.
void addRecords(Report& report, std::set<Identity>& seen, DataKind kind, std::vector<FileDiagnostic> records,
                const std::set<std::u16string>& variants = {}) {
    for (auto& record : records) {
        if (record.dropReason == DropReason::Missing) {
            continue; // a translation that does not exist: the English pages stand alone
        }
        if (kind == DataKind::Page && variants.count(record.path) != 0) {
            record.localeVariant = true;
        }
        if (seen.insert(identityOf(record)).second) {
            report.files.push_back(CheckedFile{kind, std::move(record), {}});
        }
    }
}

std::string relative(const std::u16string& path, const std::filesystem::path& root) {
    const std::string full = toUtf8(path);
    const std::string prefix = root.string() + "/";
    return full.rfind(prefix, 0) == 0 ? full.substr(prefix.size()) : full;
}

} // namespace

std::string fileLabel(const FileDiagnostic& file, const std::filesystem::path& root) {
    std::string label = relative(file.path, root);
    if (file.source == DiagnosticSource::PackageEntry) {
        label += ": " + toUtf8(file.entry);
    }
    return label;
}

namespace {

// The package of an entry, the folder of a file: where a file's siblings are.
std::u16string containerOf(const FileDiagnostic& file) {
    if (file.source == DiagnosticSource::PackageEntry) {
        return file.path;
    }
    return file.path.substr(0, file.path.rfind(u'/'));
}

// Files read as English whose names say they are a translation into a language that is not
// supported: the library takes the whole stem as the product name and never lets their texts
// win over English.
void addLocaleWarnings(Report& report, const HostSettings& settings) {
    std::map<std::u16string, std::set<std::string>> stemsByContainer;
    for (const auto& file : report.files) {
        if (file.diagnostic.source != DiagnosticSource::Package) {
            stemsByContainer[containerOf(file.diagnostic)].insert(toUtf8(file.diagnostic.productName));
        }
    }
    for (auto& file : report.files) {
        const FileDiagnostic& d = file.diagnostic;
        if (d.source == DiagnosticSource::Package || d.localeVariant || d.dropped()) {
            continue;
        }
        const auto suffix = localeLikeSuffix(toUtf8(d.productName));
        if (!suffix) {
            continue;
        }
        const auto& [base, code] = *suffix;
        if (std::find(settings.supportedLanguages.begin(), settings.supportedLanguages.end(), code) !=
            settings.supportedLanguages.end()) {
            continue;
        }
        const bool siblingExists = stemsByContainer[containerOf(d)].count(base) != 0;
        const bool sameKey =
            std::find(d.documentKeys.begin(), d.documentKeys.end(), toUtf16(base)) != d.documentKeys.end();
        if (!siblingExists && !sameKey) {
            continue;
        }
        file.nameWarnings.push_back(
            {"locale variant read as English",
             "the name ends in \"_" + code + "\", but \"" + code + "\" is not a supported language (" +
                 joinList(settings.supportedLanguages, ", ") + "): read as English data, never over English",
             "add " + code + " to the supported languages (--languages, or \"supportedLanguages\" in " + kHostFileName +
                 "), or rename the file if it is no translation of " + base});
    }
}

// Packages none of whose entries the library reads in any language.
void addUnusedPackageWarnings(Report& report) {
    std::set<std::u16string> packagesWithEntries;
    for (const auto& file : report.files) {
        if (file.diagnostic.source == DiagnosticSource::PackageEntry) {
            packagesWithEntries.insert(file.diagnostic.path);
        }
    }
    for (auto& file : report.files) {
        const FileDiagnostic& d = file.diagnostic;
        if (d.source == DiagnosticSource::Package && !d.dropped() && packagesWithEntries.count(d.path) == 0) {
            file.nameWarnings.push_back(
                {"package never read",
                 d.localeVariant ? "no entry is read: a package named for a language is read only when that "
                                   "language is current, and then only an entry whose name ends in the same suffix"
                                 : "no entry is read: the package holds no .json entry"});
        }
    }
}

// The name with each byte that is not part of valid UTF-8 as \xHH.
std::string printableName(const std::string& name) {
    std::string out;
    for (std::size_t i = 0; i < name.size();) {
        std::size_t length = 1;
        const auto byte = static_cast<unsigned char>(name[i]);
        if (byte >= 0xC0) {
            length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
        }
        const std::string piece = name.substr(i, length);
        if (byte < 0x80 || (piece.size() == length && toUtf8(toUtf16(piece)) == piece)) {
            out += piece;
            i += length;
            continue;
        }
        static constexpr char kHex[] = "0123456789ABCDEF";
        out += "\\x";
        out += kHex[byte >> 4];
        out += kHex[byte & 0xF];
        ++i;
    }
    return out;
}

// Entries of a data folder that the library passes over; `accepts` tells the data files.
template <class Accepts>
void addIgnored(Report& report, const std::filesystem::path& folder, const std::filesystem::path& root,
                Accepts&& accepts) {
    std::error_code error;
    std::filesystem::directory_iterator entries(folder, error);
    if (error) {
        return;
    }
    for (const auto& entry : entries) {
        const std::string name = entry.path().filename().string();
        if (entry.is_directory(error)) {
            continue;
        }
        const std::string path = std::filesystem::relative(entry.path(), root, error).string();
        if (!accepts(name)) {
            report.ignored.push_back(path);
        } else if (toUtf8(toUtf16(name)) != name) {
            // The library's listing passes over such a name without a record.
            report.skipped.push_back({printableName(path),
                                      {kNameNotUtf8, "the library skips a data file whose name is not UTF-8",
                                       "rename the file with a UTF-8 name (its bytes here are shown as \\xHH)"}});
        }
    }
    std::sort(report.ignored.begin(), report.ignored.end());
}

bool hasExtension(const std::string& name, std::string_view extension) {
    const std::size_t dot = name.rfind('.');
    return dot != std::string::npos && std::string_view(name).substr(dot + 1) == extension;
}

} // namespace

PageFileRoles pageFileRoles(const std::filesystem::path& folder) {
    using Tools = DocResourceParser::ParsingTools;
    // The same enumeration, with the same settings, as the library's loads of lookup files.
    const std::u16string currentSuffix = Tools::kLocaleSeparator + Tools::getCurrentLocale();
    const auto [jsonFiles, zipFiles] =
        DocResourceParser::getAllProducts(toUtf16(folder.string()), Tools::getSupportedDocLocales(), currentSuffix);
    PageFileRoles roles;
    for (const auto& file : jsonFiles) {
        std::u16string name = file.getName();
        if (file.isNonEnglishLocale()) {
            // A variant of the current language: the loader finds it from its base name.
            name.resize(name.size() - currentSuffix.size());
            roles.variants.insert(file.getFullPath());
        }
        if (!name.empty()) {
            roles.names.insert(toUtf8(name));
        }
    }
    return roles;
}

std::size_t droppedCount(const std::vector<FileDiagnostic>& files) {
    return static_cast<std::size_t>(std::count_if(files.begin(), files.end(), [](const FileDiagnostic& file) {
        return file.dropped() && file.dropReason != DropReason::Missing;
    }));
}

std::string droppedLine(std::size_t dropped) {
    if (dropped == 0) {
        return "No lookup file was dropped.";
    }
    return std::to_string(dropped) + (dropped == 1 ? " lookup file was" : " lookup files were") +
           " dropped; 'refdoc check' says why.";
}

std::string dropText(const FileDiagnostic& file) {
    switch (file.dropReason) {
    case DropReason::SyntaxError:
        return "JSON syntax error at line " + std::to_string(file.line) + ", column " + std::to_string(file.column) +
               " (byte " + std::to_string(file.offset) + "): " + file.message;
    case DropReason::MissingKey:
    case DropReason::WrongKind:
        return file.jsonPath.empty() ? file.message : file.message + " at " + file.jsonPath;
    case DropReason::Unreadable:
        return "unreadable: " + file.message;
    default:
        return file.message;
    }
}

std::size_t warningCount(const CheckedFile& file) { return file.diagnostic.warnings.size() + file.nameWarnings.size(); }

std::vector<WarningItem> warningItems(const CheckedFile& file) {
    std::vector<WarningItem> items;
    std::map<std::string, std::size_t> enumTexts; // text → its item in `items`
    for (const auto& warning : file.diagnostic.warnings) {
        const std::string kind(toString(warning.kind));
        if (warning.kind == WarningKind::UnknownEnumText) {
            const auto [found, added] = enumTexts.try_emplace(warning.text, items.size());
            if (!added) {
                ++items[found->second].count;
                continue;
            }
        }
        items.push_back({kind, warning.jsonPath, warning.text, 1, kindFix(kind)});
    }
    for (const auto& warning : file.nameWarnings) {
        items.push_back({warning.kind, "", warning.text, 1, warning.fix.empty() ? kindFix(warning.kind) : warning.fix});
    }
    return items;
}

namespace {

std::string itemText(const WarningItem& item) {
    if (item.kind == toString(WarningKind::UnknownEnumText)) {
        return "\"" + item.text + "\"" +
               (item.count == 1 ? " at " + item.jsonPath
                                : " ×" + std::to_string(item.count) + " (first at " + item.jsonPath + ")");
    }
    if (item.kind == toString(WarningKind::DocumentKeyTaken)) {
        return "key \"" + item.text + "\" at " + item.jsonPath;
    }
    return item.text;
}

std::string kindNote(const std::string& kind) {
    if (kind == toString(WarningKind::UnknownEnumText)) {
        return "enumeration texts that name no value: the default value is used";
    }
    if (kind == toString(WarningKind::DocumentKeyTaken)) {
        return "support packages dropped: an earlier document of the same file has their key";
    }
    return {};
}

} // namespace

std::vector<WarningGroup> groupWarnings(const Report& report, const std::filesystem::path& root) {
    std::map<std::string, WarningGroup> groups;
    // A file's warnings of one kind: their texts, and their fix when they all have the same.
    struct Texts {
        std::vector<std::string> texts;
        std::set<std::string> fixes;
    };
    const auto addLine = [&](const std::string& label, const std::string& kind, const Texts& texts) {
        const std::string& fix = *texts.fixes.begin();
        groups[kind].lines.push_back({label, texts.texts, texts.fixes.size() == 1 && fix != kindFix(kind) ? fix : ""});
    };
    for (const auto& file : report.files) {
        if (warningCount(file) == 0) {
            continue;
        }
        std::map<std::string, Texts> texts; // kind → the file's warnings of it
        for (const auto& item : warningItems(file)) {
            WarningGroup& group = groups[item.kind];
            group.count += item.count;
            texts[item.kind].texts.push_back(itemText(item));
            texts[item.kind].fixes.insert(item.fix);
        }
        const std::string label = fileLabel(file.diagnostic, root);
        for (const auto& [kind, list] : texts) {
            addLine(label, kind, list);
        }
    }
    for (const auto& skipped : report.skipped) {
        ++groups[skipped.warning.kind].count;
        addLine(skipped.file, skipped.warning.kind, {{skipped.warning.text}, {skipped.warning.fix}});
    }
    std::vector<WarningGroup> out;
    for (auto& [kind, group] : groups) {
        group.kind = kind;
        group.note = kindNote(kind);
        group.fix = kindFix(kind);
        out.push_back(std::move(group));
    }
    return out;
}

namespace {

constexpr std::size_t kFirstFew = 5;

std::string counted(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

// The first few lines of a long list, or all of them when `verbose`.
template <class List, class Print>
void printList(std::ostream& out, const List& list, bool verbose, std::string_view indent, Print&& print) {
    const std::size_t shown = verbose ? list.size() : std::min(list.size(), kFirstFew);
    for (std::size_t i = 0; i < shown; ++i) {
        print(list[i]);
    }
    if (shown < list.size()) {
        out << indent << "… and " << list.size() - shown << " more (--verbose lists them all)\n";
    }
}

// A file's warnings of one kind: the first few texts (an unknown enumeration text each) unless
// `verbose`.
std::string lineText(const WarningGroup::Line& line, bool verbose) {
    if (verbose || line.texts.size() <= kFirstFew) {
        return joinList(line.texts, "; ");
    }
    const std::vector<std::string> first(line.texts.begin(), line.texts.begin() + kFirstFew);
    return joinList(first, "; ") + "; … " + std::to_string(line.texts.size() - kFirstFew) + " more";
}

struct TextOptions {
    bool quiet = false;
    bool verbose = false;
};

void writeText(std::ostream& out, const Report& report, const HostSettings& settings, const TextOptions& options) {
    out << "Checking " << settings.root.string() << (settings.sampleRoot ? " (bundled sample)" : "")
        << "\nLanguages read: " << joinList(settings.supportedLanguages, ", ") << '\n';
    // Every file with its state; with --quiet only the dropped ones, as the warnings are
    // listed by kind below.
    for (const DataKind kind : {DataKind::Lookup, DataKind::Page}) {
        out << '\n' << (kind == DataKind::Lookup ? "Lookup files" : "Page files") << '\n';
        std::size_t shown = 0;
        for (const auto& file : report.files) {
            if (file.kind != kind) {
                continue;
            }
            const FileDiagnostic& d = file.diagnostic;
            const std::size_t warnings = warningCount(file);
            if (options.quiet && !d.dropped()) {
                continue;
            }
            ++shown;
            out << (d.dropped()     ? "  DROPPED  "
                    : warnings != 0 ? "  warning  "
                                    : "  ok       ")
                << fileLabel(d, settings.root);
            if (d.source == DiagnosticSource::Package) {
                out << "  (package)";
            } else if (d.localeVariant) {
                out << "  (locale variant)";
            }
            if (!d.documentKeys.empty()) {
                std::vector<std::string> keys;
                for (const auto& key : d.documentKeys) {
                    keys.push_back(toUtf8(key));
                }
                out << "  → " << joinList(keys, ", ");
            }
            if (warnings != 0) {
                out << "  [" << counted(warnings, "warning", "warnings") << ']';
            }
            out << '\n';
            if (d.dropped()) {
                out << "           " << dropText(d) << '\n';
                out << "           fix: " << dropFix(d) << '\n';
            }
        }
        if (shown == 0) {
            out << (options.quiet ? "  none dropped\n" : "  none\n");
        }
    }
    const std::vector<WarningGroup> groups = groupWarnings(report, settings.root);
    if (!groups.empty()) {
        out << "\nWarnings by kind\n";
        for (const auto& group : groups) {
            out << "  " << group.kind << ": " << counted(group.count, "warning", "warnings") << " in "
                << counted(group.lines.size(), "file", "files");
            if (!group.note.empty()) {
                out << " (" << group.note << ')';
            }
            out << '\n';
            bool generalFix = false;
            printList(out, group.lines, options.verbose, "    ", [&](const WarningGroup::Line& line) {
                out << "    " << line.file << ": " << lineText(line, options.verbose) << '\n';
                if (!line.fix.empty()) {
                    out << "      fix: " << line.fix << '\n';
                }
                generalFix = generalFix || line.fix.empty();
            });
            if (generalFix && !group.fix.empty()) {
                out << "    fix: " << group.fix << '\n';
            }
        }
    }
    if (!report.ignored.empty()) {
        out << "\nNot read (only .json and .zip lookup files and .json page files are data): "
            << counted(report.ignored.size(), "file", "files") << '\n';
        printList(out, report.ignored, options.verbose, "  ",
                  [&](const std::string& path) { out << "  " << path << '\n'; });
    }
}

} // namespace

Report buildReport(const HostSettings& settings, const LoadObserver* observer) {
    auto& languageService = doclanguage::DocLanguage::getInstance();
    const LanguageRunner runIn = [&](const std::string& language, const std::function<void()>& load) {
        languageService.setDocLanguage(toUtf16(language));
        load();
    };
    Report report = buildReport(settings, runIn, observer);
    languageService.setDocLanguage(toUtf16(settings.language));
    return report;
}

Report buildReport(const HostSettings& settings, const LanguageRunner& runIn, const LoadObserver* observer) {
    // Each run reads the English files and the current language's variants, so one run per
    // supported language reads every file there is.
    std::vector<std::string> languages;
    for (const auto& code : settings.supportedLanguages) {
        if (std::find(languages.begin(), languages.end(), code) == languages.end()) {
            languages.push_back(code);
        }
    }
    if (languages.empty()) {
        languages.push_back("en");
    }

    Report report;
    report.languages = languages;
    std::set<Identity> seen;
    const auto roots = DocResourceParser::getReferenceRoots();
    const std::filesystem::path pageFolder = toUtf8(roots->referenceFolder);
    // The cross-references are checked on what one run delivers: English alone when it is a
    // supported language, else the first language's data merged over English.
    const bool english = std::find(languages.begin(), languages.end(), "en") != languages.end();
    const std::string checked = english ? std::string("en") : languages.front();
    LoadedData data;
    for (const auto& language : languages) {
        const bool keep = language == checked;
        runIn(language, [&] {
            {
                ParseDiagnosticsScope scope;
                auto lookup =
                    std::make_shared<const DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap>>(
                        DocResourceParser::getResourceLookupFiles());
                std::vector<FileDiagnostic> records = scope.takeFiles();
                if (keep) {
                    data.lookupRecords = records;
                    data.lookup = lookup;
                }
                addRecords(report, seen, DataKind::Lookup, std::move(records));
                if (observer != nullptr && observer->lookup) {
                    observer->lookup(language, std::move(lookup));
                }
            }
            const PageFileRoles roles = pageFileRoles(pageFolder);
            for (const auto& name : roles.names) {
                ParseDiagnosticsScope scope;
                auto pages = std::make_shared<const DocResourceParser::RefItemFileMap>(
                    DocResourceParser::getResourceFile(toUtf16(name)));
                std::vector<FileDiagnostic> records = scope.takeFiles();
                if (keep) {
                    data.pageRecords[name] = records;
                    data.pages[name] = pages;
                }
                addRecords(report, seen, DataKind::Page, std::move(records), roles.variants);
                if (observer != nullptr && observer->pages) {
                    observer->pages(language, name, std::move(pages));
                }
            }
        });
    }

    std::stable_sort(report.files.begin(), report.files.end(), [](const CheckedFile& a, const CheckedFile& b) {
        return std::tie(a.kind, a.diagnostic.path, a.diagnostic.entry) <
               std::tie(b.kind, b.diagnostic.path, b.diagnostic.entry);
    });
    addLocaleWarnings(report, settings);
    addUnusedPackageWarnings(report);
    addCrossReferenceWarnings(report, data, settings.root);
    // The page loader reads NAME.json and its translations only: a package there is not data.
    addIgnored(report, toUtf8(roots->lookupFolder), settings.root,
               [](const std::string& name) { return DocResourceParser::isValidFilename(name); });
    addIgnored(report, pageFolder, settings.root, [](const std::string& name) {
        return DocResourceParser::isValidFilename(name) && hasExtension(name, "json");
    });

    for (const auto& file : report.files) {
        report.dropped += file.diagnostic.dropped() ? 1 : 0;
        report.warnings += warningCount(file);
    }
    report.warnings += report.skipped.size();
    return report;
}

namespace {

struct Options {
    HostOptions host;
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    bool strict = false;
    bool coverage = false;
};

int run(const Options& options, std::ostream& out) {
    const HostSettings settings = resolveHostSettings(options.host);
    applyHostSettings(settings);
    Report report;
    std::optional<Coverage> coverage;
    if (options.coverage) {
        std::tie(report, coverage) = buildReportWithCoverage(settings);
    } else {
        report = buildReport(settings);
    }
    const std::size_t dropped = report.dropped;
    const std::size_t warnings = report.warnings;
    const std::size_t read = report.files.size() - dropped;
    const std::vector<WarningGroup> groups = groupWarnings(report, settings.root);

    if (options.json) {
        boost::json::array files;
        for (const auto& file : report.files) {
            boost::json::value entry = toJson(file.diagnostic, settings.root);
            auto& object = entry.as_object();
            object["kind"] = file.kind == DataKind::Lookup ? "lookup" : "page";
            if (file.diagnostic.dropped()) {
                object["fix"] = dropFix(file.diagnostic);
            }
            boost::json::array warningArray;
            for (const auto& item : warningItems(file)) {
                warningArray.push_back(
                    boost::json::object{{"kind", item.kind},
                                        {"jsonPath", item.jsonPath.empty() ? boost::json::value(nullptr)
                                                                           : boost::json::value(item.jsonPath)},
                                        {"text", item.text},
                                        {"count", item.count},
                                        {"fix", item.fix}});
            }
            object["warnings"] = std::move(warningArray);
            files.push_back(std::move(entry));
        }
        boost::json::array languageArray;
        for (const auto& language : report.languages) {
            languageArray.push_back(boost::json::value(language));
        }
        boost::json::array ignored;
        for (const auto& path : report.ignored) {
            ignored.push_back(boost::json::value(path));
        }
        boost::json::array skipped;
        for (const auto& file : report.skipped) {
            skipped.push_back(boost::json::object{{"path", file.file},
                                                  {"kind", file.warning.kind},
                                                  {"text", file.warning.text},
                                                  {"fix", file.warning.fix}});
        }
        boost::json::object byKind;
        for (const auto& group : groups) {
            byKind[group.kind] =
                boost::json::object{{"warnings", group.count}, {"files", group.lines.size()}, {"fix", group.fix}};
        }
        boost::json::object document{
            {"root", settings.root.string()},
            {"languages", std::move(languageArray)},
            {"files", std::move(files)},
            {"ignored", std::move(ignored)},
            {"skipped", std::move(skipped)},
            {"summary", boost::json::object{{"read", read},
                                            {"dropped", dropped},
                                            {"warnings", warnings},
                                            {"warningsByKind", std::move(byKind)},
                                            {"ignored", report.ignored.size()}}},
        };
        if (coverage) {
            document["coverage"] = coverageJson(*coverage);
        }
        writeJson(out, document);
    } else {
        writeText(out, report, settings, {options.quiet, options.verbose});
        out << "\nSummary: " << counted(read, "file", "files") << " read, " << dropped << " dropped, "
            << counted(warnings, "warning", "warnings");
        if (!groups.empty()) {
            std::vector<std::string> kinds;
            for (const auto& group : groups) {
                kinds.push_back(group.kind + ": " + std::to_string(group.count));
            }
            out << " (" << joinList(kinds, ", ") << ')';
        }
        out << ", " << report.ignored.size() << " not read\n";
        if (coverage) {
            writeCoverageText(out, *coverage);
        }
    }
    const bool failed = dropped != 0 || (options.strict && warnings != 0);
    return failed ? kExitProblem : kExitOk;
}

} // namespace

Command checkCommand() {
    Command command;
    command.name = "check";
    command.summary = "read every lookup and page file and report each one the library would drop";
    command.help = "Usage: refdoc check [options]\n"
                   "\n"
                   "Reads every lookup file (loose and inside zip packages) and every page file under the\n"
                   "documentation root with the library's own loading code, once with each supported\n"
                   "language current, and reports every file the library drops with the exact reason:\n"
                   "the JSON syntax error with its line and column, the missing or mistyped member with\n"
                   "its JSON Pointer (e.g. /supportPackages/1/refItems/17/href), the package or entry that\n"
                   "cannot be read. It also warns about what is read only leniently: support-package keys\n"
                   "already taken in the same file, enumeration texts that fall back to their defaults,\n"
                   "files named for an unsupported language that are read as English, packages of which\n"
                   "no entry is read, and files in the data folders that are not data files. With\n"
                   "English current it checks cross-references: entries that link to no page, pages no\n"
                   "entry links to, see-also links that lead nowhere, entries whose name or type is not\n"
                   "their page's, and product keys held by several files. Each drop and each kind of\n"
                   "warning ends with a 'fix:' line saying what to change.\n"
                   "\n"
                   "Dropped files are listed with their reasons; warnings are grouped by kind, with their\n"
                   "count and the first five files (an unknown enumeration text once per file and text,\n"
                   "with how many items hold it, the first five texts of a file); a summary line ends\n"
                   "the report.\n"
                   "\n"
                   "Exit status: 0 when no file is dropped, 1 when one is (or, with --strict, when there\n"
                   "is a warning), 2 for a usage error.\n"
                   "\n"
                   "Options:\n"
                   "  --quiet                  list only the dropped files, not every file read\n"
                   "  --verbose                list every file and text of each kind of warning, not the\n"
                   "                           first five\n"
                   "  --strict                 exit status 1 on warnings too\n"
                   "  --coverage               after the report (or as \"coverage\" in the JSON), the\n"
                   "                           translation coverage of each language but English: per\n"
                   "                           product the lookup entries and pages it has of its own and\n"
                   "                           those read in English, and its pages that lack sections\n"
                   "                           of their English page; the exit status is the check's\n"
                   "  --json                   print the report as JSON\n" +
                   hostOptionsHelp();
    command.define = [](CLI::App& app) -> Runner {
        auto options = std::make_shared<Options>();
        addHostOptions(app, options->host);
        addFlag(app, "--json", options->json);
        addFlag(app, "--quiet", options->quiet);
        addFlag(app, "--verbose", options->verbose);
        addFlag(app, "--strict", options->strict);
        addFlag(app, "--coverage", options->coverage);
        return [options](std::ostream& out, std::ostream&) { return run(*options, out); };
    };
    return command;
}

} // namespace refdoc::tool
