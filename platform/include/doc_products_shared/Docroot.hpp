#pragma once

#include <refdoc/platform/Export.hpp>

#include <mutex>
#include <string>

namespace doc_products_shared {

// The host's documentation root service. The stand-in holds the root as a setting (default "").
class REFDOC_PLATFORM_API Docroot {
public:
    static Docroot& getInstance();

    std::u16string getDocDataRoot() const;
    void setDocDataRoot(std::u16string root);

    Docroot(const Docroot&) = delete;
    Docroot& operator=(const Docroot&) = delete;

private:
    Docroot() = default;

    mutable std::mutex mutex_;
    std::u16string root_;
};

} // namespace doc_products_shared
