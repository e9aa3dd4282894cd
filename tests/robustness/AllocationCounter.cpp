#include "AllocationCounter.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

#include <malloc.h>

namespace refdoc::test {
namespace {

// Live bytes are counted by the allocator's usable size, the one measure known both when a block
// is made and when it is freed (unsized delete does not tell the size).
std::atomic<std::size_t> live{0};
std::atomic<std::size_t> peak{0};
std::atomic<std::size_t> largest{0};
std::atomic<std::size_t> count{0};
std::atomic<std::size_t> total{0};

void raiseTo(std::atomic<std::size_t>& value, std::size_t candidate) noexcept {
    std::size_t current = value.load(std::memory_order_relaxed);
    while (candidate > current && !value.compare_exchange_weak(current, candidate, std::memory_order_relaxed)) {
    }
}

void* allocate(std::size_t size, std::size_t alignment) noexcept {
    const std::size_t request = size == 0 ? 1 : size;
    void* block = nullptr;
    if (alignment <= alignof(std::max_align_t)) {
        block = std::malloc(request);
    } else if (::posix_memalign(&block, alignment, request) != 0) {
        block = nullptr;
    }
    if (block != nullptr) {
        const std::size_t usable = ::malloc_usable_size(block);
        raiseTo(peak, live.fetch_add(usable, std::memory_order_relaxed) + usable);
        raiseTo(largest, size);
        count.fetch_add(1, std::memory_order_relaxed);
        total.fetch_add(size, std::memory_order_relaxed);
    }
    return block;
}

void* allocateOrThrow(std::size_t size, std::size_t alignment) {
    if (void* block = allocate(size, alignment)) {
        return block;
    }
    throw std::bad_alloc();
}

void release(void* block) noexcept {
    if (block != nullptr) {
        live.fetch_sub(::malloc_usable_size(block), std::memory_order_relaxed);
        std::free(block);
    }
}

} // namespace

AllocationWatch::AllocationWatch() : startLive_(live.load()), startCount_(count.load()), startTotal_(total.load()) {
    peak.store(startLive_);
    largest.store(0);
}

AllocationStats AllocationWatch::stats() const {
    const std::size_t highest = peak.load();
    return {highest > startLive_ ? highest - startLive_ : 0, largest.load(), count.load() - startCount_,
            total.load() - startTotal_};
}

} // namespace refdoc::test

void* operator new(std::size_t size) { return refdoc::test::allocateOrThrow(size, 0); }
void* operator new[](std::size_t size) { return refdoc::test::allocateOrThrow(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return refdoc::test::allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return refdoc::test::allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return refdoc::test::allocate(size, 0); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return refdoc::test::allocate(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return refdoc::test::allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return refdoc::test::allocate(size, static_cast<std::size_t>(alignment));
}

void operator delete(void* block) noexcept { refdoc::test::release(block); }
void operator delete[](void* block) noexcept { refdoc::test::release(block); }
void operator delete(void* block, std::size_t) noexcept { refdoc::test::release(block); }
void operator delete[](void* block, std::size_t) noexcept { refdoc::test::release(block); }
void operator delete(void* block, std::align_val_t) noexcept { refdoc::test::release(block); }
void operator delete[](void* block, std::align_val_t) noexcept { refdoc::test::release(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { refdoc::test::release(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { refdoc::test::release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { refdoc::test::release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { refdoc::test::release(block); }
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept { refdoc::test::release(block); }
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept { refdoc::test::release(block); }
