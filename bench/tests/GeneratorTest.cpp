// The generator's building blocks: what the JSON writer (the test fixtures' too) writes must be
// strict JSON whatever the text holds, and each profile must have the shape the benchmark claims.

#include "Corpus.hpp"
#include "Floor.hpp"
#include "JsonWriter.hpp"

#include <reference/property/DeprecationStatus.hpp>
#include <reference/property/FunctionType.hpp>
#include <reference/property/RefEntityType.hpp>
#include <reference/property/SyntaxType.hpp>

#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace refdoc::bench;
using refdoc::test::JsonWriter;

// Pretty printing must not change what is written: the same calls give the same value.
TEST(JsonWriter, PrettyAndCompactWriteTheSameValue) {
    const auto write = [](JsonWriter json) {
        json.beginObject();
        json.member("name", "a \"b\"");
        json.stringArray("empty", {});
        json.key("items");
        json.beginArray();
        json.beginObject();
        json.endObject();
        json.beginObject();
        json.key("flag");
        json.boolean(true);
        json.endObject();
        json.endArray();
        json.endObject();
        return json.take();
    };
    const std::string compact = write(JsonWriter());
    const std::string pretty = write(JsonWriter(true));
    EXPECT_EQ(compact.find('\n'), std::string::npos);
    EXPECT_NE(pretty.find("\n  \"items\": [\n    {},\n    {\n      \"flag\": true\n    }\n  ]\n}"), std::string::npos)
        << pretty;
    EXPECT_EQ(boost::json::parse(pretty), boost::json::parse(compact));
}

TEST(JsonWriter, AnyTextRoundTripsThroughTheStrictParser) {
    const std::string texts[] = {
        "",
        "plain",
        "quote \" and backslash \\ and slash /",
        "line\nbreak\ttab\rreturn",
        std::string("nul \0 and \x01\x1f controls", sizeof "nul \0 and \x01\x1f controls" - 1),
        "UTF-8: \xC2\xB5 \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x98\x80",
        "<pre>result = f(data, \"Method\", \"fast\");\nplot(result)</pre>",
    };
    for (const auto& text : texts) {
        JsonWriter json;
        json.beginObject();
        json.member(text, text);
        json.stringArray("list", {text, text});
        json.key("flag");
        json.boolean(false);
        json.key("nested");
        json.beginArray();
        json.beginObject();
        json.endObject();
        json.beginArray();
        json.endArray();
        json.endArray();
        json.endObject();

        const auto value = boost::json::parse(json.text()); // strict: throws for anything malformed
        const auto& object = value.as_object();
        ASSERT_EQ(object.size(), 4u) << json.text();
        EXPECT_EQ(object.at(text).as_string(), text);
        EXPECT_EQ(object.at("list").as_array().at(1).as_string(), text);
        EXPECT_EQ(object.at("flag").as_bool(), false);
        EXPECT_EQ(object.at("nested").as_array().size(), 2u);
        JsonWriter tree; // the test fixtures are written from trees
        tree.value(value);
        EXPECT_EQ(tree.text(), json.text());
    }
}

TEST(Corpus, DefaultSizesSpreadLogNormallyAroundTheMean) {
    const refdoc::test::TempDir root;
    CorpusOptions options; // the benchmark's defaults, without the page files
    options.pages = false;
    const Manifest manifest = generateCorpus(root.path(), options);

    std::vector<std::size_t> items;
    for (const auto& product : manifest.products) {
        items.push_back(product.items);
    }
    std::sort(items.begin(), items.end());
    std::size_t total = 0;
    for (const auto count : items) {
        total += count;
    }
    ASSERT_EQ(items.size(), 60u);
    EXPECT_NEAR(static_cast<double>(total) / 60.0, 900.0, 1.0);
    EXPECT_GE(items[57], 2500u); // a few products with several thousand entries
    EXPECT_LT(items[30], 900u);  // most are smaller than the mean: the spread is skewed
    EXPECT_LT(items.front(), 300u);
}

// ---- the varied profile, against the default -----------------------------------------------------

namespace fs = std::filesystem;
using reference::property::DeprecationStatus;
using reference::property::FunctionType;
using reference::property::RefEntityType;
using reference::property::SyntaxType;

CorpusOptions smallCorpus(Profile profile) {
    CorpusOptions options;
    options.profile = profile;
    options.products = 12;
    options.meanItems = 80;
    return options;
}

// What the generator wrote in the files a load reads, as the loaders see it.
struct Observed {
    std::size_t items = 0;
    std::size_t unknownTypes = 0; // "type" or "fcntype" the library does not know
    std::size_t sortedPairs = 0;  // neighbouring entries in name order
    std::size_t pairs = 0;
    std::size_t compactFiles = 0; // files without a line break
    std::size_t files = 0;
    std::vector<std::size_t> supportPackages;           // per file
    std::map<std::string, std::set<std::string>> links; // file stem -> hrefs of its main document
};

template <class Enum>
bool known(const boost::json::object& object, const char* key) {
    const auto* value = object.if_contains(key);
    typename Enum::Value ignored{};
    return value == nullptr || Enum::tryStringToEnum(std::string_view(value->as_string()), ignored);
}

Observed observeLookups(const fs::path& root, const Manifest& manifest, const std::string& language) {
    Observed seen;
    readEach(root, manifest.lookupReads.at(language), [&](const FileRead& read, std::string&& text) {
        ++seen.files;
        seen.compactFiles += text.find('\n') == std::string::npos ? 1 : 0;
        const auto value = boost::json::parse(text);
        const auto& document = value.as_object();
        seen.supportPackages.push_back(
            document.contains("supportPackages") ? document.at("supportPackages").as_array().size() : 0);
        auto& links = seen.links[fs::path(read.entry.empty() ? read.file : read.entry).stem().string()];
        std::string previous;
        for (const auto& element : document.at("refItems").as_array()) {
            const auto& item = element.as_object();
            const std::string name(item.at("name").as_string());
            links.insert(std::string(item.at("href").as_string()));
            ++seen.items;
            seen.unknownTypes += known<RefEntityType>(item, "type") && known<FunctionType>(item, "fcntype") ? 0 : 1;
            if (!previous.empty()) {
                ++seen.pairs;
                seen.sortedPairs += previous <= name ? 1 : 0;
            }
            previous = name;
        }
    });
    return seen;
}

TEST(CorpusProfiles, VariedLookupsDifferFromTheDefaultOnEveryAxis) {
    const refdoc::test::TempDir defaultRoot;
    const refdoc::test::TempDir variedRoot;
    const Manifest defaults = generateCorpus(defaultRoot.path(), smallCorpus(Profile::Default));
    const Manifest varied = generateCorpus(variedRoot.path(), smallCorpus(Profile::Varied));
    EXPECT_EQ(defaults.profile, "default");
    EXPECT_EQ(varied.profile, "varied");

    const Observed base = observeLookups(defaultRoot.path(), defaults, "en");
    EXPECT_EQ(base.unknownTypes, 0u);
    EXPECT_EQ(base.sortedPairs, base.pairs);
    EXPECT_EQ(base.compactFiles, base.files);

    const Observed seen = observeLookups(variedRoot.path(), varied, "en");
    ASSERT_GT(seen.items, 500u);
    const double unknown = static_cast<double>(seen.unknownTypes) / static_cast<double>(seen.items);
    EXPECT_GT(unknown, 0.4);
    EXPECT_LT(unknown, 0.6);
    const double sorted = static_cast<double>(seen.sortedPairs) / static_cast<double>(seen.pairs);
    EXPECT_LT(sorted, 0.7); // random order: about half the neighbours are in order
    EXPECT_EQ(seen.compactFiles, 0u);
    for (const auto packages : seen.supportPackages) {
        EXPECT_GE(packages, 2u);
        EXPECT_LE(packages, 5u);
    }
    // The largest product reads a larger lookup file than any other read of the language.
    EXPECT_EQ(varied.largestLookupRead("en"),
              std::max_element(varied.lookupReads.at("en").begin(), varied.lookupReads.at("en").end(),
                               [](const FileRead& a, const FileRead& b) { return a.bytes < b.bytes; })
                  ->bytes);
}

TEST(CorpusProfiles, VariedTranslationsOverlapEnglishOnlyPartly) {
    const refdoc::test::TempDir root;
    const Manifest manifest = generateCorpus(root.path(), smallCorpus(Profile::Varied));
    const Observed seen = observeLookups(root.path(), manifest, "ja");

    std::size_t translated = 0;
    for (const auto& product : manifest.products) {
        const auto ja = seen.links.find(product.name + "_ja");
        if (ja == seen.links.end()) {
            continue;
        }
        ++translated;
        const auto& english = seen.links.at(product.name);
        std::size_t onlyJapanese = 0;
        for (const auto& link : ja->second) {
            onlyJapanese += english.contains(link) ? 0 : 1;
        }
        std::size_t onlyEnglish = 0;
        for (const auto& link : english) {
            onlyEnglish += ja->second.contains(link) ? 0 : 1;
        }
        EXPECT_EQ(onlyJapanese, product.localizedOnlyItems) << product.name;
        if (english.size() >= 50) { // small products may happen to lack one side
            EXPECT_GT(onlyJapanese, 0u) << product.name;
            EXPECT_GT(onlyEnglish, 0u) << product.name;
            EXPECT_LT(onlyJapanese + onlyEnglish, english.size() / 2) << product.name; // still mostly shared
        }
    }
    EXPECT_GT(translated, manifest.products.size() / 2);
}

TEST(CorpusProfiles, VariedPagesUseUnknownTextsForAboutHalfTheEntries) {
    const refdoc::test::TempDir root;
    const Manifest manifest = generateCorpus(root.path(), smallCorpus(Profile::Varied));
    std::size_t pages = 0;
    std::size_t unknownStatus = 0;
    std::size_t unknownSyntax = 0;
    std::size_t syntaxTexts = 0;
    for (const auto& file : manifest.pageReads(manifest.largestProduct, "ja")) {
        std::string text;
        readEach(root.path(), {{file, "", 0}}, [&text](const FileRead&, std::string&& bytes) { text = bytes; });
        EXPECT_EQ(text.size(), manifest.pageFileBytes.at(file));
        const auto value = boost::json::parse(text);
        for (const auto& element : value.at("refItems").as_array()) {
            const auto& page = element.as_object();
            ++pages;
            unknownStatus += known<DeprecationStatus>(page, "deprecationstatus") ? 0 : 1;
            if (const auto* groups = page.if_contains("syntaxgroup")) {
                for (const auto& group : groups->as_array()) {
                    ++syntaxTexts;
                    unknownSyntax += known<SyntaxType>(group.as_object(), "syntaxtype") ? 0 : 1;
                }
            }
        }
    }
    ASSERT_GT(pages, 100u);
    const double status = static_cast<double>(unknownStatus) / static_cast<double>(pages);
    EXPECT_GT(status, 0.4);
    EXPECT_LT(status, 0.6);
    const double syntax = static_cast<double>(unknownSyntax) / static_cast<double>(syntaxTexts);
    EXPECT_GT(syntax, 0.35);
    EXPECT_LT(syntax, 0.65);
}

} // namespace
