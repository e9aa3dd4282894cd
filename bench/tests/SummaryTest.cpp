#include "Summary.hpp"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include <string>

namespace {

using namespace refdoc::bench;

Measurement timed(double cpuSeconds) { return {cpuSeconds * 1.1, cpuSeconds, std::nullopt}; }

Measurement throughput(double bytesPerSecond) { return {1e-6, 1e-6, bytesPerSecond}; }

const SummaryRow* rowFor(const Summary& summary, const std::string& profile, const std::string& prefix) {
    for (const auto& row : summary.rows) {
        if (row.profile == profile && row.measure.starts_with(prefix)) {
            return &row;
        }
    }
    return nullptr;
}

CorpusFigures corpus(const std::string& profile) {
    CorpusFigures figures;
    figures.profile = profile;
    figures.seed = "5";
    figures.largestProduct = "big";
    return figures;
}

TEST(Summary, JudgesEachLoadAgainstItsFloorAndTheReaderPerProfile) {
    Summary summary;
    summary.corpora = {corpus("default"), corpus("varied")};
    summary.measurements = {
        {"default/lookup/en/library", timed(0.016)}, {"default/lookup/en/floor", timed(0.010)}, // 1.6: met
        {"default/lookup/en/load", timed(0.012)},                                               // 1.2: missed
        {"default/lookup/en/peer", timed(0.050)},                                               // 3.125: met
        {"default/lookup/ja/library", timed(0.020)}, {"default/lookup/ja/floor", timed(0.010)}, // 2.0: missed
        {"default/lookup/ja/peer", timed(0.050)},                                               // 2.5: missed
        {"default/pages/en/library", timed(0.015)},  {"default/pages/en/floor", timed(0.010)},
        {"default/pages/en/load", timed(0.013)}, // no target
        {"varied/lookup/en/library", timed(0.010)},  {"varied/lookup/en/floor", timed(0.010)},
        {"varied/pages/ja/library", timed(0.040)}, // no floor: no row
        {"text/utf8ToUtf16/cjk", throughput(0.9e9)},
    };
    summary.memory = {
        {"default", "lookup/en", 1000, 400, 2820, 10, 3620, 1500}, // exactly at both bounds
        {"varied", "lookup/en", 1000, 400, 3000, 10, 3801, 1500},  // no retained target; peak over
        {"default", "pages/en", 1000, 400, 4000, 10, 4000, 3000},
    };
    buildRows(summary);

    struct Expected {
        const char* profile;
        const char* measure;
        double number;
        std::optional<bool> met;
    };
    const Expected expected[] = {
        {"default", "getResourceLookupFiles, en: load+free", 1.6, true},
        {"default", "getResourceLookupFiles, en: load alone", 1.2, false},
        {"default", "getResourceLookupFiles, ja: load+free", 2.0, false},
        {"default", "getResourceFile(big), en: load+free", 1.5, true},
        {"default", "getResourceFile(big), en: load alone", 1.3, std::nullopt},
        {"default", "speed-up over the straightforward reader, lookup en", 3.125, true},
        {"default", "speed-up over the straightforward reader, lookup ja", 2.5, false},
        {"default", "retained after lookup/en", 2.82, true},
        {"default", "peak during lookup/en", 1.0, true},
        {"default", "retained after pages/en", 4.0, std::nullopt},
        {"varied", "getResourceLookupFiles, en: load+free", 1.0, true},
        {"varied", "retained after lookup/en", 3.0, std::nullopt},
        {"varied", "peak during lookup/en", 3801.0 / 3800.0, false},
        {"", "utf8ToUtf16/cjk", 0.9e9, std::nullopt},
    };
    for (const auto& e : expected) {
        const SummaryRow* row = rowFor(summary, e.profile, e.measure);
        ASSERT_NE(row, nullptr) << e.profile << " " << e.measure;
        EXPECT_NEAR(row->number, e.number, e.number * 1e-9) << e.profile << " " << e.measure;
        EXPECT_EQ(row->met, e.met) << e.profile << " " << e.measure;
    }
    EXPECT_EQ(rowFor(summary, "varied", "getResourceFile(big), ja"), nullptr);
    EXPECT_EQ(rowFor(summary, "default", "getResourceLookupFiles, ja: load alone"), nullptr);
}

TEST(Summary, MarkdownHasATablePerProfileAndJsonCarriesEveryRow) {
    Summary summary;
    summary.label = "abc123";
    summary.corpora = {corpus("default"), corpus("varied")};
    summary.measurements = {{"default/lookup/en/library", timed(0.03)},
                            {"default/lookup/en/floor", timed(0.02)},
                            {"varied/lookup/en/library", timed(0.05)},
                            {"varied/lookup/en/floor", timed(0.02)}};
    buildRows(summary);

    const std::string markdown = toMarkdown(summary);
    EXPECT_NE(markdown.find("abc123"), std::string::npos);
    const auto defaultSection = markdown.find("### Profile default");
    const auto variedSection = markdown.find("### Profile varied");
    ASSERT_NE(defaultSection, std::string::npos) << markdown;
    ASSERT_NE(variedSection, std::string::npos) << markdown;
    const std::string defaultRow =
        "| getResourceLookupFiles, en: load+free | 30 ms | floor 20 ms | 1.50 | <= 1.6 x floor | yes |";
    const std::string variedRow =
        "| getResourceLookupFiles, en: load+free | 50 ms | floor 20 ms | 2.50 | <= 1.6 x floor | **no** |";
    EXPECT_GT(markdown.find(defaultRow), defaultSection) << markdown;
    EXPECT_LT(markdown.find(defaultRow), variedSection) << markdown;
    EXPECT_GT(markdown.find(variedRow), variedSection) << markdown;
    EXPECT_EQ(markdown.find("### Text conversion"), std::string::npos); // no text rows measured

    const auto json = boost::json::parse(toJson(summary)).as_object();
    EXPECT_EQ(json.at("label").as_string(), "abc123");
    ASSERT_EQ(json.at("corpora").as_array().size(), 2u);
    const auto& rows = json.at("rows").as_array();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].as_object().at("profile").as_string(), "varied");
    EXPECT_EQ(rows[1].as_object().at("met").as_bool(), false);
    EXPECT_DOUBLE_EQ(
        json.at("measurements").as_object().at("default/lookup/en/floor").as_object().at("cpuSeconds").as_double(),
        0.02);
}

} // namespace
