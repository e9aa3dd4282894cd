// With a translation, English pages that the translation replaces are only checked, not built.
// A flaw in such a page must still make the whole English file count as absent.

#include <reference/docparser/DocResourceParser.hpp>

#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

namespace {

using reference::docparser::DocResourceParser;
using namespace refdoc::test;

class PageReplacement : public HostSettingsFixture {
protected:
    void SetUp() override {
        HostSettingsFixture::SetUp();
        write("prod_ja.json", fileText(pageDocument({"製品", "PR", "prod"}, {{"p1", "ja one"}}),
                                       {pageDocument({"SP", "sp", "s"}, {{"q1", "ja q1"}})}));
        DocResourceParser::setReferenceRoot(root_.u16());
        doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});
        doclanguage::DocLanguage::getInstance().setDocLanguage(u"ja");
    }

    void write(const std::string& name, const std::string& text) {
        root_.write(std::filesystem::path("docCatalog/referenceapi") / name, text);
    }

    // English: p1 (replaced by the translation) and p2 (English only) in the main document; the
    // support package sp with q1 (replaced); a second sp document, dropped since its key is taken.
    void writeEnglish(boost::json::object p1, boost::json::object droppedPage) {
        auto main = pageDocument({"Prod", "PR", "prod"}, {{"p2", "en two"}});
        main["refItems"].as_array().insert(main["refItems"].as_array().begin(), std::move(p1));
        auto dropped = pageDocument({"SP again", "sp", "t"}, {});
        dropped["refItems"].as_array().push_back(std::move(droppedPage));
        write("prod.json", fileText(main, {pageDocument({"SP", "sp", "s"}, {{"q1", "en q1"}}), dropped}));
    }

    static boost::json::object page(const std::string& href) {
        return pageDocument({"x", "X", "x"}, {{href, "en " + href}}).at("refItems").as_array().at(0).as_object();
    }

    TempDir root_;
};

TEST_F(PageReplacement, FlawsInPagesThatAreNotBuiltStillDropTheEnglishFile) {
    const PageSummary withEnglish = {
        {"prod", {"製品", {{"p1", {"ja one"}}, {"p2", {"en two"}}}}},
        {"sp", {"SP", {{"q1", {"ja q1"}}}}},
    };
    const PageSummary withoutEnglish = {
        {"prod", {"製品", {{"p1", {"ja one"}}}}},
        {"sp", {"SP", {{"q1", {"ja q1"}}}}},
    };
    struct Case {
        const char* what;
        boost::json::object replacedPage;
        boost::json::object droppedPage;
        const PageSummary& expected;
    };
    auto noPurpose = page("p1");
    noPurpose.erase("refpurpose");
    auto badInput = page("p1");
    badInput["inputgroup"].as_array()[0].as_object()["inputs"].as_array()[0].as_object().erase("name");
    auto badDropped = page("d1");
    badDropped["seealso"] = boost::json::array{boost::json::object{{"url", "ref/x.html"}}};
    const Case cases[] = {
        {"all pages sound", page("p1"), page("d1"), withEnglish},
        {"replaced page lacks its purpose", noPurpose, page("d1"), withoutEnglish},
        {"replaced page has an input without name", badInput, page("d1"), withoutEnglish},
        {"page of a dropped document has a see-also link without name", page("p1"), badDropped, withoutEnglish},
    };
    for (const auto& c : cases) {
        writeEnglish(c.replacedPage, c.droppedPage);
        EXPECT_EQ(summarize(DocResourceParser::getResourceFile(u"prod")), c.expected) << c.what;
    }
}

} // namespace
