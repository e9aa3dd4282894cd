// The fuzz targets' seeds, among them every input that once made a target fail (kept with the
// seeds, in fuzz/corpus/<target>/), go through the fuzz target bodies again in every build of the
// suite. The targets and their seed folders are those of fuzz/targets.txt. The differential
// targets' seeds are the cases where the streaming and the tree readings are easily told apart;
// the comparison they rely on is checked here too, so that a replay cannot pass by comparing
// nothing.

#include "Differential.hpp"
#include "FuzzTargets.hpp"

#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace refdoc::test {
namespace {

namespace fs = std::filesystem;

// `seedFolders` is a ';'-separated list.
std::vector<fs::path> inputsOf(std::string_view seedFolders) {
    std::vector<fs::path> folders;
    for (std::size_t start = 0; start <= seedFolders.size();) {
        const std::size_t end = std::min(seedFolders.find(';', start), seedFolders.size());
        folders.emplace_back(seedFolders.substr(start, end - start));
        start = end + 1;
    }
    std::vector<fs::path> inputs;
    for (const auto& folder : folders) {
        if (fs::is_directory(folder)) {
            for (const auto& entry : fs::directory_iterator(folder)) {
                inputs.push_back(entry.path());
            }
        }
    }
    std::sort(inputs.begin(), inputs.end());
    return inputs;
}

template <class Target>
void replay(std::string_view targetName, std::string_view seedFolders) {
    const auto inputs = inputsOf(seedFolders);
    ASSERT_FALSE(inputs.empty()) << "no seeds for " << targetName;
    const Target target;
    for (const auto& input : inputs) {
        const std::string bytes = refdoc::test::readBytes(input);
        try {
            target.run(bytes);
        } catch (const std::exception& failure) {
            ADD_FAILURE() << input << ": " << failure.what();
        }
    }
}

struct FuzzTarget {
    const char* name;
    const char* seedFolders;
    void (*replay)(std::string_view, std::string_view);
};

#define REFDOC_FUZZ_TARGET(name, Class, seeds) FuzzTarget{#name, seeds, &replay<fuzz::Class>},
const FuzzTarget kTargets[] = {
#include "FuzzTargetList.inc"
};
#undef REFDOC_FUZZ_TARGET

class FuzzInputReplay : public HostSettingsFixture, public ::testing::WithParamInterface<FuzzTarget> {};

TEST_P(FuzzInputReplay, SeedsAndPastFaultsPass) { GetParam().replay(GetParam().name, GetParam().seedFolders); }

INSTANTIATE_TEST_SUITE_P(Targets, FuzzInputReplay, ::testing::ValuesIn(kTargets),
                         [](const ::testing::TestParamInfo<FuzzTarget>& info) { return std::string(info.param.name); });

// Outcomes that differ in one respect are told apart, and the report's first line names where.
TEST(DifferentialComparison, TellsOutcomesApartAndNamesWhere) {
    const std::string header =
        R"("productName": "Signal", "baseCode": "SG", "helpFolder": "signal", "helpLocation": "help/signal")";
    const auto lookup = [&](const std::string& items, const std::string& rest = "") {
        return "{" + header + R"(, "refItems": [)" + items + "]" + rest + "}";
    };
    const auto entry = [](const std::string& name, const std::string& extra = "") {
        return R"({"name": ")" + name + R"(", "refpurpose": "p", "href": "ref/)" + name + R"(.html")" + extra + "}";
    };
    const std::string package = R"(, "supportPackages": [{"productName": "P", "baseCode": "pk", "helpFolder": "p",
        "helpLocation": "l", "refItems": []}])";
    struct Case {
        std::string first, second;
        const char* reportNames;
    };
    const Case cases[] = {
        {lookup(entry("a")), lookup(entry("a", R"(, "refpurpose": "q")")), R"(result["signal"].items["a"][0].purpose)"},
        {lookup(entry("a", R"(, "type": "class")")), lookup(entry("a", R"(, "type": "method")")), ".entityType"},
        {lookup(entry("a", R"(, "deprecated": 0)")), lookup(entry("a")), ".deprecated"},
        {lookup(entry("a") + "," + entry("a", R"(, "type": "class")")),
         lookup(entry("a", R"(, "type": "class")") + "," + entry("a")), R"(.items["a"][0])"},
        {lookup(entry("a") + "," + entry("a")), lookup(entry("a")), R"(.items["a"])"},
        {lookup(entry("a"), package), lookup(entry("a")), "result"},
        {lookup(entry("a")), lookup(R"({"name": "a"})"), "(top)"},
        {lookup(entry("a")) + " x", lookup(entry("a")) + "  x", ".offset"},
        {lookup(entry("a") + R"(, {"name": "b"})"), lookup(R"({"name": "b"}, )" + entry("a")), ".jsonPath"},
        {lookup(entry("a", R"(, "type": "x")") + "," + entry("b")),
         lookup(entry("a") + "," + entry("b", R"(, "type": "x")")), ".warnings"},
    };
    using refdoc::fuzz::Reading;
    for (const auto& c : cases) {
        const auto first = refdoc::fuzz::readLookupFile(c.first, Reading::Tree);
        const auto second = refdoc::fuzz::readLookupFile(c.second, Reading::Tree);
        const std::string report = refdoc::fuzz::describeDifference(first, second);
        EXPECT_NE(report.substr(0, report.find('\n')).find(c.reportNames), std::string::npos)
            << c.reportNames << ": " << report;
        EXPECT_EQ(refdoc::fuzz::describeDifference(first, first), "");
    }
}

} // namespace
} // namespace refdoc::test
