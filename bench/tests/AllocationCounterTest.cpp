// The memory figures of the harness and the robustness suite's bounds come from the counting
// operator new and delete. Linked into this test binary, it must count every form of allocation
// and release.

#include "AllocationCounter.hpp"

#include <gtest/gtest.h>

#include <new>
#include <vector>

namespace {

using refdoc::test::AllocationWatch;

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

TEST(AllocationCounter, CountsEveryAllocationForm) {
    const AllocationWatch watch;
    EXPECT_EQ(watch.stats().count, 0u);

    auto* plain = escape(new std::vector<char>(10000));
    escape(plain->data());
    auto* array = escape(new char[5000]);
    auto* aligned = escape(new Aligned[4]);
    auto* nothrow = escape(new (std::nothrow) char[3000]);
    const auto held = watch.stats();
    EXPECT_GE(held.liveBytes, 10000 + 5000 + 4 * 256 + 3000);
    EXPECT_EQ(held.liveBlocks, 5); // the vector, its buffer, and three arrays
    EXPECT_EQ(held.count, 5u);
    EXPECT_EQ(held.peakGrowth, static_cast<std::size_t>(held.liveBytes));
    EXPECT_EQ(held.largestRequest, 10000u);
    EXPECT_EQ(held.totalBytes, sizeof(std::vector<char>) + 10000 + 5000 + sizeof(Aligned[4]) + 3000);

    delete plain;
    delete[] array;
    delete[] aligned;
    delete[] nothrow;
    const auto after = watch.stats();
    EXPECT_EQ(after.liveBytes, 0);
    EXPECT_EQ(after.liveBlocks, 0);
    EXPECT_EQ(after.peakGrowth, held.peakGrowth); // the peak stays
}

} // namespace
