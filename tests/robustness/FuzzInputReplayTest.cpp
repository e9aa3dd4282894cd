// The fuzz targets' seeds, among them every input that once made a target fail (kept with the
// seeds, in fuzz/corpus/<target>/), go through the fuzz target bodies again in every build of the
// suite. The targets and their seed folders are those of fuzz/targets.txt.

#include "FuzzTargets.hpp"

#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace refdoc::test {
namespace {

namespace fs = std::filesystem;

// `seedFolders` is a ';'-separated list; folders that do not exist hold nothing.
template <class Target>
void replay(std::string_view targetName, std::string_view seedFolders) {
    std::vector<fs::path> inputs;
    std::istringstream folders{std::string(seedFolders)};
    for (std::string folder; std::getline(folders, folder, ';');) {
        if (fs::is_directory(folder)) {
            for (const auto& entry : fs::directory_iterator(folder)) {
                inputs.push_back(entry.path());
            }
        }
    }
    ASSERT_FALSE(inputs.empty()) << "no seeds for " << targetName;
    std::sort(inputs.begin(), inputs.end());
    const Target target;
    for (const auto& input : inputs) {
        try {
            target.run(readBytes(input));
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

} // namespace
} // namespace refdoc::test
