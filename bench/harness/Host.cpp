#include "Host.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <SupportPackageRootReader.hpp>
#include <doc_products_shared/DocProductCacheManager.hpp>
#include <doc_products_shared/Docroot.hpp>
#include <doclanguage/DocLanguage.hpp>

#include <memory>
#include <vector>

namespace refdoc::bench {
namespace {

std::u16string widen(const std::string& ascii) { return std::u16string(ascii.begin(), ascii.end()); }

} // namespace

void configureHost(const std::filesystem::path& root, const Manifest& manifest, const std::string& language) {
    doc_products_shared::Docroot::getInstance().setDocDataRoot(root.u16string());
    SupportPackageRootReader::setSupportPackageRoot((root / manifest.supportPackageRoot).u16string());

    std::vector<std::shared_ptr<const doc_products_shared::TopLevelDocProduct>> products;
    for (const auto& product : manifest.products) {
        if (product.installed) {
            products.push_back(std::make_shared<const doc_products_shared::TopLevelDocProduct>(
                product.name, product.productName, "help/" + product.name, "", "", "installed"));
        }
    }
    doc_products_shared::DocProductCacheManager::getInstance().getDocProductCache()->setInstalledTopLevelDocProducts(
        std::move(products));

    std::vector<std::u16string> languages{u"en"};
    for (const auto& code : manifest.localeCodes) {
        languages.push_back(widen(code));
    }
    doclanguage::DocLanguage::getInstance().setSupportedDocLanguages(std::move(languages));
    setCurrentLanguage(language);
    // Roots and the support-package cache are read again from the services just set.
    reference::docparser::DocResourceParser::restoreDefaultSettings();
}

void setCurrentLanguage(const std::string& language) {
    doclanguage::DocLanguage::getInstance().setDocLanguage(widen(language));
}

} // namespace refdoc::bench
