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
        write("repl_ja.json", fileText(pageDocument({"置換", "RP", "repl"}, {{"p1", "ja one"}}),
                                       {pageDocument({"SP", "sp", "s"}, {{"q1", "ja q1"}})}));

        DocResourceParser::setReferenceRoot(root_.u16());
        doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});
    }

    void write(const std::string& name, const std::string& text) {
        root_.write(std::filesystem::path("docCatalog/referenceapi") / name, text);
    }

    static PageSummary load(const char16_t* language, const char16_t* name) {
        doclanguage::DocLanguage::getInstance().setDocLanguage(language);
        return summarize(DocResourceParser::getResourceFile(name));
    }

    TempDir root_;
};

// English reads only the English file; another language merges its file over English per link,
// and either file alone is returned as it is. A broken file counts as absent.
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
    // The merged pages arrive whole, not as their summaries.
    const auto pages = DocResourceParser::getResourceFile(u"prod");
    const auto& p2 = pages.at(u"prod").getItems().at(u"p2").at(0);
    EXPECT_EQ(p2.getInputGroups().at(0).getInputs().at(0).getInfo().getAnchor(), u"p2#input_x");
    EXPECT_EQ(pages.at(u"prod").getHeader().getHelpLocation(), u"help/prod");

    EXPECT_EQ(load(u"ja", u"jaonly"), (PageSummary{{"jaonly", {"JA only", {{"j1", {"ja j1"}}}}}}));
    EXPECT_EQ(load(u"ja", u"enonly"), (PageSummary{{"enonly", {"EN only", {{"e1", {"en e1"}}}}}}));
    EXPECT_TRUE(load(u"en", u"broken").empty());
    EXPECT_EQ(load(u"ja", u"broken"), (PageSummary{{"broken", {"Broken JA", {{"b1", {"ja b1"}}}}}}));
    EXPECT_EQ(load(u"ja", u"brokenloc"), (PageSummary{{"brokenloc", {"Brokenloc", {{"x", {"en x"}}}}}}));
    EXPECT_TRUE(load(u"ja", u"nosuchproduct").empty());
    DocResourceParser::setReferenceRoot(root_.u16() + u"/");
    EXPECT_EQ(load(u"en", u"enonly").size(), 1u) << "a root with a trailing separator";
}

// A page file is named by its base name alone: names that would reach another file, inside the
// root or out of it, find nothing, although each of those files holds a sound page document.
TEST_F(ResourceFile, NamesThatAreNotBaseNamesFindNoPageFile) {
    const std::string page = fileText(pageDocument({"Elsewhere", "EW", "elsewhere"}, {{"e", "e"}}));
    root_.write("outside.json", page);
    root_.write("docCatalog/outside.json", page);
    write("sub/inner.json", page);
    write("a\\b.json", page);
    write("...json", page);
    write("cut", page); // what "cut\0x" + ".json" opens
    const std::pair<const char*, std::u16string> refused[] = {
        {"parent folder", u"../outside"},
        {"above the root", u"../../outside"},
        {"sub-folder", u"sub/inner"},
        {"backslash", u"a\\b"},
        {"dot-dot", u".."},
        {"NUL", std::u16string(u"cut\0x", 5)},
    };
    for (const auto& [what, name] : refused) {
        EXPECT_TRUE(summarize(DocResourceParser::getResourceFile(name)).empty()) << what;
    }
}

// English pages that a translation replaces are only checked, not built; a flaw in one must still
// make the whole English file count as absent. The English file: p1 (replaced) and p2 in the
// main document, the support package sp with q1 (replaced), and a second sp document, dropped
// since its key is taken.
TEST_F(ResourceFile, FlawsInPagesThatAreNotBuiltStillDropTheEnglishFile) {
    const auto page = [](const std::string& href) {
        return pageDocument({"x", "X", "x"}, {{href, "en " + href}}).at("refItems").as_array().at(0).as_object();
    };
    auto noPurpose = page("p1");
    noPurpose.erase("refpurpose");
    auto badInput = page("p1");
    badInput["inputgroup"].as_array()[0].as_object()["inputs"].as_array()[0].as_object().erase("name");
    auto badDropped = page("d1");
    badDropped["seealso"] = boost::json::array{boost::json::object{{"url", "ref/x.html"}}};
    const struct {
        const char* what;
        boost::json::object replacedPage;
        boost::json::object droppedPage;
        bool englishKept;
    } cases[] = {
        {"all pages sound", page("p1"), page("d1"), true},
        {"replaced page lacks its purpose", noPurpose, page("d1"), false},
        {"replaced page has an input without name", badInput, page("d1"), false},
        {"page of a dropped document has a see-also link without name", page("p1"), badDropped, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        auto main = pageDocument({"Repl", "RP", "repl"}, {{"p2", "en two"}});
        main["refItems"].as_array().insert(main["refItems"].as_array().begin(), c.replacedPage);
        auto dropped = pageDocument({"SP again", "sp", "t"}, {});
        dropped["refItems"].as_array().push_back(c.droppedPage);
        write("repl.json", fileText(main, {pageDocument({"SP", "sp", "s"}, {{"q1", "en q1"}}), dropped}));

        PageSummary expected = {{"repl", {"置換", {{"p1", {"ja one"}}}}}, {"sp", {"SP", {{"q1", {"ja q1"}}}}}};
        if (c.englishKept) {
            expected["repl"].second["p2"] = {"en two"};
        }
        EXPECT_EQ(load(u"ja", u"repl"), expected);
    }
}

} // namespace
