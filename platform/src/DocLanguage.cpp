#include <doclanguage/DocLanguage.hpp>

namespace doclanguage {

DocLanguage::DocLanguage() : language_(u"en"), supported_{u"en"} {}

DocLanguage& DocLanguage::getInstance() {
    static DocLanguage instance;
    return instance;
}

std::u16string DocLanguage::getDocLanguage() const {
    std::lock_guard lock(mutex_);
    return language_;
}

std::vector<std::u16string> DocLanguage::getSupportedDocLanguages() const {
    std::lock_guard lock(mutex_);
    return supported_;
}

void DocLanguage::setDocLanguage(std::u16string language) {
    std::lock_guard lock(mutex_);
    language_ = std::move(language);
}

void DocLanguage::setSupportedDocLanguages(std::vector<std::u16string> languages) {
    std::lock_guard lock(mutex_);
    supported_ = std::move(languages);
}

} // namespace doclanguage
