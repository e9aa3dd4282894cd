#pragma once

#include <refdoc/platform/Export.hpp>

#include <atomic>
#include <cstdint>

namespace engine {

// An opaque, intrusively reference-counted value of the host's computing engine. Records
// hold them through boost::intrusive_ptr. The stand-in counts releases so that tests can
// check that every handle is released exactly once.
class REFDOC_PLATFORM_API EngineValue {
public:
    EngineValue() noexcept;
    ~EngineValue();

    EngineValue(const EngineValue&) = delete;
    EngineValue& operator=(const EngineValue&) = delete;

    std::uint32_t useCount() const noexcept { return refs_.load(std::memory_order_acquire); }

    // Process-wide counters of intrusive_ptr_release calls and of values still alive.
    static std::uint64_t releaseCount() noexcept;
    static std::uint64_t liveCount() noexcept;

    friend REFDOC_PLATFORM_API void intrusive_ptr_add_ref(EngineValue* value) noexcept;
    friend REFDOC_PLATFORM_API void intrusive_ptr_release(EngineValue* value) noexcept;

private:
    std::atomic<std::uint32_t> refs_{0};
};

REFDOC_PLATFORM_API void intrusive_ptr_add_ref(EngineValue* value) noexcept;
REFDOC_PLATFORM_API void intrusive_ptr_release(EngineValue* value) noexcept;

} // namespace engine
