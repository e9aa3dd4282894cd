#include "AllocationCounter.hpp"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace refdoc::test {
namespace {

std::atomic<bool> counting{false};
std::atomic<long long> live{0};
std::atomic<long long> blocks{0};
std::atomic<long long> peak{0};
std::atomic<std::size_t> largest{0};
std::atomic<std::size_t> count{0};
std::atomic<std::size_t> total{0};

template <class T>
void raiseTo(std::atomic<T>& value, T candidate) noexcept {
    T current = value.load(std::memory_order_relaxed);
    while (candidate > current && !value.compare_exchange_weak(current, candidate, std::memory_order_relaxed)) {
    }
}

void noteAllocation(void* block, std::size_t size) noexcept {
    if (!counting.load(std::memory_order_relaxed) || block == nullptr) {
        return;
    }
    const auto usable = static_cast<long long>(::malloc_usable_size(block));
    raiseTo(peak, live.fetch_add(usable, std::memory_order_relaxed) + usable);
    blocks.fetch_add(1, std::memory_order_relaxed);
    raiseTo(largest, size);
    count.fetch_add(1, std::memory_order_relaxed);
    total.fetch_add(size, std::memory_order_relaxed);
}

void* allocate(std::size_t size, std::size_t alignment) noexcept {
    const std::size_t request = size == 0 ? 1 : size;
    void* block = nullptr;
    if (alignment <= alignof(std::max_align_t)) {
        block = std::malloc(request);
    } else if (::posix_memalign(&block, alignment, request) != 0) {
        block = nullptr;
    }
    noteAllocation(block, size);
    return block;
}

void* allocateOrThrow(std::size_t size, std::size_t alignment) {
    if (void* block = allocate(size, alignment)) {
        return block;
    }
    throw std::bad_alloc();
}

void release(void* block) noexcept {
    if (counting.load(std::memory_order_relaxed) && block != nullptr) {
        live.fetch_sub(static_cast<long long>(::malloc_usable_size(block)), std::memory_order_relaxed);
        blocks.fetch_sub(1, std::memory_order_relaxed);
    }
    std::free(block);
}

} // namespace

AllocationWatch::AllocationWatch() noexcept {
    for (auto* figure : {&live, &blocks, &peak}) {
        figure->store(0);
    }
    for (auto* figure : {&largest, &count, &total}) {
        figure->store(0);
    }
    counting.store(true);
}

AllocationWatch::~AllocationWatch() { counting.store(false); }

AllocationStats AllocationWatch::stats() const noexcept {
    return {live.load(),    blocks.load(), static_cast<std::size_t>(peak.load()),
            largest.load(), count.load(),  total.load()};
}

} // namespace refdoc::test

namespace counter = refdoc::test;

void* operator new(std::size_t size) { return counter::allocateOrThrow(size, 0); }
void* operator new[](std::size_t size) { return counter::allocateOrThrow(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return counter::allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return counter::allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return counter::allocate(size, 0); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return counter::allocate(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return counter::allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return counter::allocate(size, static_cast<std::size_t>(alignment));
}

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
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept { counter::release(block); }
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept { counter::release(block); }
