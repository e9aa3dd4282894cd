#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <doc_products_shared/DocProductCollector.hpp>
#include <doc_products_shared/TopLevelDocProduct.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <unordered_set>

namespace {

using reference::docparser::DocResourceParser;
using NameSet = std::unordered_set<std::u16string>;

class InstalledProductsTest : public refdoc::test::HostSettingsFixture {
protected:
    void useSupportPackageRoot(const std::filesystem::path& root) {
        SupportPackageRootReader::setSupportPackageRoot(root.u16string());
        DocResourceParser::clearSupportPackageCache();
    }
};

// Installed means an exact short name of a product or an exact support-package name; test
// products replace the catalogue's, and a catalogue product matches by its short name only.
TEST_F(InstalledProductsTest, InstalledMeansExactShortNameOrSupportPackageName) {
    doc_products_shared::DocProductCacheManager::getInstance().getDocProductCache()->setInstalledTopLevelDocProducts(
        {std::make_shared<const doc_products_shared::TopLevelDocProduct>("short", "display", "help/loc", "base",
                                                                         "altShort", "available")});
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
TEST_F(InstalledProductsTest, SupportPackagesAreReadOnceUntilTheCacheIsCleared) {
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

TEST_F(InstalledProductsTest, ListsHandedOutSurviveNewTestProducts) {
    DocResourceParser::setTestProducts({u"first"}, {u"firstPackage"});
    const auto products = DocResourceParser::getTopLevelProducts();
    const auto packages = DocResourceParser::getHardwareSupportPackages();

    DocResourceParser::setTestProducts({u"second", u"third"}, {u"secondPackage"});

    ASSERT_EQ(products->size(), 1u);
    EXPECT_EQ(products->front()->getShortName(), "first");
    EXPECT_EQ(*packages, (NameSet{u"firstPackage"}));
    EXPECT_EQ(DocResourceParser::getTopLevelProducts()->size(), 2u);
    EXPECT_EQ(*DocResourceParser::getHardwareSupportPackages(), (NameSet{u"secondPackage"}));
}

// A lookup load takes the installed products and support packages when it first tests a key, not
// before: a load with nothing to file leaves the support-package cache unloaded.
TEST_F(InstalledProductsTest, LoadThatFilesNothingLeavesTheSupportPackagesUnread) {
    refdoc::test::TempDir docroot;
    refdoc::test::TempDir packages;
    std::filesystem::create_directories(docroot.path() / "docCatalog" / "referenceapi_lookup");
    DocResourceParser::setReferenceRoot(docroot.u16());
    useSupportPackageRoot(packages.path());

    const auto nothing = DocResourceParser::getResourceLookupFiles();
    EXPECT_TRUE(nothing.installedResources.empty() && nothing.uninstalledResources.empty());

    std::filesystem::create_directory(packages.path() / "pkg");
    EXPECT_TRUE(DocResourceParser::isProductInstalled(u"pkg"));
}

// An unreadable catalogue or support-package root while a file's keys are filed makes that file
// absent; the load neither throws nor caches the failure, and the next load reads everything.
TEST_F(InstalledProductsTest, FailureWhileTakingTheInstalledProductsDropsTheFileOnly) {
    refdoc::test::TempDir docroot;
    docroot.write("docCatalog/referenceapi_lookup/alpha.json",
                  refdoc::test::fileText(refdoc::test::lookupDocument({"Alpha", "AL", "alpha"}, {{"plot", "Plot"}})));
    DocResourceParser::setReferenceRoot(docroot.u16());
    const auto catalogue = doc_products_shared::DocProductCacheManager::getInstance().getDocProductCache();
    catalogue->setInstalledTopLevelDocProducts(
        {std::make_shared<const doc_products_shared::TopLevelDocProduct>("alpha", "", "", "", "", "")});

    const std::function<void(const std::string&)> failures[] = {
        [&](const std::string& message) { catalogue->setFailure(message); },
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
