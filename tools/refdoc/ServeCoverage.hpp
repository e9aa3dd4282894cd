#pragma once

// The translation coverage view of `refdoc serve`: what `refdoc check --coverage` reports, a
// table per language with each translated page that lacks sections linked to its view.

#include "Coverage.hpp"
#include "ServeViews.hpp"

namespace refdoc::tool::serve {

// Each language's table links to the products and pages in that language.
void coverageView(const Coverage& coverage, View& view);

} // namespace refdoc::tool::serve
