#pragma once

#include <reference/docparser/DocResourceParser.hpp>

#include <string>

namespace reference::docparser {

// The installed top-level products and the installed support packages as one consistent pair,
// taken together for a loading call.
struct InstalledProducts {
    DocResourceParser::TopLevelProductList products;
    DocResourceParser::SupportPackageSet supportPackages;

    // Whether `name` is the short name of one of the products (byte for byte, after conversion to
    // UTF-8) or the name of one of the support packages (exactly): the rule of isProductInstalled.
    bool contains(const std::u16string& name) const;
};

// Takes the provider and support-package mutexes together (std::lock), loads the support packages
// if none are cached and calls the provider, so that the pair was in force at one moment. A
// failure of the provider or of the support-package root reader propagates, and the cache is left
// as it was.
InstalledProducts takeInstalledProducts();

} // namespace reference::docparser
