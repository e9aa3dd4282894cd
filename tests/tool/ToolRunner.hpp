#pragma once

// Runs the refdoc executable with arguments, capturing what it writes and how it exits.
// Header-only, for the tool suite.

#include "support/TempDir.hpp"

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <boost/process/args.hpp>
#include <boost/process/child.hpp>
#include <boost/process/io.hpp>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <sys/wait.h>

namespace refdoc::test {

struct ToolRun {
    int status = -1; // the exit status; -1 when the tool did not exit normally (a signal)
    std::string out;
    std::string err;

    boost::json::value json() const { return boost::json::parse(out); }
};

inline void PrintTo(const ToolRun& run, std::ostream* os) {
    *os << "status " << run.status << "\n--- stdout\n" << run.out << "--- stderr\n" << run.err;
}

// Runs the tool; stdout and stderr go to files in a private temp folder, so neither can block.
inline ToolRun runTool(const std::vector<std::string>& args) {
    const TempDir capture;
    const auto outPath = capture.path() / "out";
    const auto errPath = capture.path() / "err";
    boost::process::child child(std::string(REFDOC_TOOL_PATH), boost::process::args(args),
                                boost::process::std_out > outPath, boost::process::std_err > errPath);
    child.wait();
    const int status = child.native_exit_code();
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readBytes(outPath), readBytes(errPath)};
}

// Skips the whole suite in a build that leaves the tool out.
class ToolBuiltEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        if (std::string_view(REFDOC_TOOL_PATH).empty()) {
            GTEST_SKIP() << "the refdoc tool is not built (REFDOC_BUILD_TOOLS=OFF)";
        }
    }
};
inline ::testing::Environment* const kToolBuiltEnvironment =
    ::testing::AddGlobalTestEnvironment(new ToolBuiltEnvironment);

inline bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// The lines of `text` that contain `part`.
inline std::vector<std::string> linesWith(const std::string& text, const std::string& part) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (contains(line, part)) {
            lines.push_back(line);
        }
    }
    return lines;
}

} // namespace refdoc::test
