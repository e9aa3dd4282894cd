// refdoc page NAME: reference pages as the library's getResourceFile returns them, rendered for
// a terminal: a page file's, a product's or the one page an entry name or a link names.

#include "CheckReport.hpp"
#include "Commands.hpp"
#include "Host.hpp"
#include "Json.hpp"
#include "PageView.hpp"
#include "ProductPages.hpp"
#include "Search.hpp"
#include "Text.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/array.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <set>

namespace refdoc::tool {
namespace {

using reference::docparser::DocResourceParser;
using reference::property::RefItem;

// "name — purpose" followed by indented detail lines.
void renderArgument(std::ostream& out, const PageView::Argument& argument, std::vector<std::string> details) {
    out << "    " << argument.name;
    if (!argument.purpose.empty()) {
        out << " — " << argument.purpose;
    }
    out << '\n';
    if (!argument.values.empty()) {
        details.insert(details.begin(), "values: " + joinList(argument.values, ", "));
    }
    details.push_back("anchor: " + argument.anchor);
    for (const auto& detail : details) {
        out << "        " << detail << '\n';
    }
}

std::vector<std::string> defaultDetail(const PageView::Argument& argument) {
    if (argument.defaultValue.empty()) {
        return {};
    }
    return {"default: " + argument.defaultValue};
}

void renderPage(std::ostream& out, const PageView& page) {
    std::vector<std::string> kinds;
    for (const auto& entity : page.entities) {
        if (!entity.type.empty()) {
            kinds.push_back(entity.type);
        }
    }
    out << "── " << page.heading();
    if (!kinds.empty()) {
        out << "  [" << joinList(kinds, ", ") << ']';
    }
    out << '\n';
    out << "  " << page.purpose << '\n';
    out << "  Link: " << page.href << '\n';

    std::vector<std::string> facts;
    if (!page.packageName.empty()) {
        facts.push_back("Package: " + page.packageName);
    }
    if (!page.introduced.empty()) {
        facts.push_back("Introduced: " + page.introduced);
    }
    facts.push_back("Status: " + page.deprecationStatus);
    out << "  " << joinList(facts, "   ") << '\n';
    if (!page.description.empty()) {
        out << "  " << page.description << '\n';
    }
    if (!page.thumbnailFileRef.empty()) {
        out << "  Thumbnail: " << page.thumbnailFileRef << " (" << page.thumbnailAltText << ")\n";
    }

    if (!page.syntaxGroups.empty()) {
        out << "\n  Syntax\n";
        for (const auto& group : page.syntaxGroups) {
            out << "    " << group.title;
            if (!group.syntaxType.empty()) {
                out << " (" << group.syntaxType << ')';
            }
            out << '\n';
            for (const auto& line : group.lines) {
                out << "        " << line << '\n';
            }
        }
    }
    for (const auto& group : page.inputGroups) {
        out << "\n  Inputs: " << group.title << '\n';
        for (const auto& input : group.arguments) {
            std::vector<std::string> details;
            if (!input.syntaxType.empty()) {
                details.push_back("kind: " + input.syntaxType + (input.nameValuePair ? ", name-value pair" : ""));
            } else if (input.nameValuePair) {
                details.push_back("kind: name-value pair");
            }
            for (auto& detail : defaultDetail(input)) {
                details.push_back(std::move(detail));
            }
            renderArgument(out, input, std::move(details));
        }
    }
    if (!page.outputs.empty()) {
        out << "\n  Outputs\n";
        for (const auto& output : page.outputs) {
            renderArgument(out, output, {});
        }
    }
    for (const auto& group : page.propertyGroups) {
        out << "\n  Properties" << (group.title.empty() ? "" : ": " + group.title) << '\n';
        for (const auto& property : group.arguments) {
            renderArgument(out, property, defaultDetail(property));
        }
    }
    if (!page.parameters.empty()) {
        out << "\n  Parameters\n";
        for (const auto& parameter : page.parameters) {
            renderArgument(out, parameter, defaultDetail(parameter));
        }
    }
    if (!page.examples.empty()) {
        out << "\n  Examples\n";
        for (const auto& example : page.examples) {
            out << "    " << example.title << "\n        " << example.url << '\n';
            if (!example.openCommand.empty()) {
                out << "        open: " << example.openCommand << '\n';
            }
        }
    }
    if (!page.seeAlso.empty()) {
        out << "\n  See also\n";
        for (const auto& link : page.seeAlso) {
            out << "    " << link.name << "  " << link.url << '\n';
        }
    }
    out << '\n';
}

struct Options {
    HostOptions host;
    bool json = false;
    std::string name;
};

using PageFiles = DocResourceParser::RefItemFileMap;

// The pages of `href` (a link without its fragment) in one page file, or null.
const std::vector<RefItem>* pagesAt(const PageFiles& files, const std::u16string& href, std::u16string* key = nullptr) {
    for (const auto& [fileKey, resource] : files) {
        const auto found = resource.getItems().find(href);
        if (found != resource.getItems().end()) {
            if (key != nullptr) {
                *key = fileKey;
            }
            return &found->second;
        }
    }
    return nullptr;
}

void printHeader(std::ostream& out, const std::u16string& key,
                 const DocResourceParser::RefItemFileMap::mapped_type& resource, bool whole) {
    out << "══ " << toUtf8(resource.getHeader().getProductName()) << "  [" << toUtf8(key) << "]";
    if (whole) {
        std::size_t count = 0;
        for (const auto& entry : resource.getItems()) {
            count += entry.second.size();
        }
        out << "  " << count << (count == 1 ? " page" : " pages");
    }
    out << ", help in " << toUtf8(resource.getHeader().getHelpLocation()) << "\n\n";
}

int printFiles(const PageFiles& files, bool json, std::ostream& out) {
    if (json) {
        writeJson(out, toJson(files));
        return kExitOk;
    }
    for (const auto& [key, resource] : files) {
        printHeader(out, key, resource, true);
        for (const auto& entry : resource.getItems()) {
            for (const auto& page : entry.second) {
                renderPage(out, makePageView(page));
            }
        }
    }
    return kExitOk;
}

// One page: every record the file has for its link (usually one).
int printPage(const PageFiles& files, const std::u16string& href, bool json, std::ostream& out) {
    std::u16string key;
    const auto* pages = pagesAt(files, href, &key);
    if (json) {
        boost::json::array array;
        for (const auto& page : *pages) {
            array.push_back(toJson(page));
        }
        writeJson(out, array);
        return kExitOk;
    }
    printHeader(out, key, files.at(key), false);
    for (const auto& page : *pages) {
        renderPage(out, makePageView(page));
    }
    return kExitOk;
}

// Finds the page `href` (fragment removed) in the page files; prints it when there is one.
std::optional<int> pageByHref(const std::set<std::string>& names, const std::string& href, bool json,
                              std::ostream& out) {
    const std::u16string wanted = toUtf16(href);
    for (const auto& name : readingOrder(names, firstFolder(href))) {
        const PageFiles files = DocResourceParser::getResourceFile(toUtf16(name));
        if (pagesAt(files, wanted) != nullptr) {
            return printPage(files, wanted, json, out);
        }
    }
    return std::nullopt;
}

// The pages of the product `key`, from whichever page file delivers that key.
std::optional<int> pagesOfProduct(const std::set<std::string>& names, const LookupResults& lookup,
                                  const std::string& key, bool json, std::ostream& out) {
    const std::u16string wanted = toUtf16(key);
    const auto* resource = [&]() -> const DocResourceParser::LookupResourceMap::mapped_type* {
        for (const auto* map : {&lookup.installedResources, &lookup.uninstalledResources}) {
            if (const auto found = map->find(wanted); found != map->end()) {
                return &found->second;
            }
        }
        return nullptr;
    }();
    if (resource == nullptr) {
        return std::nullopt;
    }
    PageFiles files;
    const std::string file = productPageFile(names, productFolder(resource, key), [&](const std::string& name) {
        files = DocResourceParser::getResourceFile(toUtf16(name));
        return files.count(wanted) != 0;
    });
    if (!file.empty()) {
        PageFiles one;
        one.insert(*files.find(wanted));
        return printFiles(one, json, out);
    }
    return std::nullopt;
}

struct Candidate {
    std::string href; // without its fragment
    std::string productKey;
    std::string productName;
};

// The distinct pages the lookup entries named exactly `name` link to; entries named so with
// any case when none has exactly that name.
std::vector<Candidate> entriesNamed(const LookupResults& lookup, const std::string& name) {
    std::vector<Candidate> exact;
    std::vector<Candidate> folded;
    const std::u16string wanted = toUtf16(name);
    const std::u32string wantedFolded = foldCase(wanted);
    for (const auto* map : {&lookup.installedResources, &lookup.uninstalledResources}) {
        for (const auto& [key, resource] : *map) {
            for (const auto& [entryName, entries] : resource.getItems()) {
                const bool same = entryName == wanted;
                if (!same && foldCase(entryName) != wantedFolded) {
                    continue;
                }
                for (const auto& entry : entries) {
                    const std::string href = toUtf8(entry.getHref());
                    Candidate candidate{href.substr(0, href.find('#')), toUtf8(key),
                                        toUtf8(resource.getHeader().getProductName())};
                    auto& list = same ? exact : folded;
                    if (std::none_of(list.begin(), list.end(),
                                     [&](const Candidate& c) { return c.href == candidate.href; })) {
                        list.push_back(std::move(candidate));
                    }
                }
            }
        }
    }
    return exact.empty() ? folded : exact;
}

int run(const Options& options, std::ostream& out, std::ostream& err) {
    const std::string& name = options.name;
    if (name.empty()) {
        throw UsageError("NAME must not be empty");
    }
    const HostSettings settings = resolveHostSettings(options.host);
    applyHostSettings(settings);
    const auto roots = DocResourceParser::getReferenceRoots();
    const std::set<std::string> names = pageFileRoles(toUtf8(roots->referenceFolder)).names;
    const std::string where = " under " + settings.root.string() + " (language " + settings.language + ")";

    // A link: a path with a folder, as lookup entries and see-also links give them.
    if (name.find('/') != std::string::npos) {
        const std::string href = name.substr(0, name.find('#'));
        if (const auto status = pageByHref(names, href, options.json, out)) {
            return *status;
        }
        err << "refdoc: no page file has the page '" << href << "'" << where
            << "; 'refdoc check' tells whether a file was dropped\n";
        return kExitProblem;
    }
    // A page file's name.
    if (names.count(name) != 0) {
        const PageFiles files = DocResourceParser::getResourceFile(toUtf16(name));
        if (!files.empty()) {
            return printFiles(files, options.json, out);
        }
        err << "refdoc: the page file " << name << ".json has no pages" << where
            << "; 'refdoc check' tells whether it was dropped\n";
        return kExitProblem;
    }
    // A product key, then a lookup entry's name.
    const LookupResults lookup = DocResourceParser::getResourceLookupFiles();
    if (const auto status = pagesOfProduct(names, lookup, name, options.json, out)) {
        return *status;
    }
    const std::vector<Candidate> candidates = entriesNamed(lookup, name);
    if (candidates.size() == 1) {
        if (const auto status = pageByHref(names, candidates.front().href, options.json, out)) {
            return *status;
        }
        err << "refdoc: the lookup entry '" << name << "' links to " << candidates.front().href
            << ", but no page file has that page" << where << "; 'refdoc check' tells whether a file was dropped\n";
        return kExitProblem;
    }
    if (candidates.size() > 1) {
        err << "refdoc: " << candidates.size() << " pages have the name '" << name << "'; name one by its link:\n";
        for (const auto& candidate : candidates) {
            err << "  refdoc page " << candidate.href << "   (" << candidate.productName << " [" << candidate.productKey
                << "])\n";
        }
        return kExitProblem;
    }
    err << "refdoc: '" << name << "' is no page file, product key, lookup entry or page link" << where
        << "; 'refdoc lookup' lists the product keys, 'refdoc find' searches the entries, 'refdoc check' tells "
           "whether a file was dropped\n";
    return kExitProblem;
}

} // namespace

Command pageCommand() {
    Command command;
    command.name = "page";
    command.needs = "a NAME: page file, product key, entry name or page link";
    command.summary = "show a product's reference pages, or one page";
    command.help = "Usage: refdoc page NAME [options]\n"
                   "\n"
                   "Prints reference pages: purpose, syntax, inputs with their anchors, outputs,\n"
                   "properties, parameters, examples and see-also links. NAME is, tried in this order:\n"
                   "  a page link (with a '/', e.g. signal/ref/fastfilter.html; a #fragment is ignored):\n"
                   "      that one page\n"
                   "  a page file's name (NAME.json, and unless the language is English\n"
                   "      NAME_<language>.json over it): every page of the file\n"
                   "  a product key, as 'refdoc lookup' lists them: that product's pages\n"
                   "  a lookup entry's name, as 'refdoc find' shows them (case is ignored when no entry\n"
                   "      has that exact name): the one page it links to; when several pages have the\n"
                   "      name, their links are listed to choose from\n"
                   "Exit status 1 when there are no pages.\n"
                   "\n"
                   "Options:\n"
                   "  --json                   print the full page records as JSON\n" +
                   hostOptionsHelp();
    command.define = [](CLI::App& app) -> Runner {
        auto options = std::make_shared<Options>();
        addHostOptions(app, options->host);
        addFlag(app, "--json", options->json);
        app.add_option("NAME", options->name)->required();
        return [options](std::ostream& out, std::ostream& err) { return run(*options, out, err); };
    };
    return command;
}

} // namespace refdoc::tool
