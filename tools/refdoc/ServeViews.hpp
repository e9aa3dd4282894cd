#pragma once

// The HTML views of `refdoc serve`, made from the loaded data of one language.

#include "ServeSnapshots.hpp"

#include <string>
#include <vector>

namespace refdoc::tool::serve {

// One step of the breadcrumbs after the index: a link, or the view itself when `url` is "".
struct Crumb {
    std::string label;
    std::string url;
};

// What one request produced.
struct View {
    int status = 200;
    std::string title;
    std::string body;
    std::string query;         // the search box's text
    std::vector<Crumb> crumbs; // none on the index
    LoadCounts counts;         // of the files this view read
    // Whether the note on what this view read is shown: where its data is, not on the index or
    // the problems view itself.
    bool problemsBanner = true;
};

// What the problems view shows: the overview, or one page of one of its lists.
struct ProblemsQuery {
    std::string language;
    std::string show; // "" for the overview
    std::size_t page = 1;
};

// The whole page around `view`; `path` is the view's own path, for the language switch.
std::string document(const std::vector<std::string>& languages, const std::string& language, const View& view,
                     const std::string& path);

void errorView(View& view, int status, const std::string& title, const std::string& text);

void indexView(const Snapshot& snapshot, const std::filesystem::path& root, View& view);
void productView(const Snapshot& snapshot, const std::string& key, View& view);
void searchView(const Snapshot& snapshot, const std::string& text, View& view);
// The best `limit` hits for `text` as a JSON array: the fields of `refdoc find --json` and "url",
// the view of the hit's page (null when its link is not a page of the root), and "ranges", the
// matched runs of the name.
std::string searchJson(const Snapshot& snapshot, const std::string& text, std::size_t limit);
// The page `href`, a relative path that html::pageHref accepts. `english` is the English
// snapshot when the view's language is another, to tell which sections a translation lacks.
void pageView(const Snapshot& snapshot, const Snapshot* english, const std::string& href, View& view);
void problemsView(const Report& report, const std::filesystem::path& root, const ProblemsQuery& query, View& view);

} // namespace refdoc::tool::serve
