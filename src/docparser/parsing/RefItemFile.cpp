#include "docparser/parsing/RefItemFile.hpp"

#include "docparser/diagnostics/DiagnosticHooks.hpp"
#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"
#include "docparser/parsing/RefItemParser.hpp"

#include <boost/json/monotonic_resource.hpp>

#include <utility>

namespace reference::docparser {

using RefItemFileMap = DocResourceParser::RefItemFileMap;

RefItemFileMap parseRefItemFileTree(const std::string& text, const RefItemFileMap* replacement) {
    RefItemFileMap result;
    boost::json::monotonic_resource arena(1024);
    const boost::json::value root = diagnostics::parseResourceText(text, &arena);
    const diagnostics::WatchedDocument watch(root);

    const auto replacedPages = [replacement](const std::u16string& key) -> const DocResource<property::RefItem>::ItemMap* {
        if (replacement == nullptr) {
            return nullptr;
        }
        const auto found = replacement->find(key);
        return found == replacement->end() ? nullptr : &found->second.getItems();
    };

    DocResource<property::RefItem> mainDocument = parseRefItemDocument(root, [&](const property::HeaderInfo& header) {
        return PageSelection{false, replacedPages(header.getHelpFolder())};
    });
    result.try_emplace(mainDocument.getHeader().getHelpFolder(), std::move(mainDocument));

    if (const auto* packages = detail::optionalArray(detail::asObject(root), keys::kSupportPackages)) {
        for (const auto& document : *packages) {
            DocResource<property::RefItem> package = parseRefItemDocument(document, [&](const property::HeaderInfo& header) {
                const std::u16string key = header.getBaseCode();
                return PageSelection{result.contains(key), replacedPages(key)};
            });
            if (!result.try_emplace(package.getHeader().getBaseCode(), std::move(package)).second) {
                diagnostics::documentKeyTaken(document, package.getHeader().getBaseCode());
            }
        }
    }
    return result;
}

RefItemFileMap parseRefItemFile(const std::string& text, const RefItemFileMap* replacement) {
    return parseRefItemFileTree(text, replacement);
}

} // namespace reference::docparser
