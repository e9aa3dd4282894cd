#include <reference/docparser/DocResourceParser.hpp>

#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"
#include "support/ZipBuilder.hpp"

#include <SupportPackageRootReader.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

namespace {

using reference::docparser::DocResourceParser;
using namespace refdoc::test;
using LookupResults = DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap>;

// Loads run on several threads while another thread keeps changing the reference root, the
// installed products and the support-package cache. Each result must be exactly the result of
// one of the settings combinations, computed beforehand one at a time.
class LoadingConcurrency : public HostSettingsFixture {
protected:
    void SetUp() override {
        HostSettingsFixture::SetUp();
        writeSettingsProbeRoot(rootA_, "A");
        writeSettingsProbeRoot(rootB_, "B");
        // The installation's support packages, used whenever the cache is cleared.
        std::filesystem::create_directories(installation_.path() / "sp_installed");
        SupportPackageRootReader::setSupportPackageRoot(installation_.u16());
        doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});
        doclanguage::DocLanguage::getInstance().setDocLanguage(u"ja");
    }

    struct Settings {
        const TempDir* root;
        std::vector<std::u16string> products;
        bool testPackages; // false: the cache is cleared and read from the installation
    };

    static void apply(const Settings& s) {
        DocResourceParser::setReferenceRoot(s.root->u16());
        DocResourceParser::setTestProducts(s.products, {u"sp_test"});
        if (!s.testPackages) {
            DocResourceParser::clearSupportPackageCache();
        }
    }

    TempDir rootA_;
    TempDir rootB_;
    TempDir installation_;
};

TEST_F(LoadingConcurrency, EveryResultMatchesOneConsistentSnapshot) {
    std::vector<Settings> combinations;
    for (const TempDir* root : {&rootA_, &rootB_}) {
        for (const auto& products : {std::vector<std::u16string>{u"one"}, std::vector<std::u16string>{u"two"}}) {
            for (bool testPackages : {true, false}) {
                combinations.push_back({root, products, testPackages});
            }
        }
    }
    std::vector<LookupResults> expectedLookups;
    std::vector<DocResourceParser::RefItemFileMap> expectedPages;
    for (const auto& settings : combinations) {
        apply(settings);
        expectedLookups.push_back(DocResourceParser::getResourceLookupFiles());
        expectedPages.push_back(DocResourceParser::getResourceFile(u"one"));
    }
    // The combinations must really differ, or the check below proves nothing.
    for (std::size_t i = 0; i < expectedLookups.size(); ++i) {
        for (std::size_t j = i + 1; j < expectedLookups.size(); ++j) {
            ASSERT_FALSE(expectedLookups[i] == expectedLookups[j]) << i << " and " << j;
        }
    }
    ASSERT_NE(expectedPages.front(), expectedPages.back());

    std::atomic<bool> stop{false};
    std::atomic<int> mismatches{0};
    std::atomic<int> loads{0};
    std::thread mutator([&] {
        std::mt19937 random(12345);
        while (!stop.load()) {
            apply(combinations[random() % combinations.size()]);
            std::this_thread::yield();
        }
    });

    constexpr int kIterations = 200;
    std::vector<std::thread> loaders;
    for (int t = 0; t < 3; ++t) {
        loaders.emplace_back([&, t] {
            for (int i = 0; i < kIterations; ++i) {
                if (t == 2) {
                    const auto pages = DocResourceParser::getResourceFile(u"one");
                    if (std::find(expectedPages.begin(), expectedPages.end(), pages) == expectedPages.end()) {
                        ++mismatches;
                    }
                } else {
                    const auto results = DocResourceParser::getResourceLookupFiles();
                    if (std::find(expectedLookups.begin(), expectedLookups.end(), results) == expectedLookups.end()) {
                        ++mismatches;
                    }
                }
                ++loads;
            }
        });
    }
    for (auto& loader : loaders) {
        loader.join();
    }
    stop = true;
    mutator.join();
    EXPECT_EQ(loads.load(), 3 * kIterations);
    EXPECT_EQ(mismatches.load(), 0);
}

} // namespace
