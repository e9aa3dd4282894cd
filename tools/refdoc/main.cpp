// refdoc: a command-line view of a documentation root through the refdoc library.
//   refdoc lookup | page NAME | find TEXT... | check | serve   [options]   (refdoc --help for more)

#include "Commands.hpp"
#include "Host.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

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

void printOverview(std::ostream& out, const std::vector<Command>& commands) {
    out << "Usage: refdoc COMMAND [options]\n"
           "\n"
           "Reads the reference documentation under a documentation root with the refdoc library.\n"
           "\n"
           "Commands:\n";
    for (const auto& command : commands) {
        out << "  " << command.name << std::string(8 - command.name.size(), ' ') << command.summary << '\n';
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
    const std::vector<Command> commands{lookupCommand(), pageCommand(), findCommand(), checkCommand(), serveCommand()};
    CLI::App app("", "refdoc");
    app.set_help_flag("-h,--help");
    app.allow_extras(); // an unknown command is named below, in the tool's words
    app.require_subcommand(0, 1);
    bool version = false;
    app.add_flag("--version", version);
    bool log = false;
    std::vector<CLI::App*> subcommands;
    std::vector<Runner> runners;
    for (const auto& command : commands) {
        CLI::App* sub = app.add_subcommand(command.name, command.summary);
        sub->allow_extras(false);
        addFlag(*sub, "--log", log);
        runners.push_back(command.define(*sub));
        subcommands.push_back(sub);
    }
    CLI::App* help = app.add_subcommand("help", "describe a command");
    std::string topic;
    help->add_option("COMMAND", topic);

    const auto selected = [&]() -> std::ptrdiff_t {
        for (std::size_t i = 0; i < subcommands.size(); ++i) {
            if (subcommands[i]->parsed()) {
                return static_cast<std::ptrdiff_t>(i);
            }
        }
        return -1;
    };
    std::vector<std::string> reversed(argv.rbegin(), argv.rend());
    try {
        app.parse(reversed);
        if (const auto index = selected(); index >= 0) {
            rejectRepeatedOptions(*subcommands[static_cast<std::size_t>(index)]);
        }
    } catch (const CLI::CallForHelp&) {
        const auto index = selected();
        std::cout << (index >= 0 ? commands[static_cast<std::size_t>(index)].help : std::string());
        if (index < 0) {
            printOverview(std::cout, commands);
        }
        return kExitOk;
    } catch (const CLI::ParseError& error) {
        const auto index = selected();
        if (index < 0) {
            std::cerr << "refdoc: " << error.what() << "\nTry 'refdoc --help' for the list of commands.\n";
            return kExitUsage;
        }
        const Command& command = commands[static_cast<std::size_t>(index)];
        std::cerr << "refdoc: " << usageError(error, *subcommands[static_cast<std::size_t>(index)], command).what()
                  << "\nTry 'refdoc " << command.name << " --help'.\n";
        return kExitUsage;
    } catch (const UsageError& error) {
        const auto index = selected();
        std::cerr << "refdoc: " << error.what() << "\nTry 'refdoc "
                  << (index >= 0 ? commands[static_cast<std::size_t>(index)].name + " " : std::string())
                  << "--help'.\n";
        return kExitUsage;
    }

    if (version) {
        std::cout << "refdoc " << REFDOC_VERSION << '\n';
        return kExitOk;
    }
    if (help->parsed()) {
        if (topic.empty()) {
            printOverview(std::cout, commands);
            return kExitOk;
        }
        for (const auto& command : commands) {
            if (command.name == topic) {
                std::cout << command.help;
                return kExitOk;
            }
        }
        std::cerr << "refdoc: unknown command '" << topic << "'\n";
        return kExitUsage;
    }
    const auto index = selected();
    if (index < 0) {
        const auto remaining = app.remaining();
        if (remaining.empty()) {
            printOverview(std::cerr, commands);
        } else {
            std::cerr << "refdoc: unknown command '" << remaining.front() << "'\n"
                      << "Try 'refdoc --help' for the list of commands.\n";
        }
        return kExitUsage;
    }
    const Command& command = commands[static_cast<std::size_t>(index)];
    try {
        // The library logs nothing a user needs; its file-access records only on request.
        reference::docparser::diagnosticLogger().setEnabledSeverities(0);
        if (log) {
            showLibraryLog();
        }
        return runners[static_cast<std::size_t>(index)](std::cout, std::cerr);
    } catch (const UsageError& e) {
        std::cerr << "refdoc: " << e.what() << "\nTry 'refdoc " << command.name << " --help'.\n";
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
