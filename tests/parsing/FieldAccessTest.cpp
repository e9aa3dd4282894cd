#include "support/JsonFixtures.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

using reference::docparser::DocParserException;
using Tools = reference::docparser::DocResourceParser::ParsingTools;
using namespace reference::property;
using refdoc::test::parseJson;
using refdoc::test::rawString;

constexpr auto kAscii = Tools::Ascii;
constexpr auto kUtf8 = Tools::Utf8;

TEST(FieldAccess, StringValueDecodingByParsingType) {
    struct Case {
        const char* what;
        std::string bytes;
        Tools::StringParsingType type;
        std::u16string expected;
    };
    const Case cases[] = {
        {"empty as Ascii", "", kAscii, u""},
        {"empty as Utf8", "", kUtf8, u""},
        {"plain text as Utf8", "plot", kUtf8, u"plot"},
        {"UTF-8 text as Utf8", "caf\xC3\xA9", kUtf8, u"caf\u00E9"},
        // Ascii never decodes: each byte is widened on its own.
        {"UTF-8 text as Ascii", "caf\xC3\xA9", kAscii, u"caf\u00C3\u00A9"},
        // The boundary bytes of the scan: 0x80 only decodes differently under the two types;
        // NUL and DEL are sent to the decoder, which keeps them as they are.
        {"0x00 as Utf8", std::string("a\0b", 3), kUtf8, std::u16string(u"a\0b", 3)},
        {"0x01 as Utf8", "a\x01", kUtf8, u"a\u0001"},
        {"0x7E as Utf8", "a\x7E", kUtf8, u"a~"},
        {"0x7F as Utf8", "a\x7F", kUtf8, u"a\u007F"},
        {"0x80 as Utf8", "a\x80", kUtf8, u"a\uFFFD"},
        {"0x80 as Ascii", "a\x80", kAscii, u"a\u0080"},
        {"NUL before UTF-8", std::string("\0\xC3\xA9", 3), kUtf8, std::u16string(u"\0\u00E9", 2)},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Tools::getFluString(rawString(c.bytes), c.type), c.expected) << c.what;
    }
    // Any value other than Ascii acts as Utf8.
    EXPECT_EQ(Tools::getFluString(rawString("caf\xC3\xA9"), static_cast<Tools::StringParsingType>(7)), u"caf\u00E9");
}

TEST(FieldAccess, RequiredAndOptionalStringsByKey) {
    const auto object = parseJson(R"({"name": "plot", "title": "Gr\u00f6\u00dfe", "empty": ""})").as_object();

    EXPECT_EQ(Tools::getFluString(object, "name", kAscii), u"plot");
    EXPECT_EQ(Tools::getFluString(object, "title", kUtf8), u"Gr\u00F6\u00DFe");
    EXPECT_EQ(Tools::getFluString(object, "empty", kUtf8), u"");
    EXPECT_THROW(Tools::getFluString(object, "missing", kUtf8), DocParserException);

    EXPECT_EQ(Tools::getFluStringWithFallback(object, "title", kUtf8), u"Gr\u00F6\u00DFe");
    EXPECT_EQ(Tools::getFluStringWithFallback(object, "missing", kUtf8), u"");
    EXPECT_EQ(Tools::getFluStringWithFallback(object, "missing", kAscii), u"");
}

TEST(FieldAccess, StringMembersOfTheWrongKindThrow) {
    const auto object =
        parseJson(R"({"number": 1, "null": null, "bool": false, "array": ["a"], "object": {"a": "b"}})").as_object();
    for (const char* key : {"number", "null", "bool", "array", "object"}) {
        EXPECT_THROW(Tools::getFluString(object, key, kUtf8), DocParserException) << key;
        EXPECT_THROW(Tools::getFluStringWithFallback(object, key, kUtf8), DocParserException) << key;
        EXPECT_THROW(Tools::getFluString(object.at(key), kAscii), DocParserException) << key;
    }
}

TEST(FieldAccess, ArraysByValueAndByKey) {
    const auto document = parseJson(R"({"items": [1, 2], "text": "x", "list": {"a": 1}})");
    const auto& items = document.as_object().at("items");

    EXPECT_EQ(&Tools::getJsonArray(items), &items.as_array());
    EXPECT_EQ(&Tools::getJsonArray(document, "items"), &items.as_array());

    EXPECT_THROW(Tools::getJsonArray(document.as_object().at("text")), DocParserException);
    EXPECT_THROW(Tools::getJsonArray(document, "text"), DocParserException);
    EXPECT_THROW(Tools::getJsonArray(document, "list"), DocParserException);
    EXPECT_THROW(Tools::getJsonArray(document, "missing"), DocParserException);
    EXPECT_THROW(Tools::getJsonArray(items, "items"), DocParserException); // not an object
}

TEST(FieldAccess, EnumerationsFallBackToTheirDefault) {
    const auto object = parseJson(R"({"known": "function", "cased": "Function", "unknown": "gadget",
                                      "nonAscii": "fun\u00e7tion", "empty": "", "status": "deprecated",
                                      "syntax": "namevalue"})")
                            .as_object();

    EXPECT_EQ(Tools::getEnumFromJson<RefEntityType>(object, "known"), RefEntityType::Function);
    EXPECT_EQ(Tools::getEnumFromJson<SyntaxType>(object, "known"), SyntaxType::Function);
    EXPECT_EQ(Tools::getEnumFromJson<SyntaxType>(object, "syntax"), SyntaxType::NameValue);
    EXPECT_EQ(Tools::getEnumFromJson<DeprecationStatus>(object, "status"), DeprecationStatus::Deprecated);

    for (const char* key : {"cased", "unknown", "nonAscii", "empty", "missing"}) {
        EXPECT_EQ(Tools::getEnumFromJson<RefEntityType>(object, key), RefEntityType::getDefaultValue()) << key;
        EXPECT_EQ(Tools::getEnumFromJson<FunctionType>(object, key), FunctionType::getDefaultValue()) << key;
        EXPECT_EQ(Tools::getEnumFromJson<SyntaxType>(object, key), SyntaxType::getDefaultValue()) << key;
        EXPECT_EQ(Tools::getEnumFromJson<DeprecationStatus>(object, key), DeprecationStatus::getDefaultValue()) << key;
    }
}

TEST(FieldAccess, EnumerationMembersOfTheWrongKindThrow) {
    const auto object = parseJson(R"({"number": 3, "null": null, "array": ["function"]})").as_object();
    for (const char* key : {"number", "null", "array"}) {
        EXPECT_THROW(Tools::getEnumFromJson<RefEntityType>(object, key), DocParserException) << key;
        EXPECT_THROW(Tools::getEnumFromJson<SyntaxType>(object, key), DocParserException) << key;
    }
}

TEST(FieldAccess, HeaderReadsItsFourKeysWithTheirDecoding) {
    const auto document = parseJson(R"({"productName": "Signal Kit \u00ae", "baseCode": "SG",
                                        "helpFolder": "signal", "helpLocation": "help/signal", "other": 1})");
    const HeaderInfo header = Tools::getHeaderInfo(document);
    EXPECT_EQ(header.getProductName(), u"Signal Kit \u00AE");
    EXPECT_EQ(header.getBaseCode(), u"SG");
    EXPECT_EQ(header.getHelpFolder(), u"signal");
    EXPECT_EQ(header.getHelpLocation(), u"help/signal");

    // The three path-like fields are ASCII by contract and are widened, not decoded.
    auto widened = document.as_object();
    widened["helpFolder"] = "sig\u00e9";
    EXPECT_EQ(Tools::getHeaderInfo(widened).getHelpFolder(), u"sig\u00C3\u00A9");
}

TEST(FieldAccess, HeaderFailsWhenAnyKeyIsMissingOrNotAString) {
    const auto complete = parseJson(R"({"productName": "P", "baseCode": "B", "helpFolder": "F",
                                        "helpLocation": "L"})")
                              .as_object();
    for (const char* key : {"productName", "baseCode", "helpFolder", "helpLocation"}) {
        auto missing = complete;
        missing.erase(key);
        EXPECT_THROW(Tools::getHeaderInfo(missing), DocParserException) << "without " << key;
        auto wrongKind = complete;
        wrongKind[key] = 5;
        EXPECT_THROW(Tools::getHeaderInfo(wrongKind), DocParserException) << key << " not a string";
    }
    EXPECT_THROW(Tools::getHeaderInfo(parseJson("[]")), DocParserException);
    EXPECT_THROW(Tools::getHeaderInfo(parseJson(R"("header")")), DocParserException);
}

} // namespace
