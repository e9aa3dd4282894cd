// The libFuzzer entry point. The build compiles this file once per target, with
// REFDOC_FUZZ_TARGET naming the target's class in FuzzTargets.hpp.

#include "FuzzTargets.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Made on the first input: a target sets up its scratch root and the settings once.
    static const refdoc::fuzz::REFDOC_FUZZ_TARGET target;
    try {
        target.run(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const refdoc::fuzz::InvariantViolation& violation) {
        // Said in full before the abort, which makes libFuzzer keep the input.
        std::fprintf(stderr, "\n==== invariant violated: %s\n", violation.what());
        std::abort();
    }
    return 0;
}
