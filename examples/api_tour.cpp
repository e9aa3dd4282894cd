// A tour of the refdoc API, run on the bundled sample documentation root (or on the root given
// as the first argument). The README's C++ snippets are excerpts of it; ctest checks that they
// still are (scripts/readme-snippets.py) and runs it.

#include <reference/docparser/DiagnosticLogger.hpp>
#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>
#include <reference/docparser/TextConversion.hpp>
#include <reference/search/SearchIndex.hpp>

#include <doc_products_shared/Docroot.hpp>
#include <doclanguage/DocLanguage.hpp>

#include <boost/json/object.hpp>

#include <iostream>
#include <string>

namespace {

using reference::docparser::DocResourceParser;

// The library's texts are UTF-16; print them as UTF-8 with the library's own converter.
std::string utf8(std::u16string_view text) { return reference::docparser::utf16ToUtf8(text); }

std::u16string utf16(const std::string& text) { return reference::docparser::utf8ToUtf16(text); }

} // namespace

int main(int argc, char** argv) {
    const std::string root = argc > 1 ? argv[1] : REFDOC_SAMPLE_ROOT;

    // 1. The host's services: the documentation root and the documentation languages.
    doc_products_shared::Docroot::getInstance().setDocDataRoot(utf16(root));
    auto& language = doclanguage::DocLanguage::getInstance();
    language.setSupportedDocLanguages({u"en", u"ja"}); // first: only a supported language is used
    // Which products count as installed: the host's catalogue, or fixed names (products, packages).
    DocResourceParser::setTestProducts({u"signal", u"mapping"}, {u"usbdaq"});

    // 2. Every product's lookup index: English files, merged with the current language's variants.
    const auto lookups = DocResourceParser::getResourceLookupFiles();
    for (const auto& [key, resource] : lookups.installedResources) { // key: help folder or base code
        std::cout << utf8(key) << ": " << utf8(resource.getHeader().getProductName()) << '\n';
        for (const auto& [name, entries] : resource.getItems()) {
            for (const auto& entry : entries) {
                std::cout << "  " << utf8(name) << " — " << utf8(entry.getPurpose()) << '\n';
            }
        }
    }
    std::cout << "Not installed: " << lookups.uninstalledResources.size() << " products\n";

    // 3. One product's reference pages (signal.json), keyed by document, then by page link.
    const auto pages = DocResourceParser::getResourceFile(u"signal");
    const auto& fastfilter = pages.at(u"signal").getItems().at(u"signal/ref/fastfilter.html").front();
    std::cout << "\nfastfilter: " << utf8(fastfilter.getPurpose()) << '\n';
    for (const auto& group : fastfilter.getInputGroups()) {
        for (const auto& input : group.getInputs()) {
            std::cout << "  input " << utf8(input.getInfo().getName()) << " → " << utf8(input.getInfo().getAnchor())
                      << '\n';
        }
    }

    // 4. A search index over every entry, queried as people type: names, their segments and
    //    initials, letters in order, typos, several words, purposes.
    const reference::search::SearchIndex index(lookups); // immutable: query it from any thread
    reference::search::SearchQuery query;
    query.text = u"usb samples"; // two words, each in the name or in the purpose
    query.installedOnly = true;
    const auto hits = index.search(query);
    for (const auto& hit : hits) {
        const std::string how(reference::search::toString(hit.match)); // "words": how it matched
        std::cout << "\n" << utf8(hit.item->getName()) << " (" << how << ", " << utf8(*hit.productKey) << ")\n";
    }
    const auto typo = index.search(u"ratechnage"); // a typo: one transposition
    const bool searched = !hits.empty() && hits.front().item->getName() == u"usbacquire" && !typo.empty() &&
                          typo.front().item->getName() == u"ratechange";

    // 5. In Japanese: the translation wins where it exists, English fills the rest.
    language.setDocLanguage(u"ja"); // as given: u"JA" names no variant and reads English only
    const auto japanese = DocResourceParser::getResourceLookupFiles();
    std::cout << "\nIn Japanese: " << utf8(japanese.installedResources.at(u"signal").getHeader().getProductName())
              << '\n';
    language.setDocLanguage(u"en");

    // 6. Broken files are left out without a word; a diagnostics scope says which, and why.
    reference::docparser::ParseDiagnosticsScope diagnostics;
    DocResourceParser::getResourceLookupFiles();
    int dropped = 0;
    for (const auto& file : diagnostics.files()) {
        if (file.dropped()) {
            ++dropped;
            std::cout << "\nDropped " << utf8(file.path) << ": " << file.message << " at " << file.jsonPath << '\n';
        }
    }

    // 7. The file-access log records: "Problem reading JSON file: " (512) is on by default;
    //    16 adds "Reading file: " and "Error reading file: ".
    auto& logger = reference::docparser::diagnosticLogger();
    logger.setEnabledSeverities(reference::docparser::kFileReadErrorSeverity |
                                reference::docparser::kFileAccessSeverity);
    DocResourceParser::getResourceFile(u"optics"); // logs "Reading file: <root>/.../optics.json"
    logger.setEnabledSeverities(reference::docparser::kFileReadErrorSeverity);

    // 8. The field-access tools throw DocParserException, which is not a std::exception.
    bool caught = false;
    try {
        const boost::json::object header{{"productName", "Signal"}};
        DocResourceParser::ParsingTools::getFluString(header, "baseCode", DocResourceParser::ParsingTools::Utf8);
    } catch (const reference::docparser::DocParserException& e) {
        caught = true;
        std::cout << "\n" << e.what() << '\n';
    }

    // 9. The library that runs is the one whose headers the program was compiled with.
    const std::string version = reference::docparser::libraryVersion();
    std::cout << "refdoc " << version << '\n';

    // 10. Back to the host's services for every setting (the root is taken afresh on next use).
    DocResourceParser::restoreDefaultSettings();

    const bool expected = version == REFDOC_VERSION_STRING && !lookups.installedResources.empty() && !pages.empty() &&
                          dropped == 1 && caught && searched;
    return expected ? 0 : 1;
}
