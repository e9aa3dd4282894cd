#pragma once

#include <doc_products_shared/TopLevelDocProduct.hpp>
#include <platform/Export.hpp>

#include <memory>
#include <mutex>
#include <vector>

namespace doc_products_shared {

// The catalogue of installed products. The stand-in holds a list that tests and tools set.
class REFDOC_PLATFORM_API DocProductCollector {
public:
    using ProductList = std::shared_ptr<const std::vector<std::shared_ptr<const TopLevelDocProduct>>>;

    DocProductCollector();

    // Never null; a list handed out is never modified afterwards.
    ProductList getInstalledTopLevelDocProducts() const;
    void setInstalledTopLevelDocProducts(std::vector<std::shared_ptr<const TopLevelDocProduct>> products);

private:
    mutable std::mutex mutex_;
    ProductList products_;
};

} // namespace doc_products_shared
