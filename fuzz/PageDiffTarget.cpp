#include "Differential.hpp"
#include "FuzzTargets.hpp"

#include <optional>
#include <string>

namespace refdoc::fuzz {
namespace {

void requireSameReadings(const std::string& text, const PageMap* replacement, const char* which) {
    const std::string difference = pageReadingsDiffer(text, replacement);
    if (!difference.empty()) {
        throw InvariantViolation(std::string("the streaming and the tree reading of a page file differ (") + which +
                                 "): " + difference);
    }
}

std::optional<PageMap> treeReading(const std::string& text) {
    auto outcome = readPageFile(text, Reading::Tree);
    if (outcome.failure != PageOutcome::Failure::None) {
        return std::nullopt;
    }
    return std::move(outcome.result);
}

} // namespace

void PageDiffTarget::run(std::string_view input) const {
    const auto separator = input.find(PageFileTarget::kLocalizedSeparator);
    const std::string file(input.substr(0, separator));
    std::optional<std::string> sibling;
    if (separator != std::string_view::npos) {
        sibling.emplace(input.substr(separator + PageFileTarget::kLocalizedSeparator.size()));
    }

    requireSameReadings(file, nullptr, "no replacement");

    std::optional<PageMap> replacement = sibling ? treeReading(*sibling) : std::nullopt;
    if (!replacement) {
        replacement = treeReading(file);
    }
    if (replacement) {
        requireSameReadings(file, &*replacement, "full replacement");
        const PageMap partial = thinnedReplacement(*replacement);
        if (partial != *replacement) {
            requireSameReadings(file, &partial, "partial replacement");
        }
    }
    if (sibling) {
        requireSameReadings(*sibling, nullptr, "the part after the separator");
    }
}

} // namespace refdoc::fuzz
