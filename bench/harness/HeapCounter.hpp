#pragma once

// Live and peak heap bytes, counted by the harness's replacement of the global operator new and
// delete. Sizes are what the allocator really hands out (malloc_usable_size), so the figures are
// the heap a result occupies, not the bytes its code asked for.
//
// Counting is off until start(): while it is off the replacement costs one predictable branch,
// so timing runs are not skewed. Blocks allocated before start() and freed while counting lower
// the live figure; measure windows in which the code under test owns what it frees.

#include <cstddef>

namespace refdoc::bench::heap {

struct Snapshot {
    long long liveBytes = 0;  // allocated minus freed since start()
    long long peakBytes = 0;  // highest liveBytes since start()
    long long liveBlocks = 0; // allocations minus frees since start()
};

void start() noexcept;
Snapshot current() noexcept;
void stop() noexcept;

} // namespace refdoc::bench::heap
