#include "HeapCounter.hpp"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace refdoc::bench::heap {
namespace {

std::atomic<bool> counting{false};
std::atomic<long long> liveBytes{0};
std::atomic<long long> peakBytes{0};
std::atomic<long long> liveBlocks{0};

void noteAllocation(void* block) noexcept {
    if (block == nullptr || !counting.load(std::memory_order_relaxed)) {
        return;
    }
    const auto size = static_cast<long long>(::malloc_usable_size(block));
    const long long live = liveBytes.fetch_add(size, std::memory_order_relaxed) + size;
    liveBlocks.fetch_add(1, std::memory_order_relaxed);
    long long peak = peakBytes.load(std::memory_order_relaxed);
    while (live > peak && !peakBytes.compare_exchange_weak(peak, live, std::memory_order_relaxed)) {
    }
}

void noteRelease(void* block) noexcept {
    if (block == nullptr || !counting.load(std::memory_order_relaxed)) {
        return;
    }
    liveBytes.fetch_sub(static_cast<long long>(::malloc_usable_size(block)), std::memory_order_relaxed);
    liveBlocks.fetch_sub(1, std::memory_order_relaxed);
}

void* allocate(std::size_t size) {
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    noteAllocation(block);
    return block;
}

void* allocateAligned(std::size_t size, std::align_val_t alignment) {
    void* block = nullptr;
    const auto align = static_cast<std::size_t>(alignment);
    if (::posix_memalign(&block, align < sizeof(void*) ? sizeof(void*) : align, size == 0 ? 1 : size) != 0) {
        throw std::bad_alloc();
    }
    noteAllocation(block);
    return block;
}

void release(void* block) noexcept {
    noteRelease(block);
    std::free(block);
}

} // namespace

void start() noexcept {
    liveBytes.store(0, std::memory_order_relaxed);
    peakBytes.store(0, std::memory_order_relaxed);
    liveBlocks.store(0, std::memory_order_relaxed);
    counting.store(true, std::memory_order_seq_cst);
}

Snapshot current() noexcept {
    return {liveBytes.load(std::memory_order_relaxed), peakBytes.load(std::memory_order_relaxed),
            liveBlocks.load(std::memory_order_relaxed)};
}

void stop() noexcept { counting.store(false, std::memory_order_seq_cst); }

} // namespace refdoc::bench::heap

namespace counter = refdoc::bench::heap;

void* operator new(std::size_t size) { return counter::allocate(size); }
void* operator new[](std::size_t size) { return counter::allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return counter::allocate(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return counter::allocate(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new(std::size_t size, std::align_val_t alignment) { return counter::allocateAligned(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return counter::allocateAligned(size, alignment); }

void operator delete(void* block) noexcept { counter::release(block); }
void operator delete[](void* block) noexcept { counter::release(block); }
void operator delete(void* block, std::size_t) noexcept { counter::release(block); }
void operator delete[](void* block, std::size_t) noexcept { counter::release(block); }
void operator delete(void* block, std::align_val_t) noexcept { counter::release(block); }
void operator delete[](void* block, std::align_val_t) noexcept { counter::release(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { counter::release(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { counter::release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { counter::release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { counter::release(block); }
