#include "Summary.hpp"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <cstdio>
#include <string_view>

namespace refdoc::bench {
namespace {

std::string format(const char* pattern, double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, pattern, value);
    return buffer;
}

std::string duration(double seconds) {
    if (seconds >= 1.0) {
        return format("%.3g s", seconds);
    }
    if (seconds >= 1e-3) {
        return format("%.3g ms", seconds * 1e3);
    }
    return format("%.3g us", seconds * 1e6);
}

std::string throughput(double bytesPerSecond) {
    return bytesPerSecond >= 1e9 ? format("%.2f GB/s", bytesPerSecond / 1e9) : format("%.0f MB/s", bytesPerSecond / 1e6);
}

std::string megabytes(double bytes) {
    return format("%.1f MB", bytes / 1e6);
}

const Measurement* find(const Summary& summary, const std::string& name) {
    const auto it = summary.measurements.find(name);
    return it == summary.measurements.end() ? nullptr : &it->second;
}

void addRatioRow(Summary& summary, const std::string& pair, const std::string& measure, double target) {
    const Measurement* library = find(summary, pair + "/library");
    const Measurement* floor = find(summary, pair + "/floor");
    if (library == nullptr || floor == nullptr || floor->cpuSeconds <= 0.0) {
        return;
    }
    const double ratio = library->cpuSeconds / floor->cpuSeconds;
    summary.rows.push_back({measure, duration(library->cpuSeconds), duration(floor->cpuSeconds),
                            format("%.2f", ratio), format("<= %.1f", target), ratio <= target, ratio});
}

void addThroughputRows(Summary& summary) {
    for (const auto& [name, measurement] : summary.measurements) {
        if (!name.starts_with("text/") || !measurement.bytesPerSecond) {
            continue;
        }
        const double rate = *measurement.bytesPerSecond;
        SummaryRow row{name.substr(5), throughput(rate), "", "", "", std::nullopt, rate};
        if (name == "text/asciiToUtf16/ascii") {
            row.target = ">= " + throughput(kAsciiWideningTarget);
            row.met = rate >= kAsciiWideningTarget;
        } else if (name == "text/utf8ToUtf16/cjk") {
            row.target = ">= " + throughput(kUtf8DecodingTarget);
            row.met = rate >= kUtf8DecodingTarget;
        }
        summary.rows.push_back(std::move(row));
    }
}

void addMemoryRows(Summary& summary) {
    for (const auto& figure : summary.memory) {
        if (figure.jsonBytes == 0) {
            continue;
        }
        const auto json = static_cast<double>(figure.jsonBytes);
        const double retained = static_cast<double>(figure.retainedBytes) / json;
        SummaryRow row{"retained after " + figure.name + " (" + megabytes(json) + " JSON)",
                       megabytes(static_cast<double>(figure.retainedBytes)) + ", " + format("%.2f", retained) +
                           " B per JSON byte",
                       "", "", "", std::nullopt, retained};
        if (figure.name.starts_with("lookup/")) {
            row.target = format("<= %.1f B per JSON byte", kRetainedPerJsonByteTarget);
            row.met = retained <= kRetainedPerJsonByteTarget;
        }
        summary.rows.push_back(std::move(row));
        const double peak = static_cast<double>(figure.peakBytes) / json;
        summary.rows.push_back({"peak during " + figure.name,
                                megabytes(static_cast<double>(figure.peakBytes)) + ", " + format("%.2f", peak) +
                                    " B per JSON byte",
                                megabytes(static_cast<double>(figure.floorPeakBytes)), "", "", std::nullopt, peak});
    }
}

} // namespace

void buildRows(Summary& summary) {
    summary.rows.clear();
    for (const std::string language : {"en", "ja"}) {
        addRatioRow(summary, "lookup/" + language, "getResourceLookupFiles, " + language, kLookupRatioTarget);
    }
    for (const std::string language : {"en", "ja"}) {
        addRatioRow(summary, "pages/" + language,
                    "getResourceFile(" + summary.corpus.largestProduct + "), " + language, kPageRatioTarget);
    }
    addThroughputRows(summary);
    addMemoryRows(summary);
}

std::string toMarkdown(const Summary& summary) {
    const auto& corpus = summary.corpus;
    std::string out = "## refdoc benchmark";
    if (!summary.label.empty()) {
        out += ": " + summary.label;
    }
    out += "\n\nCorpus: seed " + corpus.seed + ", " + std::to_string(corpus.products) + " products, " +
           std::to_string(corpus.lookupItems) + " English lookup entries";
    for (const auto& [language, bytes] : corpus.lookupBytes) {
        out += ", lookup load " + language + " " + megabytes(static_cast<double>(bytes));
    }
    out += "; largest product " + corpus.largestProduct + " (" + std::to_string(corpus.largestItems) + " pages";
    for (const auto& [language, bytes] : corpus.pageBytes) {
        out += ", " + language + " " + megabytes(static_cast<double>(bytes));
    }
    out += ").\nTimes are CPU-time medians over the repetitions; ratio = library / floor (read + parse).\n\n";
    out += "| Measure | Library | Floor | Ratio | Target | Met |\n|---|---|---|---|---|---|\n";
    for (const auto& row : summary.rows) {
        out += "| " + row.measure + " | " + row.value + " | " + row.floor + " | " + row.ratio + " | " + row.target +
               " | " + (row.met ? (*row.met ? "yes" : "**no**") : "") + " |\n";
    }
    return out;
}

std::string toJson(const Summary& summary) {
    boost::json::object root;
    root["label"] = summary.label;
    const auto& corpus = summary.corpus;
    boost::json::object corpusJson{{"seed", corpus.seed},
                                   {"products", corpus.products},
                                   {"lookupItems", corpus.lookupItems},
                                   {"largestProduct", corpus.largestProduct},
                                   {"largestItems", corpus.largestItems}};
    boost::json::object lookupBytes;
    for (const auto& [language, bytes] : corpus.lookupBytes) {
        lookupBytes[language] = bytes;
    }
    boost::json::object pageBytes;
    for (const auto& [language, bytes] : corpus.pageBytes) {
        pageBytes[language] = bytes;
    }
    corpusJson["lookupBytes"] = std::move(lookupBytes);
    corpusJson["pageBytes"] = std::move(pageBytes);
    root["corpus"] = std::move(corpusJson);

    boost::json::object measurements;
    for (const auto& [name, measurement] : summary.measurements) {
        boost::json::object entry{{"realSeconds", measurement.realSeconds}, {"cpuSeconds", measurement.cpuSeconds}};
        if (measurement.bytesPerSecond) {
            entry["bytesPerSecond"] = *measurement.bytesPerSecond;
        }
        measurements[name] = std::move(entry);
    }
    root["measurements"] = std::move(measurements);

    boost::json::array memory;
    for (const auto& figure : summary.memory) {
        memory.push_back(boost::json::object{{"name", figure.name},
                                             {"jsonBytes", figure.jsonBytes},
                                             {"retainedBytes", figure.retainedBytes},
                                             {"retainedBlocks", figure.retainedBlocks},
                                             {"peakBytes", figure.peakBytes},
                                             {"floorPeakBytes", figure.floorPeakBytes}});
    }
    root["memory"] = std::move(memory);

    boost::json::array rows;
    for (const auto& row : summary.rows) {
        boost::json::object entry{{"measure", row.measure}, {"value", row.value}, {"floor", row.floor},
                                  {"ratio", row.ratio},     {"target", row.target}, {"number", row.number}};
        if (row.met) {
            entry["met"] = *row.met;
        }
        rows.push_back(std::move(entry));
    }
    root["rows"] = std::move(rows);
    return boost::json::serialize(root) + "\n";
}

} // namespace refdoc::bench
