#pragma once

// The lookup file format: one JSON document per product (the root object) plus one per support
// package (the root's "supportPackages" array), each a header and a "refItems" array of short
// index entries. Internal to the library; the lookup loading entry hands the file reader to the
// multi-product pipeline.

#include "docparser/parsing/ScratchMemory.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include <boost/json/fwd.hpp>

#include <string>
#include <string_view>

namespace reference::docparser {

// The text of one lookup file to its documents: the main document keyed by its help folder,
// each support package by its base code; the first document to claim a key wins. Throws
// boost::system::system_error for text that is not strict JSON (no comments, no trailing
// commas, nesting at most 32 deep) and DocParserException for a missing required key or a
// member of the wrong kind. Nothing of a failed file is returned. `scratch` is reused from
// file to file; `record`, when not null, gets the reason of a failure and the warnings.
DocResourceParser::LookupResourceMap parseLookupFile(std::string_view text, detail::ScratchMemory& scratch,
                                                     FileDiagnostic* record);
// The same for a parsed value (the same tables read it, so it gives the same records).
DocResourceParser::LookupResourceMap parseLookupFile(const boost::json::value& file);

// One document object to its header and its entries grouped by name, in file order.
DocResource<property::RefItemLookup> parseLookupDocument(const boost::json::object& document);

// parseLookupFile with the signature of ParsingInfo<LookupResourceMap>::JsonParsingFcn.
DocResourceParser::LookupResourceMap lookupFileParser(const std::string& text);

} // namespace reference::docparser
