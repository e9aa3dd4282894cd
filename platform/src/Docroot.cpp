#include <doc_products_shared/Docroot.hpp>

namespace doc_products_shared {

Docroot& Docroot::getInstance() {
    static Docroot instance;
    return instance;
}

std::u16string Docroot::getDocDataRoot() const {
    std::lock_guard lock(mutex_);
    return root_;
}

void Docroot::setDocDataRoot(std::u16string root) {
    std::lock_guard lock(mutex_);
    root_ = std::move(root);
}

} // namespace doc_products_shared
