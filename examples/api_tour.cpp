// A tour of the refdoc API, run on the bundled sample documentation root (or on the root given
// as the first argument). The README walks through it.

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>
#include <reference/docparser/TextConversion.hpp>

#include <doclanguage/DocLanguage.hpp>

#include <iostream>
#include <string>

namespace {

using reference::docparser::DocResourceParser;

// The library's texts are UTF-16; they are printed as UTF-8 with the library's own converter.
std::string utf8(std::u16string_view text) { return reference::docparser::utf16ToUtf8(text); }

std::u16string utf16(const std::string& text) { return reference::docparser::utf8ToUtf16(text); }

} // namespace

int main(int argc, char** argv) {
    const std::string root = argc > 1 ? argv[1] : REFDOC_SAMPLE_ROOT;

    // 1. Settings. The documentation root, and which products count as installed. A host's own
    //    services supply these; here the library is told directly.
    DocResourceParser::setReferenceRoot(utf16(root));
    DocResourceParser::setTestProducts({u"signal", u"mapping"}, {u"usbdaq"});
    // The documentation language comes from the host's language service (a stand-in here).
    doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});

    // 2. Every product's lookup index: English files, merged with the current language's variants.
    const auto lookups = DocResourceParser::getResourceLookupFiles();
    std::cout << "Installed products:\n";
    for (const auto& [key, resource] : lookups.installedResources) {
        std::cout << "  " << utf8(key) << ": " << utf8(resource.getHeader().getProductName()) << '\n';
        for (const auto& [name, entries] : resource.getItems()) {
            for (const auto& entry : entries) {
                std::cout << "    " << utf8(name) << (entry.isDeprecated() ? " (deprecated)" : "") << " — "
                          << utf8(entry.getPurpose()) << '\n';
            }
        }
    }
    std::cout << "Not installed: " << lookups.uninstalledResources.size() << " products\n";

    // 3. One product's reference pages, keyed by document (product or support package), then href.
    const auto pages = DocResourceParser::getResourceFile(u"signal");
    const auto& fastfilter = pages.at(u"signal").getItems().at(u"signal/ref/fastfilter.html").front();
    std::cout << "\nfastfilter: " << utf8(fastfilter.getPurpose()) << '\n';
    for (const auto& group : fastfilter.getInputGroups()) {
        for (const auto& input : group.getInputs()) {
            std::cout << "  input " << utf8(input.getInfo().getName()) << " → " << utf8(input.getInfo().getAnchor())
                      << '\n';
        }
    }

    // 4. In Japanese: the translation wins where it exists, English fills the rest.
    doclanguage::DocLanguage::getInstance().setDocLanguage(u"ja");
    const auto japanese = DocResourceParser::getResourceLookupFiles();
    std::cout << "\nIn Japanese: " << utf8(japanese.installedResources.at(u"signal").getHeader().getProductName())
              << '\n';
    doclanguage::DocLanguage::getInstance().setDocLanguage(u"en");

    // 5. Broken files are dropped silently; a diagnostics scope says which, and why.
    reference::docparser::ParseDiagnosticsScope diagnostics;
    DocResourceParser::getResourceLookupFiles();
    int dropped = 0;
    for (const auto& file : diagnostics.files()) {
        if (file.dropped()) {
            ++dropped;
            std::cout << "\nDropped " << utf8(file.path) << ": " << file.message << " at " << file.jsonPath << '\n';
        }
    }

    // 6. The library that runs is the one whose headers the program was compiled with.
    const std::string version = reference::docparser::libraryVersion();
    std::cout << "\nrefdoc " << version << '\n';

    DocResourceParser::restoreDefaultSettings();
    const bool expected =
        version == REFDOC_VERSION_STRING && !lookups.installedResources.empty() && !pages.empty() && dropped == 1;
    return expected ? 0 : 1;
}
