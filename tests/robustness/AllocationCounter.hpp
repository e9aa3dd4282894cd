#pragma once

// The robustness suite replaces the global operator new and delete with counting versions, so
// that a test can bound the memory a load takes: its peak of live bytes, its largest single
// request and how many allocations it made. Everything the library allocates in C++ goes through
// them (libzip's and zlib's own buffers use malloc and are not counted).

#include <cstddef>

namespace refdoc::test {

struct AllocationStats {
    std::size_t peakGrowth = 0;     // highest live bytes reached above the level at the start
    std::size_t largestRequest = 0; // largest single request
    std::size_t count = 0;          // number of allocations
    std::size_t totalBytes = 0;     // sum of all requests
};

// Measures the allocations between its construction and stats(). One watch at a time.
class AllocationWatch {
public:
    AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    AllocationStats stats() const;

private:
    std::size_t startLive_;
    std::size_t startCount_;
    std::size_t startTotal_;
};

} // namespace refdoc::test
