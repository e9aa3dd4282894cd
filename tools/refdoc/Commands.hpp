#pragma once

#include "Cli.hpp"

#include <ostream>
#include <string>
#include <vector>

namespace refdoc::tool {

// Exit statuses of every command.
inline constexpr int kExitOk = 0;
inline constexpr int kExitProblem = 1; // something was dropped, or nothing was found
inline constexpr int kExitUsage = 2;

struct Command {
    CommandSyntax syntax;
    std::string summary; // one line for the overview
    std::string help;    // the whole --help text
    int (*run)(const ParsedArgs& args, std::ostream& out, std::ostream& err);
};

Command lookupCommand();
Command pageCommand();
Command findCommand();
Command checkCommand();
Command serveCommand();

// The help text of the options that addHostOptions adds.
std::string hostOptionsHelp();

} // namespace refdoc::tool
