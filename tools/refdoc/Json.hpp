#pragma once

// The library's results as JSON values, for the --json outputs. Texts are UTF-8; enumeration
// values are their JSON spellings, null for a value that has none (the defaults).

#include "PageView.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include <boost/json/value.hpp>

#include <filesystem>
#include <ostream>

namespace refdoc::tool {

boost::json::value toJson(const reference::docparser::DocResourceParser::LookupResourceMap& resources);
boost::json::value toJson(const reference::docparser::DocResourceParser::RefItemFileMap& resources);
boost::json::value toJson(const reference::property::RefItem& page);
boost::json::value toJson(const PageView& page);
// Paths below `root` are given relative to it; the warnings are the caller's to add.
boost::json::value toJson(const reference::docparser::FileDiagnostic& file, const std::filesystem::path& root);

// Indented output, two spaces per level, ending with a newline.
void writeJson(std::ostream& out, const boost::json::value& value);

} // namespace refdoc::tool
