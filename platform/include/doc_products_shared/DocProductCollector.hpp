#pragma once

#include <doc_products_shared/TopLevelDocProduct.hpp>
#include <refdoc/platform/Export.hpp>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace doc_products_shared {

// The catalogue of installed products. The stand-in holds a list that tests and tools set.
class REFDOC_PLATFORM_API DocProductCollector {
public:
    using ProductList = std::shared_ptr<const std::vector<std::shared_ptr<const TopLevelDocProduct>>>;

    DocProductCollector();

    // Never null; a list handed out is never modified afterwards. Throws std::runtime_error while
    // a failure is set.
    ProductList getInstalledTopLevelDocProducts() const;
    void setInstalledTopLevelDocProducts(std::vector<std::shared_ptr<const TopLevelDocProduct>> products);

    // Makes the catalogue unreadable (a non-empty message) or readable again (an empty one), as a
    // real catalogue can be.
    void setFailure(std::string message);

private:
    mutable std::mutex mutex_;
    ProductList products_;
    std::string failure_;
};

} // namespace doc_products_shared
