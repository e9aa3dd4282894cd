// The exported field-access tools: checked reads of a parsed boost::json value.

#include "docparser/parsing/FieldAccess.hpp"

#include "docparser/diagnostics/ReadFailure.hpp"
#include "docparser/diagnostics/Recorder.hpp"
#include "docparser/parsing/JsonKeys.hpp"

#include <reference/docparser/DocParserException.hpp>
#include <reference/property/DeprecationStatus.hpp>
#include <reference/property/FunctionType.hpp>
#include <reference/property/RefEntityType.hpp>
#include <reference/property/SyntaxType.hpp>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/string.hpp>
#include <boost/json/value.hpp>

namespace reference::docparser {

namespace {

using detail::StringParsingType;
using diagnostics::JsonKind;
using diagnostics::ReadFailure;

JsonKind kindOf(const boost::json::value& value) noexcept {
    switch (value.kind()) {
    case boost::json::kind::null:
        return JsonKind::Null;
    case boost::json::kind::bool_:
        return JsonKind::Boolean;
    case boost::json::kind::string:
        return JsonKind::String;
    case boost::json::kind::array:
        return JsonKind::Array;
    case boost::json::kind::object:
        return JsonKind::Object;
    default:
        return JsonKind::Number;
    }
}

// Every failed read leaves through here. The exception deliberately carries nothing; a
// diagnostics scope active on the thread gets a record of what was wrong with which member.
[[noreturn]] void failRead(ReadFailure failure, std::string_view key, const boost::json::value* found) {
    if (diagnostics::Recorder* recorder = diagnostics::activeRecorder()) {
        try {
            FileDiagnostic record;
            record.source = DiagnosticSource::Text;
            std::string pointer;
            if (!key.empty()) {
                diagnostics::appendPointerToken(pointer, key);
            }
            diagnostics::describeReadFailure(record, failure, key, found != nullptr ? kindOf(*found) : JsonKind::Null,
                                             std::move(pointer));
            recorder->add(std::move(record));
        } catch (...) {
            // The record is lost; the failure still is not.
        }
    }
    throw DocParserException();
}

const boost::json::object& asObject(const boost::json::value& value, std::string_view key = {}) {
    if (const auto* object = value.if_object()) [[likely]] {
        return *object;
    }
    failRead(ReadFailure::NotAnObject, key, &value);
}

const boost::json::array& asArray(const boost::json::value& value, std::string_view key = {}) {
    if (const auto* array = value.if_array()) [[likely]] {
        return *array;
    }
    failRead(ReadFailure::NotAnArray, key, &value);
}

std::string_view asStringBytes(const boost::json::value& value, std::string_view key = {}) {
    if (const auto* string = value.if_string()) [[likely]] {
        return {string->data(), string->size()};
    }
    failRead(ReadFailure::NotAString, key, &value);
}

const boost::json::value& requireMember(const boost::json::object& object, std::string_view key) {
    if (const auto* member = object.if_contains(key)) [[likely]] {
        return *member;
    }
    failRead(ReadFailure::MissingKey, key, nullptr);
}

std::u16string requireString(const boost::json::object& object, std::string_view key, StringParsingType type) {
    return detail::toUtf16(asStringBytes(requireMember(object, key), key), type);
}

} // namespace

using Tools = DocResourceParser::ParsingTools;

std::u16string Tools::getFluString(const boost::json::value& value, StringParsingType type) {
    return detail::toUtf16(asStringBytes(value), type);
}

std::u16string Tools::getFluString(const boost::json::object& object, const std::string& key, StringParsingType type) {
    return requireString(object, key, type);
}

std::u16string Tools::getFluStringWithFallback(const boost::json::object& object, const std::string& key,
                                               StringParsingType type) {
    const auto* member = object.if_contains(key);
    return member != nullptr ? detail::toUtf16(asStringBytes(*member, key), type) : std::u16string();
}

const boost::json::array& Tools::getJsonArray(const boost::json::value& value) { return asArray(value); }

const boost::json::array& Tools::getJsonArray(const boost::json::value& value, const std::string& key) {
    return asArray(requireMember(asObject(value), key), key);
}

// Absent or unknown text gives the default, without an exception (unknown texts are common in
// data written elsewhere); only a member that is not a string is an error.
template <PropertyEnumeration T>
typename T::Value Tools::getEnumFromJson(const boost::json::object& object, const std::string& key) {
    typename T::Value value = T::getDefaultValue();
    if (const auto* member = object.if_contains(key)) {
        T::tryStringToEnum(asStringBytes(*member, key), value);
    }
    return value;
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
    const auto& document = asObject(value);
    // Read in this order, so that the first missing key is the one that fails.
    auto productName = requireString(document, keys::kProductName, StringParsingType::Utf8);
    auto baseCode = requireString(document, keys::kBaseCode, StringParsingType::Ascii);
    auto helpFolder = requireString(document, keys::kHelpFolder, StringParsingType::Ascii);
    auto helpLocation = requireString(document, keys::kHelpLocation, StringParsingType::Ascii);
    return property::HeaderInfo(std::move(productName), std::move(baseCode), std::move(helpFolder),
                                std::move(helpLocation));
}

} // namespace reference::docparser
