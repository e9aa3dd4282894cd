#include <reference/docparser/DocResourceParser.hpp>

#include "ZipWriter.hpp"
#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"
#include "support/ZipPatch.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using reference::docparser::DocResourceParser;
using namespace refdoc::test;

// A documentation root with every way a lookup file can ship: loose files and their variants,
// a multi-leaf package, single-leaf packages flagged (or not) by their names, support packages,
// installed and uninstalled products, and files broken in each of the ways that drop them.
class LookupLoading : public HostSettingsFixture {
protected:
    void SetUp() override {
        HostSettingsFixture::SetUp();
        lookup_ = root_.path() / "docCatalog" / "referenceapi_lookup";
        const auto write = [this](const std::string& name, const std::string& text) {
            root_.write(std::filesystem::path("docCatalog/referenceapi_lookup") / name, text);
        };

        write("alpha.json",
              fileText(lookupDocument({"Alpha", "AL", "alpha"}, {{"plot", "Plot data"}, {"line", "Draw lines"}}),
                       {lookupDocument({"Alpha SP", "sp_a", "alpha_sp"}, {{"spfun", "Support function"}}),
                        // Claims the main document's key: dropped.
                        lookupDocument({"Shadow", "alpha", "shadow"}, {{"shadow", "Never seen"}})}));
        write("alpha_ja.json",
              fileText(lookupDocument({"アルファ", "AL", "alpha"}, {{"plot", "データをプロット"}}),
                       {lookupDocument({"Alpha SP ja", "sp_a", "alpha_sp"}, {{"spfun", "サポート関数"}})}));

        ZipWriter()
            .add("beta.json", fileText(lookupDocument({"Beta", "BE", "beta"}, {{"b1", "Beta one"}})))
            .add("beta_ja.json", fileText(lookupDocument({"ベータ", "BE", "beta"}, {{"b1", "ベータ1"}})))
            // fr is not a supported language: an English leaf of its own product.
            .add("beta_fr.json", fileText(lookupDocument({"Beta FR", "BF", "beta_fr"}, {{"b1", "Bêta un"}})))
            .addDirectory("docs")
            .add("docs/readme.txt", "not data")
            .write(lookup_ / "beta.zip");

        write("gamma.json",
              fileText(lookupDocument({"Gamma", "GA", "gamma"}, {{"g1", "Gamma one"}, {"g2", "Gamma two"}})));
        // Single leaves: the package name decides whether they are locale variants.
        ZipWriter()
            .add("gamma_ja.json", fileText(lookupDocument({"ガンマ", "GA", "gamma"}, {{"g1", "ガンマ1"}})))
            .write(lookup_ / "gamma_ja.zip");
        ZipWriter()
            .add("delta.json", fileText(lookupDocument({"Delta", "DE", "delta"}, {{"d1", "Delta one"}})))
            .write(lookup_ / "delta_ja.zip");
        ZipWriter()
            .add("solo_ja.json", fileText(lookupDocument({"Solo", "SO", "solo"}, {{"s1", "Solo one"}})))
            .write(lookup_ / "solo.zip");

        write("omega.json", fileText(lookupDocument({"Omega", "OM", "omega"}, {{"o1", "Omega one"}})));

        // Broken files: each would add its own key if it were read.
        write("syntax.json", R"({"productName": "Broken", "baseCode": "BR",)");
        write("missinghref.json", R"({"productName": "M", "baseCode": "MH", "helpFolder": "missinghref",
                                      "helpLocation": "h", "refItems": [{"name": "x", "refpurpose": "y"}]})");
        write("wrongkind.json", R"({"productName": "W", "baseCode": "WK", "helpFolder": "wrongkind",
                                    "helpLocation": "h", "refItems": "nope"})");
        write("empty.json", "");
        write("truncated.zip", "PK\x03\x04 not really a package");
        std::filesystem::create_directories(lookup_ / "folder.json"); // a folder named like a data file
        ZipWriter()
            .add("mixedok.json", fileText(lookupDocument({"Mixed OK", "MO", "mixedok"}, {{"m1", "Mixed one"}})))
            .add("mixedbad.json", fileText(lookupDocument({"Mixed bad", "MB", "mixedbad"}, {{"x", "x"}})))
            .write(lookup_ / "mixed.zip");
        patchZipEntryCrc(lookup_ / "mixed.zip", "mixedbad.json", 0x12345678);

        // Not data files.
        write("upper.JSON", fileText(lookupDocument({"Upper", "UP", "upper"}, {{"u", "u"}})));
        write("readme.txt", "hello");

        DocResourceParser::setReferenceRoot(root_.u16());
        DocResourceParser::setTestProducts({u"alpha", u"beta", u"gamma", u"solo", u"mixedok"}, {u"sp_a"});
        doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});
    }

    static DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap> loadIn(const char16_t* language) {
        doclanguage::DocLanguage::getInstance().setDocLanguage(language);
        return DocResourceParser::getResourceLookupFiles();
    }

    TempDir root_;
    std::filesystem::path lookup_;
};

TEST_F(LookupLoading, EachLanguageGetsItsVariantsOverEnglishAndBrokenFilesAreDropped) {
    // Entries that never change with the language; the rest is listed per language below.
    const LookupSummary common = {
        {"mixedok", {"Mixed OK", {{"m1", {"Mixed one"}}}}},
        {"solo", {"Solo", {{"s1", {"Solo one"}}}}},
    };
    struct Case {
        const char16_t* language;
        LookupSummary installed;
    };
    const Case cases[] = {
        {u"en",
         {{"alpha", {"Alpha", {{"line", {"Draw lines"}}, {"plot", {"Plot data"}}}}},
          {"beta", {"Beta", {{"b1", {"Beta one"}}}}},
          {"gamma", {"Gamma", {{"g1", {"Gamma one"}}, {"g2", {"Gamma two"}}}}},
          {"sp_a", {"Alpha SP", {{"spfun", {"Support function"}}}}}}},
        // The translation wins per name; English fills names the translation lacks.
        {u"ja",
         {{"alpha", {"アルファ", {{"line", {"Draw lines"}}, {"plot", {"データをプロット"}}}}},
          {"beta", {"ベータ", {{"b1", {"ベータ1"}}}}},
          {"gamma", {"ガンマ", {{"g1", {"ガンマ1"}}, {"g2", {"Gamma two"}}}}},
          {"sp_a", {"Alpha SP ja", {{"spfun", {"サポート関数"}}}}}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.language, c.language + 2));
        LookupSummary installed = c.installed;
        installed.insert(common.begin(), common.end());
        const auto results = loadIn(c.language);
        EXPECT_EQ(summarize(results.installedResources), installed);
        EXPECT_EQ(summarize(results.uninstalledResources), (LookupSummary{
                                                               {"beta_fr", {"Beta FR", {{"b1", {"Bêta un"}}}}},
                                                               {"omega", {"Omega", {{"o1", {"Omega one"}}}}},
                                                           }));
    }
    DocResourceParser::setReferenceRoot(root_.u16() + u"/nowhere");
    const auto nothing = loadIn(u"ja");
    EXPECT_TRUE(nothing.installedResources.empty() && nothing.uninstalledResources.empty());
}

} // namespace
