#pragma once

#include <boost/json/storage_ptr.hpp>
#include <boost/json/value.hpp>

#include <string_view>

namespace reference::docparser {

// Parses the text of one resource file exactly as boost::json::parse(text, storage,
// parse_options()) does, throwing its boost::system::system_error for text that is not strict
// JSON. Every tree reading of a resource file goes through here, so that a diagnostics scope
// learns where the parser stopped.
boost::json::value parseResourceText(std::string_view text, boost::json::storage_ptr storage);

} // namespace reference::docparser
