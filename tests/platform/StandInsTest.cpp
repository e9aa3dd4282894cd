#include <SupportPackageRootReader.hpp>
#include <doc_products_shared/DocProductCacheManager.hpp>
#include <doc_products_shared/Docroot.hpp>
#include <doclanguage/DocLanguage.hpp>
#include <install/product_impl/utils/HardwareSupportPackages.hpp>

#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using refdoc::test::TempDir;

TEST(StandIns, DocrootHoldsTheConfiguredRoot) {
    auto& docroot = doc_products_shared::Docroot::getInstance();
    EXPECT_EQ(docroot.getDocDataRoot(), u"");
    docroot.setDocDataRoot(u"/opt/docs/\u00E9");
    EXPECT_EQ(doc_products_shared::Docroot::getInstance().getDocDataRoot(), u"/opt/docs/\u00E9");
    docroot.setDocDataRoot(u"");
}

TEST(StandIns, DocLanguageDefaultsToEnglish) {
    auto& language = doclanguage::DocLanguage::getInstance();
    EXPECT_EQ(language.getDocLanguage(), u"en");
    EXPECT_EQ(language.getSupportedDocLanguages(), std::vector<std::u16string>{u"en"});
    language.setDocLanguage(u"ja");
    language.setSupportedDocLanguages({u"en", u"ja", u"ko"});
    EXPECT_EQ(language.getDocLanguage(), u"ja");
    EXPECT_EQ(language.getSupportedDocLanguages().size(), 3u);
    language.setDocLanguage(u"en");
    language.setSupportedDocLanguages({u"en"});
}

TEST(StandIns, ProductCatalogueHandsOutImmutableSnapshots) {
    auto collector = doc_products_shared::DocProductCacheManager::getInstance().getDocProductCache();
    ASSERT_NE(collector, nullptr);
    const auto before = collector->getInstalledTopLevelDocProducts();
    ASSERT_NE(before, nullptr);
    EXPECT_TRUE(before->empty());

    auto product = std::make_shared<const doc_products_shared::TopLevelDocProduct>(
        "alpha", "Alpha", "help/alpha", "AL", "alp", "installed");
    collector->setInstalledTopLevelDocProducts({product});
    const auto after = collector->getInstalledTopLevelDocProducts();
    ASSERT_EQ(after->size(), 1u);
    EXPECT_EQ((*after)[0]->getShortName(), "alpha");
    EXPECT_EQ((*after)[0]->getBaseCode(), "AL");
    EXPECT_TRUE(before->empty()) << "an earlier snapshot changed";
    collector->setInstalledTopLevelDocProducts({});
}

TEST(StandIns, SupportPackagesAreTheSubFoldersOfTheRoot) {
    TempDir dir;
    std::filesystem::create_directories(dir.path() / "sp_one");
    std::filesystem::create_directories(dir.path() / "sp_\u00FC" / "nested");
    dir.write("not_a_package.txt", "x");
    const auto names = install::product_impl::utils::getInstalledHardwareSupportPackages(dir.u16());
    EXPECT_EQ(names, (std::unordered_set<std::u16string>{u"sp_one", u"sp_\u00FC"}));
}

TEST(StandIns, SupportPackageReaderEdgeCases) {
    EXPECT_TRUE(install::product_impl::utils::getInstalledHardwareSupportPackages(u"").empty());
    TempDir dir;
    EXPECT_THROW(install::product_impl::utils::getInstalledHardwareSupportPackages(dir.u16() + u"/missing"),
                 std::filesystem::filesystem_error);

    EXPECT_EQ(SupportPackageRootReader{}.getSupportPackageRootNoCreate(), u"");
    SupportPackageRootReader::setSupportPackageRoot(dir.u16());
    EXPECT_EQ(SupportPackageRootReader{}.getSupportPackageRootNoCreate(), dir.u16());
    SupportPackageRootReader::setSupportPackageRoot(u"");
}

} // namespace
