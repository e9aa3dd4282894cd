#pragma once

#include <reference/docparser/DocResourceParser.hpp>

#include <SupportPackageRootReader.hpp>
#include <doc_products_shared/DocProductCacheManager.hpp>
#include <doc_products_shared/Docroot.hpp>
#include <doclanguage/DocLanguage.hpp>

#include <gtest/gtest.h>

namespace refdoc::test {

// Suites that touch process-wide state derive from this: the host stand-ins and the library's
// settings are put back to their defaults before and after every test.
class HostSettingsFixture : public ::testing::Test {
protected:
    void SetUp() override { resetHostAndLibrary(); }
    void TearDown() override { resetHostAndLibrary(); }

    static void resetHostAndLibrary() {
        doc_products_shared::Docroot::getInstance().setDocDataRoot(u"");
        SupportPackageRootReader::setSupportPackageRoot(u"");
        SupportPackageRootReader::setFailure("");
        const auto catalogue = doc_products_shared::DocProductCacheManager::getInstance().getDocProductCache();
        catalogue->setInstalledTopLevelDocProducts({});
        catalogue->setFailure("");
        doclanguage::DocLanguage::getInstance().setDocLanguage(u"en");
        doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en"});
        // Last, so that the default roots are read from the reset documentation root.
        reference::docparser::DocResourceParser::restoreDefaultSettings();
    }
};

} // namespace refdoc::test
