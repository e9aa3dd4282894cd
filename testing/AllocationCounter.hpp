#pragma once

// Counts heap allocations through a replacement of the global operator new and delete, which
// whatever links refdoc_allocation_counter gets. The robustness suite bounds what a load
// allocates with it; the benchmark reports the heap a result holds and peaks at.
//
// Counting is off until a watch starts it: while off the replacement costs one predictable branch,
// so timing runs are not skewed. Sizes in bytes held are what the allocator really hands out
// (malloc_usable_size), the one measure known both when a block is made and when it is freed.
// Blocks allocated before the watch and freed under it lower the live figure; watch code that
// owns what it frees. Memory that libzip, zlib or the logging library take with malloc directly
// is not counted.

#include <cstddef>

namespace refdoc::test {

struct AllocationStats {
    long long liveBytes = 0;        // allocated minus freed since the watch started
    long long liveBlocks = 0;       // allocations minus frees since the watch started
    std::size_t peakGrowth = 0;     // highest liveBytes reached
    std::size_t largestRequest = 0; // largest single request, in bytes asked for
    std::size_t count = 0;          // number of allocations
    std::size_t totalBytes = 0;     // sum of all requests, in bytes asked for
};

// Counts from its construction to its destruction. One watch at a time.
class AllocationWatch {
public:
    AllocationWatch() noexcept;
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    AllocationStats stats() const noexcept;
};

} // namespace refdoc::test
