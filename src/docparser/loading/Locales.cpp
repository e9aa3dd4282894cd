#include <reference/docparser/DocResourceParser.hpp>

#include <doclanguage/DocLanguage.hpp>

#include <algorithm>

namespace reference::docparser {

const std::u16string DocResourceParser::ParsingTools::kEnglishLocale = u"en";

std::u16string DocResourceParser::ParsingTools::getCurrentLocale() {
    return doclanguage::DocLanguage::getInstance().getDocLanguage();
}

std::vector<std::u16string> DocResourceParser::ParsingTools::getSupportedDocLocales() {
    std::vector<std::u16string> locales = doclanguage::DocLanguage::getInstance().getSupportedDocLanguages();
    // English data lives in the unsuffixed files, so English has no suffix of its own.
    locales.erase(std::remove(locales.begin(), locales.end(), kEnglishLocale), locales.end());
    for (auto& locale : locales) {
        locale.insert(locale.begin(), kLocaleSeparator);
    }
    return locales;
}

} // namespace reference::docparser
