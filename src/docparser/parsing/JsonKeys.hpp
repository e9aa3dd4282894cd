#pragma once

#include <string>

// The keys of the lookup and reference-page formats. Built once when the library loads and
// shared by every parser, so that no parse builds a key string.
namespace reference::docparser::keys {

// Document header and structure.
inline const std::string kProductName{"productName"};
inline const std::string kBaseCode{"baseCode"};
inline const std::string kHelpFolder{"helpFolder"};
inline const std::string kHelpLocation{"helpLocation"};
inline const std::string kRefItems{"refItems"};
inline const std::string kSupportPackages{"supportPackages"};

// Lookup entries (and shared with pages where the key is the same).
inline const std::string kName{"name"};
inline const std::string kRefPurpose{"refpurpose"};
inline const std::string kHref{"href"};
inline const std::string kType{"type"};
inline const std::string kFcnType{"fcntype"};
inline const std::string kDeprecated{"deprecated"};

// Reference pages.
inline const std::string kRefEntity{"refentity"};
inline const std::string kPackageName{"packagename"};
inline const std::string kIntroduced{"introduced"};
inline const std::string kDescription{"description"};
inline const std::string kAppThumbnail{"appthumbnail"};
inline const std::string kFileRef{"fileref"};
inline const std::string kAlt{"alt"};
inline const std::string kDeprecationStatus{"deprecationstatus"};
inline const std::string kSyntaxGroup{"syntaxgroup"};
inline const std::string kSyntaxType{"syntaxtype"};
inline const std::string kTitle{"title"};
inline const std::string kSyntax{"syntax"};
inline const std::string kInputGroup{"inputgroup"};
inline const std::string kInputs{"inputs"};
inline const std::string kNameValuePairs{"namevaluepairs"};
inline const std::string kOutputs{"outputs"};
inline const std::string kParameters{"parameters"};
inline const std::string kClassPropertyGroup{"classpropertygroup"};
inline const std::string kClassProperty{"classproperty"};
inline const std::string kSeeAlso{"seealso"};
inline const std::string kExamples{"examples"};
inline const std::string kUrl{"url"};
inline const std::string kOpenCommand{"open_command"};
inline const std::string kHtmlId{"htmlid"};
inline const std::string kPurpose{"purpose"};
inline const std::string kValue{"value"};
inline const std::string kDefaultValue{"defaultvalue"};

} // namespace reference::docparser::keys
