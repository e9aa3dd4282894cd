#pragma once

// Small builders for the JSON documents the parser suites feed in. Header-only.

#include "JsonWriter.hpp"

#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <string>
#include <string_view>

namespace refdoc::test {

// Strict JSON text to a value (throws for bad text).
inline boost::json::value parseJson(std::string_view text) {
    return boost::json::parse(boost::json::string_view(text.data(), text.size()));
}

// A document: the four header keys plus "refItems" parsed from `itemsJson`.
inline boost::json::object documentObject(std::string_view helpFolder, std::string_view baseCode,
                                          std::string_view itemsJson = "[]", std::string_view productName = "Product") {
    boost::json::object document;
    document["productName"] = boost::json::string_view(productName.data(), productName.size());
    document["baseCode"] = boost::json::string_view(baseCode.data(), baseCode.size());
    document["helpFolder"] = boost::json::string_view(helpFolder.data(), helpFolder.size());
    document["helpLocation"] = "help/location";
    document["refItems"] = parseJson(itemsJson);
    return document;
}

inline std::string toText(const boost::json::value& value) {
    JsonWriter json;
    json.value(value);
    return json.take();
}

} // namespace refdoc::test
