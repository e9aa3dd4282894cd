#include <reference/property/DeprecationStatus.hpp>
#include <reference/property/FunctionType.hpp>
#include <reference/property/RefEntityType.hpp>
#include <reference/property/SyntaxType.hpp>

#include "EnumTable.hpp"

namespace reference::property {
namespace {

using detail::EnumSpelling;

// Most frequent spellings first: the scan stops at the first match.
constexpr EnumSpelling<RefEntityType::Value> kRefEntityTypes[] = {
    {"function", RefEntityType::Function},
    {"class", RefEntityType::Class},
    {"method", RefEntityType::Method},
    {"property", RefEntityType::Property},
    {"object", RefEntityType::Object},
    {"namespace", RefEntityType::Namespace},
    {"package", RefEntityType::Package},
    {"enumeration", RefEntityType::Enumeration},
    {"event", RefEntityType::Event},
    {"constant", RefEntityType::Constant},
    {"app", RefEntityType::App},
    {"block", RefEntityType::Block},
    {"systemobject", RefEntityType::SystemObject},
    {"operator", RefEntityType::Operator},
    {"keyword", RefEntityType::Keyword},
    {"script", RefEntityType::Script},
    {"interface", RefEntityType::Interface},
    {"setting", RefEntityType::Setting},
    {"datatype", RefEntityType::DataType},
};

constexpr EnumSpelling<FunctionType::Value> kFunctionTypes[] = {
    {"ordinary", FunctionType::Ordinary},       {"builtin", FunctionType::Builtin},
    {"method", FunctionType::Method},           {"staticmethod", FunctionType::StaticMethod},
    {"constructor", FunctionType::Constructor}, {"operator", FunctionType::Operator},
    {"script", FunctionType::Script},           {"external", FunctionType::External},
    {"conversion", FunctionType::Conversion},
};

constexpr EnumSpelling<SyntaxType::Value> kSyntaxTypes[] = {
    {"function", SyntaxType::Function}, {"command", SyntaxType::Command},         {"method", SyntaxType::Method},
    {"property", SyntaxType::Property}, {"constructor", SyntaxType::Constructor}, {"required", SyntaxType::Required},
    {"optional", SyntaxType::Optional}, {"namevalue", SyntaxType::NameValue},     {"repeating", SyntaxType::Repeating},
    {"flag", SyntaxType::Flag},         {"output", SyntaxType::Output},
};

constexpr EnumSpelling<DeprecationStatus::Value> kDeprecationStates[] = {
    {"current", DeprecationStatus::Current},       {"notrecommended", DeprecationStatus::NotRecommended},
    {"deprecated", DeprecationStatus::Deprecated}, {"warns", DeprecationStatus::Warns},
    {"errors", DeprecationStatus::Errors},         {"removed", DeprecationStatus::Removed},
};

} // namespace

RefEntityType::Value RefEntityType::stringToEnum(std::string_view text) {
    return detail::lookupSpelling(kRefEntityTypes, text, "RefEntityType");
}
bool RefEntityType::tryStringToEnum(std::string_view text, Value& value) noexcept {
    return detail::findSpelling(kRefEntityTypes, text, value);
}
std::string_view RefEntityType::toString(Value value) noexcept { return detail::spellingOf(kRefEntityTypes, value); }

FunctionType::Value FunctionType::stringToEnum(std::string_view text) {
    return detail::lookupSpelling(kFunctionTypes, text, "FunctionType");
}
bool FunctionType::tryStringToEnum(std::string_view text, Value& value) noexcept {
    return detail::findSpelling(kFunctionTypes, text, value);
}
std::string_view FunctionType::toString(Value value) noexcept { return detail::spellingOf(kFunctionTypes, value); }

SyntaxType::Value SyntaxType::stringToEnum(std::string_view text) {
    return detail::lookupSpelling(kSyntaxTypes, text, "SyntaxType");
}
bool SyntaxType::tryStringToEnum(std::string_view text, Value& value) noexcept {
    return detail::findSpelling(kSyntaxTypes, text, value);
}
std::string_view SyntaxType::toString(Value value) noexcept { return detail::spellingOf(kSyntaxTypes, value); }

DeprecationStatus::Value DeprecationStatus::stringToEnum(std::string_view text) {
    return detail::lookupSpelling(kDeprecationStates, text, "DeprecationStatus");
}
bool DeprecationStatus::tryStringToEnum(std::string_view text, Value& value) noexcept {
    return detail::findSpelling(kDeprecationStates, text, value);
}
std::string_view DeprecationStatus::toString(Value value) noexcept {
    return detail::spellingOf(kDeprecationStates, value);
}

} // namespace reference::property
