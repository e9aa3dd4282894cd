// refdoc lookup: every product's lookup index under a documentation root, as the library's
// getResourceLookupFiles returns it.

#include "CheckReport.hpp"
#include "Commands.hpp"
#include "Host.hpp"
#include "Json.hpp"
#include "Text.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/object.hpp>

#include <algorithm>
#include <memory>

namespace refdoc::tool {
namespace {

using reference::docparser::DocResourceParser;
using reference::docparser::ParseDiagnosticsScope;

struct ProductRow {
    std::string key;
    bool installed;
    std::size_t items;
    std::string productName;
};

void addRows(const DocResourceParser::LookupResourceMap& resources, bool installed, std::vector<ProductRow>& rows) {
    for (const auto& [key, resource] : resources) {
        std::size_t items = 0;
        for (const auto& entry : resource.getItems()) {
            items += entry.second.size();
        }
        rows.push_back({toUtf8(key), installed, items, toUtf8(resource.getHeader().getProductName())});
    }
}

struct Options {
    HostOptions host;
    bool json = false;
};

int run(const Options& options, std::ostream& out, std::ostream& err) {
    const HostSettings settings = resolveHostSettings(options.host);
    applyHostSettings(settings);
    if (std::find(settings.supportedLanguages.begin(), settings.supportedLanguages.end(), settings.language) ==
        settings.supportedLanguages.end()) {
        err << "refdoc: warning: language '" << settings.language
            << "' is not a supported language; its files are read as English products\n";
    }
    std::size_t dropped = 0;
    const auto results = [&] {
        ParseDiagnosticsScope scope;
        auto loaded = DocResourceParser::getResourceLookupFiles();
        dropped = droppedCount(scope.files());
        return loaded;
    }();

    if (options.json) {
        writeJson(out, boost::json::object{{"installedResources", toJson(results.installedResources)},
                                           {"uninstalledResources", toJson(results.uninstalledResources)},
                                           {"droppedFiles", dropped}});
        return kExitOk;
    }

    std::vector<ProductRow> rows;
    addRows(results.installedResources, true, rows);
    addRows(results.uninstalledResources, false, rows);
    std::stable_sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) { return a.key < b.key; });

    out << "Documentation root: " << settings.root.string() << (settings.sampleRoot ? " (bundled sample)" : "")
        << "\nLanguage: " << settings.language << " (supported: " << joinList(settings.supportedLanguages, ", ")
        << ")\n\n";
    if (rows.empty()) {
        out << "No lookup data found.\n" << droppedLine(dropped) << '\n';
        return kExitOk;
    }
    std::size_t keyWidth = 3;
    for (const auto& row : rows) {
        keyWidth = std::max(keyWidth, displayWidth(row.key));
    }
    out << padRight("KEY", keyWidth) << "  INSTALLED  ITEMS  PRODUCT\n";
    std::size_t installed = 0;
    for (const auto& row : rows) {
        const std::string count = std::to_string(row.items);
        out << padRight(row.key, keyWidth) << "  " << (row.installed ? "yes      " : "no       ") << "  "
            << std::string(count.size() < 5 ? 5 - count.size() : 0, ' ') << count << "  " << row.productName << '\n';
        installed += row.installed ? 1 : 0;
    }
    out << '\n'
        << rows.size() << (rows.size() == 1 ? " product: " : " products: ") << installed << " installed, "
        << rows.size() - installed << " not installed\n"
        << droppedLine(dropped) << '\n';
    return kExitOk;
}

} // namespace

Command lookupCommand() {
    Command command;
    command.name = "lookup";
    command.summary = "list every product's lookup index: key, installed or not, product name, items";
    command.help = "Usage: refdoc lookup [options]\n"
                   "\n"
                   "Loads the lookup indexes of every product under the documentation root (loose files\n"
                   "and zip packages, English merged with the current language's variants) and prints,\n"
                   "per product key, whether it is installed, its item count and its product name.\n"
                   "\n"
                   "Options:\n"
                   "  --json                   print the whole result (installedResources and\n"
                   "                           uninstalledResources) as JSON\n" +
                   hostOptionsHelp();
    command.define = [](CLI::App& app) -> Runner {
        auto options = std::make_shared<Options>();
        addHostOptions(app, options->host);
        addFlag(app, "--json", options->json);
        return [options](std::ostream& out, std::ostream& err) { return run(*options, out, err); };
    };
    return command;
}

} // namespace refdoc::tool
