#include "search/CodeText.hpp"
#include "search/NameMatch.hpp"

#include <reference/docparser/TextConversion.hpp>
#include <reference/search/SearchIndex.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using reference::docparser::DocResource;
using reference::docparser::utf16ToUtf8;
using reference::docparser::utf8ToUtf16;
using reference::property::FunctionType;
using reference::property::HeaderInfo;
using reference::property::RefEntityType;
using reference::property::RefItem;
using reference::property::RefItemLookup;
using reference::search::MatchKind;
using reference::search::MatchRange;
using reference::search::SearchHit;
using reference::search::SearchIndex;
using reference::search::SearchQuery;

struct Item {
    std::string name;
    std::string purpose;
    RefEntityType::Value type = RefEntityType::Function;
    bool deprecated = false;
};

struct Product {
    std::string key;
    bool installed;
    std::vector<Item> items;
};

SearchIndex::LookupResults lookups(const std::vector<Product>& products) {
    SearchIndex::LookupResults results;
    for (const auto& product : products) {
        std::map<std::u16string, std::vector<RefItemLookup>> items;
        for (const auto& item : product.items) {
            const std::u16string name = utf8ToUtf16(item.name);
            items[name].emplace_back(name, item.type, utf8ToUtf16(item.purpose), item.deprecated,
                                     utf8ToUtf16(product.key + "/ref/" + item.name + ".html"), FunctionType::Ordinary);
        }
        const std::u16string key = utf8ToUtf16(product.key);
        auto& target = product.installed ? results.installedResources : results.uninstalledResources;
        target.emplace(
            key, DocResource<RefItemLookup>(HeaderInfo(key + u" product", u"", key, u"help/" + key), std::move(items)));
    }
    return results;
}

// A small catalogue of the names people look up: camelCase, snake_case, Class.method, digits,
// the same name in several products, deprecated entries, Japanese purposes.
const std::vector<Product>& catalogue() {
    static const std::vector<Product> products = {
        {"plotting",
         true,
         {{"figure", "Create a figure window"},
          {"figureHandle", "Handle of a figure"},
          {"getCurrentFigure", "Current figure handle"},
          {"getCurrentAxes", "Current axes"},
          {"gcf", "Current figure handle, short form"},
          {"Figure.savefig", "Save the figure to a file", RefEntityType::Method},
          {"plot", "2-D line plot"},
          {"HTMLParser", "Parse markup", RefEntityType::Class},
          {"file9a", "A numbered file"},
          {"file10", "Another numbered file"}}},
        {"legacy",
         false,
         {{"plot", "Old line plot", RefEntityType::Function, true},
          {"oldPlotter", "Old plots", RefEntityType::Function, true}}},
        {"data",
         false,
         {{"read_csv", "Read a comma-separated values file"},
          {"write_csv", "Write a table to a text file"},
          {"DataFrame.to_csv", "Write the frame as comma-separated values", RefEntityType::Method},
          {"sortArray", "配列の要素を並べ替える"},
          {"applyFilter", "フィルターを信号に適用する"}}},
        {"prod10", true, {{"fastFilter", "Filter quickly"}, {"shared", "Shared name"}}},
        {"prod9", true, {{"shared", "Shared name"}, {"prod006system938", "A generated system"}}},
        {"signal",
         true,
         {{"system1", "First system"},
          {"system111", "System one hundred eleven"},
          {"system1020", "System one thousand twenty"},
          {"xyzzy", "Magic word", RefEntityType::Keyword}}},
    };
    return products;
}

const SearchIndex& index() {
    static const SearchIndex built(lookups(catalogue()));
    return built;
}

std::string nameOf(const SearchHit& hit) { return utf16ToUtf8(hit.item->getName()); }
std::string keyOf(const SearchHit& hit) { return utf16ToUtf8(*hit.productKey); }

// The entry each query must find first, and how: one row per kind of match and per tie rule.
TEST(SearchIndex, RelevanceTable) {
    const struct Case {
        const char* query;
        const char* name;
        const char* key;
        MatchKind match;
    } cases[] = {
        {"figure", "figure", "plotting", MatchKind::Exact},
        {"FIGURE", "figure", "plotting", MatchKind::Exact},
        {"gcf", "gcf", "plotting", MatchKind::Exact}, // a name beats the initials of a longer one
        {"getcurrentf", "getCurrentFigure", "plotting", MatchKind::Prefix},
        {"figureh", "figureHandle", "plotting", MatchKind::Prefix},
        {"savef", "Figure.savefig", "plotting", MatchKind::SegmentPrefix},
        {"parser", "HTMLParser", "plotting", MatchKind::SegmentPrefix},
        {"938", "prod006system938", "prod9", MatchKind::SegmentPrefix},
        {"gca", "getCurrentAxes", "plotting", MatchKind::Initials},
        {"rcsv", "read_csv", "data", MatchKind::Initials},
        {"psys", "prod006system938", "prod9", MatchKind::Initials},
        {"gtcufg", "getCurrentFigure", "plotting", MatchKind::InOrder},
        {"prod006systen938", "prod006system938", "prod9", MatchKind::Typo},
        {"fastFitler", "fastFilter", "prod10", MatchKind::Typo}, // a transposition is one edit
        {"fsatfiltre", "fastFilter", "prod10", MatchKind::Typo}, // two edits from eight characters
        {"plto", "plot", "plotting", MatchKind::Typo},
        {"current figure", "getCurrentFigure", "plotting", MatchKind::Words}, // the name before purposes
        {"csv comma", "read_csv", "data", MatchKind::Words},
        {"comma", "read_csv", "data", MatchKind::Purpose}, // shorter name than DataFrame.to_csv
        {"並べ替え", "sortArray", "data", MatchKind::Purpose},
        {"フィルター", "applyFilter", "data", MatchKind::Purpose},
        {"信号", "applyFilter", "data", MatchKind::Purpose},
        {"magic", "xyzzy", "signal", MatchKind::Purpose},
        // Ties: the shorter name, then installed, then the product key (numbers by value), then
        // the name with numbers by value.
        {"syst", "system1", "signal", MatchKind::Prefix},
        {"system11", "system111", "signal", MatchKind::Prefix},
        {"plot", "plot", "plotting", MatchKind::Exact},
        {"shared", "shared", "prod9", MatchKind::Exact},
        {"file", "file9a", "plotting", MatchKind::Prefix},
    };
    for (const auto& c : cases) {
        const auto hits = index().search(utf8ToUtf16(c.query));
        ASSERT_FALSE(hits.empty()) << c.query;
        EXPECT_EQ(nameOf(hits[0]), c.name) << c.query;
        EXPECT_EQ(keyOf(hits[0]), c.key) << c.query;
        EXPECT_EQ(hits[0].match, c.match) << c.query << ": " << toString(hits[0].match);
    }
}

// Whole result lists: kinds in rank order, scores descending, numbers by value.
TEST(SearchIndex, OrderOfWholeLists) {
    const struct Case {
        const char* query;
        std::vector<std::string> names;
    } cases[] = {
        {"system1", {"signal:system1", "signal:system111", "signal:system1020"}},
        {"figure",
         {"plotting:figure", "plotting:figureHandle", "plotting:Figure.savefig", "plotting:getCurrentFigure"}},
        {"file", {"plotting:file9a", "plotting:file10"}},
        {"shared", {"prod9:shared", "prod10:shared"}},
    };
    for (const auto& c : cases) {
        std::vector<std::string> names;
        int previous = 1 << 30;
        for (const auto& hit : index().search(utf8ToUtf16(c.query))) {
            if (hit.match <= MatchKind::SegmentPrefix) {
                names.push_back(keyOf(hit) + ":" + nameOf(hit));
            }
            EXPECT_LE(hit.score, previous) << c.query;
            previous = hit.score;
        }
        EXPECT_EQ(names, c.names) << c.query;
    }
}

// The index finds through its tables exactly what scoring every name finds: a generated catalogue,
// queries made from its names (prefixes, segments, initials, dropped letters, typos), every hit;
// and a limited query gives the head of the full list.
TEST(SearchIndex, TablesMissNoMatch) {
    namespace d = reference::search::detail;
    const char* words[] = {"get",   "set",    "read",  "write", "plot",   "line", "signal", "filter", "data", "frame",
                           "value", "system", "array", "index", "figure", "axes", "handle", "table",  "csv",  "fft"};
    std::mt19937 random(7);
    const auto word = [&] { return std::string(words[random() % std::size(words)]); };
    const auto capital = [](std::string w) {
        w[0] = static_cast<char>(w[0] - 'a' + 'A');
        return w;
    };
    Product product{"gen", true, {}};
    std::map<std::string, bool> seen;
    while (product.items.size() < 1500) {
        std::string name;
        switch (random() % 4) {
        case 0:
            name = word() + capital(word()) + (random() % 2 ? capital(word()) : "");
            break;
        case 1:
            name = word() + "_" + word();
            break;
        case 2:
            name = capital(word()) + "." + word() + capital(word());
            break;
        default:
            name = word() + std::to_string(random() % 300) + word();
            break;
        }
        if (!seen[name]) {
            seen[name] = true;
            product.items.push_back({name, ""});
        }
    }
    const SearchIndex generated(lookups({product}));

    std::vector<std::string> queries;
    for (int i = 0; i < 150; ++i) {
        std::string name = product.items[random() % product.items.size()].name;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char c) { return static_cast<char>(std::tolower(c)); });
        std::string query = name.substr(0, 2 + random() % std::max<std::size_t>(1, name.size() - 1));
        if (i % 3 == 1 && query.size() >= 4) {
            const std::size_t at = 1 + random() % (query.size() - 2);
            std::swap(query[at], query[at + 1]); // a transposition
        } else if (i % 3 == 2 && query.size() >= 5) {
            query.erase(1 + random() % (query.size() - 2), 1); // a dropped letter
            query[random() % query.size()] = "aeiotx"[random() % 6];
        }
        queries.push_back(query);
    }
    queries.insert(queries.end(), {"gfh", "rcsv", "sdv", "fltr", "sytem", "figrue", "pltl", "gvalue", "handl"});

    std::vector<int> scratch;
    std::vector<MatchRange> pieces;
    for (const auto& text : queries) {
        const std::u16string query = d::folded(utf8ToUtf16(text));
        std::vector<std::pair<std::string, int>> expected;
        for (const auto& item : product.items) {
            const std::u16string original = utf8ToUtf16(item.name);
            const std::u16string name = d::folded(original);
            std::vector<d::Segment> segments;
            d::appendSegments(original, segments);
            int score = -1;
            if (name == query) {
                score = 7900;
            } else if (name.starts_with(query)) {
                score = 6900;
            } else {
                for (std::size_t s = 1; s < segments.size() && score < 0; ++s) {
                    if (std::u16string_view(name).substr(segments[s].start).starts_with(query)) {
                        score = 5900 - 20 * static_cast<int>(std::min<std::size_t>(s - 1, 20));
                    }
                }
            }
            if (score < 0) {
                if (const auto grade = d::matchInitials(query, name, segments, pieces)) {
                    score = 4000 + *grade;
                } else if (const auto inOrder = d::matchInOrder(query, name, segments, scratch, nullptr)) {
                    score = 3000 + *inOrder;
                } else if (const auto typo = d::matchTypo(query, name, d::allowedTypos(query.size()), scratch)) {
                    score = 2000 + d::typoGrade(*typo);
                }
            }
            if (score >= 0) {
                expected.emplace_back(item.name, score);
            }
        }
        const auto all = generated.search(query, 0);
        std::vector<std::pair<std::string, int>> found;
        for (const auto& hit : all) {
            found.emplace_back(nameOf(hit), hit.score);
        }
        // A limit gives the head of the whole list, however the kinds fill it.
        for (const std::size_t limit : {1u, 3u, 40u}) {
            const auto head = generated.search(query, limit);
            ASSERT_EQ(head.size(), std::min(limit, all.size())) << text;
            for (std::size_t i = 0; i < head.size(); ++i) {
                EXPECT_EQ(head[i].item, all[i].item) << text << " limit " << limit << " hit " << i;
            }
        }
        std::sort(expected.begin(), expected.end());
        std::sort(found.begin(), found.end());
        EXPECT_EQ(found, expected) << text;
    }
}

TEST(SearchIndex, FiltersAndDeprecation) {
    const auto keys = [](const std::vector<SearchHit>& hits) {
        std::vector<std::string> out;
        for (const auto& hit : hits) {
            out.push_back(keyOf(hit) + ":" + nameOf(hit) + (hit.deprecated ? "!" : ""));
        }
        return out;
    };
    const auto query = [](std::u16string text, std::size_t limit, auto&& adjust) {
        SearchQuery q;
        q.text = std::move(text);
        q.limit = limit;
        adjust(q);
        return q;
    };
    const auto as = [](SearchQuery&) {};
    const struct Case {
        const char* what;
        SearchQuery query;
        std::vector<std::string> expected;
    } cases[] = {
        {"deprecated entries are found and marked", query(u"plot", 2, as), {"plotting:plot", "legacy:plot!"}},
        {"and can be hidden", query(u"plot", 0, [](SearchQuery& q) { q.hideDeprecated = true; }), {"plotting:plot"}},
        {"installed only", query(u"plot", 2, [](SearchQuery& q) { q.installedOnly = true; }), {"plotting:plot"}},
        {"product keys", query(u"shared", 0, [](SearchQuery& q) { q.productKeys = {u"prod10"}; }), {"prod10:shared"}},
        {"entity types",
         query(u"figure", 0, [](SearchQuery& q) { q.entityTypes = {RefEntityType::Method}; }),
         {"plotting:Figure.savefig"}},
        {"limit", query(u"system", 2, as), {"signal:system1", "signal:system111"}},
        {"nothing", query(u"qqqq", 0, as), {}},
        {"blank query", query(u"  ", 0, as), {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(keys(index().search(c.query)), c.expected) << c.what;
    }
}

TEST(SearchIndex, MatchedRangesOfTheName) {
    const struct Case {
        const char* query;
        const char* name;
        std::vector<MatchRange> ranges;
    } cases[] = {
        {"Figure", "figure", {{0, 6}}},
        {"getcu", "getCurrentAxes", {{0, 5}}},
        {"savef", "Figure.savefig", {{7, 5}}},
        {"rcsv", "read_csv", {{0, 1}, {5, 3}}},
        {"gca", "getCurrentAxes", {{0, 1}, {3, 1}, {10, 1}}},
        {"gtcufg", "getCurrentFigure", {{0, 1}, {2, 3}, {10, 1}, {12, 1}}},
        {"prod006systen938", "prod006system938", {{0, 16}}},
        {"current figure", "getCurrentFigure", {{3, 13}}},
        {"comma", "read_csv", {}},
    };
    for (const auto& c : cases) {
        const auto hits = index().search(utf8ToUtf16(c.query));
        ASSERT_FALSE(hits.empty()) << c.query;
        EXPECT_EQ(nameOf(hits[0]), c.name) << c.query;
        EXPECT_EQ(hits[0].nameRanges, c.ranges) << c.query;
    }
}

// Case folding beyond ASCII, and names in other scripts.
TEST(SearchIndex, UnicodeCaseFolding) {
    const SearchIndex folded(lookups(
        {{"intl", true, {{"ΣΥΣΤΗΜΑ", "Greek capitals"}, {"straßeÖffnen", "German"}, {"𐐀𐐁name", "Deseret capitals"}}}}));
    const struct Case {
        const char* query;
        const char* name;
        MatchKind match;
    } cases[] = {
        {"σύστημα", nullptr, MatchKind::Exact}, // accents are not folded away
        {"συστημα", "ΣΥΣΤΗΜΑ", MatchKind::Exact},
        {"ςυστημα", "ΣΥΣΤΗΜΑ", MatchKind::Exact}, // final sigma folds to sigma
        {"ÖFFNEN", "straßeÖffnen", MatchKind::SegmentPrefix},
        {"𐐨𐐩", "𐐀𐐁name", MatchKind::Prefix},
    };
    for (const auto& c : cases) {
        const auto hits = folded.search(utf8ToUtf16(c.query));
        if (c.name == nullptr) {
            EXPECT_TRUE(hits.empty() || hits[0].match != c.match) << c.query;
            continue;
        }
        ASSERT_FALSE(hits.empty()) << c.query;
        EXPECT_EQ(nameOf(hits[0]), c.name) << c.query;
        EXPECT_EQ(hits[0].match, c.match) << c.query;
    }
}

// A page's purpose and description count for the entry of the same product and href, below the
// entry's own purpose.
TEST(SearchIndex, ReferencePagesAddText) {
    auto results = std::make_shared<const SearchIndex::LookupResults>(
        lookups({{"signal", true, {{"fastFilter", "Filter quickly"}, {"slowFilter", "Filter with a window"}}}}));
    std::map<std::u16string, std::vector<RefItem>> pages;
    pages[u"signal/ref/fastFilter.html"].push_back(RefItem(u"signal/ref/fastFilter.html", {}, u"", u"Filter quickly",
                                                           u"", u"Uses a window of samples", u"", u"", {}, {}, {}, {},
                                                           {}, {}, {}, {}));
    SearchIndex::PageFiles files;
    files.emplace(u"signal",
                  DocResource<RefItem>(HeaderInfo(u"Signal", u"", u"signal", u"help/signal"), std::move(pages)));
    std::vector<SearchIndex::PageFiles> all;
    all.push_back(std::move(files));
    const SearchIndex withPages(results, std::move(all));
    const SearchIndex without(results);

    const auto hits = withPages.search(u"window");
    ASSERT_EQ(hits.size(), 2u);
    EXPECT_EQ(nameOf(hits[0]), "slowFilter"); // its own purpose
    EXPECT_EQ(nameOf(hits[1]), "fastFilter"); // its page's description
    EXPECT_GT(hits[0].score, hits[1].score);
    EXPECT_EQ(without.search(u"samples").size(), 0u);
    EXPECT_EQ(withPages.search(u"samples").size(), 1u);
}

// One index, many threads, the same answers as one thread gives.
TEST(SearchIndex, ConcurrentQueriesAgree) {
    const std::vector<std::u16string> queries = {u"figure",   u"gcf",  u"rcsv",       u"plto",   u"current figure",
                                                 u"並べ替え", u"syst", u"fsatfiltre", u"gtcufg", u"comma"};
    const auto describe = [&](const std::u16string& query) {
        std::string out;
        for (const auto& hit : index().search(query, 0)) {
            out += keyOf(hit) + "/" + nameOf(hit) + "/" + std::to_string(hit.score) + "/" +
                   std::to_string(hit.nameRanges.size()) + ";";
        }
        return out;
    };
    std::vector<std::string> expected;
    for (const auto& query : queries) {
        expected.push_back(describe(query));
    }
    std::vector<std::vector<std::string>> seen(4);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < seen.size(); ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < 50; ++round) {
                for (std::size_t q = 0; q < queries.size(); ++q) {
                    const std::size_t i = (q + t) % queries.size();
                    if (round == 0) {
                        seen[t].resize(queries.size());
                    }
                    seen[t][i] = describe(queries[i]);
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (const auto& results : seen) {
        EXPECT_EQ(results, expected);
    }
}

TEST(SearchIndex, MovedFromIndexAnswersNothing) {
    SearchIndex first(lookups(catalogue()));
    EXPECT_EQ(first.size(), 25u);
    SearchIndex second(std::move(first));
    EXPECT_TRUE(first.search(u"figure").empty()); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(second.search(u"figure").front().item->getName(), u"figure");
    EXPECT_GT(second.memoryUsage(), 0u);
}

} // namespace
