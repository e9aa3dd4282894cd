#include "docparser/parsing/FieldAccess.hpp"

#include "docparser/parsing/JsonKeys.hpp"

#include <reference/docparser/DocParserException.hpp>
#include <reference/property/DeprecationStatus.hpp>
#include <reference/property/FunctionType.hpp>
#include <reference/property/RefEntityType.hpp>
#include <reference/property/SyntaxType.hpp>

namespace reference::docparser {

namespace detail {

void failRead(ReadFailure failure, std::string_view key, const void* node) {
    // The exception deliberately carries nothing: loaders treat the file as absent whatever
    // went wrong. The failure kind, key and node go to a diagnostics scope, if one is active.
    diagnostics::readFailed(failure, key, node);
    throw DocParserException();
}

property::HeaderInfo readHeader(const boost::json::object& document) {
    // Read in this order, so that the first missing key is the one reported.
    auto productName = requireString(document, keys::kProductName, StringParsingType::Utf8);
    auto baseCode = requireString(document, keys::kBaseCode, StringParsingType::Ascii);
    auto helpFolder = requireString(document, keys::kHelpFolder, StringParsingType::Ascii);
    auto helpLocation = requireString(document, keys::kHelpLocation, StringParsingType::Ascii);
    return property::HeaderInfo(std::move(productName), std::move(baseCode), std::move(helpFolder),
                                std::move(helpLocation));
}

} // namespace detail

using Tools = DocResourceParser::ParsingTools;

std::u16string Tools::getFluString(const boost::json::value& value, StringParsingType type) {
    return detail::toUtf16(detail::asStringBytes(value), type);
}

std::u16string Tools::getFluString(const boost::json::object& object, const std::string& key, StringParsingType type) {
    return detail::requireString(object, key, type);
}

std::u16string Tools::getFluStringWithFallback(const boost::json::object& object, const std::string& key,
                                               StringParsingType type) {
    return detail::optionalString(object, key, type);
}

const boost::json::array& Tools::getJsonArray(const boost::json::value& value) { return detail::asArray(value); }

const boost::json::array& Tools::getJsonArray(const boost::json::value& value, const std::string& key) {
    return detail::requireArray(detail::asObject(value), key);
}

template <PropertyEnumeration T>
typename T::Value Tools::getEnumFromJson(const boost::json::object& object, const std::string& key) {
    return detail::readEnum<T>(object, key);
}

template property::RefEntityType::Value Tools::getEnumFromJson<property::RefEntityType>(const boost::json::object&,
                                                                                        const std::string&);
template property::FunctionType::Value Tools::getEnumFromJson<property::FunctionType>(const boost::json::object&,
                                                                                      const std::string&);
template property::SyntaxType::Value Tools::getEnumFromJson<property::SyntaxType>(const boost::json::object&,
                                                                                  const std::string&);
template property::DeprecationStatus::Value
Tools::getEnumFromJson<property::DeprecationStatus>(const boost::json::object&, const std::string&);

property::HeaderInfo Tools::getHeaderInfo(const boost::json::value& value) {
    return detail::readHeader(detail::asObject(value));
}

} // namespace reference::docparser
