#include "Differential.hpp"
#include "FuzzTargets.hpp"

#include <string>

namespace refdoc::fuzz {

void LookupDiffTarget::run(std::string_view input) const {
    const std::string difference = lookupReadingsDiffer(std::string(input));
    if (!difference.empty()) {
        throw InvariantViolation("the streaming and the tree reading of a lookup file differ: " + difference);
    }
}

} // namespace refdoc::fuzz
