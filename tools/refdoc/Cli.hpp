#pragma once

// The refdoc command line, on CLI11: one subcommand per command, each with typed options,
// CLI11's checks and its own help text. What CLI11 rejects is reported in the tool's words with
// exit status 2; options take their value as "--name value" or "--name=value", a value option is
// given at most once, a flag takes no value, "--" ends the options.

#include <CLI/App.hpp>

#include <functional>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace refdoc::tool {

// A command line the tool cannot act on; reported with the command's usage, exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Runs a command with what was parsed into the options its definition bound.
using Runner = std::function<int(std::ostream& out, std::ostream& err)>;

struct Command {
    std::string name;
    std::string summary; // one line for the overview
    std::string help;    // the whole --help text
    std::string needs;   // what its required argument is, for the message when it is missing
    // Adds the command's options and arguments to its subcommand and returns what runs it.
    std::function<Runner(CLI::App& app)> define;
};

// An option that takes one value (CLI11 converts and checks it), or a flag.
template <class T>
CLI::Option* addValueOption(CLI::App& app, const std::string& name, T& target) {
    // Given twice, it is refused after parsing (rejectRepeatedOptions), in the tool's words.
    return app.add_option(name, target)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}
CLI::Option* addValueOption(CLI::App& app, const std::string& name, std::optional<std::string>& target);
// A comma-separated list ("a, b,c"); blanks around items and empty items are dropped, so ""
// gives an empty list.
CLI::Option* addListOption(CLI::App& app, const std::string& name, std::optional<std::vector<std::string>>& target);
CLI::Option* addFlag(CLI::App& app, const std::string& name, bool& target);

// A CLI11 check with the tool's message: `problem` returns "" for a good value, else what is
// wrong with it ("needs a positive number, not '0'"), which CLI11 reports as "--option: ...".
CLI::Validator toolCheck(std::function<std::string(const std::string& value)> problem, const std::string& name);

// The parse error of `command`'s command line in the tool's words.
UsageError usageError(const CLI::ParseError& error, const CLI::App& app, const Command& command);
// Throws UsageError for a value option given more than once.
void rejectRepeatedOptions(const CLI::App& app);

} // namespace refdoc::tool
