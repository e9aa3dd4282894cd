#pragma once

// Memory that one loading call reuses for every file it reads: the file text, and the lookup
// entries of the document being read before they are filed by name.

#include <reference/property/RefItemLookup.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace reference::docparser::detail {

// Reusing one text buffer and one entry list for every file keeps a call from requesting large
// blocks again and again right after the many small frees of merging, which makes the allocator
// consolidate its free lists each time. Freed when the call returns: nothing is kept between
// calls.
struct ScratchMemory {
    // Sorting waiting lookup entries: the first four code units of the name, as a number that
    // orders as they do, and the entry's index.
    struct SortKey {
        std::uint64_t prefix;
        std::uint32_t index;
    };

    std::string text;
    std::vector<property::RefItemLookup> lookupEntries;
    std::vector<SortKey> order;
};

} // namespace reference::docparser::detail
