#pragma once

// The two readings of a resource file side by side. The loaders read files with the streaming
// parser (records built from the JSON parser's events); the tree reading (parse into a
// boost::json tree, then walk it) defines the outcome the streaming one must reproduce exactly:
// the same files accepted with the same records in the same order, the same files refused with
// the same failure, and the same diagnostics recorded on the way. The differential fuzz targets
// and the parser equivalence test share this code.

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include <boost/system/error_code.hpp>

#include <string>
#include <vector>

namespace refdoc::fuzz {

using LookupMap = reference::docparser::DocResourceParser::LookupResourceMap;
using PageMap = reference::docparser::DocResourceParser::RefItemFileMap;

enum class Reading { Streaming, Tree };

// What one reading made of one text, and what a diagnostics scope recorded while it ran.
template <class Map>
struct ReadingOutcome {
    enum class Failure { None, SyntaxError, FormatError, Other };

    Failure failure = Failure::None;
    Map result;                            // Failure::None only
    boost::system::error_code syntaxError; // Failure::SyntaxError: the JSON parser's code
    std::string otherFailure;              // Failure::Other: the exception's type and message
    std::vector<reference::docparser::FileDiagnostic> diagnostics;
};

using LookupOutcome = ReadingOutcome<LookupMap>;
using PageOutcome = ReadingOutcome<PageMap>;

LookupOutcome readLookupFile(const std::string& text, Reading reading);
PageOutcome readPageFile(const std::string& text, Reading reading, const PageMap* replacement = nullptr);

// How the warnings of one diagnostic record must agree. The tree reading lists them in the order
// in which it reads members (its own key order within an object, not the text's), so a reader
// that meets them in text order lists the same warnings in another order when an object's keys
// come in an unusual order. Any: the same warnings, each as often; Same: also in the same order.
enum class WarningOrder { Any, Same };

// "" when the outcomes agree; otherwise where they first differ, then both outcomes.
std::string describeDifference(const LookupOutcome& streaming, const LookupOutcome& tree,
                               WarningOrder order = WarningOrder::Any);
std::string describeDifference(const PageOutcome& streaming, const PageOutcome& tree,
                               WarningOrder order = WarningOrder::Any);

// Both readings of the text; "" when they agree, else the difference as above.
std::string lookupReadingsDiffer(const std::string& text, WarningOrder order = WarningOrder::Any);
std::string pageReadingsDiffer(const std::string& text, const PageMap* replacement = nullptr,
                               WarningOrder order = WarningOrder::Any);

// A replacement that covers only part of `pages`: the first, third, ... document (in key order)
// with the first, third, ... page of each (in href order), so that one parse builds some pages
// of a document and only checks others.
PageMap thinnedReplacement(const PageMap& pages);

} // namespace refdoc::fuzz
