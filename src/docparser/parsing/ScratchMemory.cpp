#include "docparser/parsing/ScratchMemory.hpp"

namespace reference::docparser {

namespace {
constinit thread_local ScratchMemory* tActive = nullptr;
}

ScratchScope::ScratchScope() noexcept : previous_(tActive) { tActive = &memory_; }

ScratchScope::~ScratchScope() { tActive = previous_; }

ScratchMemory* ScratchScope::active() noexcept { return tActive; }

} // namespace reference::docparser
