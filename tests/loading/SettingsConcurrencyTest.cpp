#include "support/HostSettingsFixture.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <doc_products_shared/TopLevelDocProduct.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace {

using reference::docparser::DocResourceParser;

// Writers replace every setting while readers use snapshots. Under the thread sanitizer this
// checks the locking; in any build it checks that no snapshot is ever seen half-made and that the
// lock order cannot deadlock. Nothing here logs.
class SettingsConcurrencyTest : public refdoc::test::HostSettingsFixture {};

constexpr int kRounds = 400;

TEST_F(SettingsConcurrencyTest, SnapshotsStayConsistentWhileSettingsChange) {
    std::latch start(4);
    std::atomic<int> tornRoots{0};
    std::atomic<int> foreignProducts{0};
    std::atomic<int> foreignPackages{0};

    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i) {
            DocResourceParser::setReferenceRoot(u"/root" + std::u16string(static_cast<std::size_t>(i % 7), u'x'));
        }
    });
    threads.emplace_back([&] {
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i) {
            switch (i % 3) {
            case 0:
                DocResourceParser::setTestProducts({u"product", u"other"}, {u"package"});
                break;
            case 1:
                DocResourceParser::clearSupportPackageCache();
                break;
            default:
                DocResourceParser::restoreDefaultSettings();
                break;
            }
        }
    });
    for (int reader = 0; reader < 2; ++reader) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            for (int i = 0; i < kRounds; ++i) {
                const auto roots = DocResourceParser::getReferenceRoots();
                if (roots->lookupFolder != roots->docRoot + u"/docCatalog/referenceapi_lookup" ||
                    roots->referenceFolder != roots->docRoot + u"/docCatalog/referenceapi") {
                    ++tornRoots;
                }
                const auto products = DocResourceParser::getTopLevelProducts();
                for (const auto& product : *products) {
                    if (product->getShortName() != "product" && product->getShortName() != "other") {
                        ++foreignProducts;
                    }
                }
                const auto packages = DocResourceParser::getHardwareSupportPackages();
                for (const auto& name : *packages) {
                    if (name != u"package") {
                        ++foreignPackages;
                    }
                }
                (void)DocResourceParser::isProductInstalled(u"product");
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(tornRoots.load(), 0);
    EXPECT_EQ(foreignProducts.load(), 0);
    EXPECT_EQ(foreignPackages.load(), 0);
}

} // namespace
