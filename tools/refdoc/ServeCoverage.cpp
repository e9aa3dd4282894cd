#include "ServeCoverage.hpp"

#include "Html.hpp"
#include "Text.hpp"

namespace refdoc::tool::serve {
namespace {

using html::escape;

std::string countsText(const CoverageCounts& counts, const char* what) {
    return std::string(what) + " " + std::to_string(counts.localized) + " of " + std::to_string(counts.total) +
           " localized, " + std::to_string(counts.fallback) + " in English";
}

std::string numberCell(std::size_t n) { return "<td class=\"num\">" + std::to_string(n) + "</td>"; }

// A page of the lists: a link to its view in the translation, which says what it lacks, when
// the link is a page reference of the root; else the text.
std::string pageLink(const std::string& href, const std::string& language) {
    const auto ref = html::pageHref(href);
    if (!ref) {
        return "<code>" + escape(href) + "</code>";
    }
    return "<a href=\"" + escape(html::viewUrl("/ref/" + ref->path, language, ref->fragment)) + "\" hreflang=\"" +
           escape(language) + "\"><code>" + escape(href) + "</code></a>";
}

void renderLanguage(std::string& out, const LanguageCoverage& coverage) {
    const std::string& language = coverage.language;
    out += "<section class=\"coverage\"><h2>" + escape(language) + "</h2>\n<p class=\"meta\">" +
           escape(countsText(coverage.entries, "Lookup entries")) + "; " + escape(countsText(coverage.pages, "pages")) +
           "</p>\n";
    out += "<table class=\"products coverage\"><thead><tr><th>Key</th><th>Product</th><th>Entries</th>"
           "<th>Localized</th><th>In English</th><th>Pages</th><th>Localized</th><th>In English</th>"
           "<th>Lacking sections</th></tr></thead><tbody>\n";
    for (const auto& product : coverage.products) {
        // Only a key of the lookup data has a product view.
        const bool hasView = product.entries.total + product.entries.onlyTranslated != 0;
        out += "<tr><td>" +
               (hasView ? "<a href=\"" + escape(html::productUrl(product.key, language)) + "\">" + escape(product.key) +
                              "</a>"
                        : escape(product.key)) +
               "</td><td>" + escape(product.productName) + "</td>" + numberCell(product.entries.total) +
               numberCell(product.entries.localized) + numberCell(product.entries.fallback) +
               numberCell(product.pages.total) + numberCell(product.pages.localized) +
               numberCell(product.pages.fallback) + numberCell(product.lacking.size()) + "</tr>\n";
    }
    out += "</tbody></table>\n";
    if (coverage.lackingPages == 0) {
        out += "<p>No localized page lacks a section of its English page.</p>\n";
    } else {
        out += "<h3>Localized pages lacking sections of their English page <span class=\"count\">" +
               std::to_string(coverage.lackingPages) + "</span></h3>\n<ul class=\"plain lacking-pages\">\n";
        for (const auto& product : coverage.products) {
            for (const auto& gap : product.lacking) {
                out += "<li>" + pageLink(gap.href, language) + ": " + escape(joinList(gap.sectionTitles, ", ")) +
                       "</li>\n";
            }
        }
        out += "</ul>\n";
    }
    out += "</section>\n";
}

} // namespace

void coverageView(const Coverage& coverage, View& view) {
    view.title = "Translation coverage";
    view.crumbs = {{"Translation coverage", ""}};
    std::string& out = view.body;
    out += "<h1>Translation coverage</h1>\n<p class=\"meta\">For each language other than English: the lookup "
           "entries and pages it has of its own and those read in English, per product, and its pages that lack "
           "sections of their English page, as <code>refdoc check --coverage</code> reports them.</p>\n";
    if (coverage.languages.empty()) {
        out += "<p>No supported language other than English.</p>\n";
    }
    for (const auto& entry : coverage.languages) {
        renderLanguage(out, entry);
    }
}

} // namespace refdoc::tool::serve
