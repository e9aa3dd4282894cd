// refdoc: a command-line view of a documentation root through the refdoc library.
//   refdoc lookup | page NAME | find TEXT... | check | serve   [options]   (refdoc --help for more)

#include "Commands.hpp"
#include "Host.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>

#include <boost/core/null_deleter.hpp>
#include <boost/log/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>

#include <clocale>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace refdoc::tool {

std::string hostOptionsHelp() {
    return "  --root DIR               documentation root (the folder holding docCatalog);\n"
           "                           default: the bundled sample root\n"
           "  --lang CODE              current documentation language (default: en; case is\n"
           "                           ignored)\n"
           "  --languages CODE,...     supported documentation languages (default: en and the\n"
           "                           languages the root's data files are named for)\n"
           "  --installed NAME,...     installed products, by short name (default: none)\n"
           "  --support-packages NAME,...\n"
           "                           installed support packages (default: none)\n"
           "  --log                    show the library's file-access log records on stderr\n"
           "  --help                   show this help\n"
           "  Settings not given here come from the root's " +
           std::string(kHostFileName) +
           " when it has one\n"
           "  (keys \"language\", \"supportedLanguages\", \"installedProducts\",\n"
           "  \"installedSupportPackages\").\n";
}

namespace {

std::vector<Command> allCommands() {
    std::vector<Command> commands{lookupCommand(), pageCommand(), findCommand(), checkCommand(), serveCommand()};
    for (auto& command : commands) {
        command.syntax.flags.insert("--log");
    }
    return commands;
}

void printOverview(std::ostream& out, const std::vector<Command>& commands) {
    out << "Usage: refdoc COMMAND [options]\n"
           "\n"
           "Reads the reference documentation under a documentation root with the refdoc library.\n"
           "\n"
           "Commands:\n";
    for (const auto& command : commands) {
        out << "  " << command.syntax.name << std::string(8 - command.syntax.name.size(), ' ') << command.summary
            << '\n';
    }
    out << "\n'refdoc COMMAND --help' describes a command and its options. With no --root the\n"
           "commands read the bundled sample documentation root.\n";
}

// The library's own log records, one line each, on stderr.
void showLibraryLog() {
    namespace sinks = boost::log::sinks;
    auto backend = boost::make_shared<sinks::text_ostream_backend>();
    backend->add_stream(boost::shared_ptr<std::ostream>(&std::clog, boost::null_deleter()));
    backend->auto_flush(true);
    auto sink = boost::make_shared<sinks::synchronous_sink<sinks::text_ostream_backend>>(backend);
    sink->set_formatter(boost::log::expressions::stream << "refdoc: log: " << boost::log::expressions::smessage);
    boost::log::core::get()->add_sink(sink);
    reference::docparser::diagnosticLogger().setEnabledSeverities(reference::docparser::kFileAccessSeverity |
                                                                  reference::docparser::kFileReadErrorSeverity);
}

int run(const std::vector<std::string>& argv) {
    const std::vector<Command> commands = allCommands();
    if (argv.empty() || argv.front() == "--help" || argv.front() == "-h" || argv.front() == "help") {
        if (argv.size() >= 2 && argv.front() == "help") {
            for (const auto& command : commands) {
                if (command.syntax.name == argv[1]) {
                    std::cout << command.help;
                    return kExitOk;
                }
            }
            std::cerr << "refdoc: unknown command '" << argv[1] << "'\n";
            return kExitUsage;
        }
        printOverview(argv.empty() ? std::cerr : std::cout, commands);
        return argv.empty() ? kExitUsage : kExitOk;
    }
    if (argv.front() == "--version") {
        std::cout << "refdoc " << REFDOC_VERSION << '\n';
        return kExitOk;
    }
    const Command* command = nullptr;
    for (const auto& candidate : commands) {
        if (candidate.syntax.name == argv.front()) {
            command = &candidate;
        }
    }
    if (command == nullptr) {
        std::cerr << "refdoc: unknown command '" << argv.front() << "'\n"
                  << "Try 'refdoc --help' for the list of commands.\n";
        return kExitUsage;
    }
    const std::vector<std::string> args(argv.begin() + 1, argv.end());
    try {
        const ParsedArgs parsed = parseArgs(command->syntax, args);
        // The library logs nothing a user needs; its file-access records only on request.
        reference::docparser::diagnosticLogger().setEnabledSeverities(0);
        if (parsed.has("--log")) {
            showLibraryLog();
        }
        return command->run(parsed, std::cout, std::cerr);
    } catch (const HelpRequested&) {
        std::cout << command->help;
        return kExitOk;
    } catch (const UsageError& e) {
        std::cerr << "refdoc: " << e.what() << "\nTry 'refdoc " << command->syntax.name << " --help'.\n";
        return kExitUsage;
    }
}

} // namespace
} // namespace refdoc::tool

int main(int argc, char** argv) {
    // Case-insensitive search folds more than ASCII when the C.UTF-8 locale is there.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    try {
        const int status = refdoc::tool::run(std::vector<std::string>(argv + 1, argv + argc));
        std::cout.flush();
        if (!std::cout) {
            std::cerr << "refdoc: cannot write the output\n";
            return refdoc::tool::kExitProblem;
        }
        return status;
    } catch (const std::exception& e) {
        std::cerr << "refdoc: error: " << e.what() << '\n';
    } catch (...) {
        std::cerr << "refdoc: error: unknown failure\n";
    }
    return refdoc::tool::kExitProblem;
}
