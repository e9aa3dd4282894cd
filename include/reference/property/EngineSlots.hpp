#pragma once

#include <reference/property/EngineHandle.hpp>

#include <array>
#include <cstddef>
#include <stdexcept>
#include <utility>

namespace reference::property {

/// The fixed set of engine value slots a record carries. All start empty; the library never
/// fills them. Slots are destroyed last first.
template <std::size_t N>
class EngineSlots {
public:
    static constexpr std::size_t kCount = N;

    EngineSlots() noexcept = default;

    const EngineHandle& get(std::size_t slot) const { return slots_.at(slot); }
    void set(std::size_t slot, EngineHandle value) { slots_.at(slot) = std::move(value); }

    bool allEmpty() const noexcept {
        for (const auto& slot : slots_) {
            if (slot) {
                return false;
            }
        }
        return true;
    }

    bool operator==(const EngineSlots&) const = default;

private:
    std::array<EngineHandle, N> slots_{};
};

} // namespace reference::property
