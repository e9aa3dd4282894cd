// The search figures are only as good as their queries and their peer: the queries must be what
// the corpus holds (1-12 units, every kind, the same every time) and the linear scan must score by
// the index's rules, or the speed-up compares different work.

#include "SearchBench.hpp"
#include "Corpus.hpp"
#include "Host.hpp"
#include "Summary.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

namespace {

using reference::docparser::DocResourceParser;
using reference::search::SearchIndex;
using namespace refdoc::bench;

class SearchBench : public refdoc::test::HostSettingsFixture {};

std::string narrow(const std::u16string& text) {
    std::string out;
    for (const char16_t c : text) {
        out += c < 0x80 ? static_cast<char>(c) : '?';
    }
    return out;
}

TEST_F(SearchBench, QueriesAreDrawnFromTheCorpusAndTheScanScoresAsTheIndex) {
    for (const Profile profile : {Profile::Default, Profile::Varied}) {
        const refdoc::test::TempDir root;
        CorpusOptions options;
        options.profile = profile;
        options.products = 8;
        options.meanItems = 60;
        options.pages = false;
        const Manifest manifest = generateCorpus(root.path(), options);
        for (const std::string language : {"en", "ja"}) {
            configureHost(root.path(), manifest, language);
            const auto results =
                std::make_shared<const SearchIndex::LookupResults>(DocResourceParser::getResourceLookupFiles());
            const SearchIndex index(results);
            const ScanPeer scan(*results);
            ASSERT_EQ(scan.size(), index.size());

            const auto queries = makeQueries(*results, 40, 3);
            EXPECT_EQ(queries.size(), 160u) << language;
            std::map<QueryKind, int> kinds;
            std::size_t nonAscii = 0;
            for (const auto& query : queries) {
                ++kinds[query.kind];
                EXPECT_GE(query.text.size(), 1u);
                EXPECT_LE(query.text.size(), 12u);
                nonAscii += std::any_of(query.text.begin(), query.text.end(), [](char16_t c) { return c >= 0x80; });

                // Hits may tie differently, but a kind's scores are the rules' own: the best
                // twenty scores agree, and whatever a query came from is found.
                const auto hits = index.search(query.text, 20);
                const auto scanned = scan.search(query.text, 20);
                std::vector<int> indexScores;
                std::vector<int> scanScores;
                for (const auto& hit : hits) {
                    indexScores.push_back(hit.score);
                }
                for (const auto& hit : scanned) {
                    scanScores.push_back(hit.score);
                }
                EXPECT_EQ(indexScores, scanScores) << language << " " << narrow(query.text);
                EXPECT_FALSE(hits.empty()) << language << " " << narrow(query.text);
            }
            EXPECT_EQ(kinds.size(), 4u) << language;
            // Japanese purposes give Japanese purpose queries.
            EXPECT_EQ(nonAscii > 0, language == "ja") << language;

            const auto again = makeQueries(*results, 40, 3);
            const auto other = makeQueries(*results, 40, 4);
            const auto texts = [](const std::vector<GeneratedQuery>& list) {
                std::vector<std::u16string> out;
                for (const auto& query : list) {
                    out.push_back(query.text);
                }
                return out;
            };
            EXPECT_EQ(texts(again), texts(queries));
            EXPECT_NE(texts(other), texts(queries));
        }
    }
}

TEST(SearchBenchStatistics, PercentileIsTheNearestRank) {
    const struct Case {
        std::vector<double> values;
        double share;
        double expected;
    } cases[] = {
        {{}, 0.5, 0.0},
        {{7.0}, 0.99, 7.0},
        {{4.0, 1.0, 3.0, 2.0}, 0.5, 2.0},
        {{5.0, 1.0, 4.0, 2.0, 3.0}, 0.5, 3.0},
        {std::vector<double>(99, 1.0), 0.99, 1.0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(percentile(c.values, c.share), c.expected) << c.values.size() << " " << c.share;
    }
    std::vector<double> hundred;
    for (int i = 100; i >= 1; --i) {
        hundred.push_back(i);
    }
    EXPECT_EQ(percentile(hundred, 0.99), 99.0);
    hundred.push_back(1000.0); // one slow query of 101 is past the 99th percentile
    EXPECT_EQ(percentile(hundred, 0.99), 100.0);
}

TEST(SearchBenchStatistics, SearchRowsAreJudgedAgainstTheirTargets) {
    Summary summary;
    summary.measurements = {
        {"search-default/lookup/en/load", {0.2, 0.2, std::nullopt}},
        {"search-default/index/en/build", {0.05, 0.05, std::nullopt}}, // 25%: met
        {"search-varied/lookup/en/load", {0.2, 0.2, std::nullopt}},
        {"search-varied/index/en/build", {0.06, 0.06, std::nullopt}}, // 30%: missed
    };
    SearchFigures met;
    met.profile = "default";
    met.language = "en";
    met.entries = 500000;
    met.queries = 800;
    met.resultsBytes = 1000;
    met.indexBytes = 500;
    met.latency = {{"all", {0.5e-3, 5e-3}}, {"typo", {1e-3, 9e-3}}};
    met.scanQueries = 24;
    met.scanMedian = 20e-3;
    met.indexMedianOfScanned = 1e-3;
    SearchFigures missed = met;
    missed.profile = "varied";
    missed.indexBytes = 501;
    missed.latency = {{"all", {0.51e-3, 5.1e-3}}};
    missed.scanMedian = 19e-3;
    summary.search = {met, missed};
    buildRows(summary);

    const struct Expected {
        const char* profile;
        const char* measure;
        std::optional<bool> met;
    } expected[] = {
        {"search-default", "index build, en", true},
        {"search-default", "query latency median, en, 800 queries", true},
        {"search-default", "query latency p99, en, 800 queries", true},
        {"search-default", "query latency p99, en, typo queries", std::nullopt},
        {"search-default", "index heap, en", true},
        {"search-default", "speed-up over a linear scan", true},
        {"search-varied", "index build, en", false},
        {"search-varied", "query latency median, en, 800 queries", false},
        {"search-varied", "query latency p99, en, 800 queries", false},
        {"search-varied", "index heap, en", false},
        {"search-varied", "speed-up over a linear scan", false},
    };
    for (const auto& e : expected) {
        const auto row = std::find_if(summary.rows.begin(), summary.rows.end(), [&](const SummaryRow& r) {
            return r.profile == e.profile && r.measure.starts_with(e.measure);
        });
        ASSERT_NE(row, summary.rows.end()) << e.profile << " " << e.measure;
        EXPECT_EQ(row->met, e.met) << e.profile << " " << e.measure;
    }
    const std::string markdown = toMarkdown(summary);
    EXPECT_NE(markdown.find("### Search index, profile default"), std::string::npos) << markdown;
    EXPECT_LT(markdown.find("### Search index, profile default"), markdown.find("### Search index, profile varied"));
    EXPECT_NE(toJson(summary).find("\"indexMedianOfScanned\""), std::string::npos);
}

} // namespace
