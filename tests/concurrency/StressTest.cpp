// Eight threads load lookups and pages while five others keep changing every setting a load
// reads: the root, the test products and packages (set as a pair), the current language, the
// support-package cache, and all of them at once through restoreDefaultSettings. Each result must
// be exactly that of one combination, computed beforehand one at a time; a lookup load never sees
// the products of one pair with the packages of another. Under the thread sanitizer this also
// checks the locking. The supported languages stay fixed: a load reads them apart from the
// current language, so changing both could show a pair that never was set.

#include <reference/docparser/DocResourceParser.hpp>

#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include "ZipWriter.hpp"

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

constexpr auto kLoadTime = 3s;

constexpr int kLoaders = 8;

// The test support packages set together with each test product: "sp_test" only with "one".
std::vector<std::u16string> pairedPackages(const std::u16string& product) {
    return product == u"one" ? std::vector<std::u16string>{u"sp_test"} : std::vector<std::u16string>{};
}

// A documentation root in which every setting shows in the results: the root's `tag` in the
// texts, the installed product ("one" or "two") and support packages ("sp_test", "sp_installed")
// in what is installed, the language in the Japanese variants (loose and packed), and root and
// language in the pages of product "one".
void writeSettingsProbeRoot(const TempDir& root, const std::string& tag) {
    const std::filesystem::path lookup = "docCatalog/referenceapi_lookup";
    const std::filesystem::path pages = "docCatalog/referenceapi";
    root.write(lookup / "one.json",
               fileText(lookupDocument({"One " + tag, "ONE", "one"}, {{"f", "f " + tag}, {"g", "g " + tag}}),
                        {lookupDocument({"Test package", "sp_test", "spt"}, {{"s", "s " + tag}}),
                         lookupDocument({"Installed package", "sp_installed", "spi"}, {{"t", "t " + tag}})}));
    root.write(lookup / "one_ja.json", fileText(lookupDocument({"ワン " + tag, "ONE", "one"}, {{"f", "エフ"}})));
    ZipWriter()
        .add("two.json", fileText(lookupDocument({"Two " + tag, "TWO", "two"}, {{"h", "h " + tag}})))
        .add("two_ja.json", fileText(lookupDocument({"ツー", "TWO", "two"}, {{"h", "エイチ"}})))
        .write(root.path() / lookup / "two.zip");
    root.write(pages / "one.json", fileText(pageDocument({"One " + tag, "ONE", "one"},
                                                         {{"one/p.html", "p " + tag}, {"one/r.html", "r " + tag}})));
    root.write(pages / "one_ja.json", fileText(pageDocument({"ワン", "ONE", "one"}, {{"one/p.html", "ピー " + tag}})));
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

    TempDir rootA_;
    TempDir rootB_;
    TempDir installation_;
};

template <class T>
bool allDistinct(const std::vector<T>& values) {
    for (auto i = values.begin(); i != values.end(); ++i) {
        if (std::find(i + 1, values.end(), *i) != values.end()) {
            return false;
        }
    }
    return true;
}

TEST_F(Stress, EveryLoadUnderConstantChangeMatchesOneCombination) {
    // Pages show only the root and the language.
    std::vector<LookupResults> expectedLookups;
    std::vector<PageMap> expectedPages;
    for (const TempDir* root : {&rootA_, &rootB_}) {
        for (const char16_t* language : {u"en", u"ja"}) {
            for (const char16_t* product : {u"one", u"two"}) {
                for (const bool installedPackages : {false, true}) {
                    DocResourceParser::setReferenceRoot(root->u16());
                    DocResourceParser::setTestProducts({product}, pairedPackages(product));
                    if (installedPackages) {
                        DocResourceParser::clearSupportPackageCache();
                    }
                    doclanguage::DocLanguage::getInstance().setDocLanguage(language);
                    expectedLookups.push_back(DocResourceParser::getResourceLookupFiles());
                }
            }
            expectedPages.push_back(DocResourceParser::getResourceFile(u"one"));
        }
    }
    // Each setting must change the result, or a load that mixed two of its values would pass.
    ASSERT_TRUE(allDistinct(expectedLookups));
    ASSERT_TRUE(allDistinct(expectedPages));

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
    std::vector<std::thread> mutators;
    for (std::size_t m = 0; m < changes.size(); ++m) {
        mutators.emplace_back([&, m] {
            std::mt19937 random(static_cast<unsigned>(m) + 1);
            while (!stop.load()) {
                changes[m](random);
                std::this_thread::sleep_for(std::chrono::microseconds(50 + random() % 500));
            }
        });
    }

    // Notes which expected result a load gave; one that matches none is a failure.
    const auto record = [&](const auto& expected, const auto& actual, std::set<std::size_t>& seen) {
        const auto found = std::find(expected.begin(), expected.end(), actual);
        if (found == expected.end()) {
            ++failures;
            return;
        }
        std::lock_guard lock(seenMutex);
        seen.insert(static_cast<std::size_t>(found - expected.begin()));
    };
    std::vector<std::thread> loaders;
    const auto deadline = std::chrono::steady_clock::now() + kLoadTime;
    for (int t = 0; t < kLoaders; ++t) {
        loaders.emplace_back([&, t] {
            std::mt19937 random(static_cast<unsigned>(t) + 100);
            while (std::chrono::steady_clock::now() < deadline) {
                try {
                    const auto choice = random() % 5;
                    if (choice < 2) {
                        record(expectedLookups, DocResourceParser::getResourceLookupFiles(), seenLookups);
                    } else if (choice < 4) {
                        record(expectedPages, DocResourceParser::getResourceFile(u"one"), seenPages);
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
    // The settings really moved under the loads.
    EXPECT_GT(seenLookups.size(), 1u);
    EXPECT_GT(seenPages.size(), 1u);
}

} // namespace
} // namespace refdoc::test
