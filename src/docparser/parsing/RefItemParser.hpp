#pragma once

// The reference page format: one document object (header plus "refItems") to the pages it
// holds, keyed by href. Internal to the library; the reference page loading entry parses a
// file's text and calls parseRefItemDocument for the root and for each support package.
//
// Every function throws DocParserException for a missing required key or a member of the
// wrong JSON kind; nothing of a failed document is returned.

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace reference::docparser {

// `document` must be a JSON object (anything else throws).
DocResource<property::RefItem> parseRefItemDocument(const boost::json::value& document);

// What a loader will keep of a page document, decided from its header.
struct PageSelection {
    bool dropDocument = false; // the whole document will be discarded
    // Pages (by href) that the loader replaces with others; nullptr: none.
    const DocResource<property::RefItem>::ItemMap* replacedPages = nullptr;
};
using PageSelector = std::function<PageSelection(const property::HeaderInfo&)>;

// As above, but the pages the loader would discard are only checked, not built: the document
// fails exactly where a full parse fails, and the result lacks those pages (all of them when the
// document is dropped). `select` is asked once, after the header is read.
DocResource<property::RefItem> parseRefItemDocument(const boost::json::value& document, const PageSelector& select);

// The item's "syntaxgroup" list; empty when the item has none.
std::vector<property::SyntaxGroup> parseSyntaxGroups(const boost::json::object& item);

// One input group. Input names are decoded with `nameParsing`; every input gets
// `isNameValuePair`. The group's "title" is required even when "inputs" is empty.
property::InputGroup parseInputGroup(const boost::json::object& group, const std::u16string& href,
                                     DocResourceParser::ParsingTools::StringParsingType nameParsing,
                                     bool isNameValuePair);

// An input, output or parameter: name decoded with `nameParsing`, anchor href + "#" + "htmlid".
property::ObjectInfo parseObjectInfo(const boost::json::object& object, const std::u16string& href,
                                     DocResourceParser::ParsingTools::StringParsingType nameParsing);

// The rest of an ObjectInfo ("purpose", "value") around an already decoded name and anchor.
property::ObjectInfo makeObjectInfo(const boost::json::object& object, const std::u16string& name,
                                    const std::u16string& anchor);
property::ObjectInfo makeObjectInfo(const boost::json::object& object, std::u16string&& name, std::u16string&& anchor);

// Anchors: href + "#" + the ASCII html id of an input, output or parameter; href + "#prop_" +
// the decoded name of a class property.
std::u16string argumentAnchor(const std::u16string& href, std::string_view htmlId);
std::u16string propertyAnchor(const std::u16string& href, const std::u16string& name);

// The map entry for a page's href, found or made next to `previous`, the entry the last page of
// the document went to (end() for the first). The result is that of an ordinary find-or-insert.
DocResource<property::RefItem>::ItemMap::iterator pageEntry(DocResource<property::RefItem>::ItemMap& pages,
                                                            DocResource<property::RefItem>::ItemMap::iterator previous,
                                                            const std::u16string& href);

} // namespace reference::docparser
