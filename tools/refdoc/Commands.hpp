#pragma once

#include "Cli.hpp"

#include <string>

namespace refdoc::tool {

// Exit statuses of every command.
inline constexpr int kExitOk = 0;
inline constexpr int kExitProblem = 1; // something was dropped, or nothing was found
inline constexpr int kExitUsage = 2;

Command lookupCommand();
Command pageCommand();
Command findCommand();
Command checkCommand();
Command serveCommand();

// The help text of the options that addHostOptions adds.
std::string hostOptionsHelp();

} // namespace refdoc::tool
