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

// Hands a pointer to code the optimizer cannot see through: without it, an optimized build may
// drop a new/delete pair altogether (the language allows it), and the counter would see nothing.
template <class T>
T* escape(T* pointer) {
    asm volatile("" : : "g"(pointer) : "memory");
    return pointer;
}

TEST(HeapCounter, CountsLiveAndPeakBytesOfEveryAllocationForm) {
    heap::start();
    EXPECT_EQ(heap::current().liveBytes, 0);

    auto* plain = escape(new std::vector<char>(10000));
    escape(plain->data());
    auto* array = escape(new char[5000]);
    auto* aligned = escape(new Aligned[4]);
    auto* nothrow = escape(new (std::nothrow) char[3000]);
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
    escape(unseen.get());
    EXPECT_EQ(heap::current().liveBytes, 0);
}

} // namespace
