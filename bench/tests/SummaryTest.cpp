#include "Summary.hpp"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include <string>

namespace {

using namespace refdoc::bench;

Measurement timed(double cpuSeconds) {
    return {cpuSeconds * 1.1, cpuSeconds, std::nullopt};
}

Measurement throughput(double bytesPerSecond) {
    return {1e-6, 1e-6, bytesPerSecond};
}

const SummaryRow* rowFor(const Summary& summary, const std::string& prefix) {
    for (const auto& row : summary.rows) {
        if (row.measure.starts_with(prefix)) {
            return &row;
        }
    }
    return nullptr;
}

TEST(Summary, PairsEachLibraryTimeWithItsFloorAndJudgesTheTargets) {
    Summary summary;
    summary.corpus.largestProduct = "big";
    summary.measurements = {
        {"lookup/en/library", timed(0.030)}, {"lookup/en/floor", timed(0.020)},  // 1.5: met
        {"lookup/ja/library", timed(0.050)}, {"lookup/ja/floor", timed(0.020)},  // 2.5: missed
        {"pages/en/library", timed(0.036)},  {"pages/en/floor", timed(0.020)},   // exactly 1.8: met
        {"pages/ja/library", timed(0.040)},                                      // no floor: no row
        {"text/asciiToUtf16/ascii", throughput(5e9)},
        {"text/utf8ToUtf16/cjk", throughput(0.9e9)},
        {"text/utf8ToUtf16/mixed", throughput(0.5e9)},
    };
    summary.memory = {{"lookup/en", 1000, 2500, 10, 4000, 1500}, {"pages/en", 1000, 4000, 10, 9000, 3000}};
    buildRows(summary);

    struct Expected {
        const char* measure;
        double number;
        std::optional<bool> met;
    };
    const Expected expected[] = {
        {"getResourceLookupFiles, en", 1.5, true},
        {"getResourceLookupFiles, ja", 2.5, false},
        {"getResourceFile(big), en", 1.8, true},
        {"asciiToUtf16/ascii", 5e9, true},
        {"utf8ToUtf16/cjk", 0.9e9, false},
        {"utf8ToUtf16/mixed", 0.5e9, std::nullopt},
        {"retained after lookup/en", 2.5, true},
        {"peak during lookup/en", 4.0, std::nullopt},
        {"retained after pages/en", 4.0, std::nullopt}, // pages have no memory target
    };
    for (const auto& e : expected) {
        const SummaryRow* row = rowFor(summary, e.measure);
        ASSERT_NE(row, nullptr) << e.measure;
        EXPECT_NEAR(row->number, e.number, e.number * 1e-9) << e.measure;
        EXPECT_EQ(row->met, e.met) << e.measure;
    }
    EXPECT_EQ(rowFor(summary, "getResourceFile(big), ja"), nullptr);
}

TEST(Summary, MarkdownAndJsonCarryEveryRow) {
    Summary summary;
    summary.label = "abc123";
    summary.corpus.seed = "5";
    summary.corpus.largestProduct = "big";
    summary.measurements = {{"lookup/en/library", timed(0.03)}, {"lookup/en/floor", timed(0.02)}};
    buildRows(summary);

    const std::string markdown = toMarkdown(summary);
    EXPECT_NE(markdown.find("abc123"), std::string::npos);
    EXPECT_NE(markdown.find("| getResourceLookupFiles, en | 30 ms | 20 ms | 1.50 | <= 1.8 | yes |"), std::string::npos)
        << markdown;

    const auto json = boost::json::parse(toJson(summary)).as_object();
    EXPECT_EQ(json.at("label").as_string(), "abc123");
    ASSERT_EQ(json.at("rows").as_array().size(), 1u);
    EXPECT_EQ(json.at("rows").as_array()[0].as_object().at("met").as_bool(), true);
    EXPECT_DOUBLE_EQ(json.at("measurements").as_object().at("lookup/en/floor").as_object().at("cpuSeconds").as_double(),
                     0.02);
}

} // namespace
