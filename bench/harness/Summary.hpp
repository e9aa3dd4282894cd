#pragma once

// Turns the harness's measurements into the figures a reader compares across commits: each
// library time beside its floor with the ratio, the converters' throughput, and the memory of a
// load per JSON byte, each with its target. Written as a markdown table and as JSON.

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
    std::string name;             // e.g. "lookup/en"
    std::size_t jsonBytes = 0;    // the JSON bytes the load read
    long long retainedBytes = 0;  // heap held by the result
    long long retainedBlocks = 0; // allocations held by the result
    long long peakBytes = 0;      // highest heap in use during the load
    long long floorPeakBytes = 0; // the same for the floor's read and parse
};

struct CorpusFigures {
    std::string seed;
    std::size_t products = 0;
    std::size_t lookupItems = 0;                      // English entries, main documents
    std::map<std::string, std::size_t> lookupBytes;   // JSON bytes a lookup load reads, per language
    std::string largestProduct;
    std::size_t largestItems = 0;
    std::map<std::string, std::size_t> pageBytes;     // JSON bytes of its page files, per language
};

// A row of the table.
struct SummaryRow {
    std::string measure;
    std::string value;  // library figure
    std::string floor;  // floor figure, or ""
    std::string ratio;  // library / floor, or ""
    std::string target;
    std::optional<bool> met; // empty when there is no target
    double number = 0.0;     // the figure compared with the target (ratio, bytes/s, bytes per byte)
};

struct Summary {
    std::string label;
    CorpusFigures corpus;
    std::map<std::string, Measurement> measurements;
    std::vector<MemoryFigure> memory;
    std::vector<SummaryRow> rows;
};

// Timed pairs: benchmark "<name>/library" against "<name>/floor". Ratios use CPU time, which the
// other processes of a shared machine disturb least; real times are kept in the JSON.
inline constexpr double kLookupRatioTarget = 1.8;
inline constexpr double kPageRatioTarget = 1.8;
inline constexpr double kAsciiWideningTarget = 4e9;  // bytes per second
inline constexpr double kUtf8DecodingTarget = 1e9;   // bytes per second, CJK text
inline constexpr double kRetainedPerJsonByteTarget = 3.0;

// Fills summary.rows from the measurements and memory figures. Benchmarks that did not run
// (filtered out) leave their rows out.
void buildRows(Summary& summary);

std::string toMarkdown(const Summary& summary);
std::string toJson(const Summary& summary);

} // namespace refdoc::bench
