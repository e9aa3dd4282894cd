// An application that calls only the loading operations. Linked as needed it depends on the
// docparser library alone, which must then find the platform library by itself. (A program that
// keeps reference pages names the platform library too: their engine handles are released
// through it.)
#include <reference/docparser/DocResourceParser.hpp>

#include <platform/Export.hpp>

#include <cstdio>

#ifndef CONSUMER_PLATFORM_EXPORT
#error "the library's include path hides the application's own platform/Export.hpp"
#endif

int main() {
    using reference::docparser::DocResourceParser;
    // A root that holds nothing: empty results, no exception.
    DocResourceParser::setReferenceRoot(u"/nonexistent/refdoc-consumer");
    DocResourceParser::setTestProducts({u"product"}, {});
    const auto lookups = DocResourceParser::getResourceLookupFiles();
    const bool installed = DocResourceParser::isProductInstalled(u"product");
    DocResourceParser::restoreDefaultSettings();
    std::printf("lookups %zu/%zu, installed %d\n", lookups.installedResources.size(),
                lookups.uninstalledResources.size(), installed ? 1 : 0);
    return lookups.installedResources.empty() && lookups.uninstalledResources.empty() && installed ? 0 : 1;
}
