#include <doc_products_shared/DocProductCacheManager.hpp>
#include <doc_products_shared/DocProductCollector.hpp>
#include <doc_products_shared/TopLevelDocProduct.hpp>

#include <stdexcept>

namespace doc_products_shared {

DocProduct::DocProduct(std::string shortName, std::string displayName, std::string helpLocation, std::string baseCode,
                       std::string altShortName, std::string availability, StringPairList attributes)
    : shortName_(std::move(shortName)), displayName_(std::move(displayName)), helpLocation_(std::move(helpLocation)),
      baseCode_(std::move(baseCode)), altShortName_(std::move(altShortName)), availability_(std::move(availability)),
      attributes_(std::move(attributes)) {}

DocProduct::~DocProduct() = default;
TopLevelDocProduct::~TopLevelDocProduct() = default;

DocProductCollector::DocProductCollector()
    : products_(std::make_shared<const std::vector<std::shared_ptr<const TopLevelDocProduct>>>()) {}

DocProductCollector::ProductList DocProductCollector::getInstalledTopLevelDocProducts() const {
    std::lock_guard lock(mutex_);
    if (!failure_.empty()) {
        throw std::runtime_error(failure_);
    }
    return products_;
}

void DocProductCollector::setFailure(std::string message) {
    std::lock_guard lock(mutex_);
    failure_ = std::move(message);
}

void DocProductCollector::setInstalledTopLevelDocProducts(
    std::vector<std::shared_ptr<const TopLevelDocProduct>> products) {
    auto list = std::make_shared<const std::vector<std::shared_ptr<const TopLevelDocProduct>>>(std::move(products));
    std::lock_guard lock(mutex_);
    products_ = std::move(list);
}

DocProductCacheManager::DocProductCacheManager() : collector_(std::make_shared<DocProductCollector>()) {}

DocProductCacheManager& DocProductCacheManager::getInstance() {
    static DocProductCacheManager instance;
    return instance;
}

std::shared_ptr<DocProductCollector> DocProductCacheManager::getDocProductCache() const { return collector_; }

} // namespace doc_products_shared
