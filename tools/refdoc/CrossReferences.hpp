#pragma once

// The cross-reference checks of `refdoc check`: whether what the data files name exists. They
// run on what one language's loads of the report delivered (English, or the first supported
// language when English is not one), so nothing is read twice:
//   entry links to no page        a lookup entry whose link is no page of its product's page file
//   page without entry            a page of a product's page file that no entry of the product links to
//   broken see-also link          a see-also link, not to an outside URL, that is no page of the root
//   entry and page disagree       an entry whose name or type is not that of an entity of its page
//   product key in several files  a product key that more than one lookup file, or page file, holds
// The warnings go to the files they are about, as the report's own kinds of warning.

#include "CheckReport.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace refdoc::tool {

inline constexpr const char* kEntryWithoutPage = "entry links to no page";
inline constexpr const char* kPageWithoutEntry = "page without entry";
inline constexpr const char* kBrokenSeeAlso = "broken see-also link";
inline constexpr const char* kEntryPageMismatch = "entry and page disagree";
inline constexpr const char* kKeyInSeveralFiles = "product key in several files";
inline constexpr const char* kNameNotUtf8 = "file name not UTF-8";

// What the loads of one language delivered.
struct LoadedData {
    std::shared_ptr<const reference::docparser::DocResourceParser::ParsingResults<
        reference::docparser::DocResourceParser::LookupResourceMap>>
        lookup;                                                      // never null once a load was kept
    std::vector<reference::docparser::FileDiagnostic> lookupRecords; // in the order they were read
    // By page file name.
    std::map<std::string, std::shared_ptr<const reference::docparser::DocResourceParser::RefItemFileMap>> pages;
    std::map<std::string, std::vector<reference::docparser::FileDiagnostic>> pageRecords; // by page file name
};

// Adds the cross-reference warnings to the files of `report` (sorted as buildReport sorts them).
void addCrossReferenceWarnings(Report& report, const LoadedData& data, const std::filesystem::path& root);

// Whether `link` names a page outside the documentation: it starts with a URL scheme
// ("https:", "mailto:", ...).
bool isExternalLink(const std::string& link);

} // namespace refdoc::tool
