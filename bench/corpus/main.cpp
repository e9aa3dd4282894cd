// refdoc_corpus: writes the benchmark's documentation root.
//   refdoc_corpus <folder> [--seed N] [--products N] [--mean-items N] [--no-pages]
//                [--profile default|varied]

#include "Corpus.hpp"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>

namespace {

int usage() {
    std::cerr << "usage: refdoc_corpus <folder> [--seed N] [--products N] [--mean-items N] [--no-pages] "
                 "[--profile default|varied]\n";
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    refdoc::bench::CorpusOptions options;
    std::string folder;
    try {
        for (int i = 1; i < argc; ++i) {
            const std::string_view arg = argv[i];
            const auto value = [&]() -> std::string {
                if (i + 1 >= argc) {
                    throw std::invalid_argument(std::string(arg) + " needs a value");
                }
                return argv[++i];
            };
            if (arg == "--seed") {
                options.seed = std::stoull(value());
            } else if (arg == "--products") {
                options.products = std::stoi(value());
            } else if (arg == "--mean-items") {
                options.meanItems = std::stod(value());
            } else if (arg == "--profile") {
                options.profile = refdoc::bench::profileFromName(value());
            } else if (arg == "--no-pages") {
                options.pages = false;
            } else if (!arg.starts_with("--") && folder.empty()) {
                folder = arg;
            } else {
                return usage();
            }
        }
        if (folder.empty()) {
            return usage();
        }
        const auto manifest = refdoc::bench::generateCorpus(folder, options);
        std::size_t items = 0;
        for (const auto& product : manifest.products) {
            items += product.items;
        }
        std::cout << "corpus (" << manifest.profile << "): " << manifest.products.size() << " products, " << items
                  << " English lookup entries, largest product " << manifest.largestProduct << ", in " << folder
                  << "\n";
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "refdoc_corpus: " << error.what() << "\n";
        return 1;
    }
}
