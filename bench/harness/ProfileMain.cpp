// refdoc_bench_profile: runs one load a fixed number of times and nothing else, for profilers
// (callgrind counts instructions, which a shared machine does not disturb).
//
//   refdoc_bench_profile <corpus> lookup|pages|lookup-floor|pages-floor <language> [iterations]

#include "Corpus.hpp"
#include "Floor.hpp"
#include "Host.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <chrono>
#include <exception>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    using reference::docparser::DocResourceParser;
    using namespace refdoc::bench;
    if (argc < 4) {
        std::cerr << "usage: refdoc_bench_profile <corpus> lookup|pages|lookup-floor|pages-floor <language> "
                     "[iterations]\n";
        return 2;
    }
    try {
        const std::filesystem::path root = argv[1];
        const std::string what = argv[2];
        const std::string language = argv[3];
        const int iterations = argc > 4 ? std::stoi(argv[4]) : 1;
        const Manifest manifest = readManifest(root);
        configureHost(root, manifest, language);
        const std::u16string largest(manifest.largestProduct.begin(), manifest.largestProduct.end());

        // Results live until the next load's timing has stopped: as in the harness, freeing a
        // result is not part of a load.
        DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap> lookups;
        DocResourceParser::RefItemFileMap pages;
        std::size_t total = 0;
        double firstSeconds = 0.0;
        double allSeconds = 0.0;
        for (int i = 0; i < iterations; ++i) {
            lookups = {};
            pages = {};
            const auto start = std::chrono::steady_clock::now();
            if (what == "lookup") {
                lookups = DocResourceParser::getResourceLookupFiles();
                total += lookups.installedResources.size() + lookups.uninstalledResources.size();
            } else if (what == "pages") {
                pages = DocResourceParser::getResourceFile(largest);
                total += pages.size();
            } else if (what == "lookup-floor") {
                total += readAndParse(root, manifest.lookupReads.at(language)).values;
            } else if (what == "pages-floor") {
                total += readAndParse(root, manifest.pageReads(manifest.largestProduct, language)).values;
            } else {
                std::cerr << "unknown load " << what << "\n";
                return 2;
            }
            const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
            firstSeconds = i == 0 ? elapsed.count() : firstSeconds;
            allSeconds += elapsed.count();
        }
        // Wall times, for a rough look only: the harness measures properly.
        std::cout << what << " " << language << ": " << total << " results, first " << firstSeconds * 1e3
                  << " ms, mean " << allSeconds * 1e3 / iterations << " ms, later ones "
                  << (iterations > 1 ? (allSeconds - firstSeconds) * 1e3 / (iterations - 1) : 0.0) << " ms\n";
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "refdoc_bench_profile: " << error.what() << "\n";
        return 1;
    }
}
