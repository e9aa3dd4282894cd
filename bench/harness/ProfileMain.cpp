// refdoc_bench_profile: runs one load a fixed number of times and nothing else, for profilers
// (callgrind counts instructions, which a shared machine does not disturb).
//
//   refdoc_bench_profile <corpus> <load> <language> [iterations] [--profile default|varied] [--free]
//
// <load>: lookup, pages (the library), lookup-floor, pages-floor (read, parse and free the JSON)
// or lookup-peer, pages-peer (the straightforward reader, load and free). --free makes the
// library's loads free their result inside the timed and profiled span, as the harness's headline
// figure does; without it the result is freed before the next load starts, outside the span.
// --profile names the profile the corpus must have, so that a profile of the wrong corpus fails.
// search-build builds a search index over lookup results loaded beforehand; search-queries runs
// the harness's generated queries against an index built beforehand (one round per iteration).

#include "Corpus.hpp"
#include "Floor.hpp"
#include "Host.hpp"
#include "Peer.hpp"
#include "SearchBench.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/search/SearchIndex.hpp>

#include <chrono>
#include <ctime>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

double threadSeconds() noexcept {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace

int main(int argc, char** argv) {
    using reference::docparser::DocResourceParser;
    using namespace refdoc::bench;
    std::vector<std::string> positional;
    std::string profile;
    bool free = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--free") {
            free = true;
        } else if (arg == "--profile" && i + 1 < argc) {
            profile = argv[++i];
        } else {
            positional.push_back(arg);
        }
    }
    if (positional.size() < 3 || positional.size() > 4) {
        std::cerr
            << "usage: refdoc_bench_profile <corpus> lookup|pages|lookup-floor|pages-floor|lookup-peer|"
               "pages-peer|search-build|search-queries <language> [iterations] [--profile default|varied] [--free]\n";
        return 2;
    }
    try {
        const std::filesystem::path root = positional[0];
        const std::string what = positional[1];
        const std::string language = positional[2];
        const int iterations = positional.size() > 3 ? std::stoi(positional[3]) : 1;
        const Manifest manifest = readManifest(root);
        if (!profile.empty() && profileName(profileFromName(profile)) != manifest.profile) {
            std::cerr << "refdoc_bench_profile: " << root << " holds a " << manifest.profile << " corpus, not "
                      << profile << "\n";
            return 2;
        }
        configureHost(root, manifest, language);
        const std::u16string largest(manifest.largestProduct.begin(), manifest.largestProduct.end());

        DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap> lookups;
        using reference::search::SearchIndex;
        std::shared_ptr<const SearchIndex::LookupResults> searched;
        std::optional<SearchIndex> index;
        std::vector<GeneratedQuery> queries;
        std::vector<std::vector<double>> queryTimes; // per query, thread CPU seconds of each round
        if (what.starts_with("search-")) {
            searched = std::make_shared<const SearchIndex::LookupResults>(DocResourceParser::getResourceLookupFiles());
            if (what == "search-queries") {
                index.emplace(searched);
                queries = makeQueries(*searched, 200, 1);
                queryTimes.resize(queries.size());
            }
        }
        DocResourceParser::RefItemFileMap pages;
        std::size_t total = 0;
        double firstSeconds = 0.0;
        double allSeconds = 0.0;
        std::vector<double> cpuSeconds; // thread CPU time of each iteration
        for (int i = 0; i < iterations; ++i) {
            lookups = {};
            pages = {};
            const auto start = std::chrono::steady_clock::now();
            const double cpuStart = threadSeconds();
            if (what == "lookup") {
                lookups = DocResourceParser::getResourceLookupFiles();
                total += lookups.installedResources.size() + lookups.uninstalledResources.size();
            } else if (what == "pages") {
                pages = DocResourceParser::getResourceFile(largest);
                total += pages.size();
            } else if (what == "search-build") {
                total += SearchIndex(searched).size();
            } else if (what == "search-queries") {
                for (std::size_t q = 0; q < queries.size(); ++q) {
                    const double before = threadSeconds();
                    total += index->search(queries[q].text).size();
                    queryTimes[q].push_back(threadSeconds() - before);
                }
            } else if (what == "lookup-floor") {
                total += readAndParse(root, manifest.lookupReads.at(language)).values;
            } else if (what == "pages-floor") {
                total += readAndParse(root, manifest.pageReads(manifest.largestProduct, language)).values;
            } else if (what == "lookup-peer") {
                total += peer::recordCount(peer::loadLookup(root, manifest.lookupReads.at(language)));
            } else if (what == "pages-peer") {
                total +=
                    peer::recordCount(peer::loadPages(root, manifest.pageReads(manifest.largestProduct, language)));
            } else {
                std::cerr << "unknown load " << what << "\n";
                return 2;
            }
            if (free) {
                lookups = {};
                pages = {};
            }
            const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
            cpuSeconds.push_back(threadSeconds() - cpuStart);
            firstSeconds = i == 0 ? elapsed.count() : firstSeconds;
            allSeconds += elapsed.count();
        }
        // Wall times, for a rough look only: the harness measures properly.
        std::cout << what << (free ? "+free " : " ") << language << " (" << manifest.profile << "): " << total
                  << " results, first " << firstSeconds * 1e3 << " ms, mean " << allSeconds * 1e3 / iterations
                  << " ms, later ones " << (iterations > 1 ? (allSeconds - firstSeconds) * 1e3 / (iterations - 1) : 0.0)
                  << " ms; thread CPU time per iteration: median " << percentile(cpuSeconds, 0.5) * 1e3 << " ms, least "
                  << percentile(cpuSeconds, 0.0) * 1e3 << " ms\n";
        if (!queries.empty()) {
            std::vector<double> medians;
            for (const auto& times : queryTimes) {
                medians.push_back(percentile(times, 0.5));
            }
            std::cout << queries.size() << " queries, thread CPU time per query: median "
                      << percentile(medians, 0.5) * 1e3 << " ms, p99 " << percentile(medians, 0.99) * 1e3
                      << " ms, slowest " << percentile(medians, 1.0) * 1e3 << " ms\n";
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "refdoc_bench_profile: " << error.what() << "\n";
        return 1;
    }
}
