// The library's process-wide settings: the reference roots, the source of installed top-level
// products and the cache of installed support packages. Each is a shared pointer to a constant
// object, replaced whole under its own mutex, so callers keep consistent snapshots.
//
// Lock order: the roots and provider mutexes are only ever taken together through std::lock, as
// are the provider and support-package mutexes; when all three are needed the support-package
// mutex comes last, inside the other two.

#include "docparser/loading/Settings.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <SupportPackageRootReader.hpp>
#include <doc_products_shared/DocProductCacheManager.hpp>
#include <doc_products_shared/DocProductCollector.hpp>
#include <doc_products_shared/Docroot.hpp>
#include <doc_products_shared/TopLevelDocProduct.hpp>
#include <install/product_impl/utils/HardwareSupportPackages.hpp>

#include <filesystem>
#include <mutex>
#include <utility>

namespace reference::docparser {
namespace {

using ReferenceRoots = DocResourceParser::ReferenceRoots;
using TopLevelProductList = DocResourceParser::TopLevelProductList;
using TopLevelProductsProvider = DocResourceParser::TopLevelProductsProvider;
using SupportPackageSet = DocResourceParser::SupportPackageSet;
using ProductVector = std::vector<std::shared_ptr<const doc_products_shared::TopLevelDocProduct>>;

const std::u16string kPathSeparator(1, static_cast<char16_t>(std::filesystem::path::preferred_separator));
const std::u16string kLookupSubfolder = u"docCatalog" + kPathSeparator + u"referenceapi_lookup";
const std::u16string kReferenceSubfolder = u"docCatalog" + kPathSeparator + u"referenceapi";

TopLevelProductList getInstalledTopLevelProducts() {
    auto collector = doc_products_shared::DocProductCacheManager::getInstance().getDocProductCache();
    if (!collector) {
        return std::make_shared<const ProductVector>();
    }
    return collector->getInstalledTopLevelDocProducts();
}

std::mutex rootsMutex;
std::shared_ptr<const ReferenceRoots> currentRoots;

std::mutex providerMutex;
TopLevelProductsProvider topLevelProductsProvider = getInstalledTopLevelProducts;

std::mutex supportPackageMutex;
SupportPackageSet supportPackageCache;

std::shared_ptr<const doc_products_shared::TopLevelDocProduct> makeTestProduct(const std::u16string& name) {
    return std::make_shared<const doc_products_shared::TopLevelDocProduct>(
        text::utf16ToUtf8(name), "testDisplayName", "testHelpLocation", "testBaseCode", "testAltShortName",
        "testAvailability", doc_products_shared::DocProduct::StringPairList{});
}

// The cached support packages, read from the installation first if none are cached. The caller
// holds supportPackageMutex.
SupportPackageSet loadedSupportPackages() {
    if (!supportPackageCache) {
        const std::u16string root = SupportPackageRootReader{}.getSupportPackageRootNoCreate();
        std::unordered_set<std::u16string> names;
        try {
            names = install::product_impl::utils::getInstalledHardwareSupportPackages(root);
        } catch (...) {
            // An unreadable installation means no support packages; the empty set is cached like
            // any other until the cache is cleared.
        }
        supportPackageCache = std::make_shared<const std::unordered_set<std::u16string>>(std::move(names));
    }
    return supportPackageCache;
}

} // namespace

DocResourceParser::ReferenceRoots::ReferenceRoots()
    : ReferenceRoots(doc_products_shared::Docroot::getInstance().getDocDataRoot()) {}

// Plain concatenation on purpose: the root is taken as given, a trailing separator included.
DocResourceParser::ReferenceRoots::ReferenceRoots(std::u16string root)
    : docRoot(std::move(root)), lookupFolder(docRoot + kPathSeparator + kLookupSubfolder),
      referenceFolder(docRoot + kPathSeparator + kReferenceSubfolder) {}

std::shared_ptr<const DocResourceParser::ReferenceRoots> DocResourceParser::getReferenceRoots() {
    std::lock_guard lock(rootsMutex);
    if (!currentRoots) {
        currentRoots = std::make_shared<const ReferenceRoots>();
    }
    return currentRoots;
}

void DocResourceParser::setReferenceRoot(std::u16string root) {
    auto roots = std::make_shared<const ReferenceRoots>(std::move(root));
    {
        std::lock_guard lock(rootsMutex);
        currentRoots.swap(roots);
    }
    // The previous roots are released here, outside the lock.
}

void DocResourceParser::restoreDefaultSettings() {
    std::shared_ptr<const ReferenceRoots> oldRoots;
    TopLevelProductsProvider oldProvider;
    {
        std::lock(rootsMutex, providerMutex);
        std::lock_guard rootsLock(rootsMutex, std::adopt_lock);
        std::lock_guard providerLock(providerMutex, std::adopt_lock);
        oldRoots = std::exchange(currentRoots, std::make_shared<const ReferenceRoots>());
        oldProvider = std::exchange(topLevelProductsProvider, TopLevelProductsProvider(getInstalledTopLevelProducts));
        clearSupportPackageCache();
    }
}

DocResourceParser::TopLevelProductList DocResourceParser::getTopLevelProducts() {
    std::lock_guard lock(providerMutex);
    return topLevelProductsProvider();
}

DocResourceParser::SupportPackageSet DocResourceParser::getHardwareSupportPackages() {
    std::lock_guard lock(supportPackageMutex);
    return loadedSupportPackages();
}

void DocResourceParser::clearSupportPackageCache() {
    SupportPackageSet old;
    std::lock_guard lock(supportPackageMutex);
    old.swap(supportPackageCache);
}

bool InstalledProducts::contains(const std::u16string& name) const {
    if (products) {
        const std::string narrowName = text::utf16ToUtf8(name);
        for (const auto& product : *products) {
            if (product && product->getShortName() == narrowName) {
                return true;
            }
        }
    }
    return supportPackages && supportPackages->contains(name);
}

InstalledProducts takeInstalledProducts() {
    std::lock(providerMutex, supportPackageMutex);
    std::lock_guard providerLock(providerMutex, std::adopt_lock);
    std::lock_guard packageLock(supportPackageMutex, std::adopt_lock);
    SupportPackageSet supportPackages = loadedSupportPackages();
    return InstalledProducts{topLevelProductsProvider(), std::move(supportPackages)};
}

bool DocResourceParser::isProductInstalled(const std::u16string& name) {
    // Both are loaded on every call, support packages first, even when a product answers.
    SupportPackageSet supportPackages = getHardwareSupportPackages();
    TopLevelProductList products = getTopLevelProducts();
    return InstalledProducts{std::move(products), std::move(supportPackages)}.contains(name);
}

void DocResourceParser::setTestProducts(const std::vector<std::u16string>& productNames,
                                        const std::vector<std::u16string>& supportPackageNames) {
    ProductVector products;
    products.reserve(productNames.size());
    for (const auto& name : productNames) {
        products.push_back(makeTestProduct(name));
    }
    TopLevelProductList list = std::make_shared<const ProductVector>(std::move(products));
    TopLevelProductsProvider provider = [list]() { return list; };
    SupportPackageSet packages = std::make_shared<const std::unordered_set<std::u16string>>(
        supportPackageNames.begin(), supportPackageNames.end(), supportPackageNames.size());
    {
        std::lock(providerMutex, supportPackageMutex);
        std::lock_guard providerLock(providerMutex, std::adopt_lock);
        std::lock_guard packageLock(supportPackageMutex, std::adopt_lock);
        topLevelProductsProvider.swap(provider);
        supportPackageCache.swap(packages);
    }
    // The replaced provider and set are released here, outside the locks.
}

} // namespace reference::docparser
