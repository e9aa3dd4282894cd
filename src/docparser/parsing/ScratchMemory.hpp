#pragma once

// Memory that one loading call reuses for every file it reads: the file text, and the lookup
// entries of the document being read before they are filed by name. Reusing it keeps a call
// from requesting large blocks again and again right after the many small frees of merging,
// which makes the allocator consolidate its free lists each time.
//
// The loading entry installs one for the length of the call on the calling thread; it is freed
// when the call returns, so nothing is kept between calls. Code that runs outside a loading call
// (a parser called directly) uses a fresh one of its own.

#include <reference/property/RefItemLookup.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace reference::docparser {

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

// Installs a fresh ScratchMemory on this thread while it lives (scopes nest).
class ScratchScope {
public:
    ScratchScope() noexcept;
    ~ScratchScope();
    ScratchScope(const ScratchScope&) = delete;
    ScratchScope& operator=(const ScratchScope&) = delete;

    // The scratch of the innermost scope on this thread; null outside every scope.
    static ScratchMemory* active() noexcept;

private:
    ScratchMemory memory_;
    ScratchMemory* previous_;
};

} // namespace reference::docparser
