// The libFuzzer entry point. The build compiles this file once per target, with
// REFDOC_FUZZ_TARGET naming the target's class in FuzzTargets.hpp.

#include "FuzzTargets.hpp"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Made on the first input: a target sets up its scratch root and the settings once.
    static const refdoc::fuzz::REFDOC_FUZZ_TARGET target;
    target.run(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
