#pragma once

// The lookup file format: one JSON document per product (the root object) plus one per support
// package (the root's "supportPackages" array), each a header and a "refItems" array of short
// index entries. Internal to the library; the lookup loading entry hands lookupFileParser to
// the multi-product pipeline.

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/object.hpp>

#include <string>

namespace reference::docparser {

// The text of one lookup file to its documents: the main document keyed by its help folder,
// each support package by its base code; the first document to claim a key wins. Throws
// boost::system::system_error for text that is not strict JSON (no comments, no trailing
// commas, nesting at most 32 deep) and DocParserException for a missing required key or a
// member of the wrong kind. Nothing of a failed file is returned.
//
// The records are built from the parser's events (EventReader.hpp); a file of unusual shape,
// and every file while a diagnostics scope records, is read through the tree instead.
DocResourceParser::LookupResourceMap parseLookupFile(const std::string& text);

// The same outcome by the tree reading: the whole text parsed into a tree first, then walked.
// It defines what a file yields, and it alone reports to diagnostics scopes.
DocResourceParser::LookupResourceMap parseLookupFileTree(const std::string& text);

// One document object to its header and its entries grouped by name, in file order.
DocResource<property::RefItemLookup> parseLookupDocument(const boost::json::object& document);

// parseLookupFile with the signature of ParsingInfo<LookupResourceMap>::JsonParsingFcn.
DocResourceParser::LookupResourceMap lookupFileParser(const std::string& text);

} // namespace reference::docparser
