// Eight threads load lookups and pages for a few seconds while five others keep changing every
// setting a load reads: the reference root, the test products and packages (always set as a
// pair), the current language, the support-package cache, and all of them at once through
// restoreDefaultSettings. Each result must be exactly the result of one settings combination,
// computed beforehand one at a time; in particular a lookup load must see products and support
// packages that were in force together, never the products of one pair with the packages of
// another. Under the thread sanitizer this also checks the locking and the lock order.
//
// The supported languages stay fixed: a lookup load reads them and the current language
// separately, so changing both would let a load see a language pair that never was set. Only the
// current language changes here.

#include <reference/docparser/DocResourceParser.hpp>

#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <SupportPackageRootReader.hpp>
#include <doc_products_shared/DocProductCacheManager.hpp>
#include <doc_products_shared/DocProductCollector.hpp>
#include <doc_products_shared/Docroot.hpp>
#include <doc_products_shared/TopLevelDocProduct.hpp>
#include <doclanguage/DocLanguage.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <thread>

namespace refdoc::test {
namespace {

using reference::docparser::DocResourceParser;
using LookupResults = DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap>;
using PageMap = DocResourceParser::RefItemFileMap;
using namespace std::chrono_literals;

#if defined(__SANITIZE_THREAD__)
constexpr auto kLoadTime = 2s;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
constexpr auto kLoadTime = 2s;
#else
constexpr auto kLoadTime = 4s;
#endif
#else
constexpr auto kLoadTime = 4s;
#endif

constexpr int kLoaders = 8;

struct Combination {
    const TempDir* root;
    std::u16string product; // the one installed top-level product
    bool installedPackages; // the support packages of the installation, or those paired with the product
    std::u16string language;
};

// The test support packages set together with each test product: "sp_test" only with "one".
std::vector<std::u16string> pairedPackages(const std::u16string& product) {
    return product == u"one" ? std::vector<std::u16string>{u"sp_test"} : std::vector<std::u16string>{};
}

class Stress : public HostSettingsFixture {
protected:
    void SetUp() override {
        HostSettingsFixture::SetUp();
        writeSettingsProbeRoot(rootA_, "A");
        writeSettingsProbeRoot(rootB_, "B");
        std::filesystem::create_directories(installation_.path() / "sp_installed");
        doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});
        // The host's defaults are one of the combinations: root A, the product "one" and the
        // installation's support packages. restoreDefaultSettings lands there.
        doc_products_shared::Docroot::getInstance().setDocDataRoot(rootA_.u16());
        doc_products_shared::DocProductCacheManager::getInstance()
            .getDocProductCache()
            ->setInstalledTopLevelDocProducts({std::make_shared<const doc_products_shared::TopLevelDocProduct>(
                "one", "One", "help/one", "ONE", "", "")});
        SupportPackageRootReader::setSupportPackageRoot(installation_.u16());
    }

    static void apply(const Combination& c) {
        DocResourceParser::setReferenceRoot(c.root->u16());
        DocResourceParser::setTestProducts({c.product}, pairedPackages(c.product));
        if (c.installedPackages) {
            DocResourceParser::clearSupportPackageCache();
        }
        doclanguage::DocLanguage::getInstance().setDocLanguage(c.language);
    }

    std::vector<Combination> combinations() const {
        std::vector<Combination> all;
        for (const TempDir* root : {&rootA_, &rootB_}) {
            for (const char16_t* product : {u"one", u"two"}) {
                for (const bool installedPackages : {false, true}) {
                    for (const char16_t* language : {u"en", u"ja"}) {
                        all.push_back({root, product, installedPackages, language});
                    }
                }
            }
        }
        return all;
    }

    TempDir rootA_;
    TempDir rootB_;
    TempDir installation_;
};

template <class T>
bool allDistinct(const std::vector<T>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = i + 1; j < values.size(); ++j) {
            if (values[i] == values[j]) {
                return false;
            }
        }
    }
    return true;
}

TEST_F(Stress, EveryLoadUnderConstantChangeMatchesOneCombination) {
    const std::vector<Combination> all = combinations();
    std::vector<LookupResults> expectedLookups;
    for (const auto& combination : all) {
        apply(combination);
        expectedLookups.push_back(DocResourceParser::getResourceLookupFiles());
    }
    std::vector<PageMap> expectedPages;
    for (const TempDir* root : {&rootA_, &rootB_}) {
        for (const char16_t* language : {u"en", u"ja"}) {
            apply({root, u"one", false, language});
            expectedPages.push_back(DocResourceParser::getResourceFile(u"one"));
        }
    }
    // Each setting must change the result, or a load that mixed two of its values would pass.
    ASSERT_TRUE(allDistinct(expectedLookups));
    ASSERT_TRUE(allDistinct(expectedPages));
    for (const char16_t* language : {u"en", u"ja"}) {
        doclanguage::DocLanguage::getInstance().setDocLanguage(language);
        DocResourceParser::restoreDefaultSettings();
        const auto defaults =
            std::find(expectedLookups.begin(), expectedLookups.end(), DocResourceParser::getResourceLookupFiles());
        ASSERT_NE(defaults, expectedLookups.end()) << "the defaults are no combination";
        const Combination& landed = all[static_cast<std::size_t>(defaults - expectedLookups.begin())];
        EXPECT_TRUE(landed.root == &rootA_ && landed.product == u"one" && landed.installedPackages);
    }

    std::atomic<bool> stop{false};
    std::atomic<int> failures{0};
    std::mutex seenMutex;
    std::set<std::size_t> seenLookups;
    std::set<std::size_t> seenPages;

    const std::vector<std::function<void(std::mt19937&)>> changes{
        [&](std::mt19937& random) { DocResourceParser::setReferenceRoot(random() % 2 ? rootA_.u16() : rootB_.u16()); },
        [&](std::mt19937& random) {
            const std::u16string product = random() % 2 ? u"one" : u"two";
            DocResourceParser::setTestProducts({product}, pairedPackages(product));
        },
        [&](std::mt19937& random) {
            doclanguage::DocLanguage::getInstance().setDocLanguage(random() % 2 ? u"en" : u"ja");
        },
        [&](std::mt19937&) { DocResourceParser::clearSupportPackageCache(); },
        [&](std::mt19937&) { DocResourceParser::restoreDefaultSettings(); },
    };
    std::vector<std::atomic<int>> changeCounts(changes.size());
    std::vector<std::thread> mutators;
    for (std::size_t m = 0; m < changes.size(); ++m) {
        mutators.emplace_back([&, m] {
            std::mt19937 random(static_cast<unsigned>(m) + 1);
            while (!stop.load()) {
                changes[m](random);
                ++changeCounts[m];
                std::this_thread::sleep_for(std::chrono::microseconds(50 + random() % 500));
            }
        });
    }

    std::vector<int> loadCounts(kLoaders, 0);
    std::vector<std::thread> loaders;
    const auto deadline = std::chrono::steady_clock::now() + kLoadTime;
    for (int t = 0; t < kLoaders; ++t) {
        loaders.emplace_back([&, t] {
            std::mt19937 random(static_cast<unsigned>(t) + 100);
            while (std::chrono::steady_clock::now() < deadline) {
                try {
                    const auto choice = random() % 5;
                    if (choice < 2) {
                        const auto found = std::find(expectedLookups.begin(), expectedLookups.end(),
                                                     DocResourceParser::getResourceLookupFiles());
                        if (found == expectedLookups.end()) {
                            ++failures;
                        } else {
                            std::lock_guard lock(seenMutex);
                            seenLookups.insert(static_cast<std::size_t>(found - expectedLookups.begin()));
                        }
                    } else if (choice < 4) {
                        const auto found = std::find(expectedPages.begin(), expectedPages.end(),
                                                     DocResourceParser::getResourceFile(u"one"));
                        if (found == expectedPages.end()) {
                            ++failures;
                        } else {
                            std::lock_guard lock(seenMutex);
                            seenPages.insert(static_cast<std::size_t>(found - expectedPages.begin()));
                        }
                    } else {
                        // The settings read one at a time: never half-made, and the lock order of
                        // isProductInstalled cannot deadlock with the writers.
                        const auto roots = DocResourceParser::getReferenceRoots();
                        if (roots->lookupFolder != roots->docRoot + u"/docCatalog/referenceapi_lookup" ||
                            roots->referenceFolder != roots->docRoot + u"/docCatalog/referenceapi") {
                            ++failures;
                        }
                        (void)DocResourceParser::isProductInstalled(u"one");
                    }
                } catch (...) {
                    ++failures;
                }
                ++loadCounts[static_cast<std::size_t>(t)];
            }
        });
    }
    for (auto& loader : loaders) {
        loader.join();
    }
    stop = true;
    for (auto& mutator : mutators) {
        mutator.join();
    }

    EXPECT_EQ(failures.load(), 0);
    for (int t = 0; t < kLoaders; ++t) {
        EXPECT_GT(loadCounts[static_cast<std::size_t>(t)], 0) << "loader " << t;
    }
    for (std::size_t m = 0; m < changes.size(); ++m) {
        EXPECT_GT(changeCounts[m].load(), 0) << "mutator " << m;
    }
    // The settings really moved under the loads.
    EXPECT_GT(seenLookups.size(), 1u);
    EXPECT_GT(seenPages.size(), 1u);
}

} // namespace
} // namespace refdoc::test
