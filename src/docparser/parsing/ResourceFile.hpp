#pragma once

// Both formats' files hold a main document and, in "supportPackages", further documents of the
// same form. The main document is keyed by its help folder, each package by its base code, and
// the first document to claim a key keeps it; a package dropped for that is a warning.

#include "docparser/parsing/EventReader.hpp"
#include "docparser/parsing/JsonKeys.hpp"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace reference::docparser {

// Files the documents of a file that was read whole. `packageIndex[i]` is the place of
// `packages[i]` in "supportPackages"; `reportInsideTaken`: whether what was found inside a
// dropped package is still reported.
template <class Resource>
void fileDocuments(std::map<std::u16string, Resource>& result, Resource&& main, std::vector<Resource>& packages,
                   const std::vector<std::size_t>& packageIndex, events::Reader& reader, bool reportInsideTaken) {
    std::u16string key = main.getHeader().getHelpFolder();
    result.try_emplace(std::move(key), std::move(main));
    for (std::size_t i = 0; i < packages.size(); ++i) {
        std::u16string packageKey = packages[i].getHeader().getBaseCode();
        if (!result.try_emplace(packageKey, std::move(packages[i])).second) {
            reader.documentKeyTaken(keys::kSupportPackages, packageIndex[i], packageKey, reportInsideTaken);
        }
    }
}

// For a file that failed, which files nothing: the packages it would have dropped before the
// failure are still reported.
template <class Resource>
void reportTakenPackages(const std::u16string& mainKey, const std::vector<Resource>& packages,
                         const std::vector<std::size_t>& packageIndex, events::Reader& reader, bool reportInsideTaken) {
    if (!reader.recording()) {
        return;
    }
    std::vector<std::u16string> keys{mainKey};
    for (std::size_t i = 0; i < packages.size(); ++i) {
        std::u16string packageKey = packages[i].getHeader().getBaseCode();
        if (std::find(keys.begin(), keys.end(), packageKey) != keys.end()) {
            reader.documentKeyTaken(keys::kSupportPackages, packageIndex[i], packageKey, reportInsideTaken);
        } else {
            keys.push_back(std::move(packageKey));
        }
    }
}

} // namespace reference::docparser
