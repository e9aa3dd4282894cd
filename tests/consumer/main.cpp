// Uses the public API through the one header a host includes.
#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/TextConversion.hpp>

#include <cstdio>

int main() {
    using namespace reference;
    try {
        throw docparser::DocParserException();
    } catch (const foundation::core::except::IException& e) {
        std::printf("caught %s\n", e.what());
    }
    const auto type = property::RefEntityType::stringToEnum("block");
    docparser::DocResource<property::RefItemLookup> resource(
        property::HeaderInfo(u"Product", u"PR", u"product", u"help/product"),
        {{u"f", {property::RefItemLookup(u"f", type, u"does f", false, u"f.html", property::FunctionType::Ordinary)}}});
    std::printf("entity type %d, %zu item group(s)\n", static_cast<int>(type), resource.getItems().size());

    // The loading entries on a root that holds nothing: empty results, no exception.
    docparser::DocResourceParser::setReferenceRoot(u"/nonexistent/refdoc-consumer");
    docparser::DocResourceParser::setTestProducts({u"product"}, {});
    const auto lookups = docparser::DocResourceParser::getResourceLookupFiles();
    const auto pages = docparser::DocResourceParser::getResourceFile(u"product");
    const bool installed = docparser::DocResourceParser::isProductInstalled(u"product");
    docparser::DocResourceParser::restoreDefaultSettings();
    std::printf("lookups %zu/%zu, pages %zu, installed %d\n", lookups.installedResources.size(),
                lookups.uninstalledResources.size(), pages.size(), installed ? 1 : 0);
    // The exported converters: an ill-formed byte comes back as U+FFFD.
    const std::string roundTrip = docparser::utf16ToUtf8(docparser::utf8ToUtf16("\xC3\xA9-\xFF"));
    std::printf("converted %s\n", roundTrip.c_str());
    return resource.getItems().size() == 1 && lookups.installedResources.empty() && pages.empty() && installed &&
                   roundTrip == "\xC3\xA9-\xEF\xBF\xBD"
               ? 0
               : 1;
}
