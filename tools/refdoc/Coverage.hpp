#pragma once

// How far the translations of a documentation root go, for translators: per language other than
// English and per product key, how many lookup entries and pages the language's data has of its
// own and how many are read in English, and which translated pages lack sections of their
// English page. `refdoc check --coverage` prints it; `refdoc serve` shows it as /coverage.
//
// It is made from the loads `refdoc check` does anyway: the English load and each language's
// load, English merged with that language's variants, compared per product key and per name
// (lookup entries) or link (pages). An entry or page counts as translated when the language's
// load gives it differently from English: a variant's entry identical to the English one reads
// the same as English and counts as English.

#include "CheckReport.hpp"
#include "Host.hpp"

#include <boost/json/value.hpp>

#include <cstddef>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace refdoc::tool {

struct CoverageCounts {
    std::size_t total = 0;          // English entries or pages
    std::size_t localized = 0;      // of those, the ones the language has of its own
    std::size_t fallback = 0;       // of those, the ones read in English
    std::size_t onlyTranslated = 0; // the language's entries or pages that English does not have

    void add(const CoverageCounts& other);
    bool operator==(const CoverageCounts&) const = default;
};

// A translated page that lacks sections its English page has.
struct SectionGap {
    std::string href;
    std::vector<std::string> sectionIds;    // "syntax", "examples", ...
    std::vector<std::string> sectionTitles; // "Syntax", "Examples", ...
};

struct ProductCoverage {
    std::string key;
    std::string productName; // the English name, or the translation's when English has none
    CoverageCounts entries;
    CoverageCounts pages;
    std::vector<SectionGap> lacking; // by link
};

struct LanguageCoverage {
    std::string language;
    std::vector<ProductCoverage> products; // by key
    CoverageCounts entries;                // all products together
    CoverageCounts pages;
    std::size_t lackingPages = 0;
};

struct Coverage {
    std::vector<LanguageCoverage> languages; // in the order of the supported languages
};

// Collects what the loads deliver, English and the other languages in any order, and compares
// each language with English.
class CoverageBuilder {
public:
    using LookupResults = reference::docparser::DocResourceParser::ParsingResults<
        reference::docparser::DocResourceParser::LookupResourceMap>;
    using PageFiles = reference::docparser::DocResourceParser::RefItemFileMap;

    // The observer for buildReport that hands every load to this builder.
    LoadObserver observer();
    void addLookup(const std::string& language, std::shared_ptr<const LookupResults> results);
    void addPages(const std::string& language, const std::string& name, std::shared_ptr<const PageFiles> files);

    bool hasEnglish() const { return englishLookup_ != nullptr; }
    // The coverage of `languages` (English among them is passed over). Call once.
    Coverage finish(const std::vector<std::string>& languages);

private:
    struct Pending {
        std::string language;
        std::string name; // "" for the lookup data
        std::shared_ptr<const LookupResults> lookup;
        std::shared_ptr<const PageFiles> pages;
    };
    void compareLookup(const std::string& language, const LookupResults& results);
    void comparePages(const std::string& language, const PageFiles& english, const PageFiles& translated);

    std::shared_ptr<const LookupResults> englishLookup_;
    std::map<std::string, std::shared_ptr<const PageFiles>> englishPages_; // by page file name
    std::vector<Pending> pending_;                                         // loads that came before the English ones
    std::map<std::string, std::map<std::string, ProductCoverage>> byLanguage_;
};

// The check report and, from the same loads, the translation coverage of every supported
// language but English. Loads English too when it is not a supported language. `runIn` as for
// buildReport; without it the documentation language of this process is switched.
std::pair<Report, Coverage> buildReportWithCoverage(const HostSettings& settings);
std::pair<Report, Coverage> buildReportWithCoverage(const HostSettings& settings, const LanguageRunner& runIn);

// The report as `refdoc check --coverage` prints it after the check report, and as JSON.
void writeCoverageText(std::ostream& out, const Coverage& coverage);
boost::json::value coverageJson(const Coverage& coverage);

} // namespace refdoc::tool
