#include <reference/docparser/DocResourceParser.hpp>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace {

using reference::docparser::DocResource;
using reference::docparser::DocResourceParser;
using reference::property::FunctionType;
using reference::property::HeaderInfo;
using reference::property::RefEntityType;
using reference::property::RefItemLookup;
using Resource = DocResource<RefItemLookup>;
// name -> (href, purpose) in list order
using Items = std::map<std::u16string, std::vector<std::pair<std::u16string, std::u16string>>>;

Resource resource(const std::u16string& product, const Items& items) {
    std::map<std::u16string, std::vector<RefItemLookup>> map;
    for (const auto& [name, list] : items) {
        auto& target = map[name];
        for (const auto& [href, purpose] : list) {
            target.emplace_back(name, RefEntityType::Function, purpose, false, href, FunctionType::Ordinary);
        }
    }
    return Resource(HeaderInfo(product, u"BC", u"folder", u"loc"), std::move(map));
}

Items items(const Resource& r) {
    Items out;
    for (const auto& [name, list] : r.getItems()) {
        auto& target = out[name];
        for (const auto& item : list) {
            target.emplace_back(item.getHref(), item.getPurpose());
        }
    }
    return out;
}

// The file merged in second wins, header included, when it takes precedence (a translation over
// English), else the one already there wins. Per name the winner's list is kept when it is at least as long as the
// other's; a shorter one is completed with the other's items whose links it lacks, in their order,
// each link once. Names only one side has are kept whole.
TEST(MergeResources, WinnerPerNameAndCompletionByLink) {
    const struct Case {
        const char* what;
        Items target;
        Items source;
        bool sourceTakesPrecedence;
        Items expected;
    } cases[] = {
        {"winner at least as long keeps its list",
         {{u"a", {{u"A", u"en"}}}},
         {{u"a", {{u"B", u"x"}}}},
         false,
         {{u"a", {{u"A", u"en"}}}}},
        {"shorter winner completed in fallback order",
         {{u"a", {{u"A", u"p"}}}},
         {{u"a", {{u"A", u"q"}, {u"B", u"q"}}}},
         false,
         {{u"a", {{u"A", u"p"}, {u"B", u"q"}}}}},
        {"a fallback link repeated is added once, the first",
         {{u"a", {{u"A", u"p"}}}},
         {{u"a", {{u"B", u"first"}, {u"B", u"second"}, {u"C", u"q"}}}},
         false,
         {{u"a", {{u"A", u"p"}, {u"B", u"first"}, {u"C", u"q"}}}}},
        {"names of either side alone are kept whole",
         {{u"m", {{u"M", u"p"}}}},
         {{u"b", {{u"B2", u"p"}, {u"B1", u"p"}}}, {u"z", {{u"Z", u"p"}}}},
         false,
         {{u"b", {{u"B2", u"p"}, {u"B1", u"p"}}}, {u"m", {{u"M", u"p"}}}, {u"z", {{u"Z", u"p"}}}}},
        {"precedence swaps the header and the winner",
         {{u"a", {{u"A", u"en a"}}}, {u"onlyEn", {{u"E1", u"p"}, {u"E2", u"p"}}}},
         {{u"a", {{u"A", u"ja a"}}}, {u"onlyJa", {{u"J", u"p"}}}},
         true,
         {{u"a", {{u"A", u"ja a"}}}, {u"onlyEn", {{u"E1", u"p"}, {u"E2", u"p"}}}, {u"onlyJa", {{u"J", u"p"}}}}},
        {"precedence with a shorter winner",
         {{u"a", {{u"A", u"en"}, {u"B", u"en"}}}},
         {{u"a", {{u"B", u"ja"}}}},
         true,
         {{u"a", {{u"B", u"ja"}, {u"A", u"en"}}}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Resource target = resource(u"target", c.target);
        DocResourceParser::ParsingTools::mergeResourceFiles(target, resource(u"source", c.source),
                                                            c.sourceTakesPrecedence);
        EXPECT_EQ(items(target), c.expected);
        EXPECT_EQ(target.getHeader().getProductName(), c.sourceTakesPrecedence ? u"source" : u"target");
    }
}

} // namespace
