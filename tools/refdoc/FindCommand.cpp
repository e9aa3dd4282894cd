// refdoc find TEXT...: searches the names of every lookup entry, best matches first.

#include "CheckReport.hpp"
#include "Commands.hpp"
#include "Host.hpp"
#include "Json.hpp"
#include "Search.hpp"
#include "Text.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <algorithm>
#include <charconv>
#include <functional>
#include <memory>
#include <optional>
#include <tuple>

namespace refdoc::tool {
namespace {

using reference::docparser::DocResourceParser;

} // namespace

std::string_view matchName(Match match) {
    switch (match) {
    case Match::Exact:
        return "exact";
    case Match::Prefix:
        return "prefix";
    case Match::Substring:
        return "substring";
    }
    return "";
}

namespace {

std::optional<Match> bestMatch(const std::u32string& name, const std::vector<std::u32string>& queries) {
    std::optional<Match> best;
    for (const auto& query : queries) {
        std::optional<Match> match;
        if (name == query) {
            match = Match::Exact;
        } else if (name.starts_with(query)) {
            match = Match::Prefix;
        } else if (name.find(query) != std::u32string::npos) {
            match = Match::Substring;
        }
        if (match && (!best || *match < *best)) {
            best = match;
        }
    }
    return best;
}

} // namespace

NameIndex::NameIndex(const LookupResults& results) {
    keys_.reserve(results.installedResources.size() + results.uninstalledResources.size());
    for (const auto* map : {&results.installedResources, &results.uninstalledResources}) {
        for (const auto& [key, resource] : *map) {
            keys_.push_back(toUtf8(key)); // never reallocated: names_ point into it
            for (const auto& [name, entries] : resource.getItems()) {
                names_.push_back(Name{foldCase(name), toUtf8(name), &keys_.back(), &resource, &entries,
                                      map == &results.installedResources});
            }
        }
    }
}

std::vector<Hit> NameIndex::find(const std::vector<std::u32string>& queries, std::size_t limit,
                                 std::size_t& total) const {
    std::vector<std::pair<Match, const Name*>> matches;
    total = 0;
    for (const auto& name : names_) {
        if (const auto match = bestMatch(name.folded, queries)) {
            matches.emplace_back(*match, &name);
            total += name.entries->size();
        }
    }
    // The order is total (a product key holds a name once; installed products come first, as
    // they are collected), so only the names that can make the first `limit` hits need sorting;
    // each name's entries stay in their order.
    const std::size_t sorted = std::min(limit, matches.size());
    std::partial_sort(matches.begin(), matches.begin() + static_cast<std::ptrdiff_t>(sorted), matches.end(),
                      [](const auto& a, const auto& b) {
                          return std::make_tuple(a.first, std::cref(a.second->folded), std::cref(a.second->name),
                                                 std::cref(*a.second->productKey), !a.second->installed) <
                                 std::make_tuple(b.first, std::cref(b.second->folded), std::cref(b.second->name),
                                                 std::cref(*b.second->productKey), !b.second->installed);
                      });
    matches.resize(sorted);
    std::vector<Hit> hits;
    for (const auto& [match, name] : matches) {
        for (const auto& entry : *name->entries) {
            if (hits.size() == limit) {
                return hits;
            }
            hits.push_back(Hit{match, name->folded, name->name, toUtf8(entry.getPurpose()), toUtf8(entry.getHref()),
                               *name->productKey, toUtf8(name->resource->getHeader().getProductName()),
                               name->installed});
        }
    }
    return hits;
}

std::vector<Hit> findHits(const LookupResults& results, const std::vector<std::u32string>& queries) {
    std::size_t total = 0;
    return NameIndex(results).find(queries, static_cast<std::size_t>(-1), total);
}

namespace {

struct Options {
    HostOptions host;
    bool json = false;
    std::size_t limit = 0; // 0: no limit
    std::vector<std::string> texts;
};

int run(const Options& options, std::ostream& out, std::ostream& err) {
    std::vector<std::u32string> queries;
    for (const auto& text : options.texts) {
        if (text.empty()) {
            throw UsageError("search TEXT must not be empty");
        }
        queries.push_back(foldCase(toUtf16(text)));
    }
    const std::size_t limit = options.limit;
    const HostSettings settings = resolveHostSettings(options.host);
    applyHostSettings(settings);
    std::size_t dropped = 0;
    const auto results = [&] {
        reference::docparser::ParseDiagnosticsScope scope;
        auto loaded = DocResourceParser::getResourceLookupFiles();
        dropped = droppedCount(scope.files());
        return loaded;
    }();

    std::vector<Hit> hits = findHits(results, queries);
    const std::size_t total = hits.size();
    if (limit != 0 && hits.size() > limit) {
        hits.resize(limit);
    }

    if (options.json) {
        boost::json::array array;
        for (const auto& hit : hits) {
            array.push_back(boost::json::object{{"match", std::string(matchName(hit.match))},
                                                {"name", hit.name},
                                                {"purpose", hit.purpose},
                                                {"href", hit.href},
                                                {"productKey", hit.productKey},
                                                {"productName", hit.productName},
                                                {"installed", hit.installed}});
        }
        writeJson(out, array);
        return hits.empty() ? kExitProblem : kExitOk;
    }
    if (hits.empty()) {
        err << "refdoc: no lookup entry matches " << joinList(options.texts, ", ") << '\n'
            << droppedLine(dropped) << '\n';
        return kExitProblem;
    }
    for (const auto& hit : hits) {
        out << hit.name << "  —  " << hit.purpose << '\n'
            << "    " << hit.href << "   " << hit.productName << " [" << hit.productKey
            << (hit.installed ? "" : ", not installed") << "]   (" << matchName(hit.match) << ")\n";
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
    command.summary = "search the lookup names (exact, then prefix, then substring matches)";
    command.help = "Usage: refdoc find TEXT [TEXT...] [options]\n"
                   "\n"
                   "Searches the names of every lookup entry, ignoring case, for each TEXT and prints\n"
                   "name, purpose, link and product of every entry that matches one of them: exact\n"
                   "matches first, then names that start with a TEXT, then names that contain one.\n"
                   "Exit status 1 when nothing matches.\n"
                   "\n"
                   "Options:\n"
                   "  --limit N                print at most N matches\n"
                   "  --json                   print the matches as JSON\n" +
                   hostOptionsHelp();
    command.define = [](CLI::App& app) -> Runner {
        auto options = std::make_shared<Options>();
        addHostOptions(app, options->host);
        addFlag(app, "--json", options->json);
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
