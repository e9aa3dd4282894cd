// refdoc_bench: the loading entries and the text converters measured on generated corpora, each
// loading benchmark beside its floor (reading, parsing and freeing the same JSON bytes) and beside
// a straightforward reader, plus the heap each load holds and peaks at. See bench/README.md.
//
//   refdoc_bench [google benchmark flags] [--corpus DIR]... [--profile default|varied]...
//                [--products N] [--mean-items N] [--seed N] [--summary DIR] [--label TEXT]
//                [--search-corpus DIR]...
//
// Each --corpus is measured under the profile its manifest names. Without --corpus a corpus of
// each --profile (both by default) is generated into a temporary folder and removed at exit.
// Each --search-corpus (a scaled corpus, pages not needed) is measured by the search benchmarks
// only: its lookup load, building a search index over the results, queries drawn from it and the
// same queries answered by a linear scan.

#include "AllocationCounter.hpp"
#include "Corpus.hpp"
#include "Floor.hpp"
#include "Host.hpp"
#include "Peer.hpp"
#include "SearchBench.hpp"
#include "Summary.hpp"

#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/search/SearchIndex.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <deque>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using reference::docparser::DocResourceParser;
using namespace refdoc::bench;
using refdoc::test::AllocationWatch;

struct Options {
    std::vector<fs::path> corpora;         // --corpus, in order
    std::vector<fs::path> searchCorpora;   // --search-corpus, in order
    std::vector<Profile> generateProfiles; // without --corpus: temporary corpora of these profiles
    fs::path summaryDir;
    std::string label;
    CorpusOptions generate;
};

struct Context {
    std::string profile;
    fs::path root;
    Manifest manifest;
};

// ---- loading benchmarks -----------------------------------------------------------------------

// The library's settings are process-wide: each benchmark points them at its own corpus and, as
// corpora alternate under random interleaving, loads once untimed so that caches are warm.
void useCorpus(const Context& context, const std::string& language) {
    static const Context* current = nullptr;
    if (current != &context) {
        configureHost(context.root, context.manifest, language);
        current = &context;
    } else {
        setCurrentLanguage(language);
    }
}

std::u16string largestProduct(const Context& context) {
    return std::u16string(context.manifest.largestProduct.begin(), context.manifest.largestProduct.end());
}

// What a caller pays: the load and, when its result goes out of scope, freeing it.
void lookupLibrary(benchmark::State& state, const Context& context, const std::string& language) {
    useCorpus(context, language);
    static_cast<void>(DocResourceParser::getResourceLookupFiles());
    for (auto _ : state) {
        auto results = DocResourceParser::getResourceLookupFiles();
        benchmark::DoNotOptimize(results);
    }
}

void lookupLoadAlone(benchmark::State& state, const Context& context, const std::string& language) {
    useCorpus(context, language);
    DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap> results =
        DocResourceParser::getResourceLookupFiles();
    results = {};
    for (auto _ : state) {
        results = DocResourceParser::getResourceLookupFiles();
        benchmark::DoNotOptimize(results);
        state.PauseTiming();
        results = {};
        state.ResumeTiming();
    }
}

void lookupFloor(benchmark::State& state, const Context& context, const std::string& language) {
    const auto& reads = context.manifest.lookupReads.at(language);
    for (auto _ : state) {
        benchmark::DoNotOptimize(readAndParse(context.root, reads));
    }
}

void lookupPeer(benchmark::State& state, const Context& context, const std::string& language) {
    const auto& reads = context.manifest.lookupReads.at(language);
    for (auto _ : state) {
        auto results = peer::loadLookup(context.root, reads);
        benchmark::DoNotOptimize(results);
    }
}

void pagesLibrary(benchmark::State& state, const Context& context, const std::string& language) {
    useCorpus(context, language);
    const std::u16string product = largestProduct(context);
    static_cast<void>(DocResourceParser::getResourceFile(product));
    for (auto _ : state) {
        auto pages = DocResourceParser::getResourceFile(product);
        benchmark::DoNotOptimize(pages);
    }
}

void pagesLoadAlone(benchmark::State& state, const Context& context, const std::string& language) {
    useCorpus(context, language);
    const std::u16string product = largestProduct(context);
    DocResourceParser::RefItemFileMap pages = DocResourceParser::getResourceFile(product);
    pages = {};
    for (auto _ : state) {
        pages = DocResourceParser::getResourceFile(product);
        benchmark::DoNotOptimize(pages);
        state.PauseTiming();
        pages = {};
        state.ResumeTiming();
    }
}

void pagesFloor(benchmark::State& state, const Context& context, const std::string& language) {
    const auto files = context.manifest.pageReads(context.manifest.largestProduct, language);
    for (auto _ : state) {
        benchmark::DoNotOptimize(readAndParse(context.root, files));
    }
}

void pagesPeer(benchmark::State& state, const Context& context, const std::string& language) {
    const auto files = context.manifest.pageReads(context.manifest.largestProduct, language);
    for (auto _ : state) {
        auto pages = peer::loadPages(context.root, files);
        benchmark::DoNotOptimize(pages);
    }
}

void registerLoadBenchmarks(const Context& context) {
    using Load = void (*)(benchmark::State&, const Context&, const std::string&);
    const std::pair<const char*, Load> loads[] = {
        {"lookup/%/library", lookupLibrary}, {"lookup/%/load", lookupLoadAlone}, {"lookup/%/floor", lookupFloor},
        {"lookup/%/peer", lookupPeer},       {"pages/%/library", pagesLibrary},  {"pages/%/load", pagesLoadAlone},
        {"pages/%/floor", pagesFloor},       {"pages/%/peer", pagesPeer},
    };
    for (const std::string language : {"en", "ja"}) {
        for (const auto& [pattern, load] : loads) {
            std::string name = context.profile + "/" + pattern;
            name.replace(name.find('%'), 1, language);
            benchmark::RegisterBenchmark(name.c_str(), load, std::cref(context), language)
                ->Unit(benchmark::kMillisecond);
        }
    }
}

// ---- search index -------------------------------------------------------------------------------

using reference::search::SearchIndex;

constexpr std::size_t kQueriesPerKind = 200;
constexpr std::size_t kScannedQueries = 24;
constexpr std::uint64_t kQuerySeed = 1;

// One language's lookup results of a search corpus, the index over them, the queries drawn from
// them and the linear scan; made once before the benchmarks run. Every run of a query adds a
// sample to its list.
struct SearchSetup {
    const Context* context = nullptr;
    std::string language;
    std::shared_ptr<const SearchIndex::LookupResults> results;
    std::optional<SearchIndex> index;
    std::vector<GeneratedQuery> queries;
    std::vector<std::size_t> scanned; // the queries the scan answers
    std::optional<ScanPeer> scan;
    std::vector<std::vector<double>> indexSamples; // per query, seconds
    std::vector<std::vector<double>> scanSamples;  // per scanned query, seconds
    long long resultsBytes = 0;
    long long indexBytes = 0;
};

double threadSeconds() noexcept {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void prepareSearch(SearchSetup& setup) {
    useCorpus(*setup.context, setup.language);
    static_cast<void>(DocResourceParser::getResourceLookupFiles()); // settings and caches exist
    {
        const AllocationWatch watch;
        auto results = std::make_shared<const SearchIndex::LookupResults>(DocResourceParser::getResourceLookupFiles());
        setup.resultsBytes = watch.stats().liveBytes;
        setup.results = std::move(results);
    }
    {
        const AllocationWatch watch;
        setup.index.emplace(setup.results);
        setup.indexBytes = watch.stats().liveBytes;
    }
    setup.queries = makeQueries(*setup.results, kQueriesPerKind, kQuerySeed);
    setup.indexSamples.assign(setup.queries.size(), {});
    const std::size_t step = std::max<std::size_t>(1, setup.queries.size() / kScannedQueries);
    for (std::size_t i = 0; i < setup.queries.size() && setup.scanned.size() < kScannedQueries; i += step) {
        setup.scanned.push_back(i);
    }
    setup.scanSamples.assign(setup.scanned.size(), {});
    setup.scan.emplace(*setup.results);
}

void indexBuild(benchmark::State& state, const SearchSetup& setup) {
    std::optional<SearchIndex> index;
    for (auto _ : state) {
        index.emplace(setup.results);
        benchmark::DoNotOptimize(index->size());
        state.PauseTiming();
        index.reset();
        state.ResumeTiming();
    }
}

void indexQueries(benchmark::State& state, SearchSetup& setup) {
    for (auto _ : state) {
        for (std::size_t q = 0; q < setup.queries.size(); ++q) {
            const double start = threadSeconds();
            auto hits = setup.index->search(setup.queries[q].text);
            setup.indexSamples[q].push_back(threadSeconds() - start);
            benchmark::DoNotOptimize(hits.data());
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * setup.queries.size()));
}

void scanQueries(benchmark::State& state, SearchSetup& setup) {
    for (auto _ : state) {
        for (std::size_t s = 0; s < setup.scanned.size(); ++s) {
            const double start = threadSeconds();
            auto hits = setup.scan->search(setup.queries[setup.scanned[s]].text, 20);
            setup.scanSamples[s].push_back(threadSeconds() - start);
            benchmark::DoNotOptimize(hits.data());
        }
    }
}

void registerSearchBenchmarks(const Context& context, std::deque<SearchSetup>& setups) {
    for (const std::string language : {"en", "ja"}) {
        SearchSetup& setup = setups.emplace_back();
        setup.context = &context;
        setup.language = language;
        const std::string prefix = context.profile + "/";
        benchmark::RegisterBenchmark((prefix + "lookup/" + language + "/load").c_str(), lookupLoadAlone,
                                     std::cref(context), language)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((prefix + "index/" + language + "/build").c_str(), indexBuild, std::cref(setup))
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((prefix + "index/" + language + "/queries").c_str(), indexQueries, std::ref(setup))
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((prefix + "index/" + language + "/scan").c_str(), scanQueries, std::ref(setup))
            ->Unit(benchmark::kMillisecond);
    }
}

// Each query's median over its runs.
std::vector<double> perQuery(const std::vector<std::vector<double>>& samples) {
    std::vector<double> out;
    for (const auto& runs : samples) {
        if (!runs.empty()) {
            out.push_back(percentile(runs, 0.5));
        }
    }
    return out;
}

SearchFigures searchFigures(const SearchSetup& setup) {
    SearchFigures figures;
    figures.profile = setup.context->manifest.profile;
    figures.language = setup.language;
    figures.entries = setup.index->size();
    figures.queries = setup.queries.size();
    figures.resultsBytes = setup.resultsBytes;
    figures.indexBytes = setup.indexBytes;
    const std::vector<double> all = perQuery(setup.indexSamples);
    if (all.empty()) {
        return figures; // the queries did not run (filtered out)
    }
    figures.latency["all"] = {percentile(all, 0.5), percentile(all, 0.99)};
    for (const QueryKind kind : kQueryKinds) {
        std::vector<std::vector<double>> samples;
        for (std::size_t q = 0; q < setup.queries.size(); ++q) {
            if (setup.queries[q].kind == kind) {
                samples.push_back(setup.indexSamples[q]);
            }
        }
        const std::vector<double> times = perQuery(samples);
        figures.latency[std::string(queryKindName(kind))] = {percentile(times, 0.5), percentile(times, 0.99)};
    }
    const std::vector<double> scanned = perQuery(setup.scanSamples);
    if (!scanned.empty()) {
        std::vector<std::vector<double>> same;
        for (const std::size_t q : setup.scanned) {
            same.push_back(setup.indexSamples[q]);
        }
        figures.scanQueries = scanned.size();
        figures.scanMedian = percentile(scanned, 0.5);
        figures.indexMedianOfScanned = percentile(perQuery(same), 0.5);
    }
    return figures;
}

// ---- text converters --------------------------------------------------------------------------

// About 32 KiB: large enough to show the converters' throughput, small enough that input and
// output stay in the second-level cache and below the allocator's mmap threshold.
constexpr std::size_t kTextBytes = 32 * 1024;

struct TextSamples {
    std::string ascii; // English page text (HTML markup and prose)
    std::string mixed; // Japanese page text: CJK prose with ASCII markup and code names
    std::string cjk;   // Japanese and Korean purposes without ASCII
    // Field-sized texts as the parsers meet them, one conversion (and allocation) each.
    std::vector<std::string> asciiFields; // English one-line purposes
    std::vector<std::string> cjkFields;   // Japanese one-line purposes
};

TextSamples makeTextSamples() {
    Random random(7);
    TextSamples samples;
    const TextSource english(Language::English);
    const TextSource japanese(Language::Japanese);
    const TextSource korean(Language::Korean);
    while (samples.ascii.size() < kTextBytes) {
        samples.ascii += english.description(random, "computeSpectrum", 600);
    }
    while (samples.mixed.size() < kTextBytes) {
        samples.mixed += japanese.description(random, "computeSpectrum", 600);
    }
    while (samples.cjk.size() < kTextBytes) {
        samples.cjk += japanese.purpose(random);
        samples.cjk += "。";
        std::string phrase = korean.purpose(random);
        std::erase(phrase, ' ');
        samples.cjk += phrase;
        samples.cjk += "。";
    }
    // Whole characters only: cut at a UTF-8 lead byte.
    const auto trim = [](std::string& text) {
        std::size_t end = kTextBytes;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
            --end;
        }
        text.resize(end);
    };
    trim(samples.ascii);
    trim(samples.mixed);
    trim(samples.cjk);
    for (int i = 0; i < 1000; ++i) {
        samples.asciiFields.push_back(english.purpose(random));
        samples.cjkFields.push_back(japanese.purpose(random));
    }
    return samples;
}

template <class Convert>
void convertText(benchmark::State& state, const std::string& text, Convert convert) {
    for (auto _ : state) {
        auto converted = convert(std::string_view(text));
        benchmark::DoNotOptimize(converted.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}

void registerTextBenchmarks(const TextSamples& samples) {
    namespace text = reference::docparser::text;
    using reference::docparser::detail::StringParsingType;
    const std::pair<const char*, const std::string*> inputs[] = {
        {"ascii", &samples.ascii}, {"mixed", &samples.mixed}, {"cjk", &samples.cjk}};

    benchmark::RegisterBenchmark("text/asciiToUtf16/ascii", [&samples](benchmark::State& state) {
        convertText(state, samples.ascii, [](std::string_view bytes) { return text::asciiToUtf16(bytes); });
    });
    for (const auto& [name, input] : inputs) {
        benchmark::RegisterBenchmark(
            ("text/utf8ToUtf16/" + std::string(name)).c_str(), [input](benchmark::State& state) {
                convertText(state, *input, [](std::string_view bytes) { return text::utf8ToUtf16(bytes); });
            });
    }
    // What the parsers do with a field read as UTF-8: scan, then widen or decode.
    for (const auto& [name, input] : inputs) {
        benchmark::RegisterBenchmark(("text/utf8Field/" + std::string(name)).c_str(), [input](benchmark::State& state) {
            convertText(state, *input, [](std::string_view bytes) {
                return reference::docparser::detail::toUtf16(bytes, StringParsingType::Utf8);
            });
        });
    }
    // Short fields: the per-call cost (allocation included) that the loaders pay per string.
    const std::pair<const char*, const std::vector<std::string>*> fields[] = {{"ascii fields", &samples.asciiFields},
                                                                              {"cjk fields", &samples.cjkFields}};
    for (const auto& [name, list] : fields) {
        benchmark::RegisterBenchmark(("text/utf8Field/" + std::string(name)).c_str(), [list](benchmark::State& state) {
            std::int64_t bytes = 0;
            for (const auto& field : *list) {
                bytes += static_cast<std::int64_t>(field.size());
            }
            for (auto _ : state) {
                for (const auto& field : *list) {
                    auto converted = reference::docparser::detail::toUtf16(field, StringParsingType::Utf8);
                    benchmark::DoNotOptimize(converted.data());
                }
            }
            state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * bytes);
        });
    }
    benchmark::RegisterBenchmark("text/utf16ToUtf8/mixed", [&samples](benchmark::State& state) {
        const std::u16string wide = text::utf8ToUtf16(samples.mixed);
        for (auto _ : state) {
            auto narrow = text::utf16ToUtf8(wide);
            benchmark::DoNotOptimize(narrow.data());
        }
        state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                                static_cast<std::int64_t>(samples.mixed.size()));
    });
}

// ---- memory -------------------------------------------------------------------------------------

template <class Load>
MemoryFigure measureMemory(const Context& context, const std::string& name, std::size_t largestRead, Load load,
                           const std::function<FloorResult()>& floor) {
    MemoryFigure figure;
    figure.profile = context.profile;
    figure.name = name;
    figure.largestReadBytes = largestRead;
    static_cast<void>(load()); // settings, caches and the logger exist before counting starts

    {
        const AllocationWatch watch;
        figure.jsonBytes = floor().bytes;
        figure.floorPeakBytes = static_cast<long long>(watch.stats().peakGrowth);
    }
    const AllocationWatch watch;
    auto result = load();
    const auto held = watch.stats();
    figure.retainedBytes = held.liveBytes;
    figure.retainedBlocks = held.liveBlocks;
    figure.peakBytes = static_cast<long long>(held.peakGrowth);
    benchmark::DoNotOptimize(result);
    return figure;
}

void measureMemoryFigures(const Context& context, std::vector<MemoryFigure>& figures) {
    const auto& manifest = context.manifest;
    const std::u16string largest = largestProduct(context);
    for (const std::string language : {"en", "ja"}) {
        useCorpus(context, language);
        figures.push_back(measureMemory(
            context, "lookup/" + language, manifest.largestLookupRead(language),
            [] { return DocResourceParser::getResourceLookupFiles(); },
            [&] { return readAndParse(context.root, manifest.lookupReads.at(language)); }));
    }
    for (const std::string language : {"en", "ja"}) {
        useCorpus(context, language);
        figures.push_back(measureMemory(
            context, "pages/" + language, manifest.largestPageRead(manifest.largestProduct, language),
            [&largest] { return DocResourceParser::getResourceFile(largest); },
            [&] { return readAndParse(context.root, manifest.pageReads(manifest.largestProduct, language)); }));
    }
}

// ---- summary ----------------------------------------------------------------------------------

// Shows the usual console output and keeps, per benchmark, the median of its repetitions (or
// its single run).
class CollectingReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const auto& run : runs) {
            if (run.error_occurred) {
                continue;
            }
            const bool aggregate = run.run_type == Run::RT_Aggregate;
            if ((aggregate && run.aggregate_name != "median") || (!aggregate && run.repetitions > 1)) {
                continue;
            }
            const double perSecond = benchmark::GetTimeUnitMultiplier(run.time_unit);
            Measurement measurement{run.GetAdjustedRealTime() / perSecond, run.GetAdjustedCPUTime() / perSecond,
                                    std::nullopt};
            if (const auto bytes = run.counters.find("bytes_per_second"); bytes != run.counters.end()) {
                measurement.bytesPerSecond = bytes->second.value;
            }
            measurements[run.run_name.function_name] = measurement;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    std::map<std::string, Measurement> measurements;
};

CorpusFigures corpusFigures(const Context& context) {
    CorpusFigures corpus;
    const auto& manifest = context.manifest;
    corpus.profile = context.profile;
    corpus.seed = std::to_string(manifest.seed);
    corpus.products = manifest.products.size();
    for (const auto& product : manifest.products) {
        corpus.lookupItems += product.items;
        if (product.name == manifest.largestProduct) {
            corpus.largestItems = product.items;
        }
    }
    corpus.largestProduct = manifest.largestProduct;
    for (const std::string language : {"en", "ja"}) {
        for (const auto& read : manifest.lookupReads.at(language)) {
            corpus.lookupBytes[language] += read.bytes;
        }
        for (const auto& file : manifest.pageReads(manifest.largestProduct, language)) {
            corpus.pageBytes[language] += manifest.pageFileBytes.at(file);
        }
    }
    return corpus;
}

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    if (!out) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

Options parseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        const auto value = [&]() -> std::string {
            if (i + 1 >= argc) {
                throw std::invalid_argument(std::string(arg) + " needs a value");
            }
            return argv[++i];
        };
        if (arg == "--corpus") {
            options.corpora.emplace_back(value());
        } else if (arg == "--profile") {
            options.generateProfiles.push_back(profileFromName(value()));
        } else if (arg == "--search-corpus") {
            options.searchCorpora.emplace_back(value());
        } else if (arg == "--summary") {
            options.summaryDir = value();
        } else if (arg == "--label") {
            options.label = value();
        } else if (arg == "--products") {
            options.generate.products = std::stoi(value());
        } else if (arg == "--mean-items") {
            options.generate.meanItems = std::stod(value());
        } else if (arg == "--seed") {
            options.generate.seed = std::stoull(value());
        } else {
            throw std::invalid_argument("unknown argument " + std::string(arg));
        }
    }
    if (options.generateProfiles.empty()) {
        options.generateProfiles = {Profile::Default, Profile::Varied};
    }
    return options;
}

// A generated corpus in a temporary folder, removed with everything in it at exit.
class TemporaryCorpus {
public:
    explicit TemporaryCorpus(const CorpusOptions& options) {
        std::random_device entropy;
        path_ = fs::temp_directory_path() / ("refdoc-bench-" + std::to_string(entropy()));
        fs::create_directories(path_);
        generateCorpus(path_, options);
    }
    ~TemporaryCorpus() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    TemporaryCorpus(const TemporaryCorpus&) = delete;
    TemporaryCorpus& operator=(const TemporaryCorpus&) = delete;

    const fs::path& path() const noexcept { return path_; }

private:
    fs::path path_;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    try {
        Options options = parseOptions(argc, argv);
        std::vector<std::unique_ptr<TemporaryCorpus>> temporaries;
        if (options.corpora.empty() && options.searchCorpora.empty()) {
            for (const Profile profile : options.generateProfiles) {
                options.generate.profile = profile;
                temporaries.push_back(std::make_unique<TemporaryCorpus>(options.generate));
                options.corpora.push_back(temporaries.back()->path());
            }
        }
        // Contexts stay where they are: the registered benchmarks refer to them.
        std::deque<Context> contexts;
        for (const auto& root : options.corpora) {
            Context& context = contexts.emplace_back();
            context.root = root;
            context.manifest = readManifest(root);
            context.profile = context.manifest.profile;
            for (int n = 2; std::count_if(contexts.begin(), contexts.end(),
                                          [&](const Context& other) { return other.profile == context.profile; }) > 1;
                 ++n) {
                context.profile = context.manifest.profile + std::to_string(n);
            }
            registerLoadBenchmarks(context);
        }
        // Search corpora are told apart from the others by their profile's prefix.
        std::deque<SearchSetup> searchSetups;
        for (const auto& root : options.searchCorpora) {
            Context& context = contexts.emplace_back();
            context.root = root;
            context.manifest = readManifest(root);
            context.profile = kSearchProfilePrefix + context.manifest.profile;
            for (int n = 2; std::count_if(contexts.begin(), contexts.end(),
                                          [&](const Context& other) { return other.profile == context.profile; }) > 1;
                 ++n) {
                context.profile = kSearchProfilePrefix + context.manifest.profile + std::to_string(n);
            }
            registerSearchBenchmarks(context, searchSetups);
        }
        const TextSamples samples = makeTextSamples();
        registerTextBenchmarks(samples);

        Summary summary;
        summary.label = options.label;
        for (const auto& context : contexts) {
            if (!context.profile.starts_with(kSearchProfilePrefix)) {
                summary.corpora.push_back(corpusFigures(context));
                measureMemoryFigures(context, summary.memory);
            }
        }
        for (auto& setup : searchSetups) {
            prepareSearch(setup);
        }

        CollectingReporter reporter;
        benchmark::RunSpecifiedBenchmarks(&reporter);
        summary.measurements = reporter.measurements;
        for (const auto& setup : searchSetups) {
            summary.search.push_back(searchFigures(setup));
        }
        buildRows(summary);

        const std::string markdown = toMarkdown(summary);
        std::cout << "\n" << markdown;
        if (!options.summaryDir.empty()) {
            fs::create_directories(options.summaryDir);
            writeText(options.summaryDir / "summary.md", markdown);
            writeText(options.summaryDir / "summary.json", toJson(summary));
        }
    } catch (const std::exception& error) {
        std::cerr << "refdoc_bench: " << error.what() << "\n";
        benchmark::Shutdown();
        return 1;
    }
    benchmark::Shutdown();
    return 0;
}
