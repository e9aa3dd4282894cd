#pragma once

// The reference page format: one document object (header plus "refItems") to the pages it
// holds, keyed by href; a page file is a main document and its "supportPackages". Internal to
// the library; the reference page loading entry reads a product's page files with
// parseRefItemFile.
//
// Every function throws DocParserException for a missing required key or a member of the
// wrong JSON kind; nothing of a failed document is returned.

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include <boost/json/fwd.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace reference::docparser {

// The JSON text of one page file: the main document under its help folder, each support package
// document under its base code; the first document to claim a key keeps it. Throws
// boost::system::system_error for text that is not strict JSON and DocParserException for a
// document that breaks the page format.
//
// `replacement` is the localized file that will be merged over this one, if any: pages it holds
// under the same document key, and documents whose key is taken, would be discarded, so they are
// only checked (the file still fails wherever a full read fails) and never built.
// `record`, when not null, gets the reason of a failure and the warnings.
DocResourceParser::RefItemFileMap
parseRefItemFile(std::string_view text, const DocResourceParser::RefItemFileMap* replacement, FileDiagnostic* record);
// The same for a parsed value (the same tables read it, so it gives the same records).
DocResourceParser::RefItemFileMap parseRefItemFile(const boost::json::value& file);

// One document (which must be a JSON object) to its header and pages.
DocResource<property::RefItem> parseRefItemDocument(const boost::json::value& document);

// The item's "syntaxgroup" list; empty when the item has none.
std::vector<property::SyntaxGroup> parseSyntaxGroups(const boost::json::object& item);

// One input group ("inputs" and "title"). Input names are decoded with `nameParsing`; every
// input gets `isNameValuePair`. The title is required even when "inputs" is empty.
property::InputGroup parseInputGroup(const boost::json::object& group, const std::u16string& href,
                                     DocResourceParser::ParsingTools::StringParsingType nameParsing,
                                     bool isNameValuePair);

// An input, output or parameter: name decoded with `nameParsing`, anchor href + "#" + "htmlid".
property::ObjectInfo parseObjectInfo(const boost::json::object& object, const std::u16string& href,
                                     DocResourceParser::ParsingTools::StringParsingType nameParsing);

// The rest of an ObjectInfo ("purpose", "value") around an already decoded name and anchor.
property::ObjectInfo makeObjectInfo(const boost::json::object& object, const std::u16string& name,
                                    const std::u16string& anchor);

} // namespace reference::docparser
