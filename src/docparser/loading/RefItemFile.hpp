#pragma once

#include <reference/docparser/DocResourceParser.hpp>

#include <string>

namespace reference::docparser {

// The JSON text of one page file: the main document under its help folder, each support package
// document under its base code; the first document to claim a key keeps it. Throws
// boost::system::system_error for text that is not strict JSON and DocParserException for a
// document that breaks the page format. getResourceFile turns either into an absent file.
DocResourceParser::RefItemFileMap parseRefItemFile(const std::string& text);

} // namespace reference::docparser
