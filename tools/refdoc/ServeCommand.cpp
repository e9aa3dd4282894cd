// refdoc serve: a local web view of a documentation root. Every request calls the library
// afresh (an edited file shows on reload); the data is untrusted, so every text is escaped and
// only checked relative page references become links.

#include "CheckReport.hpp"
#include "Commands.hpp"
#include "Host.hpp"
#include "Html.hpp"
#include "Search.hpp"
#include "ServeAssets.hpp"
#include "Text.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include <doclanguage/DocLanguage.hpp>

#include <httplib.h>

#include <algorithm>
#include <charconv>
#include <condition_variable>
#include <csignal>
#include <iostream>
#include <map>
#include <mutex>
#include <thread>

#include <pthread.h>

namespace refdoc::tool {
namespace {

using reference::docparser::DocResourceParser;
using reference::docparser::ParseDiagnosticsScope;
using namespace reference::property;
using html::escape;

constexpr std::size_t kMaxQueryBytes = 256;
constexpr std::size_t kMaxShownHits = 200;

// The documentation language is a process-wide host setting that every loading call reads
// when it starts. Requests for the same language run together; a request for another one
// waits until they are done, and the problems view, which switches languages, runs alone.
class LanguageGate {
public:
    explicit LanguageGate(std::string current) : current_(std::move(current)) {}

    void enter(const std::string& language) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !exclusive_ && (holders_ == 0 || current_ == language); });
        if (current_ != language) {
            doclanguage::DocLanguage::getInstance().setDocLanguage(toUtf16(language));
            current_ = language;
        }
        ++holders_;
    }
    void leave() {
        const std::lock_guard lock(mutex_);
        --holders_;
        changed_.notify_all();
    }
    void enterAlone() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !exclusive_ && holders_ == 0; });
        exclusive_ = true;
    }
    // `language` is the one the exclusive holder left current.
    void leaveAlone(const std::string& language) {
        const std::lock_guard lock(mutex_);
        exclusive_ = false;
        current_ = language;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string current_;
    int holders_ = 0;
    bool exclusive_ = false;
};

class LanguageHold {
public:
    LanguageHold(LanguageGate& gate, const std::string& language) : gate_(gate) { gate_.enter(language); }
    ~LanguageHold() { gate_.leave(); }
    LanguageHold(const LanguageHold&) = delete;
    LanguageHold& operator=(const LanguageHold&) = delete;

private:
    LanguageGate& gate_;
};

struct Site {
    HostSettings settings;
    LanguageGate gate{settings.language};
};

// What one request produced.
struct View {
    int status = 200;
    std::string title;
    std::string body;
    std::string query; // the search box's text
    // What the library dropped or warned about in the files this request read.
    std::size_t filesRead = 0;
    std::size_t dropped = 0;
    std::size_t warnings = 0;
};

void count(View& view, const ParseDiagnosticsScope& scope) {
    for (const auto& file : scope.files()) {
        if (file.dropReason == reference::docparser::DropReason::Missing) {
            continue;
        }
        ++view.filesRead;
        view.dropped += file.dropped() ? 1 : 0;
        view.warnings += file.warnings.size();
    }
}

std::string langQuery(const std::string& language) { return "lang=" + html::encodeUrl(language, false); }

std::string refUrl(const html::PageRef& ref, const std::string& language) {
    return "/ref/" + html::encodeUrl(ref.path, true) + "?" + langQuery(language) +
           (ref.fragment.empty() ? "" : "#" + ref.fragment);
}

std::string productUrl(const std::string& key, const std::string& language) {
    return "/product/" + html::encodeUrl(key, false) + "?" + langQuery(language);
}

std::string plural(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string document(const Site& site, const std::string& language, const View& view, const std::string& path) {
    std::string out;
    out.reserve(view.body.size() + 4096);
    out += "<!DOCTYPE html>\n<html lang=\"" + escape(language) +
           "\"><head><meta charset=\"utf-8\"><meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
           "<title>" +
           escape(view.title) +
           " · refdoc</title><link rel=\"stylesheet\" href=\"/assets/style.css\">"
           "<script src=\"/assets/search.js\" defer></script></head>\n<body>\n<header class=\"top\">"
           "<a class=\"brand\" href=\"/?" +
           langQuery(language) +
           "\">refdoc</a>"
           "<form action=\"/search\" method=\"get\" role=\"search\"><input type=\"search\" id=\"q\" name=\"q\" "
           "placeholder=\"Search names\" autocomplete=\"off\" aria-label=\"Search names\" value=\"" +
           escape(view.query) + "\"><input type=\"hidden\" name=\"lang\" value=\"" + escape(language) +
           "\"><button type=\"submit\">Search</button></form><nav class=\"langs\" aria-label=\"Language\">";
    for (const auto& code : site.settings.supportedLanguages) {
        if (code == language) {
            out += "<strong>" + escape(code) + "</strong>";
        } else {
            out += "<a href=\"" + escape(html::encodeUrl(path, true)) + "?" + langQuery(code) + "\" hreflang=\"" +
                   escape(code) + "\">" + escape(code) + "</a>";
        }
    }
    out += "</nav><a id=\"problems-link\" href=\"/problems?" + langQuery(language) + "\">Problems</a></header>\n";
    const bool problems = view.dropped + view.warnings != 0;
    out += std::string("<p class=\"note") + (problems ? " has-problems" : "") + "\" id=\"problem-count\">";
    if (view.filesRead == 0) {
        out += "This view read no data file.";
    } else {
        out += "This view read " + plural(view.filesRead, "file", "files") + ": " +
               plural(view.dropped, "dropped", "dropped") + ", " + plural(view.warnings, "warning", "warnings") + ".";
    }
    out += " <a href=\"/problems?" + langQuery(language) + "\">Check every file</a></p>\n<main>\n";
    out += view.body;
    out += "</main>\n</body></html>\n";
    return out;
}

std::string rootError(const Site& site) {
    std::error_code error;
    if (!std::filesystem::is_directory(site.settings.root / "docCatalog", error)) {
        return "The documentation root " + site.settings.root.string() +
               " has no docCatalog folder any more: it was moved, deleted or is not readable.";
    }
    return {};
}

void errorView(View& view, int status, const std::string& title, const std::string& text) {
    view.status = status;
    view.title = title;
    view.body = "<h1>" + escape(title) + "</h1>\n<p class=\"error\">" + escape(text) + "</p>\n";
}

// ---- index ------------------------------------------------------------------------------

void indexView(Site& site, const std::string& language, View& view) {
    DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap> results;
    {
        const LanguageHold hold(site.gate, language);
        ParseDiagnosticsScope scope;
        results = DocResourceParser::getResourceLookupFiles();
        count(view, scope);
    }
    struct Row {
        std::string key;
        bool installed;
        std::size_t items;
        std::string name;
    };
    std::vector<Row> rows;
    for (const auto* map : {&results.installedResources, &results.uninstalledResources}) {
        for (const auto& [key, resource] : *map) {
            std::size_t items = 0;
            for (const auto& entry : resource.getItems()) {
                items += entry.second.size();
            }
            rows.push_back({toUtf8(key), map == &results.installedResources, items,
                            toUtf8(resource.getHeader().getProductName())});
        }
    }
    std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.key < b.key; });
    view.title = "Products";
    std::string& out = view.body;
    out += "<h1>Products</h1>\n<p class=\"meta\">Documentation root <code>" + escape(site.settings.root.string()) +
           "</code> · language <strong>" + escape(language) + "</strong> · " +
           plural(rows.size(), "product key", "product keys") + "</p>\n";
    if (rows.empty()) {
        out += "<p>No lookup data found.</p>\n";
        return;
    }
    out += "<table class=\"products\"><thead><tr><th>Key</th><th>Product</th><th>Installed</th><th>Items</th></tr>"
           "</thead><tbody>\n";
    for (const auto& row : rows) {
        out += "<tr><td><a href=\"" + escape(productUrl(row.key, language)) + "\">" + escape(row.key) +
               "</a></td><td>" + escape(row.name) + "</td><td>" + (row.installed ? "yes" : "no") +
               "</td><td class=\"num\">" + std::to_string(row.items) + "</td></tr>\n";
    }
    out += "</tbody></table>\n";
}

// ---- a product's lookup entries ---------------------------------------------------------------

void productView(Site& site, const std::string& language, const std::string& key, View& view) {
    DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap> results;
    {
        const LanguageHold hold(site.gate, language);
        ParseDiagnosticsScope scope;
        results = DocResourceParser::getResourceLookupFiles();
        count(view, scope);
    }
    const std::u16string wanted = toUtf16(key);
    bool installed = true;
    auto found = results.installedResources.find(wanted);
    if (found == results.installedResources.end()) {
        installed = false;
        found = results.uninstalledResources.find(wanted);
        if (found == results.uninstalledResources.end()) {
            errorView(view, 404, "No such product", "No lookup data has the product key \"" + key + "\".");
            return;
        }
    }
    const auto& resource = found->second;
    const auto& header = resource.getHeader();
    view.title = toUtf8(header.getProductName());
    std::string& out = view.body;
    out += "<h1>" + escape(toUtf8(header.getProductName())) + "</h1>\n<p class=\"meta\">Key <code>" + escape(key) +
           "</code> · base code <code>" + escape(toUtf8(header.getBaseCode())) + "</code> · help folder <code>" +
           escape(toUtf8(header.getHelpFolder())) + "</code> · help location <code>" +
           escape(toUtf8(header.getHelpLocation())) + "</code> · " + (installed ? "installed" : "not installed") +
           "</p>\n<table class=\"items\"><thead><tr><th>Name</th><th>Type</th><th>Purpose</th></tr></thead><tbody>\n";
    for (const auto& [name, entries] : resource.getItems()) {
        for (const auto& entry : entries) {
            const std::string href = toUtf8(entry.getHref());
            const auto ref = html::pageHref(href);
            out += "<tr><td>";
            out += ref ? "<a href=\"" + escape(refUrl(*ref, language)) + "\">" + escape(toUtf8(name)) + "</a>"
                       : escape(toUtf8(name));
            out += "</td><td>" + escape(std::string(RefEntityType::toString(entry.getEntityType())));
            if (entry.isDeprecated()) {
                out += "<span class=\"tag deprecated\">deprecated</span>";
            }
            out += "</td><td>" + escape(toUtf8(entry.getPurpose())) + "</td></tr>\n";
        }
    }
    out += "</tbody></table>\n";
}

// ---- search --------------------------------------------------------------------------------

void searchView(Site& site, const std::string& language, const std::string& text, View& view) {
    view.title = text.empty() ? "Search" : "Search: " + text;
    view.query = text;
    std::vector<std::u32string> queries;
    for (const auto& piece : splitList(std::string_view(text))) {
        // Words separated by blanks are separate texts, as `refdoc find a b` takes them.
        std::size_t start = 0;
        while (start < piece.size()) {
            const std::size_t blank = piece.find_first_of(" \t", start);
            const std::string word = piece.substr(start, blank == std::string::npos ? blank : blank - start);
            if (!word.empty()) {
                queries.push_back(foldCase(toUtf16(word)));
            }
            if (blank == std::string::npos) {
                break;
            }
            start = blank + 1;
        }
    }
    std::string& out = view.body;
    out += "<h1>Search</h1>\n<div id=\"results\">";
    if (queries.empty()) {
        out += "<p class=\"muted\">Type a name, or part of one, in the box above.</p></div>\n";
        return;
    }
    std::vector<Hit> hits;
    {
        const LanguageHold hold(site.gate, language);
        ParseDiagnosticsScope scope;
        const auto results = DocResourceParser::getResourceLookupFiles();
        count(view, scope);
        hits = findHits(results, queries);
    }
    out += "<p class=\"meta\">" + plural(hits.size(), "match", "matches") + " for <strong>" + escape(text) +
           "</strong> (exact, then prefix, then substring; case ignored)</p>\n";
    if (!hits.empty()) {
        out += "<table class=\"hits\"><thead><tr><th>Name</th><th>Purpose</th><th>Product</th><th>Match</th></tr>"
               "</thead><tbody>\n";
        for (std::size_t i = 0; i < hits.size() && i < kMaxShownHits; ++i) {
            const Hit& hit = hits[i];
            const auto ref = html::pageHref(hit.href);
            out += "<tr><td>";
            out += ref ? "<a class=\"hit\" href=\"" + escape(refUrl(*ref, language)) + "\">" + escape(hit.name) + "</a>"
                       : escape(hit.name);
            out += "</td><td>" + escape(hit.purpose) + "</td><td><a href=\"" +
                   escape(productUrl(hit.productKey, language)) + "\">" + escape(hit.productName) + "</a>" +
                   (hit.installed ? "" : "<span class=\"tag\">not installed</span>") + "</td><td>" +
                   std::string(matchName(hit.match)) + "</td></tr>\n";
        }
        out += "</tbody></table>\n";
        if (hits.size() > kMaxShownHits) {
            out += "<p class=\"muted\">" + std::to_string(hits.size() - kMaxShownHits) +
                   " more; a longer text narrows the search.</p>\n";
        }
    }
    out += "</div>\n";
}

// ---- a reference page ---------------------------------------------------------------------------

using PageFiles = DocResourceParser::RefItemFileMap;

const std::vector<RefItem>* findPage(const PageFiles& files, const std::u16string& href) {
    for (const auto& [key, resource] : files) {
        const auto found = resource.getItems().find(href);
        if (found != resource.getItems().end()) {
            return &found->second;
        }
    }
    return nullptr;
}

struct PageContext {
    const std::string& language;
    const PageFiles& files;
    const std::set<std::string>& pageFileNames;
    std::map<std::string, PageFiles> others{}; // other page files, read once per request

    // True when `path` is a page of the root: in the shown page's file, or in the file named
    // for its first folder.
    bool hasPage(const std::string& path) {
        const std::u16string wanted = toUtf16(path);
        if (findPage(files, wanted) != nullptr) {
            return true;
        }
        const std::string first = path.substr(0, path.find('/'));
        if (pageFileNames.count(first) == 0) {
            return false;
        }
        auto found = others.find(first);
        if (found == others.end()) {
            found = others.emplace(first, DocResourceParser::getResourceFile(toUtf16(first))).first;
        }
        return findPage(found->second, wanted) != nullptr;
    }
};

// A data link: a link to that page of the root when it is one, else its text.
std::string dataLink(PageContext& context, const std::string& url, const std::string& label) {
    const auto ref = html::pageHref(url);
    if (ref) {
        if (context.hasPage(ref->path)) {
            return "<a class=\"page-link\" href=\"" + escape(refUrl(*ref, context.language)) + "\">" + escape(label) +
                   "</a>";
        }
    }
    return "<span class=\"unlinked\">" + escape(label) + "</span>";
}

std::string enumText(std::string_view text) { return escape(std::string(text)); }

void renderArgument(std::string& out, const ObjectInfo& info, std::vector<std::string> details = {},
                    const std::u16string& defaultValue = {}) {
    if (!defaultValue.empty()) {
        details.push_back("Default: <code>" + escape(toUtf8(defaultValue)) + "</code>");
    }
    // Anchors come as "page.html#id"; the id is the element's.
    const std::string full = toUtf8(info.getAnchor());
    const std::string anchor = full.substr(full.find('#') == std::string::npos ? 0 : full.rfind('#') + 1);
    const bool linkable = html::isSafeId(anchor);
    out += linkable ? "<dt id=\"" + escape(anchor) + "\">" : std::string("<dt>");
    out += "<code>" + escape(toUtf8(info.getName())) + "</code>";
    if (linkable) {
        out += " <a class=\"anchor\" href=\"#" + escape(anchor) + "\">#" + escape(anchor) + "</a>";
    } else if (!full.empty()) {
        out += " <span class=\"muted\">anchor " + escape(full) + "</span>";
    }
    out += "</dt><dd>";
    if (!info.getPurpose().empty()) {
        out += "<div>" + escape(toUtf8(info.getPurpose())) + "</div>";
    }
    if (!info.getValues().empty()) {
        std::vector<std::string> values;
        for (const auto& value : info.getValues()) {
            values.push_back("<code>" + escape(toUtf8(value)) + "</code>");
        }
        out += "<div class=\"muted\">Values: " + joinList(values, ", ") + "</div>";
    }
    for (const auto& detail : details) {
        out += "<div class=\"muted\">" + detail + "</div>";
    }
    out += "</dd>\n";
}

void renderPage(std::string& out, PageContext& context, const RefItem& page) {
    std::vector<std::string> names;
    std::vector<std::string> kinds;
    for (const auto& entity : page.getEntities()) {
        names.push_back(escape(toUtf8(entity.getName())));
        if (const auto kind = std::string(RefEntityType::toString(entity.getEntityType())); !kind.empty()) {
            kinds.push_back("<span class=\"tag\">" + escape(kind) + "</span>");
        }
    }
    out += "<article class=\"page\">\n<h1>" + (names.empty() ? escape(toUtf8(page.getHref())) : joinList(names, ", ")) +
           joinList(kinds, "");
    if (page.getDeprecationStatus() != DeprecationStatus::Value{}) {
        out += "<span class=\"tag deprecated\">" + enumText(DeprecationStatus::toString(page.getDeprecationStatus())) +
               "</span>";
    }
    out += "</h1>\n<p class=\"purpose\" id=\"purpose\">" + escape(toUtf8(page.getPurpose())) + "</p>\n";
    std::vector<std::string> facts{"Page <code>" + escape(toUtf8(page.getHref())) + "</code>"};
    if (!page.getPackageName().empty()) {
        facts.push_back("package <code>" + escape(toUtf8(page.getPackageName())) + "</code>");
    }
    if (!page.getIntroduced().empty()) {
        facts.push_back("introduced in " + escape(toUtf8(page.getIntroduced())));
    }
    facts.push_back("status " + enumText(DeprecationStatus::toString(page.getDeprecationStatus())));
    out += "<p class=\"meta\">" + joinList(facts, " · ") + "</p>\n";
    if (!page.getDescription().empty()) {
        out += "<p class=\"description\">" + escape(toUtf8(page.getDescription())) + "</p>\n";
    }
    if (!page.getThumbnailFileRef().empty() || !page.getThumbnailAltText().empty()) {
        out += "<p class=\"meta thumbnail\">Thumbnail <code>" + escape(toUtf8(page.getThumbnailFileRef())) + "</code>" +
               (page.getThumbnailAltText().empty() ? "" : ": " + escape(toUtf8(page.getThumbnailAltText()))) + "</p>\n";
    }
    if (!page.getSyntaxGroups().empty()) {
        out += "<section id=\"syntax\"><h2>Syntax</h2>\n";
        for (const auto& group : page.getSyntaxGroups()) {
            out += "<h3>" + escape(toUtf8(group.getTitle()));
            if (const auto type = std::string(SyntaxType::toString(group.getSyntaxType())); !type.empty()) {
                out += "<span class=\"tag\">" + escape(type) + "</span>";
            }
            out += "</h3><pre>";
            for (const auto& line : group.getSyntaxLines()) {
                out += escape(toUtf8(line)) + "\n";
            }
            out += "</pre>\n";
        }
        out += "</section>\n";
    }
    if (!page.getInputGroups().empty()) {
        out += "<section id=\"inputs\"><h2>Inputs</h2>\n";
        for (const auto& group : page.getInputGroups()) {
            out += "<h3>" + escape(toUtf8(group.getTitle())) + "</h3><dl class=\"args\">\n";
            for (const auto& input : group.getInputs()) {
                std::vector<std::string> details;
                std::string kind = std::string(SyntaxType::toString(input.getSyntaxType()));
                if (input.isNameValuePair()) {
                    kind += kind.empty() ? "name-value pair" : ", name-value pair";
                }
                if (!kind.empty()) {
                    details.push_back("Kind: " + escape(kind));
                }
                renderArgument(out, input.getInfo(), std::move(details), input.getDefaultValue());
            }
            out += "</dl>\n";
        }
        out += "</section>\n";
    }
    if (!page.getOutputs().empty()) {
        out += "<section id=\"outputs\"><h2>Outputs</h2><dl class=\"args\">\n";
        for (const auto& output : page.getOutputs()) {
            renderArgument(out, output.getInfo());
        }
        out += "</dl></section>\n";
    }
    if (!page.getClassPropertyGroups().empty()) {
        out += "<section id=\"properties\"><h2>Properties</h2>\n";
        for (const auto& group : page.getClassPropertyGroups()) {
            if (!group.getTitle().empty()) {
                out += "<h3>" + escape(toUtf8(group.getTitle())) + "</h3>";
            }
            out += "<dl class=\"args\">\n";
            for (const auto& property : group.getProperties()) {
                renderArgument(out, property.getInfo(), {}, property.getDefaultValue());
            }
            out += "</dl>\n";
        }
        out += "</section>\n";
    }
    if (!page.getParameters().empty()) {
        out += "<section id=\"parameters\"><h2>Parameters</h2><dl class=\"args\">\n";
        for (const auto& parameter : page.getParameters()) {
            renderArgument(out, parameter.getInfo(), {}, parameter.getDefaultValue());
        }
        out += "</dl></section>\n";
    }
    if (!page.getExamples().empty()) {
        out += "<section id=\"examples\"><h2>Examples</h2><ul class=\"plain\">\n";
        for (const auto& example : page.getExamples()) {
            const std::string url = toUtf8(example.getUrl());
            out += "<li>" + dataLink(context, url, toUtf8(example.getTitle())) + " <code class=\"muted\">" +
                   escape(url) + "</code>";
            if (!example.getOpenCommand().empty()) {
                out += "<div class=\"muted\">Open with <code>" + escape(toUtf8(example.getOpenCommand())) +
                       "</code></div>";
            }
            out += "</li>\n";
        }
        out += "</ul></section>\n";
    }
    if (!page.getSeeAlso().empty()) {
        out += "<section id=\"seealso\" class=\"seealso\"><h2>See also</h2><ul class=\"plain\">\n";
        for (const auto& link : page.getSeeAlso()) {
            const std::string url = toUtf8(link.getUrl());
            out += "<li>" + dataLink(context, url, toUtf8(link.getName())) + " <code class=\"muted\">" + escape(url) +
                   "</code></li>\n";
        }
        out += "</ul></section>\n";
    }
    out += "</article>\n";
}

void pageView(Site& site, const std::string& language, const std::string& href, View& view) {
    const auto roots = DocResourceParser::getReferenceRoots();
    const std::set<std::string> names = pageNames(std::filesystem::path(toUtf8(roots->referenceFolder)), site.settings);
    // The page file is most often named for the first folder of the link; the others are read
    // only when it is not there (support packages' pages live in their product's file).
    std::vector<std::string> order;
    const std::string first = href.substr(0, href.find('/'));
    if (names.count(first) != 0) {
        order.push_back(first);
    }
    for (const auto& name : names) {
        if (name != first) {
            order.push_back(name);
        }
    }
    const std::u16string wanted = toUtf16(href);
    const LanguageHold hold(site.gate, language);
    ParseDiagnosticsScope scope;
    for (const auto& name : order) {
        const PageFiles files = DocResourceParser::getResourceFile(toUtf16(name));
        const auto* pages = findPage(files, wanted);
        if (pages == nullptr) {
            continue;
        }
        count(view, scope);
        PageContext context{language, files, names};
        view.title = href;
        for (const auto& page : *pages) {
            if (view.title == href && !page.getEntities().empty()) {
                view.title = toUtf8(page.getEntities().front().getName());
            }
            renderPage(view.body, context, page);
        }
        view.body += "<p class=\"meta\">From page file <code>" + escape(name) + ".json</code></p>\n";
        return;
    }
    count(view, scope);
    errorView(view, 404, "No such page",
              "No page file of the documentation root has the page \"" + href +
                  "\" (or the file that has it was dropped; the problems view says why).");
}

// ---- problems ---------------------------------------------------------------------------------

void problemsView(Site& site, View& view) {
    site.gate.enterAlone();
    Report report;
    try {
        report = buildReport(site.settings);
    } catch (...) {
        site.gate.leaveAlone(site.settings.language);
        throw;
    }
    site.gate.leaveAlone(site.settings.language);
    view.filesRead = report.files.size();
    view.dropped = report.dropped;
    view.warnings = report.warnings;
    view.title = "Problems";
    std::string& out = view.body;
    out += "<h1>Problems</h1>\n<p class=\"meta\">Every lookup and page file under <code>" +
           escape(site.settings.root.string()) + "</code>, read with each supported language current (" +
           escape(joinList(report.languages, ", ")) + "), as <code>refdoc check</code> reads them.</p>\n";
    out += "<p id=\"summary\">" + plural(report.files.size(), "file", "files") + ": " +
           std::to_string(report.files.size() - report.dropped) + " read, " + "<span class=\"dropped\">" +
           plural(report.dropped, "dropped", "dropped") + "</span>, " + "<span class=\"warning\">" +
           plural(report.warnings, "warning", "warnings") + "</span>.</p>\n";
    for (const DataKind kind : {DataKind::Lookup, DataKind::Page}) {
        out += std::string("<h2>") + (kind == DataKind::Lookup ? "Lookup files" : "Page files") +
               "</h2>\n<table class=\"problems\"><tbody>\n";
        std::size_t clean = 0;
        for (const auto& file : report.files) {
            if (file.kind != kind) {
                continue;
            }
            const auto& d = file.diagnostic;
            if (!d.dropped() && warningCount(file) == 0) {
                ++clean;
                continue;
            }
            out += std::string("<tr class=\"problem\"><td>") +
                   (d.dropped() ? "<span class=\"dropped\">dropped</span>" : "<span class=\"warning\">warning</span>") +
                   "</td><td><code>" + escape(fileLabel(d, site.settings.root)) + "</code>";
            if (d.localeVariant) {
                out += "<span class=\"tag\">locale variant</span>";
            }
            if (d.dropped()) {
                out += "<div class=\"reason\">" + escape(dropText(d)) + "</div>";
            }
            for (const auto& warning : d.warnings) {
                out += "<div class=\"reason\">" + escape(warningText(warning)) + "</div>";
            }
            for (const auto& warning : file.nameWarnings) {
                out += "<div class=\"reason\">" + escape(warning.text) + "</div>";
            }
            out += "</td></tr>\n";
        }
        out += "</tbody></table>\n<p class=\"muted\">" + plural(clean, "other file", "other files") +
               " read without a problem.</p>\n";
    }
    if (!report.ignored.empty()) {
        out += "<h2>Not read</h2>\n<p class=\"muted\">Only .json and .zip lookup files and .json page files are "
               "data.</p><ul class=\"plain\">\n";
        for (const auto& path : report.ignored) {
            out += "<li><code>" + escape(path) + "</code></li>\n";
        }
        out += "</ul>\n";
    }
}

// ---- requests ---------------------------------------------------------------------------------

bool hasControl(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F;
    });
}

void setSecurityHeaders(httplib::Response& response) {
    // Even a text that escaped escaping could not run a script or load anything from elsewhere.
    response.set_header("Content-Security-Policy",
                        "default-src 'none'; style-src 'self'; script-src 'self'; connect-src 'self'; "
                        "img-src 'self'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'");
    response.set_header("X-Content-Type-Options", "nosniff");
    response.set_header("Referrer-Policy", "no-referrer");
    response.set_header("Cache-Control", "no-store");
}

void respond(Site& site, const httplib::Request& request, httplib::Response& response) {
    setSecurityHeaders(response);
    if (request.method != "GET" && request.method != "HEAD") {
        response.status = 405;
        response.set_header("Allow", "GET, HEAD");
        response.set_content("405 method not allowed: this server only reads\n", "text/plain; charset=utf-8");
        return;
    }
    const std::string& path = request.path;
    if (path == "/assets/style.css") {
        response.set_content(assets::kStyle, "text/css; charset=utf-8");
        return;
    }
    if (path == "/favicon.ico") {
        response.status = 204; // no icon, and no 404 in the browser's console
        return;
    }
    if (path == "/assets/search.js") {
        response.set_content(assets::kSearchScript, "text/javascript; charset=utf-8");
        return;
    }

    View view;
    std::string language = site.settings.language;
    const auto reject = [&](int status, const std::string& title, const std::string& text) {
        errorView(view, status, title, text);
    };
    if (request.has_param("lang")) {
        language = request.get_param_value("lang");
    }
    const auto& supported = site.settings.supportedLanguages;
    if (path.size() > 2048 || hasControl(path)) {
        reject(400, "Bad request", "The path holds control characters or is too long.");
        language = site.settings.language;
    } else if (std::find(supported.begin(), supported.end(), language) == supported.end()) {
        reject(400, "Bad request",
               "\"" + language + "\" is not a supported language (" + joinList(supported, ", ") + ").");
        language = site.settings.language;
    } else if (const std::string problem = rootError(site); !problem.empty()) {
        reject(503, "Documentation root unavailable", problem);
    } else if (path == "/") {
        indexView(site, language, view);
    } else if (path == "/search") {
        const std::string text = request.has_param("q") ? request.get_param_value("q") : std::string();
        if (text.size() > kMaxQueryBytes || hasControl(text)) {
            reject(400, "Bad request", "The search text is longer than 256 bytes or holds control characters.");
        } else {
            searchView(site, language, text, view);
        }
    } else if (path == "/problems") {
        problemsView(site, view);
    } else if (path.starts_with("/product/")) {
        const std::string key = path.substr(9);
        if (key.empty() || key.size() > 512 || key.find('/') != std::string::npos) {
            reject(400, "Bad request", "Not a product key.");
        } else {
            productView(site, language, key, view);
        }
    } else if (path.starts_with("/ref/")) {
        const std::string href = path.substr(5);
        if (!html::pageHref(href) || href.find('#') != std::string::npos) {
            reject(400, "Bad request", "Not a page reference: a relative path without \"..\", \".\" or empty parts.");
        } else {
            pageView(site, language, href, view);
        }
    } else {
        reject(404, "Not found", "There is no such page here. The index lists the products.");
    }
    response.status = view.status;
    std::string viewPath = path;
    if (view.status >= 400) {
        viewPath = "/";
    }
    response.set_content(document(site, language, view, viewPath), "text/html; charset=utf-8");
}

std::uint16_t parsePort(const std::optional<std::string>& text) {
    if (!text) {
        return 8737;
    }
    unsigned value = 0;
    const auto* end = text->data() + text->size();
    const auto [next, error] = std::from_chars(text->data(), end, value);
    if (error != std::errc() || next != end || value > 65535) {
        throw UsageError("--port needs a number from 0 to 65535, not '" + *text + "'");
    }
    return static_cast<std::uint16_t>(value);
}

int run(const ParsedArgs& args, std::ostream& out, std::ostream& err) {
    const std::uint16_t port = parsePort(args.value("--port"));
    const std::string bind = args.value("--bind").value_or("127.0.0.1");
    if (bind.empty()) {
        throw UsageError("--bind needs an address");
    }
    Site site{resolveHostSettings(args)};
    applyHostSettings(site.settings);
    if (std::find(site.settings.supportedLanguages.begin(), site.settings.supportedLanguages.end(),
                  site.settings.language) == site.settings.supportedLanguages.end()) {
        site.settings.supportedLanguages.push_back(site.settings.language);
    }

    // SIGINT and SIGTERM are taken by one thread, which stops the server; every other thread,
    // the server's pool included, starts with them blocked.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    httplib::Server server;
    server.set_payload_max_length(64 * 1024);
    server.set_pre_routing_handler([&site](const httplib::Request& request, httplib::Response& response) {
        try {
            respond(site, request, response);
        } catch (const std::exception& e) {
            View view;
            errorView(view, 500, "Internal error", e.what());
            response.status = 500;
            response.set_content(document(site, site.settings.language, view, "/"), "text/html; charset=utf-8");
        }
        return httplib::Server::HandlerResponse::Handled;
    });

    const int bound = port == 0 ? server.bind_to_any_port(bind) : (server.bind_to_port(bind, port) ? port : -1);
    if (bound < 0) {
        err << "refdoc: cannot listen on " << bind << " port " << port << '\n';
        return kExitProblem;
    }
    const std::string host = bind.find(':') != std::string::npos ? "[" + bind + "]" : bind;
    out << "refdoc serve: " << site.settings.root.string() << (site.settings.sampleRoot ? " (bundled sample)" : "")
        << "\nOpen http://" << host << ':' << bound << "/ (Ctrl-C stops the server)" << std::endl;

    std::thread stopper([&server, stopSignals] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        server.stop();
    });
    const bool listened = server.listen_after_bind();
    // Wakes the stopper when the server ended on its own.
    ::kill(::getpid(), SIGTERM);
    stopper.join();
    if (!listened && server.is_running()) {
        err << "refdoc: the server stopped with an error\n";
        return kExitProblem;
    }
    out << "refdoc serve: stopped" << std::endl;
    return kExitOk;
}

} // namespace

Command serveCommand() {
    Command command;
    command.syntax.name = "serve";
    addHostOptions(command.syntax);
    command.syntax.valueOptions.insert({"--port", "--bind"});
    command.summary = "show the documentation root in a web browser, read afresh on every request";
    command.help = "Usage: refdoc serve [options]\n"
                   "\n"
                   "Serves a local web view of the documentation root until interrupted (Ctrl-C): the\n"
                   "products of the lookup load with a language switch, a name search, every reference\n"
                   "page with its links and anchors, and the problems view, which lists what 'refdoc check'\n"
                   "reports. Every request reads the files afresh, so an edited file shows on reload.\n"
                   "It only answers GET and HEAD requests and writes nothing.\n"
                   "\n"
                   "Options:\n"
                   "  --port N                 port to listen on (default: 8737; 0 picks a free one)\n"
                   "  --bind ADDRESS           address to listen on (default: 127.0.0.1, this machine only).\n"
                   "                           Another address, such as 0.0.0.0, lets every machine that can\n"
                   "                           reach it read the documentation root's data and its file\n"
                   "                           paths, without any password\n" +
                   hostOptionsHelp();
    command.run = run;
    return command;
}

} // namespace refdoc::tool
