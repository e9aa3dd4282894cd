#include "ProductPages.hpp"

#include "Text.hpp"

namespace refdoc::tool {

std::string firstFolder(const std::string& href) { return href.substr(0, href.find('/')); }

std::vector<std::string> readingOrder(const std::set<std::string>& names, const std::string& folder) {
    std::vector<std::string> order;
    if (names.count(folder) != 0) {
        order.push_back(folder);
    }
    for (const auto& name : names) {
        if (name != folder) {
            order.push_back(name);
        }
    }
    return order;
}

std::string productFolder(const reference::docparser::DocResourceParser::LookupResourceMap::mapped_type* resource,
                          const std::string& key) {
    if (resource != nullptr) {
        for (const auto& [name, entries] : resource->getItems()) {
            if (!entries.empty()) {
                return firstFolder(toUtf8(entries.front().getHref()));
            }
        }
    }
    return key;
}

std::string productPageFile(const std::set<std::string>& names, const std::string& folder,
                            const std::function<bool(const std::string&)>& hasProduct) {
    for (const auto& name : readingOrder(names, folder)) {
        if (hasProduct(name)) {
            return name;
        }
    }
    return {};
}

} // namespace refdoc::tool
