// The memory figures come from the harness's replacement of operator new and delete. Linked into
// this test binary, it must count every form of allocation and release, and nothing while off.

#include "HeapCounter.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

namespace heap = refdoc::bench::heap;

struct alignas(64) Aligned {
    char bytes[256];
};

TEST(HeapCounter, CountsLiveAndPeakBytesOfEveryAllocationForm) {
    heap::start();
    EXPECT_EQ(heap::current().liveBytes, 0);

    auto* plain = new std::vector<char>(10000);
    auto* array = new char[5000];
    auto* aligned = new Aligned[4];
    auto* nothrow = new (std::nothrow) char[3000];
    const auto held = heap::current();
    EXPECT_GE(held.liveBytes, 10000 + 5000 + 4 * 256 + 3000);
    EXPECT_EQ(held.liveBlocks, 5); // the vector, its buffer, and three arrays
    EXPECT_EQ(held.peakBytes, held.liveBytes);

    delete plain;
    delete[] array;
    delete[] aligned;
    delete[] nothrow;
    const auto after = heap::current();
    EXPECT_EQ(after.liveBytes, 0);
    EXPECT_EQ(after.liveBlocks, 0);
    EXPECT_EQ(after.peakBytes, held.peakBytes); // the peak stays

    heap::stop();
    auto unseen = std::make_unique<std::string>(1000, 'x');
    EXPECT_EQ(heap::current().liveBytes, 0);
}

} // namespace
