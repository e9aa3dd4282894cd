#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <doc_products_shared/TopLevelDocProduct.hpp>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using reference::docparser::DocResourceParser;
using ReferenceRoots = DocResourceParser::ReferenceRoots;

class ReferenceRootsTest : public refdoc::test::HostSettingsFixture {};

TEST_F(ReferenceRootsTest, FoldersArePlainConcatenationsOfTheRoot) {
    struct Case {
        std::u16string root;
        std::u16string lookupFolder;
        std::u16string referenceFolder;
    };
    const Case cases[] = {
        {u"/data", u"/data/docCatalog/referenceapi_lookup", u"/data/docCatalog/referenceapi"},
        {u"/data/", u"/data//docCatalog/referenceapi_lookup", u"/data//docCatalog/referenceapi"},
        {u"", u"/docCatalog/referenceapi_lookup", u"/docCatalog/referenceapi"},
        {u"relative/../x", u"relative/../x/docCatalog/referenceapi_lookup", u"relative/../x/docCatalog/referenceapi"},
        {u"/d\u00f6c/\u65e5\u672c", u"/d\u00f6c/\u65e5\u672c/docCatalog/referenceapi_lookup",
         u"/d\u00f6c/\u65e5\u672c/docCatalog/referenceapi"},
    };
    for (const auto& c : cases) {
        const ReferenceRoots direct(c.root);
        EXPECT_EQ(direct.docRoot, c.root);
        EXPECT_EQ(direct.lookupFolder, c.lookupFolder);
        EXPECT_EQ(direct.referenceFolder, c.referenceFolder);

        DocResourceParser::setReferenceRoot(c.root);
        const auto current = DocResourceParser::getReferenceRoots();
        EXPECT_EQ(current->docRoot, c.root);
        EXPECT_EQ(current->lookupFolder, c.lookupFolder);
        EXPECT_EQ(current->referenceFolder, c.referenceFolder);
    }
}

// The default root is the documentation root service's, read when the roots are first needed;
// an explicit root holds until the defaults are restored. Every setting makes a new roots object,
// and one handed out keeps its paths whatever changes later.
TEST_F(ReferenceRootsTest, DefaultAndExplicitRootsAndTheirSnapshots) {
    doc_products_shared::Docroot::getInstance().setDocDataRoot(u"/srv/docs");
    EXPECT_EQ(ReferenceRoots().docRoot, u"/srv/docs");
    DocResourceParser::restoreDefaultSettings();
    EXPECT_EQ(DocResourceParser::getReferenceRoots()->lookupFolder, u"/srv/docs/docCatalog/referenceapi_lookup");

    DocResourceParser::setReferenceRoot(u"/old");
    const auto snapshot = DocResourceParser::getReferenceRoots();
    EXPECT_EQ(snapshot, DocResourceParser::getReferenceRoots());
    doc_products_shared::Docroot::getInstance().setDocDataRoot(u"/service");
    EXPECT_EQ(DocResourceParser::getReferenceRoots()->docRoot, u"/old");
    DocResourceParser::setReferenceRoot(u"/old");
    EXPECT_NE(snapshot, DocResourceParser::getReferenceRoots()) << "every setting makes a new object";

    DocResourceParser::restoreDefaultSettings();
    EXPECT_EQ(DocResourceParser::getReferenceRoots()->docRoot, u"/service");
    EXPECT_EQ(snapshot->docRoot, u"/old");
    EXPECT_EQ(snapshot->lookupFolder, u"/old/docCatalog/referenceapi_lookup");
    EXPECT_EQ(snapshot->referenceFolder, u"/old/docCatalog/referenceapi");
}

TEST_F(ReferenceRootsTest, RestoreDefaultSettingsResetsRootsProviderAndSupportPackages) {
    refdoc::test::TempDir packages;
    std::filesystem::create_directory(packages.path() / "installedPackage");
    SupportPackageRootReader::setSupportPackageRoot(packages.u16());
    doc_products_shared::Docroot::getInstance().setDocDataRoot(u"/service");
    auto collector = doc_products_shared::DocProductCacheManager::getInstance().getDocProductCache();
    collector->setInstalledTopLevelDocProducts(
        {std::make_shared<const doc_products_shared::TopLevelDocProduct>("catalogued", "", "", "", "", "")});

    DocResourceParser::setReferenceRoot(u"/explicit");
    DocResourceParser::setTestProducts({u"testProduct"}, {u"testPackage"});
    ASSERT_TRUE(DocResourceParser::isProductInstalled(u"testProduct"));
    ASSERT_TRUE(DocResourceParser::isProductInstalled(u"testPackage"));

    DocResourceParser::restoreDefaultSettings();

    EXPECT_EQ(DocResourceParser::getReferenceRoots()->docRoot, u"/service");
    EXPECT_EQ(DocResourceParser::getTopLevelProducts(), collector->getInstalledTopLevelDocProducts());
    const auto supportPackages = DocResourceParser::getHardwareSupportPackages();
    EXPECT_EQ(*supportPackages, (std::unordered_set<std::u16string>{u"installedPackage"}));
    EXPECT_TRUE(DocResourceParser::isProductInstalled(u"catalogued"));
    EXPECT_FALSE(DocResourceParser::isProductInstalled(u"testProduct"));
    EXPECT_FALSE(DocResourceParser::isProductInstalled(u"testPackage"));
}

} // namespace
