// The process-wide settings a load reads: roots, supported locales, installed products and
// support packages, and their defaults.

#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <doc_products_shared/DocProductCollector.hpp>
#include <doc_products_shared/TopLevelDocProduct.hpp>
#include <doclanguage/DocLanguage.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <unordered_set>

namespace {

using reference::docparser::DocResourceParser;
using NameSet = std::unordered_set<std::u16string>;
using Strings = std::vector<std::u16string>;

std::shared_ptr<const doc_products_shared::TopLevelDocProduct> catalogued(const char* shortName) {
    return std::make_shared<const doc_products_shared::TopLevelDocProduct>(shortName, "display", "help/loc", "base",
                                                                           "altShort", "available");
}

class Settings : public refdoc::test::HostSettingsFixture {
protected:
    static std::shared_ptr<doc_products_shared::DocProductCollector> catalogue() {
        return doc_products_shared::DocProductCacheManager::getInstance().getDocProductCache();
    }

    void useSupportPackageRoot(const std::filesystem::path& root) {
        SupportPackageRootReader::setSupportPackageRoot(root.u16string());
        DocResourceParser::clearSupportPackageCache();
    }
};

// Suffixes of the supported languages other than English, in their order; the current language
// has no say.
TEST_F(Settings, SupportedLocalesBecomeSuffixesWithoutEnglish) {
    const struct {
        Strings languages;
        Strings suffixes;
    } cases[] = {
        {{u"en", u"ja", u"ko", u"zh_CN"}, {u"_ja", u"_ko", u"_zh_CN"}},
        {{u"en"}, {}},
        {{u"ja", u"en", u"ja"}, {u"_ja", u"_ja"}},
        {{u"en", u"ko", u"en", u"ja", u"en"}, {u"_ko", u"_ja"}},
        {{u"EN", u"en_US", u"en "}, {u"_EN", u"_en_US", u"_en "}},
        {{u"", u"en"}, {u"_"}},
    };
    for (const char16_t* current : {u"en", u"ja"}) {
        doclanguage::DocLanguage::getInstance().setDocLanguage(current);
        for (const auto& c : cases) {
            doclanguage::DocLanguage::getInstance().setSupportedDocLanguages(c.languages);
            EXPECT_EQ(DocResourceParser::ParsingTools::getSupportedDocLocales(), c.suffixes);
        }
    }
}

// Explicit settings hold until the defaults are restored: the documentation root service's root
// (taken on first use and kept), the catalogue's products and the installation's support
// packages. Every setting makes a new object, and one handed out keeps its contents whatever
// changes later.
TEST_F(Settings, RestoringTheDefaultsDropsEveryExplicitSetting) {
    refdoc::test::TempDir packages;
    std::filesystem::create_directory(packages.path() / "installedPackage");
    SupportPackageRootReader::setSupportPackageRoot(packages.u16());
    doc_products_shared::Docroot::getInstance().setDocDataRoot(u"/srv/docs");
    catalogue()->setInstalledTopLevelDocProducts({catalogued("catalogued")});
    DocResourceParser::restoreDefaultSettings();
    EXPECT_EQ(DocResourceParser::getReferenceRoots()->lookupFolder, u"/srv/docs/docCatalog/referenceapi_lookup");
    doc_products_shared::Docroot::getInstance().setDocDataRoot(u"/later");
    EXPECT_EQ(DocResourceParser::getReferenceRoots()->docRoot, u"/srv/docs") << "the host's root is kept once taken";

    DocResourceParser::setReferenceRoot(u"/old");
    DocResourceParser::setTestProducts({u"first"}, {u"firstPackage"});
    const auto roots = DocResourceParser::getReferenceRoots();
    const auto products = DocResourceParser::getTopLevelProducts();
    const auto supportPackages = DocResourceParser::getHardwareSupportPackages();
    EXPECT_EQ(roots, DocResourceParser::getReferenceRoots());
    doc_products_shared::Docroot::getInstance().setDocDataRoot(u"/service");
    EXPECT_EQ(DocResourceParser::getReferenceRoots()->docRoot, u"/old");
    DocResourceParser::setReferenceRoot(u"/old");
    EXPECT_NE(roots, DocResourceParser::getReferenceRoots());
    DocResourceParser::setTestProducts({u"testProduct", u"third"}, {u"testPackage"});
    EXPECT_EQ(DocResourceParser::getTopLevelProducts()->size(), 2u);
    ASSERT_TRUE(DocResourceParser::isProductInstalled(u"testProduct"));
    ASSERT_TRUE(DocResourceParser::isProductInstalled(u"testPackage"));

    DocResourceParser::restoreDefaultSettings();
    EXPECT_EQ(DocResourceParser::getReferenceRoots()->docRoot, u"/service");
    EXPECT_EQ(DocResourceParser::getTopLevelProducts(), catalogue()->getInstalledTopLevelDocProducts());
    EXPECT_EQ(*DocResourceParser::getHardwareSupportPackages(), (NameSet{u"installedPackage"}));
    EXPECT_TRUE(DocResourceParser::isProductInstalled(u"catalogued"));
    EXPECT_TRUE(DocResourceParser::isProductInstalled(u"installedPackage"));
    EXPECT_FALSE(DocResourceParser::isProductInstalled(u"testProduct"));
    EXPECT_FALSE(DocResourceParser::isProductInstalled(u"testPackage"));

    // The folders are the root with the catalogue's folder names appended, nothing resolved.
    EXPECT_EQ(roots->lookupFolder, u"/old/docCatalog/referenceapi_lookup");
    EXPECT_EQ(roots->referenceFolder, u"/old/docCatalog/referenceapi");
    ASSERT_EQ(products->size(), 1u);
    EXPECT_EQ(products->front()->getShortName(), "first");
    EXPECT_EQ(*supportPackages, (NameSet{u"firstPackage"}));
}

// Installed means an exact short name of a product or an exact support-package name; test
// products replace the catalogue's, and a catalogue product matches by its short name only.
TEST_F(Settings, InstalledMeansExactShortNameOrSupportPackageName) {
    catalogue()->setInstalledTopLevelDocProducts({catalogued("short")});
    EXPECT_TRUE(DocResourceParser::isProductInstalled(u"short"));
    for (const auto* other : {u"display", u"help/loc", u"base", u"altShort", u"available"}) {
        EXPECT_FALSE(DocResourceParser::isProductInstalled(other)) << "matched a field other than the short name";
    }

    DocResourceParser::setTestProducts({u"alpha", u"\u65e5\u672c"}, {u"beta", u"beta"});
    for (const auto* installed : {u"alpha", u"beta", u"\u65e5\u672c"}) {
        EXPECT_TRUE(DocResourceParser::isProductInstalled(installed));
    }
    for (const auto* other : {u"short", u"Alpha", u"BETA", u"alpha ", u"alph", u"", u"testBaseCode"}) {
        EXPECT_FALSE(DocResourceParser::isProductInstalled(other));
    }
    EXPECT_EQ(*DocResourceParser::getHardwareSupportPackages(), (NameSet{u"beta"}));

    DocResourceParser::setTestProducts({}, {u"package"});
    EXPECT_TRUE(DocResourceParser::getTopLevelProducts()->empty());
    EXPECT_FALSE(DocResourceParser::isProductInstalled(u"alpha"));
    EXPECT_TRUE(DocResourceParser::isProductInstalled(u"package"));
}

// The support-package root is read once, a failed read included, until the cache is cleared;
// clearing also drops test packages in favour of the installation's, and keeps test products.
TEST_F(Settings, SupportPackagesAreReadOnceUntilTheCacheIsCleared) {
    refdoc::test::TempDir temp;
    const auto root = temp.path() / "notYetThere";
    useSupportPackageRoot(root);
    const auto failed = DocResourceParser::getHardwareSupportPackages();
    ASSERT_NE(failed, nullptr);
    EXPECT_TRUE(failed->empty());

    std::filesystem::create_directories(root / "hspA");
    temp.write("notYetThere/notAPackage.txt", "a file, not a package");
    EXPECT_EQ(DocResourceParser::getHardwareSupportPackages(), failed);
    EXPECT_FALSE(DocResourceParser::isProductInstalled(u"hspA"));

    DocResourceParser::clearSupportPackageCache();
    const auto first = DocResourceParser::getHardwareSupportPackages();
    EXPECT_EQ(*first, (NameSet{u"hspA"}));
    std::filesystem::create_directory(root / "hspB");
    EXPECT_FALSE(DocResourceParser::isProductInstalled(u"hspB"));

    DocResourceParser::setTestProducts({u"alpha"}, {u"testPackage"});
    EXPECT_FALSE(DocResourceParser::isProductInstalled(u"hspA")) << "test packages replace the installation";
    DocResourceParser::clearSupportPackageCache();
    EXPECT_EQ(*DocResourceParser::getHardwareSupportPackages(), (NameSet{u"hspA", u"hspB"}));
    EXPECT_FALSE(DocResourceParser::isProductInstalled(u"testPackage"));
    EXPECT_TRUE(DocResourceParser::isProductInstalled(u"alpha"));
    EXPECT_EQ(*first, (NameSet{u"hspA"})) << "a set handed out never changes";
}

// A lookup load takes the installed products and support packages when it first tests a key, not
// before: a load with nothing to file leaves the support-package cache unloaded. An unreadable
// catalogue or support-package root while keys are filed makes that file absent; the load neither
// throws nor caches the failure.
TEST_F(Settings, LoadsTakeTheInstalledProductsOnlyWhenFilingAKey) {
    refdoc::test::TempDir docroot;
    refdoc::test::TempDir packages;
    std::filesystem::create_directories(docroot.path() / "docCatalog" / "referenceapi_lookup");
    DocResourceParser::setReferenceRoot(docroot.u16());
    useSupportPackageRoot(packages.path());
    const auto nothing = DocResourceParser::getResourceLookupFiles();
    EXPECT_TRUE(nothing.installedResources.empty() && nothing.uninstalledResources.empty());
    std::filesystem::create_directory(packages.path() / "pkg");
    EXPECT_TRUE(DocResourceParser::isProductInstalled(u"pkg"));

    docroot.write("docCatalog/referenceapi_lookup/alpha.json",
                  refdoc::test::fileText(refdoc::test::lookupDocument({"Alpha", "AL", "alpha"}, {{"plot", "Plot"}})));
    catalogue()->setInstalledTopLevelDocProducts({catalogued("alpha")});
    const std::function<void(const std::string&)> failures[] = {
        [&](const std::string& message) { catalogue()->setFailure(message); },
        [](const std::string& message) { SupportPackageRootReader::setFailure(message); },
    };
    for (const auto& fail : failures) {
        DocResourceParser::clearSupportPackageCache();
        fail("unreadable");
        DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap> failed;
        ASSERT_NO_THROW(failed = DocResourceParser::getResourceLookupFiles());
        EXPECT_TRUE(failed.installedResources.empty() && failed.uninstalledResources.empty());

        fail("");
        const auto loaded = DocResourceParser::getResourceLookupFiles();
        EXPECT_EQ(loaded.installedResources.count(u"alpha"), 1u);
        EXPECT_TRUE(loaded.uninstalledResources.empty());
    }
}

} // namespace
