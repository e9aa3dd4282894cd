// The views of `refdoc serve`: each turns a snapshot of the loaded data into an HTML page. The
// data is untrusted, so every text is escaped and only checked relative page references
// become links.

#include "ServeViews.hpp"

#include "Html.hpp"
#include "PageView.hpp"
#include "Search.hpp"
#include "Text.hpp"

#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>

#include <algorithm>
#include <set>

namespace refdoc::tool::serve {

using namespace reference::property;
using html::escape;

namespace {

constexpr std::size_t kMaxShownHits = 100;

std::string refUrl(const html::PageRef& ref, const std::string& language) {
    return html::viewUrl("/ref/" + ref.path, language, ref.fragment);
}

std::string plural(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

} // namespace

std::string document(const std::vector<std::string>& languages, const std::string& language, const View& view,
                     const std::string& path) {
    std::string out;
    out.reserve(view.body.size() + 4096);
    out += "<!DOCTYPE html>\n<html lang=\"" + escape(language) +
           "\"><head><meta charset=\"utf-8\"><meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
           "<title>" +
           escape(view.title) +
           " · refdoc</title><link rel=\"stylesheet\" href=\"/assets/style.css\">"
           "<script src=\"/assets/search.js\" defer></script></head>\n<body>\n<header class=\"top\">"
           "<a class=\"brand\" href=\"" +
           escape(html::viewUrl("/", language)) +
           "\">refdoc</a>"
           "<form action=\"/search\" method=\"get\" role=\"search\"><input type=\"search\" id=\"q\" name=\"q\" "
           "placeholder=\"Search (press /)\" autocomplete=\"off\" aria-label=\"Search names and purposes\" value=\"" +
           escape(view.query) + "\"><input type=\"hidden\" name=\"lang\" value=\"" + escape(language) +
           "\"><button type=\"submit\">Search</button></form><nav class=\"langs\" aria-label=\"Language\">";
    for (const auto& code : languages) {
        if (code == language) {
            out += "<strong>" + escape(code) + "</strong>";
        } else {
            out += "<a href=\"" + escape(html::viewUrl(path, code)) + "\" hreflang=\"" + escape(code) + "\">" +
                   escape(code) + "</a>";
        }
    }
    const std::string problemsUrl = escape(html::viewUrl("/problems", language));
    out += "</nav><a id=\"coverage-link\" href=\"" + escape(html::viewUrl("/coverage", language)) +
           "\">Coverage</a><a id=\"problems-link\" href=\"" + problemsUrl + "\">Problems</a></header>\n";
    // The note appears only where a file the view read was dropped: it explains what may be
    // missing from this view. Warnings alone leave the data whole; the problems view has them.
    const LoadCounts& counts = view.counts;
    if (view.problemsBanner && counts.dropped != 0) {
        out += "<p class=\"note has-problems\" id=\"problem-count\">This view read " +
               plural(counts.filesRead, "file", "files") + ": " + plural(counts.dropped, "dropped", "dropped") + ", " +
               plural(counts.warnings, "warning", "warnings") + ". <a href=\"" + problemsUrl +
               "\">What was dropped and why</a></p>\n";
    }
    out += "<main>\n";
    if (!view.crumbs.empty()) {
        out += "<nav class=\"crumbs\" aria-label=\"Breadcrumbs\"><ol><li><a href=\"" +
               escape(html::viewUrl("/", language)) + "\">Products</a></li>";
        for (const auto& crumb : view.crumbs) {
            if (!crumb.url.empty()) {
                out += "<li><a href=\"" + escape(crumb.url) + "\">" + escape(crumb.label) + "</a></li>";
            } else {
                out += std::string(&crumb == &view.crumbs.back() ? "<li aria-current=\"page\">" : "<li>") +
                       escape(crumb.label) + "</li>";
            }
        }
        out += "</ol></nav>\n";
    }
    out += view.body;
    out += "</main>\n</body></html>\n";
    return out;
}

void errorView(View& view, int status, const std::string& title, const std::string& text) {
    view.status = status;
    view.title = title;
    view.body = "<h1>" + escape(title) + "</h1>\n<p class=\"error\">" + escape(text) + "</p>\n";
}

// ---- index ------------------------------------------------------------------------------

void indexView(const Snapshot& snapshot, const std::filesystem::path& root, View& view) {
    const LookupResults& results = snapshot.lookup();
    const std::string& language = snapshot.language();
    view.counts = snapshot.lookupCounts();
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
    out += "<h1>Products</h1>\n<p class=\"meta\">Documentation root <code>" + escape(root.string()) +
           "</code> · language <strong>" + escape(language) + "</strong> · " +
           plural(rows.size(), "product key", "product keys") + "</p>\n";
    if (rows.empty()) {
        out += "<p>No lookup data found.</p>\n";
        return;
    }
    out += "<table class=\"products\"><thead><tr><th>Key</th><th>Product</th><th>Installed</th><th>Items</th></tr>"
           "</thead><tbody>\n";
    for (const auto& row : rows) {
        out += "<tr><td><a href=\"" + escape(html::productUrl(row.key, language)) + "\">" + escape(row.key) +
               "</a></td><td>" + escape(row.name) + "</td><td>" + (row.installed ? "yes" : "no") +
               "</td><td class=\"num\">" + std::to_string(row.items) + "</td></tr>\n";
    }
    out += "</tbody></table>\n";
}

// ---- a product's lookup entries ---------------------------------------------------------------

void productView(const Snapshot& snapshot, const std::string& key, View& view) {
    const LookupResults& results = snapshot.lookup();
    const std::string& language = snapshot.language();
    view.counts = snapshot.lookupCounts();
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
    view.crumbs = {{view.title, ""}};
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
            // Only a page some page file has is a link; the others say so instead of leading
            // to a "no such page".
            out += "<tr><td>";
            out += ref && !snapshot.pageFileOf(ref->path).empty()
                       ? "<a href=\"" + escape(refUrl(*ref, language)) + "\">" + escape(toUtf8(name)) + "</a>"
                       : escape(toUtf8(name)) + "<span class=\"tag no-page\" title=\"" + escape(href) +
                             "\">no page</span>";
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

namespace {

std::vector<reference::search::SearchHit> searchHits(const Snapshot& snapshot, const std::string& text,
                                                     std::size_t limit) {
    SearchOptions options;
    options.text = text;
    options.limit = limit;
    return snapshot.index().search(toQuery(options));
}

} // namespace

void searchView(const Snapshot& snapshot, const std::string& text, View& view) {
    const std::string& language = snapshot.language();
    view.title = text.empty() ? "Search" : "Search: " + text;
    view.query = text;
    view.crumbs = {{"Search", ""}};
    std::string& out = view.body;
    out += "<h1>Search</h1>\n<div id=\"results\">";
    if (text.find_first_not_of(" \t") == std::string::npos) {
        out += "<p class=\"muted\">Type a name, part of one, its initials or words of its purpose in the box "
               "above.</p></div>\n";
        return;
    }
    view.counts = snapshot.lookupCounts();
    std::vector<reference::search::SearchHit> hits = searchHits(snapshot, text, kMaxShownHits + 1);
    const bool more = hits.size() > kMaxShownHits;
    hits.resize(std::min(hits.size(), kMaxShownHits));
    out += "<p class=\"meta\">" +
           (more ? "The best " + std::to_string(kMaxShownHits) + " matches" : plural(hits.size(), "match", "matches")) +
           " for <strong>" + escape(text) + "</strong>, best first</p>\n";
    if (!hits.empty()) {
        out += "<table class=\"hits\"><thead><tr><th>Name</th><th>Purpose</th><th>Product</th><th>Match</th></tr>"
               "</thead><tbody>\n";
        for (const auto& hit : hits) {
            std::string name;
            const auto runs = nameRuns(hit);
            for (std::size_t i = 0; i < runs.size(); ++i) {
                name += i % 2 == 1 ? "<mark>" + escape(runs[i]) + "</mark>" : escape(runs[i]);
            }
            const auto ref = html::pageHref(toUtf8(hit.item->getHref()));
            const std::string key = toUtf8(*hit.productKey);
            out += "<tr><td>";
            out += ref ? "<a class=\"hit\" href=\"" + escape(refUrl(*ref, language)) + "\">" + name + "</a>" : name;
            if (hit.deprecated) {
                out += "<span class=\"tag deprecated\">deprecated</span>";
            }
            out += "</td><td>" + escape(toUtf8(hit.item->getPurpose())) + "</td><td><a href=\"" +
                   escape(html::productUrl(key, language)) + "\">" + escape(toUtf8(hit.product->getProductName())) +
                   "</a>" + (hit.installed ? "" : "<span class=\"tag\">not installed</span>") + "</td><td>" +
                   std::string(reference::search::toString(hit.match)) + "</td></tr>\n";
        }
        out += "</tbody></table>\n";
        if (more) {
            out += "<p class=\"muted\">More match; a longer text narrows the search.</p>\n";
        }
    }
    out += "</div>\n";
}

std::string searchJson(const Snapshot& snapshot, const std::string& text, std::size_t limit) {
    boost::json::array array;
    if (text.find_first_not_of(" \t") != std::string::npos) {
        for (const auto& hit : searchHits(snapshot, text, limit)) {
            boost::json::object object = hitJson(hit);
            // Where the web view opens the hit: its page in the view's language, when it has one.
            const auto ref = html::pageHref(toUtf8(hit.item->getHref()));
            object["url"] = ref ? boost::json::value(refUrl(*ref, snapshot.language())) : boost::json::value(nullptr);
            // The matched runs of the name as [offset, length] in UTF-16 code units, as scripts count.
            boost::json::array ranges;
            for (const auto& range : hit.nameRanges) {
                ranges.push_back(boost::json::array{range.begin, range.length});
            }
            object["ranges"] = std::move(ranges);
            array.push_back(std::move(object));
        }
    }
    return boost::json::serialize(array);
}

// ---- a reference page ---------------------------------------------------------------------------

namespace {

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
    const Snapshot& snapshot;
    const std::string& language;
    const PageFiles& files;

    // True when `path` is a page of the root: in the shown page's file, or in the file named
    // for its first folder.
    bool hasPage(const std::string& path) {
        const std::u16string wanted = toUtf16(path);
        if (findPage(files, wanted) != nullptr) {
            return true;
        }
        const std::string first = path.substr(0, path.find('/'));
        if (snapshot.pageNames().count(first) == 0) {
            return false;
        }
        return findPage(snapshot.pages(first)->files, wanted) != nullptr;
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

void renderArgument(std::string& out, const PageView::Argument& argument, std::vector<std::string> details = {}) {
    if (!argument.defaultValue.empty()) {
        details.push_back("Default: <code>" + escape(argument.defaultValue) + "</code>");
    }
    // Anchors come as "page.html#id"; the id is the element's, and the name links to itself
    // so that the place can be copied.
    const std::string& full = argument.anchor;
    const std::string anchor = full.substr(full.find('#') == std::string::npos ? 0 : full.rfind('#') + 1);
    if (html::isSafeId(anchor)) {
        out += "<dt id=\"" + escape(anchor) + "\"><a class=\"self\" href=\"#" + escape(anchor) + "\"><code>" +
               escape(argument.name) + "</code></a>";
    } else {
        out += "<dt><code>" + escape(argument.name) + "</code>";
    }
    out += "</dt><dd>";
    if (!argument.purpose.empty()) {
        out += "<div>" + escape(argument.purpose) + "</div>";
    }
    if (!argument.values.empty()) {
        std::vector<std::string> values;
        for (const auto& value : argument.values) {
            values.push_back("<code>" + escape(value) + "</code>");
        }
        out += "<div class=\"muted\">Values: " + joinList(values, ", ") + "</div>";
    }
    for (const auto& detail : details) {
        out += "<div class=\"muted\">" + detail + "</div>";
    }
    out += "</dd>\n";
}

// A section that is one list of arguments (outputs, parameters); none when the list is empty.
void renderArgumentSection(std::string& out, const char* id, const char* title,
                           const std::vector<PageView::Argument>& arguments) {
    if (arguments.empty()) {
        return;
    }
    out += std::string("<section id=\"") + id + "\"><h2>" + title + "</h2><dl class=\"args\">\n";
    for (const auto& argument : arguments) {
        renderArgument(out, argument);
    }
    out += "</dl></section>\n";
}

// A page with this many sections gets a table of contents.
constexpr std::size_t kContentsFrom = 3;

void renderPage(std::string& out, PageContext& context, const PageView& page, const std::string& lacking) {
    std::string kinds;
    for (const auto& entity : page.entities) {
        if (!entity.type.empty()) {
            kinds += "<span class=\"tag\">" + escape(entity.type) + "</span>";
        }
    }
    out += "<article class=\"page\">\n<h1>" + escape(page.heading()) + kinds;
    if (page.deprecated) {
        out += "<span class=\"tag deprecated\">" + escape(page.deprecationStatus) + "</span>";
    }
    out += "</h1>\n<p class=\"purpose\" id=\"purpose\">" + escape(page.purpose) + "</p>\n";
    std::vector<std::string> facts{"Page <code>" + escape(page.href) + "</code>"};
    if (!page.packageName.empty()) {
        facts.push_back("package <code>" + escape(page.packageName) + "</code>");
    }
    if (!page.introduced.empty()) {
        facts.push_back("introduced in " + escape(page.introduced));
    }
    facts.push_back("status " + escape(page.deprecationStatus));
    out += "<p class=\"meta\">" + joinList(facts, " · ") + "</p>\n";
    if (!page.description.empty()) {
        out += "<p class=\"description\">" + escape(page.description) + "</p>\n";
    }
    if (!page.thumbnailFileRef.empty() || !page.thumbnailAltText.empty()) {
        out += "<p class=\"meta thumbnail\">Thumbnail <code>" + escape(page.thumbnailFileRef) + "</code>" +
               (page.thumbnailAltText.empty() ? "" : ": " + escape(page.thumbnailAltText)) + "</p>\n";
    }
    out += lacking;
    if (const auto sections = sectionsOf(page); sections.size() >= kContentsFrom) {
        out += "<nav class=\"toc\" aria-label=\"On this page\"><strong>On this page</strong><ul>";
        for (const auto& section : sections) {
            out += std::string("<li><a href=\"#") + section.id + "\">" + section.title + "</a></li>";
        }
        out += "</ul></nav>\n";
    }
    if (!page.syntaxGroups.empty()) {
        out += "<section id=\"syntax\"><h2>Syntax</h2>\n";
        for (const auto& group : page.syntaxGroups) {
            out += "<h3>" + escape(group.title);
            if (!group.syntaxType.empty()) {
                out += "<span class=\"tag\">" + escape(group.syntaxType) + "</span>";
            }
            out += "</h3><pre>";
            for (const auto& line : group.lines) {
                out += escape(line) + "\n";
            }
            out += "</pre>\n";
        }
        out += "</section>\n";
    }
    if (!page.inputGroups.empty()) {
        out += "<section id=\"inputs\"><h2>Inputs</h2>\n";
        for (const auto& group : page.inputGroups) {
            out += "<h3>" + escape(group.title) + "</h3><dl class=\"args\">\n";
            for (const auto& input : group.arguments) {
                std::string kind = input.syntaxType;
                if (input.nameValuePair) {
                    kind += kind.empty() ? "name-value pair" : ", name-value pair";
                }
                renderArgument(out, input,
                               kind.empty() ? std::vector<std::string>{} : std::vector{"Kind: " + escape(kind)});
            }
            out += "</dl>\n";
        }
        out += "</section>\n";
    }
    renderArgumentSection(out, "outputs", "Outputs", page.outputs);
    if (!page.propertyGroups.empty()) {
        out += "<section id=\"properties\"><h2>Properties</h2>\n";
        for (const auto& group : page.propertyGroups) {
            if (!group.title.empty()) {
                out += "<h3>" + escape(group.title) + "</h3>";
            }
            out += "<dl class=\"args\">\n";
            for (const auto& property : group.arguments) {
                renderArgument(out, property);
            }
            out += "</dl>\n";
        }
        out += "</section>\n";
    }
    renderArgumentSection(out, "parameters", "Parameters", page.parameters);
    if (!page.examples.empty()) {
        out += "<section id=\"examples\"><h2>Examples</h2><ul class=\"plain\">\n";
        for (const auto& example : page.examples) {
            out += "<li>" + dataLink(context, example.url, example.title) + " <code class=\"muted\">" +
                   escape(example.url) + "</code>";
            if (!example.openCommand.empty()) {
                out += "<div class=\"muted\">Open with <code>" + escape(example.openCommand) + "</code></div>";
            }
            out += "</li>\n";
        }
        out += "</ul></section>\n";
    }
    if (!page.seeAlso.empty()) {
        out += "<section id=\"seealso\" class=\"seealso\"><h2>See also</h2><ul class=\"plain\">\n";
        for (const auto& link : page.seeAlso) {
            out += "<li>" + dataLink(context, link.url, link.name) + " <code class=\"muted\">" + escape(link.url) +
                   "</code></li>\n";
        }
        out += "</ul></section>\n";
    }
    out += "</article>\n";
}

} // namespace

namespace {

// The note on a translated page that lacks sections of its English page, or "".
std::string lackingNote(const Snapshot* english, const std::string& href, const PageView& page,
                        const std::string& language) {
    if (english == nullptr) {
        return {};
    }
    const std::string file = english->pageFileOf(href);
    if (file.empty()) {
        return {};
    }
    const auto* pages = findPage(english->pages(file)->files, toUtf16(href));
    if (pages == nullptr || pages->empty()) {
        return {};
    }
    std::vector<std::string> missing;
    for (const auto& section : lackingSections(makePageView(pages->front()), page)) {
        missing.push_back(section.title);
    }
    if (missing.empty()) {
        return {};
    }
    return "<p class=\"lacking\" id=\"lacking\">This page in <strong>" + escape(language) +
           "</strong> lacks sections the English page has: " + escape(joinList(missing, ", ")) + ". <a href=\"" +
           escape(html::viewUrl("/ref/" + href, "en")) + "\" hreflang=\"en\">Read the English page</a></p>\n";
}

} // namespace

void pageView(const Snapshot& snapshot, const Snapshot* english, const std::string& href, View& view) {
    const std::string name = snapshot.pageFileOf(href);
    if (name.empty()) {
        // Every page file was read: the note tells when one of them was dropped.
        for (const auto& other : snapshot.pageNames()) {
            view.counts.add(snapshot.pages(other)->counts);
        }
        errorView(view, 404, "No such page",
                  "No page file of the documentation root has the page \"" + href +
                      "\" (or the file that has it was dropped; the problems view says why).");
        return;
    }
    const auto load = snapshot.pages(name);
    view.counts.add(load->counts);
    const std::u16string wanted = toUtf16(href);
    std::u16string key;
    const std::vector<RefItem>* pages = nullptr;
    for (const auto& [fileKey, resource] : load->files) {
        if (const auto found = resource.getItems().find(wanted); found != resource.getItems().end()) {
            key = fileKey;
            pages = &found->second;
            break;
        }
    }
    const std::string& language = snapshot.language();
    PageContext context{snapshot, language, load->files};
    view.title = href;
    for (const auto& page : *pages) {
        const PageView shown = makePageView(page);
        if (view.title == href && !shown.entities.empty()) {
            view.title = shown.heading();
        }
        renderPage(view.body, context, shown,
                   &page == &pages->front() ? lackingNote(english, href, shown, language) : "");
    }
    view.body += "<p class=\"meta\">From page file <code>" + escape(name) + ".json</code></p>\n";

    // Index › product › page; the product links to its entries when the lookup data has it.
    const LookupResults& lookup = snapshot.lookup();
    Crumb product{toUtf8(load->files.at(key).getHeader().getProductName()), ""};
    for (const auto* map : {&lookup.installedResources, &lookup.uninstalledResources}) {
        if (const auto found = map->find(key); found != map->end()) {
            product = {toUtf8(found->second.getHeader().getProductName()), html::productUrl(toUtf8(key), language)};
            break;
        }
    }
    view.crumbs = {std::move(product), {view.title, ""}};
}

// ---- problems ---------------------------------------------------------------------------------

namespace {

constexpr std::size_t kProblemsFirst = 20;    // rows of each list on the problems overview
constexpr std::size_t kProblemsPerPage = 100; // rows of one page of a single list

// One list of the problems view: its rows are already HTML.
struct ProblemList {
    std::string id;    // the "show" parameter that pages through it
    std::string label; // its name in the breadcrumbs
    std::string title; // HTML
    std::string note;  // HTML, or ""
    std::vector<std::string> rows;
};

std::string cell(const std::string& file, const std::string& html) {
    return "<tr class=\"problem\"><td><code>" + escape(file) + "</code><div class=\"reason\">" + html +
           "</div></td></tr>\n";
}

std::vector<ProblemList> problemLists(const Report& report, const std::filesystem::path& root) {
    std::vector<ProblemList> lists;
    ProblemList dropped{"dropped", "Dropped files", "Dropped files", "The library reads nothing of these files.", {}};
    for (const auto& file : report.files) {
        if (file.diagnostic.dropped()) {
            std::string label = fileLabel(file.diagnostic, root);
            if (file.diagnostic.localeVariant) {
                label += " (locale variant)";
            }
            dropped.rows.push_back(cell(label, escape(dropText(file.diagnostic)) + "<div class=\"fix\">fix: " +
                                                   escape(dropFix(file.diagnostic)) + "</div>"));
        }
    }
    lists.push_back(std::move(dropped));
    for (const auto& group : groupWarnings(report, root)) {
        ProblemList list{group.kind,
                         group.kind,
                         "<span class=\"warning\">" + escape(group.kind) +
                             "</span>: " + plural(group.count, "warning", "warnings") + " in " +
                             plural(group.lines.size(), "file", "files"),
                         escape(group.note),
                         {}};
        if (!group.fix.empty()) {
            list.note += (list.note.empty() ? "" : "<br>") + std::string("fix: ") + escape(group.fix);
        }
        for (const auto& line : group.lines) {
            const std::string fix = line.fix.empty() ? "" : "<div class=\"fix\">fix: " + escape(line.fix) + "</div>";
            list.rows.push_back(cell(line.file, escape(joinList(line.texts, "; ")) + fix));
        }
        lists.push_back(std::move(list));
    }
    ProblemList ignored{
        "ignored", "Not read", "Not read", "Only .json and .zip lookup files and .json page files are data.", {}};
    for (const auto& path : report.ignored) {
        ignored.rows.push_back("<tr class=\"problem\"><td><code>" + escape(path) + "</code></td></tr>\n");
    }
    lists.push_back(std::move(ignored));
    return lists;
}

void renderRows(std::string& out, const std::vector<std::string>& rows, std::size_t begin, std::size_t end) {
    out += "<table class=\"problems\"><tbody>\n";
    for (std::size_t i = begin; i < end; ++i) {
        out += rows[i];
    }
    out += "</tbody></table>\n";
}

} // namespace

void problemsView(const Report& report, const std::filesystem::path& root, const ProblemsQuery& query, View& view) {
    view.counts = LoadCounts{report.files.size(), report.dropped, report.warnings};
    view.title = "Problems";
    view.problemsBanner = false; // the view is the whole account
    view.crumbs = {{"Problems", ""}};
    const std::string& language = query.language;
    const std::vector<ProblemList> lists = problemLists(report, root);
    std::string& out = view.body;

    if (!query.show.empty()) {
        const auto list = std::find_if(lists.begin(), lists.end(),
                                       [&](const ProblemList& candidate) { return candidate.id == query.show; });
        if (list == lists.end()) {
            errorView(view, 404, "No such list", "The problems view has no list \"" + query.show + "\".");
            return;
        }
        const std::size_t pages =
            std::max<std::size_t>(1, (list->rows.size() + kProblemsPerPage - 1) / kProblemsPerPage);
        if (query.page == 0 || query.page > pages) {
            errorView(view, 404, "No such page", "This list has " + plural(pages, "page", "pages") + ".");
            return;
        }
        const std::size_t begin = (query.page - 1) * kProblemsPerPage;
        const std::size_t end = std::min(list->rows.size(), begin + kProblemsPerPage);
        view.title = "Problems: " + list->label;
        view.crumbs = {{"Problems", html::viewUrl("/problems", language)}, {list->label, ""}};
        out += "<h1>" + list->title + "</h1>\n";
        if (!list->note.empty()) {
            out += "<p class=\"meta\">" + list->note + "</p>\n";
        }
        const auto pageUrl = [&](std::size_t page) {
            return escape(html::viewUrl("/problems", language, {{"show", list->id}, {"page", std::to_string(page)}}));
        };
        std::string pager = "<p class=\"pager\">";
        if (query.page > 1) {
            pager += "<a rel=\"prev\" href=\"" + pageUrl(query.page - 1) + "\">← previous</a> ";
        }
        pager += "rows " + std::to_string(list->rows.empty() ? 0 : begin + 1) + "–" + std::to_string(end) + " of " +
                 std::to_string(list->rows.size()) + " · page " + std::to_string(query.page) + " of " +
                 std::to_string(pages);
        if (query.page < pages) {
            pager += " <a rel=\"next\" href=\"" + pageUrl(query.page + 1) + "\">next →</a>";
        }
        pager += "</p>\n";
        out += pager;
        renderRows(out, list->rows, begin, end);
        out += pager;
        return;
    }

    out += "<h1>Problems</h1>\n<p class=\"meta\">Every lookup and page file under <code>" + escape(root.string()) +
           "</code>, read with each supported language current (" + escape(joinList(report.languages, ", ")) +
           "), as <code>refdoc check</code> reads them.</p>\n";
    out += "<p id=\"summary\">" + plural(report.files.size(), "file", "files") + ": " +
           std::to_string(report.files.size() - report.dropped) + " read, " + "<span class=\"dropped\">" +
           plural(report.dropped, "dropped", "dropped") + "</span>, " + "<span class=\"warning\">" +
           plural(report.warnings, "warning", "warnings") + "</span>, " +
           plural(report.ignored.size(), "file", "files") + " not read.</p>\n";
    for (const auto& list : lists) {
        if (list.rows.empty()) {
            continue;
        }
        out += "<section class=\"problem-list\"><h2>" + list.title;
        if (list.id == "dropped" || list.id == "ignored") {
            out += " <span class=\"count\">" + std::to_string(list.rows.size()) + "</span>";
        }
        out += "</h2>\n";
        if (!list.note.empty()) {
            out += "<p class=\"meta\">" + list.note + "</p>\n";
        }
        renderRows(out, list.rows, 0, std::min(list.rows.size(), kProblemsFirst));
        if (list.rows.size() > kProblemsFirst) {
            out += "<p class=\"more\"><a href=\"" +
                   escape(html::viewUrl("/problems", language, {{"show", list.id}, {"page", "1"}})) + "\">All " +
                   std::to_string(list.rows.size()) + ", " + std::to_string(kProblemsPerPage) + " to a page</a></p>\n";
        }
        out += "</section>\n";
    }
    if (report.dropped + report.warnings == 0) {
        out += "<p>No file is dropped and nothing is read leniently.</p>\n";
    }
}

} // namespace refdoc::tool::serve
