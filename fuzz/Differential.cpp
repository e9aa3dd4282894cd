#include "Differential.hpp"

#include "docparser/parsing/LookupParser.hpp"
#include "docparser/parsing/RefItemFile.hpp"

#include <reference/docparser/DocParserException.hpp>

#include <boost/system/system_error.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>
#include <string_view>
#include <tuple>
#include <typeinfo>
#include <utility>

namespace refdoc::fuzz {
namespace {

using namespace reference::property;
using reference::docparser::DocParserException;
using reference::docparser::DocResource;
using reference::docparser::FileDiagnostic;
using reference::docparser::ParseDiagnosticsScope;
using reference::docparser::ParseWarning;

// ---- Printing: every text as printable ASCII, so that a report survives any terminal.

std::string hex4(unsigned value) {
    char buffer[8];
    std::snprintf(buffer, sizeof buffer, "%04X", value & 0xFFFFu);
    return buffer;
}

std::string show(std::u16string_view text) {
    std::string out = "\"";
    for (const char16_t unit : text) {
        if (unit >= 0x20 && unit < 0x7F && unit != u'"' && unit != u'\\') {
            out += static_cast<char>(unit);
        } else {
            out += "\\u" + hex4(unit);
        }
    }
    return out + '"';
}

std::string show(std::string_view bytes) {
    std::string out = "\"";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (value >= 0x20 && value < 0x7F && byte != '"' && byte != '\\') {
            out += byte;
        } else {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\x%02X", value);
            out += buffer;
        }
    }
    return out + '"';
}

std::string show(bool value) { return value ? "true" : "false"; }

template <class Enumeration>
std::string showEnum(typename Enumeration::Value value) {
    const std::string_view spelling = Enumeration::toString(value);
    return std::to_string(static_cast<long long>(value)) + (spelling.empty() ? "" : " (" + std::string(spelling) + ")");
}

std::string show(RefEntityType::Value value) { return showEnum<RefEntityType>(value); }
std::string show(FunctionType::Value value) { return showEnum<FunctionType>(value); }
std::string show(SyntaxType::Value value) { return showEnum<SyntaxType>(value); }
std::string show(DeprecationStatus::Value value) { return showEnum<DeprecationStatus>(value); }

std::string show(reference::docparser::WarningKind kind) { return std::string(reference::docparser::toString(kind)); }
std::string show(reference::docparser::DropReason reason) {
    return std::string(reference::docparser::toString(reason));
}
std::string show(reference::docparser::DiagnosticSource source) {
    return std::string(reference::docparser::toString(source));
}

// ---- The first difference between two values, with the path that leads to it.

class FirstDifference {
public:
    bool found() const noexcept { return !report_.empty(); }
    const std::string& report() const noexcept { return report_; }

    void note(const std::string& streaming, const std::string& tree) {
        if (!found()) {
            report_ = (path_.empty() ? std::string("(top)") : path_) + "\n  streaming: " + streaming +
                      "\n  tree:      " + tree;
        }
    }

    // Compares a and b below `step` of the current path, with `compareStep` when given.
    template <class A>
    void at(std::string_view step, const A& a, const A& b);
    template <class A, class Compare>
    void at(std::string_view step, const A& a, const A& b, Compare&& compareStep) {
        if (found()) {
            return;
        }
        const std::size_t length = path_.size();
        path_ += step;
        compareStep(*this, a, b);
        path_.resize(length);
    }

private:
    std::string path_;
    std::string report_;
};

template <class A>
void compare(FirstDifference& d, const A& a, const A& b) requires requires {
    show(a);
}
{
    if (!(a == b)) {
        d.note(show(a), show(b));
    }
}

void compare(FirstDifference& d, const std::u16string& a, const std::u16string& b) {
    if (a != b) {
        d.note(show(std::u16string_view(a)), show(std::u16string_view(b)));
    }
}

void compare(FirstDifference& d, const std::string& a, const std::string& b) {
    if (a != b) {
        d.note(show(std::string_view(a)), show(std::string_view(b)));
    }
}

void compare(FirstDifference& d, std::uint64_t a, std::uint64_t b) {
    if (a != b) {
        d.note(std::to_string(a), std::to_string(b));
    }
}

// The records, field by field (declared first: the containers below call them).
void compare(FirstDifference& d, const HeaderInfo& a, const HeaderInfo& b);
void compare(FirstDifference& d, const RefItemLookup& a, const RefItemLookup& b);
void compare(FirstDifference& d, const RefItem& a, const RefItem& b);
void compare(FirstDifference& d, const RefEntity& a, const RefEntity& b);
void compare(FirstDifference& d, const SyntaxGroup& a, const SyntaxGroup& b);
void compare(FirstDifference& d, const ObjectInfo& a, const ObjectInfo& b);
void compare(FirstDifference& d, const Input& a, const Input& b);
void compare(FirstDifference& d, const InputGroup& a, const InputGroup& b);
void compare(FirstDifference& d, const Output& a, const Output& b);
void compare(FirstDifference& d, const Parameter& a, const Parameter& b);
void compare(FirstDifference& d, const ClassProperty& a, const ClassProperty& b);
void compare(FirstDifference& d, const ClassPropertyGroup& a, const ClassPropertyGroup& b);
void compare(FirstDifference& d, const SeeAlso& a, const SeeAlso& b);
void compare(FirstDifference& d, const Example& a, const Example& b);
void compare(FirstDifference& d, const ParseWarning& a, const ParseWarning& b);
void compare(FirstDifference& d, const FileDiagnostic& a, const FileDiagnostic& b);
template <class T>
void compare(FirstDifference& d, const DocResource<T>& a, const DocResource<T>& b);

template <class T>
void compare(FirstDifference& d, const std::vector<T>& a, const std::vector<T>& b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common && !d.found(); ++i) {
        d.at("[" + std::to_string(i) + "]", a[i], b[i]);
    }
    if (a.size() != b.size()) {
        d.note(std::to_string(a.size()) + " elements", std::to_string(b.size()) + " elements");
    }
}

template <class T>
void compare(FirstDifference& d, const std::map<std::u16string, T>& a, const std::map<std::u16string, T>& b) {
    auto i = a.begin();
    auto j = b.begin();
    for (; i != a.end() && j != b.end() && !d.found(); ++i, ++j) {
        if (i->first != j->first) {
            d.note("key " + show(std::u16string_view(i->first)), "key " + show(std::u16string_view(j->first)));
            return;
        }
        d.at("[" + show(std::u16string_view(i->first)) + "]", i->second, j->second);
    }
    if (a.size() != b.size()) {
        d.note(std::to_string(a.size()) + " entries", std::to_string(b.size()) + " entries");
    }
}

template <class A>
void FirstDifference::at(std::string_view step, const A& a, const A& b) {
    at(step, a, b, [](FirstDifference& d, const A& x, const A& y) { compare(d, x, y); });
}

void compare(FirstDifference& d, const HeaderInfo& a, const HeaderInfo& b) {
    d.at(".productName", a.getProductName(), b.getProductName());
    d.at(".baseCode", a.getBaseCode(), b.getBaseCode());
    d.at(".helpFolder", a.getHelpFolder(), b.getHelpFolder());
    d.at(".helpLocation", a.getHelpLocation(), b.getHelpLocation());
}

template <class T>
void compare(FirstDifference& d, const DocResource<T>& a, const DocResource<T>& b) {
    d.at(".header", a.getHeader(), b.getHeader());
    d.at(".items", a.getItems(), b.getItems());
}

void compare(FirstDifference& d, const RefItemLookup& a, const RefItemLookup& b) {
    d.at(".name", a.getName(), b.getName());
    d.at(".entityType", a.getEntityType(), b.getEntityType());
    d.at(".purpose", a.getPurpose(), b.getPurpose());
    d.at(".deprecated", a.isDeprecated(), b.isDeprecated());
    d.at(".href", a.getHref(), b.getHref());
    d.at(".functionType", a.getFunctionType(), b.getFunctionType());
}

void compare(FirstDifference& d, const RefEntity& a, const RefEntity& b) {
    d.at(".type", a.getEntityType(), b.getEntityType());
    d.at(".name", a.getName(), b.getName());
    d.at(".functionType", a.getFunctionType(), b.getFunctionType());
}

void compare(FirstDifference& d, const SyntaxGroup& a, const SyntaxGroup& b) {
    d.at(".title", a.getTitle(), b.getTitle());
    d.at(".syntaxType", a.getSyntaxType(), b.getSyntaxType());
    d.at(".lines", a.getSyntaxLines(), b.getSyntaxLines());
}

void compare(FirstDifference& d, const ObjectInfo& a, const ObjectInfo& b) {
    d.at(".name", a.getName(), b.getName());
    d.at(".purpose", a.getPurpose(), b.getPurpose());
    d.at(".values", a.getValues(), b.getValues());
    d.at(".anchor", a.getAnchor(), b.getAnchor());
}

void compare(FirstDifference& d, const Input& a, const Input& b) {
    d.at(".info", a.getInfo(), b.getInfo());
    d.at(".syntaxType", a.getSyntaxType(), b.getSyntaxType());
    d.at(".defaultValue", a.getDefaultValue(), b.getDefaultValue());
    d.at(".isNameValuePair", a.isNameValuePair(), b.isNameValuePair());
}

void compare(FirstDifference& d, const InputGroup& a, const InputGroup& b) {
    d.at(".title", a.getTitle(), b.getTitle());
    d.at(".inputs", a.getInputs(), b.getInputs());
}

void compare(FirstDifference& d, const Output& a, const Output& b) {
    d.at(".info", a.getInfo(), b.getInfo());
    d.at(".syntaxType", a.getSyntaxType(), b.getSyntaxType());
}

void compare(FirstDifference& d, const Parameter& a, const Parameter& b) {
    d.at(".info", a.getInfo(), b.getInfo());
    d.at(".defaultValue", a.getDefaultValue(), b.getDefaultValue());
}

void compare(FirstDifference& d, const ClassProperty& a, const ClassProperty& b) {
    d.at(".info", a.getInfo(), b.getInfo());
    d.at(".defaultValue", a.getDefaultValue(), b.getDefaultValue());
}

void compare(FirstDifference& d, const ClassPropertyGroup& a, const ClassPropertyGroup& b) {
    d.at(".title", a.getTitle(), b.getTitle());
    d.at(".properties", a.getProperties(), b.getProperties());
}

void compare(FirstDifference& d, const SeeAlso& a, const SeeAlso& b) {
    d.at(".url", a.getUrl(), b.getUrl());
    d.at(".name", a.getName(), b.getName());
}

void compare(FirstDifference& d, const Example& a, const Example& b) {
    d.at(".url", a.getUrl(), b.getUrl());
    d.at(".openCommand", a.getOpenCommand(), b.getOpenCommand());
    d.at(".title", a.getTitle(), b.getTitle());
}

void compare(FirstDifference& d, const RefItem& a, const RefItem& b) {
    d.at(".href", a.getHref(), b.getHref());
    d.at(".entities", a.getEntities(), b.getEntities());
    d.at(".packageName", a.getPackageName(), b.getPackageName());
    d.at(".purpose", a.getPurpose(), b.getPurpose());
    d.at(".introduced", a.getIntroduced(), b.getIntroduced());
    d.at(".description", a.getDescription(), b.getDescription());
    d.at(".thumbnailFileRef", a.getThumbnailFileRef(), b.getThumbnailFileRef());
    d.at(".thumbnailAltText", a.getThumbnailAltText(), b.getThumbnailAltText());
    d.at(".deprecationStatus", a.getDeprecationStatus(), b.getDeprecationStatus());
    d.at(".syntaxGroups", a.getSyntaxGroups(), b.getSyntaxGroups());
    d.at(".inputGroups", a.getInputGroups(), b.getInputGroups());
    d.at(".outputs", a.getOutputs(), b.getOutputs());
    d.at(".classPropertyGroups", a.getClassPropertyGroups(), b.getClassPropertyGroups());
    d.at(".seeAlso", a.getSeeAlso(), b.getSeeAlso());
    d.at(".examples", a.getExamples(), b.getExamples());
    d.at(".parameters", a.getParameters(), b.getParameters());
}

void compare(FirstDifference& d, const ParseWarning& a, const ParseWarning& b) {
    d.at(".kind", a.kind, b.kind);
    d.at(".jsonPath", a.jsonPath, b.jsonPath);
    d.at(".text", a.text, b.text);
}

// The fields a bare parse records, then those only a loader fills (equal here unless a reading
// records into a file it should not).
void compareRecordExceptWarnings(FirstDifference& d, const FileDiagnostic& a, const FileDiagnostic& b) {
    d.at(".dropReason", a.dropReason, b.dropReason);
    d.at(".message", a.message, b.message);
    d.at(".jsonPath", a.jsonPath, b.jsonPath);
    d.at(".offset", a.offset, b.offset);
    d.at(".line", a.line, b.line);
    d.at(".column", a.column, b.column);
    d.at(".source", a.source, b.source);
    d.at(".path", a.path, b.path);
    d.at(".entry", a.entry, b.entry);
    d.at(".productName", a.productName, b.productName);
    d.at(".localeVariant", a.localeVariant, b.localeVariant);
    d.at(".documentKeys", a.documentKeys, b.documentKeys);
}

void compare(FirstDifference& d, const FileDiagnostic& a, const FileDiagnostic& b) {
    compareRecordExceptWarnings(d, a, b);
    d.at(".warnings", a.warnings, b.warnings);
}

std::vector<ParseWarning> sortedWarnings(std::vector<ParseWarning> warnings) {
    std::sort(warnings.begin(), warnings.end(), [](const ParseWarning& x, const ParseWarning& y) {
        return std::tie(x.jsonPath, x.kind, x.text) < std::tie(y.jsonPath, y.kind, y.text);
    });
    return warnings;
}

void compareDiagnostics(FirstDifference& d, const std::vector<FileDiagnostic>& a, const std::vector<FileDiagnostic>& b,
                        WarningOrder order) {
    if (order == WarningOrder::Same) {
        d.at("diagnostics", a, b);
        return;
    }
    if (a.size() != b.size()) {
        d.note(std::to_string(a.size()) + " records", std::to_string(b.size()) + " records");
        return;
    }
    for (std::size_t i = 0; i < a.size() && !d.found(); ++i) {
        const std::string record = "diagnostics[" + std::to_string(i) + "]";
        d.at(record, a[i], b[i], compareRecordExceptWarnings);
        d.at(record + ".warnings (sorted)", sortedWarnings(a[i].warnings), sortedWarnings(b[i].warnings));
    }
}

// ---- Whole outcomes.

template <class Map>
std::string failureName(const ReadingOutcome<Map>& outcome) {
    using Failure = typename ReadingOutcome<Map>::Failure;
    switch (outcome.failure) {
    case Failure::None:
        return "accepted";
    case Failure::SyntaxError:
        return "refused: boost::system::system_error " + outcome.syntaxError.to_string() + " (" +
               outcome.syntaxError.message() + ")";
    case Failure::FormatError:
        return "refused: DocParserException";
    case Failure::Other:
        return "refused: " + outcome.otherFailure;
    }
    return "?";
}

std::size_t recordCount(const auto& items) {
    std::size_t count = 0;
    for (const auto& entry : items) {
        count += entry.second.size();
    }
    return count;
}

template <class Map>
std::string summary(const ReadingOutcome<Map>& outcome) {
    std::string out = failureName(outcome) + "\n";
    for (const auto& [key, resource] : outcome.result) {
        const auto& header = resource.getHeader();
        out += "    document " + show(std::u16string_view(key)) + ": " +
               show(std::u16string_view(header.getProductName())) + " baseCode " +
               show(std::u16string_view(header.getBaseCode())) + ", " + std::to_string(resource.getItems().size()) +
               " keys, " + std::to_string(recordCount(resource.getItems())) + " records\n";
    }
    for (const auto& file : outcome.diagnostics) {
        out += "    diagnostic: " + show(file.dropReason) + " " + show(std::string_view(file.message)) + " at " +
               show(std::string_view(file.jsonPath)) + " offset " + std::to_string(file.offset) + " line " +
               std::to_string(file.line) + " column " + std::to_string(file.column) + "\n";
        for (const auto& warning : file.warnings) {
            out += "      warning: " + show(warning.kind) + " at " + show(std::string_view(warning.jsonPath)) + " " +
                   show(std::string_view(warning.text)) + "\n";
        }
    }
    return out;
}

template <class Map>
std::string difference(const ReadingOutcome<Map>& streaming, const ReadingOutcome<Map>& tree, WarningOrder order) {
    FirstDifference d;
    const std::string streamingFailure = failureName(streaming);
    const std::string treeFailure = failureName(tree);
    if (streaming.failure != tree.failure || streaming.syntaxError != tree.syntaxError ||
        streaming.otherFailure != tree.otherFailure) {
        d.note(streamingFailure, treeFailure);
    }
    d.at("result", streaming.result, tree.result);
    if (!d.found() && !(streaming.result == tree.result)) {
        // Every field above agrees; what is left are the engine value slots no parse fills.
        d.note("records with engine values", "records with engine values");
    }
    compareDiagnostics(d, streaming.diagnostics, tree.diagnostics, order);
    if (!d.found()) {
        return {};
    }
    return "first difference at " + d.report() + "\nstreaming reading: " + summary(streaming) +
           "tree reading:      " + summary(tree);
}

template <class Map, class Parse>
void runReading(ReadingOutcome<Map>& outcome, Parse&& parse) {
    using Failure = typename ReadingOutcome<Map>::Failure;
    try {
        outcome.result = parse();
    } catch (const boost::system::system_error& e) {
        outcome.failure = Failure::SyntaxError;
        outcome.syntaxError = e.code();
    } catch (const DocParserException&) {
        outcome.failure = Failure::FormatError;
    } catch (const std::exception& e) {
        outcome.failure = Failure::Other;
        outcome.otherFailure = std::string(typeid(e).name()) + ": " + e.what();
    }
}

// The records and the failure come from a read without a diagnostics scope: with one active the
// loaders read through the tree, so only a read without one exercises the streaming reader. The
// diagnostics come from a second read under a scope, which must report what the tree reading does.
template <class Map, class Parse>
ReadingOutcome<Map> capture(Parse&& parse) {
    ReadingOutcome<Map> outcome;
    runReading(outcome, parse);
    ReadingOutcome<Map> recorded;
    ParseDiagnosticsScope scope;
    runReading(recorded, parse);
    outcome.diagnostics = scope.takeFiles();
    return outcome;
}

} // namespace

LookupOutcome readLookupFile(const std::string& text, Reading reading) {
    return capture<LookupMap>([&] {
        return reading == Reading::Streaming ? reference::docparser::parseLookupFile(text)
                                             : reference::docparser::parseLookupFileTree(text);
    });
}

PageOutcome readPageFile(const std::string& text, Reading reading, const PageMap* replacement) {
    return capture<PageMap>([&] {
        return reading == Reading::Streaming ? reference::docparser::parseRefItemFile(text, replacement)
                                             : reference::docparser::parseRefItemFileTree(text, replacement);
    });
}

std::string describeDifference(const LookupOutcome& streaming, const LookupOutcome& tree, WarningOrder order) {
    return difference(streaming, tree, order);
}

std::string describeDifference(const PageOutcome& streaming, const PageOutcome& tree, WarningOrder order) {
    return difference(streaming, tree, order);
}

std::string lookupReadingsDiffer(const std::string& text, WarningOrder order) {
    return describeDifference(readLookupFile(text, Reading::Streaming), readLookupFile(text, Reading::Tree), order);
}

std::string pageReadingsDiffer(const std::string& text, const PageMap* replacement, WarningOrder order) {
    return describeDifference(readPageFile(text, Reading::Streaming, replacement),
                              readPageFile(text, Reading::Tree, replacement), order);
}

PageMap thinnedReplacement(const PageMap& pages) {
    PageMap thinned;
    std::size_t document = 0;
    for (const auto& [key, resource] : pages) {
        if (document++ % 2 == 1) {
            continue;
        }
        auto items = resource.getItems();
        bool drop = false;
        for (auto it = items.begin(); it != items.end(); drop = !drop) {
            it = drop ? items.erase(it) : std::next(it);
        }
        thinned.emplace(key, DocResource<RefItem>(resource.getHeader(), std::move(items)));
    }
    return thinned;
}

} // namespace refdoc::fuzz
