#pragma once

#include <reference/docparser/DocResourceParser.hpp>

#include <string>

namespace reference::docparser {

// The JSON text of one page file: the main document under its help folder, each support package
// document under its base code; the first document to claim a key keeps it. Throws
// boost::system::system_error for text that is not strict JSON and DocParserException for a
// document that breaks the page format. getResourceFile turns either into an absent file.
//
// `replacement` is the localized file that will be merged over this one, if any: pages it holds
// under the same document key, and documents whose key is taken, would be discarded, so they are
// only checked (the file still fails wherever a full parse fails) and never built.
DocResourceParser::RefItemFileMap parseRefItemFile(const std::string& text,
                                                   const DocResourceParser::RefItemFileMap* replacement = nullptr);

// The same outcome by the reference reading: the whole text parsed into a tree first, then
// walked. Kept for differential tests against the reading above.
DocResourceParser::RefItemFileMap parseRefItemFileTree(const std::string& text,
                                                       const DocResourceParser::RefItemFileMap* replacement = nullptr);

} // namespace reference::docparser
