#pragma once

// The HTML views of `refdoc serve`, made from the loaded data of one language.

#include "ServeSnapshots.hpp"

#include <string>
#include <vector>

namespace refdoc::tool::serve {

// What one request produced.
struct View {
    int status = 200;
    std::string title;
    std::string body;
    std::string query; // the search box's text
    LoadCounts counts; // of the files this view read
};

// The whole page around `view`; `path` is the view's own path, for the language switch.
std::string document(const std::vector<std::string>& languages, const std::string& language, const View& view,
                     const std::string& path);

void errorView(View& view, int status, const std::string& title, const std::string& text);

void indexView(const Snapshot& snapshot, const std::filesystem::path& root, View& view);
void productView(const Snapshot& snapshot, const std::string& key, View& view);
void searchView(const Snapshot& snapshot, const std::string& text, View& view);
// The page `href`, a relative path that html::pageHref accepts.
void pageView(const Snapshot& snapshot, const std::string& href, View& view);
void problemsView(const Report& report, const std::filesystem::path& root, View& view);

} // namespace refdoc::tool::serve
