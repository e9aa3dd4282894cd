// refdoc find TEXT...: searches the lookup entries of every product, best matches first.

#include "CheckReport.hpp"
#include "Commands.hpp"
#include "Host.hpp"
#include "Json.hpp"
#include "Search.hpp"
#include "Text.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <charconv>
#include <memory>
#include <optional>

namespace refdoc::tool {
namespace {

using reference::docparser::DocResourceParser;

struct Options {
    HostOptions host;
    bool json = false;
    bool explain = false;
    std::size_t limit = 20;
    std::optional<std::vector<std::string>> products;
    std::optional<std::vector<std::string>> types;
    bool installedOnly = false;
    bool hideDeprecated = false;
    std::vector<std::string> texts;
};

int run(const Options& options, std::ostream& out, std::ostream& err) {
    SearchOptions search;
    search.text = joinList(options.texts, " ");
    if (search.text.find_first_not_of(" \t") == std::string::npos) {
        throw UsageError("search TEXT must not be empty");
    }
    search.limit = 0; // every hit, to say how many were left out
    search.products = options.products.value_or(std::vector<std::string>{});
    search.types = options.types.value_or(std::vector<std::string>{});
    search.installedOnly = options.installedOnly;
    search.hideDeprecated = options.hideDeprecated;
    const reference::search::SearchQuery query = toQuery(search);

    const HostSettings settings = resolveHostSettings(options.host);
    applyHostSettings(settings);
    std::size_t dropped = 0;
    const reference::search::SearchIndex index = [&] {
        reference::docparser::ParseDiagnosticsScope scope;
        auto loaded = DocResourceParser::getResourceLookupFiles();
        dropped = droppedCount(scope.files());
        return reference::search::SearchIndex(std::move(loaded));
    }();

    std::vector<reference::search::SearchHit> hits = index.search(query);
    const std::size_t total = hits.size();
    if (hits.size() > options.limit) {
        hits.resize(options.limit);
    }

    if (options.json) {
        boost::json::array array;
        for (const auto& hit : hits) {
            boost::json::object object = hitJson(hit);
            if (options.explain) {
                object["explain"] = explainHit(hit);
            }
            array.push_back(std::move(object));
        }
        writeJson(out, array);
        return hits.empty() ? kExitProblem : kExitOk;
    }
    if (hits.empty()) {
        err << "refdoc: no lookup entry matches " << search.text << '\n' << droppedLine(dropped) << '\n';
        return kExitProblem;
    }
    for (const auto& hit : hits) {
        out << toUtf8(hit.item->getName()) << "  —  " << toUtf8(hit.item->getPurpose()) << '\n'
            << "    " << toUtf8(hit.item->getHref()) << "   " << toUtf8(hit.product->getProductName()) << " ["
            << toUtf8(*hit.productKey) << (hit.installed ? "" : ", not installed") << "]   ("
            << reference::search::toString(hit.match) << (hit.deprecated ? ", deprecated" : "") << ")\n";
        if (options.explain) {
            out << "    why: " << explainHit(hit) << '\n';
        }
    }
    if (hits.size() < total) {
        out << "(" << total - hits.size() << " more; raise --limit to see them)\n";
    }
    out << droppedLine(dropped) << '\n';
    return kExitOk;
}

} // namespace

Command findCommand() {
    Command command;
    command.name = "find";
    command.needs = "the TEXT to search for";
    command.summary = "search the lookup entries by name and purpose, best matches first";
    command.help = "Usage: refdoc find TEXT... [options]\n"
                   "\n"
                   "Searches the lookup entries of every product, ignoring case, and prints name,\n"
                   "purpose, link and product of the best matches. The TEXTs, or the words of one\n"
                   "TEXT with spaces, are one query. Matches rank in this order: the whole name; the\n"
                   "name's start; the start of a later segment (getCurrentFigure has the segments\n"
                   "get, Current, Figure; read_csv read and csv); the initials of the segments (gcf,\n"
                   "rcsv); the letters in order; the name or its start within one edit (4 to 7\n"
                   "letters) or two (8 and more); several words, each in the name or the purpose;\n"
                   "the text in the purpose. Ties go to the shorter name, then installed products,\n"
                   "then the product key; numbers in names compare as numbers.\n"
                   "Exit status 1 when nothing matches.\n"
                   "\n"
                   "Options:\n"
                   "  --limit N                print at most N matches (default 20)\n"
                   "  --product KEYS           only these products (comma-separated product keys)\n"
                   "  --type TYPES             only these entity types (function, class, method, ...)\n"
                   "  --installed-only         only installed products\n"
                   "  --hide-deprecated        leave out entries marked deprecated\n"
                   "  --explain                say why each match ranks where it does\n"
                   "  --json                   print the matches as JSON\n" +
                   hostOptionsHelp();
    command.define = [](CLI::App& app) -> Runner {
        auto options = std::make_shared<Options>();
        addHostOptions(app, options->host);
        addFlag(app, "--json", options->json);
        addFlag(app, "--explain", options->explain);
        addFlag(app, "--installed-only", options->installedOnly);
        addFlag(app, "--hide-deprecated", options->hideDeprecated);
        addListOption(app, "--product", options->products);
        addListOption(app, "--type", options->types)
            ->check(toolCheck(
                [](const std::string& value) {
                    for (const auto& type : splitList(value)) {
                        if (std::string problem = entityTypeProblem(type); !problem.empty()) {
                            return problem;
                        }
                    }
                    return std::string();
                },
                "TYPES"));
        addValueOption(app, "--limit", options->limit)
            ->check(toolCheck(
                [](const std::string& value) {
                    std::size_t limit = 0;
                    const auto [next, error] = std::from_chars(value.data(), value.data() + value.size(), limit);
                    return error == std::errc() && next == value.data() + value.size() && limit != 0
                               ? std::string()
                               : "needs a positive number, not '" + value + "'";
                },
                "N"));
        app.add_option("TEXT", options->texts)->required();
        return [options](std::ostream& out, std::ostream& err) { return run(*options, out, err); };
    };
    return command;
}

} // namespace refdoc::tool
