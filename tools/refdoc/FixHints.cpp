// What to change, in one line, for each way a file is dropped and each kind of warning.

#include "CheckReport.hpp"
#include "CrossReferences.hpp"

#include <map>

namespace refdoc::tool {

using reference::docparser::DiagnosticSource;
using reference::docparser::DropReason;
using reference::docparser::FileDiagnostic;
using reference::docparser::WarningKind;

namespace {

// "/refItems/17/href" → "/refItems/17"; the top level for a member of the document itself.
std::string parentOf(const std::string& pointer) {
    const std::size_t slash = pointer.rfind('/');
    return slash == std::string::npos || slash == 0 ? std::string() : pointer.substr(0, slash);
}

std::string where(const std::string& pointer) { return pointer.empty() ? "at the top level" : "at " + pointer; }

} // namespace

std::string dropFix(const FileDiagnostic& file) {
    const bool inPackage = file.source == DiagnosticSource::PackageEntry;
    switch (file.dropReason) {
    case DropReason::None:
    case DropReason::Missing:
        return {};
    case DropReason::NoData:
        return inPackage ? "put the entry's JSON in it and rebuild the package, or leave the entry out"
                         : "write the file's JSON, or remove the empty file";
    case DropReason::Unreadable:
        return file.source == DiagnosticSource::Package
                   ? "replace the package with a zip archive that opens (zip -X, stored or deflated entries)"
               : inPackage ? "rebuild the package from the entry's source"
                           : "make the file readable (permissions, a file rather than a folder or a broken link)";
    case DropReason::SyntaxError:
        return "correct the JSON at line " + std::to_string(file.line) + ", column " + std::to_string(file.column) +
               ": strict JSON, UTF-8, no comments or trailing commas, nested at most 32 deep";
    case DropReason::MissingKey: {
        const std::size_t open = file.message.find('"');
        const std::string member =
            open == std::string::npos ? "member" : "member " + file.message.substr(open); // "\"href\""
        return "add the required " + member + " " + where(parentOf(file.jsonPath));
    }
    case DropReason::WrongKind: {
        // "expected a string, found an array" → "a string"
        const std::string expected = file.message.substr(0, file.message.find(','));
        const std::string kind = expected.rfind("expected ", 0) == 0 ? expected.substr(9) : "the documented kind";
        return "make the value " + where(file.jsonPath) + " " + kind;
    }
    case DropReason::Other:
        break;
    }
    return "correct what the message names and save the file as UTF-8 JSON";
}

std::string kindFix(const std::string& kind) {
    static const std::map<std::string, std::string> fixes{
        {std::string(toString(WarningKind::DocumentKeyTaken)),
         "give the support package a baseCode of its own, or remove the repeated document"},
        {std::string(toString(WarningKind::UnknownEnumText)),
         "use one of the texts the format defines (the JSON Schemas list them), or leave the member out"},
        {"locale variant read as English",
         "add the language to the supported languages (--languages, or \"supportedLanguages\" in refdoc-host.json), "
         "or rename the file"},
        {"package never read", "put .json entries in the package, each named for the package's language when it has "
                               "one, or remove the package"},
        {kEntryWithoutPage, "add the linked page to the product's page file, or correct the entry's href"},
        {kPageWithoutEntry, "add a lookup entry that links to the page, or remove the page"},
        {kBrokenSeeAlso, "link to the href of an existing page, add the page, or give the full URL of an outside page"},
        {kEntryPageMismatch, "make the entry's name and type those of an entity of its page, or correct the page"},
        {kKeyInSeveralFiles, "keep each product key in one file: remove the repeated product, or give it another "
                             "key (its helpFolder; a support package's baseCode)"},
        {kNameNotUtf8, "rename the file with a UTF-8 name"},
    };
    const auto found = fixes.find(kind);
    return found == fixes.end() ? std::string() : found->second;
}

} // namespace refdoc::tool
