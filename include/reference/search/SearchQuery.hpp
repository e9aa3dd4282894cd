#pragma once

#include <reference/property/RefEntityType.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace reference::search {

/// What to look for, and where.
struct SearchQuery {
    /// The text typed. Case is ignored; spaces separate words, each of which must then match
    /// the name or the purpose of an entry.
    std::u16string text;
    /// At most this many hits, the best ones; 0 for all of them (costs a full pass of every
    /// kind of match).
    std::size_t limit = 20;
    /// Only entries of these products (keys as in the lookup results); empty for every product.
    std::vector<std::u16string> productKeys;
    /// Only entries of these entity types; empty for every type.
    std::vector<property::RefEntityType::Value> entityTypes;
    /// Only entries of installed products.
    bool installedOnly = false;
    /// Leaves out entries marked deprecated (which are otherwise found and marked in the hit).
    bool hideDeprecated = false;
};

} // namespace reference::search
