#include <engine/EngineValue.hpp>

namespace engine {
namespace {

std::atomic<std::uint64_t> releases{0};
std::atomic<std::uint64_t> live{0};

} // namespace

EngineValue::EngineValue() noexcept { live.fetch_add(1, std::memory_order_relaxed); }

EngineValue::~EngineValue() { live.fetch_sub(1, std::memory_order_relaxed); }

std::uint64_t EngineValue::releaseCount() noexcept { return releases.load(std::memory_order_relaxed); }

std::uint64_t EngineValue::liveCount() noexcept { return live.load(std::memory_order_relaxed); }

void intrusive_ptr_add_ref(EngineValue* value) noexcept { value->refs_.fetch_add(1, std::memory_order_relaxed); }

void intrusive_ptr_release(EngineValue* value) noexcept {
    releases.fetch_add(1, std::memory_order_relaxed);
    if (value->refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete value;
    }
}

} // namespace engine
