#include "FuzzTargets.hpp"

#include "docparser/parsing/RefItemParser.hpp"

#include <boost/json/parse.hpp>

#include <reference/docparser/DocResourceParser.hpp>

#include <doclanguage/DocLanguage.hpp>

#include <boost/system/system_error.hpp>

#include <set>

namespace refdoc::fuzz {
namespace {

using reference::docparser::DocParserException;
using reference::docparser::DocResourceParser;
using PageMap = DocResourceParser::RefItemFileMap;

// The file's pages, or nothing for a file that counts as absent. The same tables read the
// parsed value of strict JSON text: it must give the same pages, or the same refusal.
PageMap parsedOrAbsent(const std::string& text) {
    PageMap pages;
    bool accepted = true;
    try {
        pages = reference::docparser::parseRefItemFile(text, nullptr, nullptr);
    } catch (const DocParserException&) {
        accepted = false;
    } catch (const boost::system::system_error&) {
        return {};
    }
    bool valueAccepted = true;
    PageMap fromValue;
    try {
        fromValue = reference::docparser::parseRefItemFile(boost::json::parse(text));
    } catch (const DocParserException&) {
        valueAccepted = false;
    }
    require(valueAccepted == accepted && fromValue == pages, "the text and its parsed value give the same pages");
    return pages;
}

// Per document the translation's header wins; per link its pages win and English pages fill the
// links it lacks; documents of one language only are kept as they are.
void checkCombined(const PageMap& result, const PageMap& english, const PageMap& japanese) {
    std::set<std::u16string> keys;
    for (const auto* pages : {&english, &japanese}) {
        for (const auto& entry : *pages) {
            keys.insert(entry.first);
        }
    }
    require(result.size() == keys.size(), "one document per key of either file");
    for (const auto& key : keys) {
        const auto combined = result.find(key);
        require(combined != result.end(), "every document of either file is in the result");
        const auto englishDocument = english.find(key);
        const auto japaneseDocument = japanese.find(key);
        if (japaneseDocument == japanese.end()) {
            require(combined->second == englishDocument->second, "an English-only document is kept whole");
            continue;
        }
        if (englishDocument == english.end()) {
            require(combined->second == japaneseDocument->second, "a Japanese-only document is kept whole");
            continue;
        }
        require(combined->second.getHeader() == japaneseDocument->second.getHeader(), "the translation's header wins");
        auto pages = englishDocument->second.getItems();
        for (const auto& [href, items] : japaneseDocument->second.getItems()) {
            pages.insert_or_assign(href, items);
        }
        require(combined->second.getItems() == pages, "translated pages win per link, English fills the rest");
    }
}

} // namespace

PageFileTarget::PageFileTarget() {
    DocResourceParser::setReferenceRoot(root_.path().u16string());
    doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});
}

void PageFileTarget::run(std::string_view input) const {
    const auto separator = input.find(kLocalizedSeparator);
    const bool localized = separator != std::string_view::npos;
    const std::string english(input.substr(0, separator));
    const std::string japanese = localized ? std::string(input.substr(separator + kLocalizedSeparator.size())) : "";
    ScratchRoot::write(root_.referenceFolder() / "p.json", english);
    ScratchRoot::write(root_.referenceFolder() / "p_ja.json", japanese);
    doclanguage::DocLanguage::getInstance().setDocLanguage(localized ? u"ja" : u"en");

    const PageMap result = DocResourceParser::getResourceFile(u"p");

    if (!localized) {
        require(result == parsedOrAbsent(english), "with English current the English file alone counts");
        return;
    }
    checkCombined(result, parsedOrAbsent(english), parsedOrAbsent(japanese));
}

} // namespace refdoc::fuzz
