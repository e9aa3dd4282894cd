#include <reference/docparser/DocResourceParser.hpp>

#include <gtest/gtest.h>

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

RefItemLookup item(const std::u16string& name, const std::u16string& href, const std::u16string& purpose = u"p") {
    return RefItemLookup(name, RefEntityType::Function, purpose, false, href, FunctionType::Ordinary);
}

HeaderInfo header(const std::u16string& product) {
    return HeaderInfo(product, u"BC", u"folder", u"loc");
}

// name -> hrefs, in list order
std::map<std::u16string, std::vector<std::u16string>> hrefs(const Resource& r) {
    std::map<std::u16string, std::vector<std::u16string>> out;
    for (const auto& [name, items] : r.getItems()) {
        auto& list = out[name];
        for (const auto& i : items) {
            list.push_back(i.getHref());
        }
    }
    return out;
}

void merge(Resource& target, Resource source, bool precedence) {
    DocResourceParser::ParsingTools::mergeResourceFiles(target, std::move(source), precedence);
}

TEST(MergeResources, WinnerKeepsItsListWhenItIsAtLeastAsLong) {
    Resource target(header(u"en"), {{u"a", {item(u"a", u"A")}}});
    merge(target, Resource(header(u"ja"), {{u"a", {item(u"a", u"B")}}}), false);
    EXPECT_EQ(hrefs(target), (decltype(hrefs(target)){{u"a", {u"A"}}}));
    EXPECT_EQ(target.getHeader().getProductName(), u"en");
}

TEST(MergeResources, ShorterWinnerListIsCompletedByHrefInFallbackOrder) {
    Resource target(header(u"en"), {{u"a", {item(u"a", u"A")}}});
    merge(target, Resource(header(u"x"), {{u"a", {item(u"a", u"A"), item(u"a", u"B")}}}), false);
    EXPECT_EQ(hrefs(target), (decltype(hrefs(target)){{u"a", {u"A", u"B"}}}));
}

TEST(MergeResources, DuplicateHrefsInTheFallbackAreAppendedOnce) {
    Resource target(header(u"en"), {{u"a", {item(u"a", u"A")}}});
    merge(target,
          Resource(header(u"x"), {{u"a", {item(u"a", u"B", u"first"), item(u"a", u"B", u"second"), item(u"a", u"C")}}}),
          false);
    ASSERT_EQ(hrefs(target), (decltype(hrefs(target)){{u"a", {u"A", u"B", u"C"}}}));
    EXPECT_EQ(target.getItems().at(u"a")[1].getPurpose(), u"first");
}

TEST(MergeResources, EmptyFallbackListChangesNothing) {
    Resource target(header(u"en"), {{u"a", {}}});
    merge(target, Resource(header(u"x"), {{u"a", {}}}), false);
    EXPECT_EQ(hrefs(target), (decltype(hrefs(target)){{u"a", {}}}));
}

TEST(MergeResources, PrecedenceSwapsHeaderAndPerNameWinner) {
    // English first, then the localized file with precedence.
    Resource english(header(u"English"),
                     {{u"a", {item(u"a", u"A", u"en a")}}, {u"onlyEn", {item(u"onlyEn", u"E1"), item(u"onlyEn", u"E2")}}});
    Resource localized(header(u"Localized"), {{u"a", {item(u"a", u"A", u"ja a")}}, {u"onlyJa", {item(u"onlyJa", u"J")}}});
    merge(english, std::move(localized), true);

    EXPECT_EQ(english.getHeader().getProductName(), u"Localized");
    EXPECT_EQ(hrefs(english), (decltype(hrefs(english)){
                                  {u"a", {u"A"}}, {u"onlyEn", {u"E1", u"E2"}}, {u"onlyJa", {u"J"}}}));
    EXPECT_EQ(english.getItems().at(u"a")[0].getPurpose(), u"ja a");
    // Names only the fallback had keep their whole list, in its order.
    EXPECT_EQ(english.getItems().at(u"onlyEn")[1].getHref(), u"E2");
}

TEST(MergeResources, NamesOnlyTheFallbackHasAreAddedWhole) {
    Resource target(header(u"en"), {{u"m", {item(u"m", u"M")}}});
    merge(target,
          Resource(header(u"x"), {{u"b", {item(u"b", u"B2"), item(u"b", u"B1")}}, {u"z", {item(u"z", u"Z")}}}),
          false);
    EXPECT_EQ(hrefs(target), (decltype(hrefs(target)){{u"b", {u"B2", u"B1"}}, {u"m", {u"M"}}, {u"z", {u"Z"}}}));
}

TEST(MergeResources, LengthConditionKeepsDifferingLinksOfAnEqualLengthWinner) {
    Resource target(header(u"en"), {{u"a", {item(u"a", u"A1"), item(u"a", u"A2")}}});
    merge(target, Resource(header(u"x"), {{u"a", {item(u"a", u"B1"), item(u"a", u"B2")}}}), false);
    EXPECT_EQ(hrefs(target), (decltype(hrefs(target)){{u"a", {u"A1", u"A2"}}}));
}

} // namespace
