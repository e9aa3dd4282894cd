#pragma once

// Turns the harness's measurements into the figures a reader compares across commits, per corpus
// profile: each library time beside its floor and beside the straightforward reader, the memory
// of each load, each with its target; then the converters' throughput. Written as markdown
// tables and as JSON.

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace refdoc::bench {

// One benchmark's representative run: the median over repetitions, or the single run.
struct Measurement {
    double realSeconds = 0.0;
    double cpuSeconds = 0.0;
    std::optional<double> bytesPerSecond;
};

struct MemoryFigure {
    std::string profile;              // the corpus profile, e.g. "default"
    std::string name;                 // e.g. "lookup/en"
    std::size_t jsonBytes = 0;        // the JSON bytes the load read
    std::size_t largestReadBytes = 0; // the largest single file or entry among them
    long long retainedBytes = 0;      // heap held by the result
    long long retainedBlocks = 0;     // allocations held by the result
    long long peakBytes = 0;          // highest heap in use during the load
    long long floorPeakBytes = 0;     // the same for the floor's read and parse
};

struct CorpusFigures {
    std::string profile;
    std::string seed;
    std::size_t products = 0;
    std::size_t lookupItems = 0;                    // English entries, main documents
    std::map<std::string, std::size_t> lookupBytes; // JSON bytes a lookup load reads, per language
    std::string largestProduct;
    std::size_t largestItems = 0;
    std::map<std::string, std::size_t> pageBytes; // JSON bytes of its page files, per language
};

// The search index over the lookup results of a scaled corpus, for one language. The times of
// loading and building come from the benchmarks "search-<p>/lookup/<language>/load" and
// "search-<p>/index/<language>/build"; query latencies are thread CPU times, one figure per query
// (its median over the runs).
struct SearchFigures {
    std::string profile;  // the corpus profile, e.g. "default"
    std::string language; // of the loaded results
    std::size_t entries = 0;
    std::size_t queries = 0;
    long long resultsBytes = 0; // heap held by the loaded results
    long long indexBytes = 0;   // heap held by the index built from them
    // Per kind of query ("prefix", "typo", ...) and "all": median and 99th percentile, seconds.
    std::map<std::string, std::pair<double, double>> latency;
    // The same queries answered by the linear scan and by the index (a subset of them): medians.
    std::size_t scanQueries = 0;
    double scanMedian = 0.0;
    double indexMedianOfScanned = 0.0;
};

// A row of a table; rows of one profile form its table, text conversions have profile "".
struct SummaryRow {
    std::string profile;
    std::string measure;
    std::string value;     // library figure
    std::string reference; // floor or peer figure, or ""
    std::string ratio;     // library / floor, or peer / library, or ""
    std::string target;
    std::optional<bool> met; // empty when there is no target
    double number = 0.0;     // the figure compared with the target
};

struct Summary {
    std::string label;
    std::vector<CorpusFigures> corpora; // one per profile, in the order measured
    std::map<std::string, Measurement> measurements;
    std::vector<MemoryFigure> memory;
    std::vector<SearchFigures> search;
    std::vector<SummaryRow> rows;
};

// Benchmarks of a profile p: "p/lookup/<language>/<what>" and "p/pages/<language>/<what>", where
// <what> is "library" (load and freeing the result), "load" (the load alone), "floor" (read,
// parse and free the same JSON) or "peer" (the straightforward reader, load and free). Ratios use
// CPU time, which the other processes of a shared machine disturb least.
inline constexpr double kLoadAndFreeRatioTarget = 1.6;     // library load+free / floor
inline constexpr double kLoadAloneRatioTarget = 1.1;       // lookup load alone / floor
inline constexpr double kPeerSpeedupTarget = 3.0;          // peer / library, both load+free
inline constexpr double kRetainedPerJsonByteTarget = 2.82; // lookup en, default profile
inline constexpr double kPeakLargestReadFactor = 2.0;      // peak <= retained + this x largest read

inline constexpr double kIndexBuildShareTarget = 0.25;         // index build / lookup load alone
inline constexpr double kQueryMedianTarget = 0.5e-3;           // seconds
inline constexpr double kQueryP99Target = 5e-3;                // seconds
inline constexpr double kIndexHeapShareTarget = 0.5;           // index heap / results heap
inline constexpr double kScanSpeedupTarget = 20.0;             // scan median / index median
inline constexpr const char* kSearchProfilePrefix = "search-"; // rows of the search tables

// Fills summary.rows from the measurements and memory figures. Benchmarks that did not run
// (filtered out) leave their rows out.
void buildRows(Summary& summary);

std::string toMarkdown(const Summary& summary);
std::string toJson(const Summary& summary);

} // namespace refdoc::bench
