#include "docparser/loading/OrderedMerge.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <unordered_set>
#include <utility>

namespace reference::docparser {

// Combines two resources filed under the same key. The winner keeps its header and, for every
// name, its own item list; the fallback contributes the names the winner lacks (moved as whole
// tree nodes) and, only where the winner's list is strictly shorter, the items whose href the
// winner's list does not hold yet.
template <MergeableResource T>
void DocResourceParser::ParsingTools::mergeResourceFiles(T& target, T&& source, bool sourceTakesPrecedence) {
    if (sourceTakesPrecedence) {
        std::swap(target, source);
    }
    auto& winner = target.getItems();
    auto& fallback = source.getItems();

    mergeOrderedMaps(fallback, winner, [](auto& winnerItems, auto& fallbackItems) {
        if (fallbackItems.empty() || winnerItems.size() >= fallbackItems.size()) {
            return;
        }
        // The links the list holds so far. A set keeps this linear: scanning the growing list for
        // each item would make a fallback with many items under one name cost quadratic time.
        std::unordered_set<std::u16string> known;
        known.reserve(winnerItems.size() + fallbackItems.size());
        for (const auto& item : winnerItems) {
            known.insert(item.getHref());
        }
        for (auto& item : fallbackItems) {
            if (known.insert(item.getHref()).second) {
                // The fallback is discarded by the caller, so its items can be moved, not copied.
                winnerItems.push_back(std::move(item));
            }
        }
    });
}

template void DocResourceParser::ParsingTools::mergeResourceFiles<DocResource<property::RefItemLookup>>(
    DocResource<property::RefItemLookup>&, DocResource<property::RefItemLookup>&&, bool);

} // namespace reference::docparser
