#pragma once

#include <reference/docparser/DocResourceParser.hpp>

#include <string>

namespace reference::docparser {

// Whether `name` is the short name of one of `products` (byte for byte, after conversion to
// UTF-8) or the name of one of `supportPackages` (exactly). The rule behind isProductInstalled,
// usable on snapshots that a loading call took once at its start.
bool isInstalledIn(const std::u16string& name, const DocResourceParser::TopLevelProductList& products,
                   const DocResourceParser::SupportPackageSet& supportPackages);

} // namespace reference::docparser
