#pragma once

#include <reference/docparser/DocResourceParser.hpp>

#include "support/TempDir.hpp"

#include "docparser/parsing/TextConversion.hpp"

#include <boost/json/object.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace refdoc::test {

// One entry of a lookup file or one page of a page file: name (or href) and purpose. Texts are
// UTF-8 so that expectations read naturally.
struct Entry {
    std::string key;
    std::string purpose;
    std::string href = {};
};

struct Header {
    std::string productName;
    std::string baseCode;
    std::string helpFolder;
};

// A lookup document: header plus items (href defaults to key + ".html").
boost::json::object lookupDocument(const Header& header, const std::vector<Entry>& items);
// A page document: header plus pages keyed by href (the Entry key), each with its purpose.
boost::json::object pageDocument(const Header& header, const std::vector<Entry>& pages);
// A whole file: the main document with the support package documents (if any) nested in it.
std::string fileText(boost::json::object main, const std::vector<boost::json::object>& supportPackages = {});

// A lookup or page result flattened for comparison, texts in UTF-8:
// key -> (product name, item name or href -> purposes in list order).
using LookupSummary = std::map<std::string, std::pair<std::string, std::map<std::string, std::vector<std::string>>>>;
using PageSummary = LookupSummary;

template <class ResourceMap>
LookupSummary summarize(const ResourceMap& resources) {
    using reference::docparser::text::utf16ToUtf8;
    LookupSummary out;
    for (const auto& [key, resource] : resources) {
        auto& [productName, items] = out[utf16ToUtf8(key)];
        productName = utf16ToUtf8(resource.getHeader().getProductName());
        for (const auto& [itemKey, list] : resource.getItems()) {
            auto& purposes = items[utf16ToUtf8(itemKey)];
            for (const auto& item : list) {
                purposes.push_back(utf16ToUtf8(item.getPurpose()));
            }
        }
    }
    return out;
}

} // namespace refdoc::test
