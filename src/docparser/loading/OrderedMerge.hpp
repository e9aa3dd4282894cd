#pragma once

#include "docparser/parsing/TextConversion.hpp"

#include <utility>

namespace reference::docparser {

// Merges two maps ordered by UTF-16 key in one walk over both: entries of `from` whose key `into`
// lacks move over as whole nodes (inserted right before their successor), and for keys both hold
// `onShared(intoValue, fromValue)` is called, in key order. This is what map::merge followed by a
// find per shared key produces, with one comparison per step instead of tree searches.
template <class Map, class OnShared>
void mergeOrderedMaps(Map& from, Map& into, OnShared&& onShared) {
    auto position = into.begin();
    for (auto next = from.begin(); next != from.end();) {
        const auto current = next++;
        int order = 1;
        while (position != into.end() && (order = text::compareText(position->first, current->first)) < 0) {
            ++position;
        }
        if (position == into.end() || order > 0) {
            into.insert(position, from.extract(current));
        } else {
            onShared(position->second, current->second);
        }
    }
}

} // namespace reference::docparser
