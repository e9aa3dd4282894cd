// refdoc find TEXT...: searches the names of every lookup entry, best matches first.

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

void collect(const DocResourceParser::LookupResourceMap& resources, bool installed,
             const std::vector<std::u32string>& queries, std::vector<Hit>& hits) {
    for (const auto& [key, resource] : resources) {
        for (const auto& [name, entries] : resource.getItems()) {
            std::u32string folded = foldCase(name);
            const auto match = bestMatch(folded, queries);
            if (!match) {
                continue;
            }
            for (const auto& entry : entries) {
                hits.push_back(Hit{*match, folded, toUtf8(name), toUtf8(entry.getPurpose()), toUtf8(entry.getHref()),
                                   toUtf8(key), toUtf8(resource.getHeader().getProductName()), installed});
            }
        }
    }
}

} // namespace

std::vector<Hit> findHits(const DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap>& results,
                          const std::vector<std::u32string>& queries) {
    std::vector<Hit> hits;
    collect(results.installedResources, true, queries, hits);
    collect(results.uninstalledResources, false, queries, hits);
    std::stable_sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) {
        return std::tie(a.match, a.foldedName, a.name, a.productKey) <
               std::tie(b.match, b.foldedName, b.name, b.productKey);
    });
    return hits;
}

namespace {

std::size_t parseLimit(const std::optional<std::string>& text) {
    if (!text) {
        return 0;
    }
    std::size_t limit = 0;
    const auto* end = text->data() + text->size();
    const auto [next, error] = std::from_chars(text->data(), end, limit);
    if (error != std::errc() || next != end || limit == 0) {
        throw UsageError("--limit needs a positive number, not '" + *text + "'");
    }
    return limit;
}

int run(const ParsedArgs& args, std::ostream& out, std::ostream& err) {
    std::vector<std::u32string> queries;
    for (const auto& text : args.positionals) {
        if (text.empty()) {
            throw UsageError("search TEXT must not be empty");
        }
        queries.push_back(foldCase(toUtf16(text)));
    }
    const std::size_t limit = parseLimit(args.value("--limit"));
    const HostSettings settings = resolveHostSettings(args);
    applyHostSettings(settings);
    const auto results = DocResourceParser::getResourceLookupFiles();

    std::vector<Hit> hits = findHits(results, queries);
    const std::size_t total = hits.size();
    if (limit != 0 && hits.size() > limit) {
        hits.resize(limit);
    }

    if (args.has("--json")) {
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
        err << "refdoc: no lookup entry matches " << joinList(args.positionals, ", ") << '\n';
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
    return kExitOk;
}

} // namespace

Command findCommand() {
    Command command;
    command.syntax.name = "find";
    addHostOptions(command.syntax);
    command.syntax.valueOptions.insert("--limit");
    command.syntax.flags = {"--json"};
    command.syntax.minPositionals = 1;
    command.syntax.maxPositionals = static_cast<std::size_t>(-1);
    command.syntax.positionalName = "the TEXT to search for";
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
    command.run = run;
    return command;
}

} // namespace refdoc::tool
