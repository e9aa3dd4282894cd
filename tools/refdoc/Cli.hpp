#pragma once

// Command-line parsing for the refdoc subcommands, on CLI11: options in the forms --name value
// and --name=value, flags, and positional arguments, each checked against what the command
// accepts. The messages are the tool's own; the help texts are the commands' own.

#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace refdoc::tool {

// A command line the tool cannot act on; reported with the command's usage, exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// -h or --help among the arguments (before "--"): the command's help is shown, whatever else
// is wrong with the command line.
class HelpRequested : public std::exception {
public:
    const char* what() const noexcept override { return "help requested"; }
};

// What one command accepts.
struct CommandSyntax {
    std::string name;
    std::set<std::string> valueOptions; // e.g. "--root"
    std::set<std::string> flags;        // e.g. "--json"
    std::size_t minPositionals = 0;
    std::size_t maxPositionals = 0;
    std::string positionalName; // for messages, e.g. "NAME"
};

struct ParsedArgs {
    std::map<std::string, std::string> values;
    std::set<std::string> flags;
    std::vector<std::string> positionals;

    bool has(const std::string& flag) const { return flags.count(flag) != 0; }
    std::optional<std::string> value(const std::string& option) const;
};

// Throws HelpRequested for -h/--help, UsageError for an unknown option, an option without its
// value, a repeated option and too few or too many positional arguments. "--" ends the
// options; a lone "-" is positional.
ParsedArgs parseArgs(const CommandSyntax& syntax, const std::vector<std::string>& args);

} // namespace refdoc::tool
