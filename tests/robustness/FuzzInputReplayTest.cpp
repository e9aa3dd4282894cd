// The fuzz targets' committed seeds and every input that once made a target fail (kept in
// regressions/<target>/) go through the fuzz target bodies again, in every build of the suite.

#include "FuzzTargets.hpp"

#include "support/HostSettingsFixture.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace refdoc::test {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> inputsOf(const std::string& target) {
    std::vector<fs::path> inputs;
    for (const fs::path& folder : {fs::path(REFDOC_FUZZ_SEEDS) / target, fs::path(REFDOC_FAULT_INPUTS) / target}) {
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
void replay(const std::string& targetName) {
    const auto inputs = inputsOf(targetName);
    ASSERT_FALSE(inputs.empty()) << "no seeds for " << targetName;
    const Target target;
    for (const auto& input : inputs) {
        std::ifstream in(input, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        try {
            target.run(bytes);
        } catch (const std::exception& failure) {
            ADD_FAILURE() << input << ": " << failure.what();
        }
    }
}

class FuzzInputReplay : public HostSettingsFixture {};

TEST_F(FuzzInputReplay, LookupParser) {
    replay<fuzz::LookupParserTarget>("lookup_parser");
}

TEST_F(FuzzInputReplay, PageFile) {
    replay<fuzz::PageFileTarget>("page_file");
}

TEST_F(FuzzInputReplay, ZipPackage) {
    replay<fuzz::ZipPackageTarget>("zip_package");
}

} // namespace
} // namespace refdoc::test
