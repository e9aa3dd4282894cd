#pragma once

#include <reference/property/HeaderInfo.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace reference::docparser {

/// Everything one document of a resource file holds: its header and its items grouped by key
/// (the item's name in a lookup file, its href in a page file), each group in file order.
/// T is reference::property::RefItemLookup or reference::property::RefItem.
template <class T>
class DocResource {
public:
    using ItemMap = std::map<std::u16string, std::vector<T>>;

    DocResource(property::HeaderInfo header, ItemMap items) noexcept
        : header_(std::move(header)), items_(std::move(items)) {}

    DocResource(const DocResource&) = default;
    DocResource(DocResource&&) noexcept = default;
    DocResource& operator=(const DocResource&) = default;
    DocResource& operator=(DocResource&&) noexcept = default;
    ~DocResource() = default;

    const property::HeaderInfo& getHeader() const noexcept { return header_; }
    property::HeaderInfo& getHeader() noexcept { return header_; }
    const ItemMap& getItems() const noexcept { return items_; }
    ItemMap& getItems() noexcept { return items_; }

    bool operator==(const DocResource&) const = default;

private:
    property::HeaderInfo header_;
    ItemMap items_;
};

} // namespace reference::docparser
