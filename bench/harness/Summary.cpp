#include "Summary.hpp"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <algorithm>
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
    return bytesPerSecond >= 1e9 ? format("%.2f GB/s", bytesPerSecond / 1e9)
                                 : format("%.0f MB/s", bytesPerSecond / 1e6);
}

std::string megabytes(double bytes) { return format("%.1f MB", bytes / 1e6); }

const Measurement* find(const Summary& summary, const std::string& name) {
    const auto it = summary.measurements.find(name);
    return it == summary.measurements.end() ? nullptr : &it->second;
}

// "<what>" of a load against its floor; no target when `target` is 0.
void addFloorRow(Summary& summary, const std::string& profile, const std::string& load, const std::string& what,
                 const std::string& measure, double target) {
    const Measurement* library = find(summary, profile + "/" + load + "/" + what);
    const Measurement* floor = find(summary, profile + "/" + load + "/floor");
    if (library == nullptr || floor == nullptr || floor->cpuSeconds <= 0.0) {
        return;
    }
    const double ratio = library->cpuSeconds / floor->cpuSeconds;
    SummaryRow row{profile,
                   measure,
                   duration(library->cpuSeconds),
                   "floor " + duration(floor->cpuSeconds),
                   format("%.2f", ratio),
                   "",
                   std::nullopt,
                   ratio};
    if (target > 0.0) {
        row.target = format("<= %.2g x floor", target);
        row.met = ratio <= target;
    }
    summary.rows.push_back(std::move(row));
}

void addPeerRow(Summary& summary, const std::string& profile, const std::string& load, const std::string& measure) {
    const Measurement* library = find(summary, profile + "/" + load + "/library");
    const Measurement* peer = find(summary, profile + "/" + load + "/peer");
    if (library == nullptr || peer == nullptr || library->cpuSeconds <= 0.0) {
        return;
    }
    const double speedup = peer->cpuSeconds / library->cpuSeconds;
    summary.rows.push_back({profile, measure, duration(library->cpuSeconds), "reader " + duration(peer->cpuSeconds),
                            format("%.1f", speedup), format(">= %.0f x faster", kPeerSpeedupTarget),
                            speedup >= kPeerSpeedupTarget, speedup});
}

void addMemoryRows(Summary& summary, const std::string& profile) {
    for (const auto& figure : summary.memory) {
        if (figure.profile != profile || figure.jsonBytes == 0) {
            continue;
        }
        const auto json = static_cast<double>(figure.jsonBytes);
        const auto retainedBytes = static_cast<double>(figure.retainedBytes);
        const double retained = retainedBytes / json;
        SummaryRow row{profile,
                       "retained after " + figure.name + " (" + megabytes(json) + " JSON)",
                       megabytes(retainedBytes) + ", " + format("%.2f", retained) + " B per JSON byte",
                       "",
                       "",
                       "",
                       std::nullopt,
                       retained};
        if (profile == "default" && figure.name == "lookup/en") {
            row.target = format("<= %.2f B per JSON byte", kRetainedPerJsonByteTarget);
            row.met = retained <= kRetainedPerJsonByteTarget;
        }
        summary.rows.push_back(std::move(row));

        // A load may hold its result and a couple of file buffers at once, never more.
        const auto peak = static_cast<double>(figure.peakBytes);
        const double bound = retainedBytes + kPeakLargestReadFactor * static_cast<double>(figure.largestReadBytes);
        summary.rows.push_back(
            {profile, "peak during " + figure.name,
             megabytes(peak) + ", " + format("%.2f", peak / json) + " B per JSON byte",
             "floor " + megabytes(static_cast<double>(figure.floorPeakBytes)), "",
             "<= retained + " + format("%.0f", kPeakLargestReadFactor) + " x largest file (" + megabytes(bound) + ")",
             peak <= bound, bound > 0.0 ? peak / bound : 0.0});
    }
}

void addSearchRows(Summary& summary, const SearchFigures& figures) {
    const std::string profile = kSearchProfilePrefix + figures.profile;
    const std::string& language = figures.language;
    const Measurement* load = find(summary, profile + "/lookup/" + language + "/load");
    const Measurement* build = find(summary, profile + "/index/" + language + "/build");
    if (load != nullptr && build != nullptr && load->cpuSeconds > 0.0) {
        const double share = build->cpuSeconds / load->cpuSeconds;
        summary.rows.push_back(
            {profile, "index build, " + language + " (" + std::to_string(figures.entries) + " entries)",
             duration(build->cpuSeconds), "lookup load " + duration(load->cpuSeconds), format("%.0f%%", share * 100.0),
             format("<= %.0f%% of the load", kIndexBuildShareTarget * 100.0), share <= kIndexBuildShareTarget, share});
    }
    for (const auto& [kind, latency] : figures.latency) {
        const auto [median, p99] = latency;
        const bool all = kind == "all";
        const std::string which = all ? std::to_string(figures.queries) + " queries" : kind + " queries";
        SummaryRow medianRow{
            profile, "query latency median, " + language + ", " + which, duration(median), "", "", "", std::nullopt,
            median};
        SummaryRow p99Row{
            profile, "query latency p99, " + language + ", " + which, duration(p99), "", "", "", std::nullopt, p99};
        if (all) {
            medianRow.target = "<= " + duration(kQueryMedianTarget);
            medianRow.met = median <= kQueryMedianTarget;
            p99Row.target = "<= " + duration(kQueryP99Target);
            p99Row.met = p99 <= kQueryP99Target;
        }
        summary.rows.push_back(std::move(medianRow));
        summary.rows.push_back(std::move(p99Row));
    }
    if (figures.resultsBytes > 0) {
        const double share = static_cast<double>(figures.indexBytes) / static_cast<double>(figures.resultsBytes);
        summary.rows.push_back(
            {profile, "index heap, " + language, megabytes(static_cast<double>(figures.indexBytes)),
             "results " + megabytes(static_cast<double>(figures.resultsBytes)), format("%.0f%%", share * 100.0),
             format("<= %.0f%% of the results", kIndexHeapShareTarget * 100.0), share <= kIndexHeapShareTarget, share});
    }
    if (figures.scanQueries > 0 && figures.indexMedianOfScanned > 0.0) {
        const double speedup = figures.scanMedian / figures.indexMedianOfScanned;
        summary.rows.push_back(
            {profile,
             "speed-up over a linear scan, median of " + std::to_string(figures.scanQueries) + " queries, " + language,
             duration(figures.indexMedianOfScanned), "scan " + duration(figures.scanMedian), format("%.0f", speedup),
             format(">= %.0f x faster", kScanSpeedupTarget), speedup >= kScanSpeedupTarget, speedup});
    }
}

void addThroughputRows(Summary& summary) {
    for (const auto& [name, measurement] : summary.measurements) {
        if (!name.starts_with("text/") || !measurement.bytesPerSecond) {
            continue;
        }
        const double rate = *measurement.bytesPerSecond;
        summary.rows.push_back({"", name.substr(5), throughput(rate), "", "", "", std::nullopt, rate});
    }
}

std::string table(const Summary& summary, const std::string& profile) {
    std::string out = "| Measure | Library | Reference | Ratio | Target | Met |\n|---|---|---|---|---|---|\n";
    for (const auto& row : summary.rows) {
        if (row.profile == profile) {
            out += "| " + row.measure + " | " + row.value + " | " + row.reference + " | " + row.ratio + " | " +
                   row.target + " | " + (row.met ? (*row.met ? "yes" : "**no**") : "") + " |\n";
        }
    }
    return out;
}

} // namespace

void buildRows(Summary& summary) {
    summary.rows.clear();
    for (const auto& corpus : summary.corpora) {
        const std::string& profile = corpus.profile;
        for (const std::string language : {"en", "ja"}) {
            const std::string call = "getResourceLookupFiles, " + language;
            addFloorRow(summary, profile, "lookup/" + language, "library", call + ": load+free",
                        kLoadAndFreeRatioTarget);
            addFloorRow(summary, profile, "lookup/" + language, "load", call + ": load alone", kLoadAloneRatioTarget);
        }
        for (const std::string language : {"en", "ja"}) {
            const std::string call = "getResourceFile(" + corpus.largestProduct + "), " + language;
            addFloorRow(summary, profile, "pages/" + language, "library", call + ": load+free",
                        kLoadAndFreeRatioTarget);
            addFloorRow(summary, profile, "pages/" + language, "load", call + ": load alone", 0.0);
        }
        for (const std::string load : {"lookup", "pages"}) {
            for (const std::string language : {"en", "ja"}) {
                addPeerRow(summary, profile, load + "/" + language,
                           "speed-up over the straightforward reader, " + load + " " + language);
            }
        }
        addMemoryRows(summary, profile);
    }
    for (const auto& figures : summary.search) {
        addSearchRows(summary, figures);
    }
    addThroughputRows(summary);
}

std::string toMarkdown(const Summary& summary) {
    std::string out = "## refdoc benchmark";
    if (!summary.label.empty()) {
        out += ": " + summary.label;
    }
    out += "\n\nTimes are CPU-time medians over the repetitions. load+free: the call and destroying its result, "
           "what a caller pays; load alone: the call only. Floor: reading the same JSON, parsing it with "
           "Boost.JSON and freeing the tree. Reader: the straightforward nlohmann/json reader, load+free; its "
           "ratio is how many times slower it is than the library.\n";
    for (const auto& corpus : summary.corpora) {
        out += "\n### Profile " + corpus.profile + "\n\nCorpus: seed " + corpus.seed + ", " +
               std::to_string(corpus.products) + " products, " + std::to_string(corpus.lookupItems) +
               " English lookup entries";
        for (const auto& [language, bytes] : corpus.lookupBytes) {
            out += ", lookup load " + language + " " + megabytes(static_cast<double>(bytes));
        }
        out += "; largest product " + corpus.largestProduct + " (" + std::to_string(corpus.largestItems) + " pages";
        for (const auto& [language, bytes] : corpus.pageBytes) {
            out += ", " + language + " " + megabytes(static_cast<double>(bytes));
        }
        out += ").\n\n" + table(summary, corpus.profile);
    }
    std::vector<std::string> searchProfiles;
    for (const auto& figures : summary.search) {
        if (std::find(searchProfiles.begin(), searchProfiles.end(), figures.profile) == searchProfiles.end()) {
            searchProfiles.push_back(figures.profile);
        }
    }
    for (const auto& profile : searchProfiles) {
        out += "\n### Search index, profile " + profile + "\n\nLookup results of a scaled corpus";
        for (const auto& figures : summary.search) {
            if (figures.profile == profile) {
                out += ", " + figures.language + " " + std::to_string(figures.entries) + " entries";
            }
        }
        out += ". Build: constructing the index over results already loaded (its destruction untimed), against the "
               "lookup load alone. Latency: thread CPU time of one query (limit 20), its median over the runs; queries "
               "drawn from the corpus (typed prefixes, typos, initials, purpose words, 1-12 characters). Scan: "
               "every entry scored by the same rules, on a subset of the queries.\n\n" +
               table(summary, kSearchProfilePrefix + profile);
    }
    const bool anyText = std::any_of(summary.rows.begin(), summary.rows.end(),
                                     [](const SummaryRow& row) { return row.profile.empty(); });
    if (anyText) {
        out += "\n### Text conversion\n\n" + table(summary, "");
    }
    return out;
}

std::string toJson(const Summary& summary) {
    boost::json::object root;
    root["label"] = summary.label;
    boost::json::array corpora;
    for (const auto& corpus : summary.corpora) {
        boost::json::object corpusJson{{"profile", corpus.profile},
                                       {"seed", corpus.seed},
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
        corpora.push_back(std::move(corpusJson));
    }
    root["corpora"] = std::move(corpora);

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
        memory.push_back(boost::json::object{{"profile", figure.profile},
                                             {"name", figure.name},
                                             {"jsonBytes", figure.jsonBytes},
                                             {"largestReadBytes", figure.largestReadBytes},
                                             {"retainedBytes", figure.retainedBytes},
                                             {"retainedBlocks", figure.retainedBlocks},
                                             {"peakBytes", figure.peakBytes},
                                             {"floorPeakBytes", figure.floorPeakBytes}});
    }
    root["memory"] = std::move(memory);

    boost::json::array search;
    for (const auto& figures : summary.search) {
        boost::json::object latency;
        for (const auto& [kind, value] : figures.latency) {
            latency[kind] = boost::json::object{{"median", value.first}, {"p99", value.second}};
        }
        search.push_back(boost::json::object{{"profile", figures.profile},
                                             {"language", figures.language},
                                             {"entries", figures.entries},
                                             {"queries", figures.queries},
                                             {"resultsBytes", figures.resultsBytes},
                                             {"indexBytes", figures.indexBytes},
                                             {"latency", std::move(latency)},
                                             {"scanQueries", figures.scanQueries},
                                             {"scanMedian", figures.scanMedian},
                                             {"indexMedianOfScanned", figures.indexMedianOfScanned}});
    }
    root["search"] = std::move(search);

    boost::json::array rows;
    for (const auto& row : summary.rows) {
        boost::json::object entry{{"profile", row.profile},     {"measure", row.measure}, {"value", row.value},
                                  {"reference", row.reference}, {"ratio", row.ratio},     {"target", row.target},
                                  {"number", row.number}};
        if (row.met) {
            entry["met"] = *row.met;
        }
        rows.push_back(std::move(entry));
    }
    root["rows"] = std::move(rows);
    return boost::json::serialize(root) + "\n";
}

} // namespace refdoc::bench
