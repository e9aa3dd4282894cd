#pragma once

#include <doc_products_shared/DocProductCollector.hpp>
#include <refdoc/platform/Export.hpp>

#include <memory>

namespace doc_products_shared {

// Gives access to the process's product catalogue.
class REFDOC_PLATFORM_API DocProductCacheManager {
public:
    static DocProductCacheManager& getInstance();

    std::shared_ptr<DocProductCollector> getDocProductCache() const;

    DocProductCacheManager(const DocProductCacheManager&) = delete;
    DocProductCacheManager& operator=(const DocProductCacheManager&) = delete;

private:
    DocProductCacheManager();

    std::shared_ptr<DocProductCollector> collector_;
};

} // namespace doc_products_shared
