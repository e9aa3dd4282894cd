#include <reference/docparser/DocResourceParser.hpp>

#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

namespace {

using reference::docparser::DocResourceParser;
using namespace refdoc::test;

class ResourceFile : public HostSettingsFixture {
protected:
    void SetUp() override {
        HostSettingsFixture::SetUp();
        const auto write = [this](const std::string& name, const std::string& text) {
            root_.write(std::filesystem::path("docCatalog/referenceapi") / name, text);
        };
        write("prod.json", fileText(pageDocument({"Prod", "PR", "prod"}, {{"p1", "en one"}, {"p2", "en two"}}),
                                    {pageDocument({"SP1", "sp1", "x"}, {{"q1", "en q1"}}),
                                     pageDocument({"SP1 again", "sp1", "y"}, {{"dup", "never"}}),
                                     pageDocument({"Prod shadow", "prod", "z"}, {{"shadow", "never"}})}));
        write("prod_ja.json", fileText(pageDocument({"製品", "PR", "prod"}, {{"p1", "ja one"}, {"p3", "ja three"}}),
                                       {pageDocument({"SP2", "sp2", "w"}, {{"r1", "ja r1"}})}));
        write("jaonly_ja.json", fileText(pageDocument({"JA only", "JO", "jaonly"}, {{"j1", "ja j1"}})));
        write("enonly.json", fileText(pageDocument({"EN only", "EO", "enonly"}, {{"e1", "en e1"}})));
        write("broken.json", "{oops");
        write("broken_ja.json", fileText(pageDocument({"Broken JA", "BR", "broken"}, {{"b1", "ja b1"}})));
        write("brokenloc.json", fileText(pageDocument({"Brokenloc", "BL", "brokenloc"}, {{"x", "en x"}})));
        // The last page lacks its required purpose: the whole file is dropped.
        write("brokenloc_ja.json", R"({"productName": "BL ja", "baseCode": "BL", "helpFolder": "brokenloc",
            "helpLocation": "h", "refItems": [{"href": "x", "refpurpose": "ja x"}, {"href": "y"}]})");

        DocResourceParser::setReferenceRoot(root_.u16());
        doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});
    }

    static PageSummary load(const char16_t* language, const char16_t* name) {
        doclanguage::DocLanguage::getInstance().setDocLanguage(language);
        return summarize(DocResourceParser::getResourceFile(name));
    }

    TempDir root_;
};

// English reads only the English file; another language merges its file over English per link,
// and either file alone is returned as it is.
TEST_F(ResourceFile, LocalizedHeaderAndPagesWinPerLink) {
    EXPECT_EQ(load(u"en", u"prod"), (PageSummary{
                                        {"prod", {"Prod", {{"p1", {"en one"}}, {"p2", {"en two"}}}}},
                                        {"sp1", {"SP1", {{"q1", {"en q1"}}}}},
                                    }));
    EXPECT_TRUE(load(u"en", u"jaonly").empty());
    EXPECT_EQ(load(u"ja", u"prod"),
              (PageSummary{
                  {"prod", {"製品", {{"p1", {"ja one"}}, {"p2", {"en two"}}, {"p3", {"ja three"}}}}},
                  {"sp1", {"SP1", {{"q1", {"en q1"}}}}},
                  {"sp2", {"SP2", {{"r1", {"ja r1"}}}}},
              }));
    EXPECT_EQ(load(u"ja", u"jaonly"), (PageSummary{{"jaonly", {"JA only", {{"j1", {"ja j1"}}}}}}));
    EXPECT_EQ(load(u"ja", u"enonly"), (PageSummary{{"enonly", {"EN only", {{"e1", {"en e1"}}}}}}));

    // The merged pages arrive whole, not as their summaries.
    const auto pages = DocResourceParser::getResourceFile(u"prod");
    const auto& p2 = pages.at(u"prod").getItems().at(u"p2").at(0);
    EXPECT_EQ(p2.getInputGroups().at(0).getInputs().at(0).getInfo().getAnchor(), u"p2#input_x");
    EXPECT_EQ(pages.at(u"prod").getHeader().getHelpLocation(), u"help/prod");
}

TEST_F(ResourceFile, BrokenFilesCountAsAbsent) {
    EXPECT_TRUE(load(u"en", u"broken").empty());
    EXPECT_EQ(load(u"ja", u"broken"), (PageSummary{{"broken", {"Broken JA", {{"b1", {"ja b1"}}}}}}));
    EXPECT_EQ(load(u"ja", u"brokenloc"), (PageSummary{{"brokenloc", {"Brokenloc", {{"x", {"en x"}}}}}}));
    EXPECT_TRUE(load(u"ja", u"nosuchproduct").empty());
    DocResourceParser::setReferenceRoot(root_.u16() + u"/");
    EXPECT_EQ(load(u"en", u"enonly").size(), 1u) << "a root with a trailing separator";
}

} // namespace
