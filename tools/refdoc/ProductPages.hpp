#pragma once

// Which page file has a product's pages. The library reads one page file at a time, by name, and
// leaves it to the caller which name to ask for; the tool asks first for the file named for the
// folder of the product's links, where the pages usually are, then for the others by name.
// `refdoc page KEY`, the cross-reference checks of `refdoc check` and serve agree through these.

#include <reference/docparser/DocResourceParser.hpp>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace refdoc::tool {

// The first folder of a link: "signal" for "signal/ref/fastfilter.html".
std::string firstFolder(const std::string& href);

// The page files to read for `folder`, the first folder of a link or a product's help folder:
// the file named for it first, then every other one of `names`.
std::vector<std::string> readingOrder(const std::set<std::string>& names, const std::string& folder);

// The folder a product's page file is looked for first: that of its first entry's link, else
// its key.
std::string productFolder(const reference::docparser::DocResourceParser::LookupResourceMap::mapped_type* resource,
                          const std::string& key);

// The first of `names`, in readingOrder for `folder`, for which `hasProduct` is true; "" when
// none is.
std::string productPageFile(const std::set<std::string>& names, const std::string& folder,
                            const std::function<bool(const std::string&)>& hasProduct);

} // namespace refdoc::tool
