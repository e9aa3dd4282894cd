#pragma once

// The floor the library is measured against: reading the same bytes and parsing them with
// Boost.JSON into a per-file monotonic arena, then freeing the tree, nothing else. No listing, no
// locale logic, no records: the file list comes from the corpus manifest. Freeing is inside,
// since the library's headline figure includes freeing its result.

#include "Corpus.hpp"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace refdoc::bench {

struct FloorResult {
    std::size_t files = 0;
    std::size_t bytes = 0;  // JSON bytes parsed (uncompressed size for zip entries)
    std::size_t values = 0; // top-level members seen, so that the parse cannot be optimised away
};

// Reads every file and zip entry (each package opened once) in order and hands over its bytes.
// Throws std::runtime_error when one is missing.
void readEach(const std::filesystem::path& root, const std::vector<FileRead>& reads,
              const std::function<void(const FileRead&, std::string&&)>& use);

// Reads every file and zip entry (each package opened once) and parses it. Throws
// std::runtime_error when a file or entry is missing or does not parse: the floor must do the
// whole work the library does, or the ratio means nothing.
FloorResult readAndParse(const std::filesystem::path& root, const std::vector<FileRead>& reads);

// The same for loose files given by their relative paths.
FloorResult readAndParse(const std::filesystem::path& root, const std::vector<std::string>& files);

} // namespace refdoc::bench
