// The generator's building blocks: what it writes must be strict JSON whatever the text holds,
// and the default corpus must have the shape the benchmark claims.

#include "Corpus.hpp"
#include "JsonWriter.hpp"

#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace refdoc::bench;

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
    EXPECT_GE(items[57], 2500u);       // a few products with several thousand entries
    EXPECT_LT(items[30], 900u);        // most are smaller than the mean: the spread is skewed
    EXPECT_LT(items.front(), 300u);
}

} // namespace
