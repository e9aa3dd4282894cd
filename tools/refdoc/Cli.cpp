#include "Cli.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>

namespace refdoc::tool {
namespace {

// CLI11 starts its messages about an option with the option's name ("--root: 1 required TEXT missing").
std::string optionIn(const std::string& message) { return message.substr(0, message.find(':')); }

// What CLI11 rejects, in the words the tool has always used (its tests and users' scripts
// match them). The message texts are those of CLI11 2.1, Debian 12's.
UsageError usageError(const CLI::ParseError& error, const CLI::App& app, const CommandSyntax& syntax) {
    const std::string message = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        const auto remaining = app.remaining();
        const std::string first = remaining.empty() ? message : remaining.front();
        if (first.size() >= 2 && first[0] == '-') {
            return UsageError("unknown option " + first.substr(0, first.find('=')) + " for '" + syntax.name + "'");
        }
        return UsageError("unexpected argument '" + first + "' for '" + syntax.name + "'");
    }
    const std::string option = optionIn(message);
    if (message.find("At Most") != std::string::npos) {
        return UsageError("option " + option + " given more than once");
    }
    if (message.find("missing") != std::string::npos) {
        return UsageError("option " + option + " needs a value");
    }
    return UsageError(message);
}

} // namespace

std::optional<std::string> ParsedArgs::value(const std::string& option) const {
    const auto found = values.find(option);
    if (found == values.end()) {
        return std::nullopt;
    }
    return found->second;
}

ParsedArgs parseArgs(const CommandSyntax& syntax, const std::vector<std::string>& args) {
    CLI::App app("", "refdoc " + syntax.name);
    app.set_help_flag("-h,--help");
    ParsedArgs parsed;
    std::map<std::string, std::string> values;
    std::map<std::string, bool> flags;
    std::vector<CLI::Option*> valueOptions;
    for (const auto& name : syntax.valueOptions) {
        valueOptions.push_back(app.add_option(name, values[name])
                                   ->expected(1)
                                   ->allow_extra_args(false)
                                   ->multi_option_policy(CLI::MultiOptionPolicy::Throw));
    }
    for (const auto& name : syntax.flags) {
        app.add_flag(name, flags[name])->disable_flag_override();
    }
    // Every positional is collected; how many a command takes is checked below, with its own words.
    app.add_option("positionals", parsed.positionals)->expected(0, -1);

    // CLI11 reads "--json=true" as the flag set; the tool has always refused a value on a flag.
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--") {
            break;
        }
        if (syntax.valueOptions.count(arg) != 0) {
            ++i; // its value, whatever it looks like
            continue;
        }
        const std::string name = arg.substr(0, arg.find('='));
        if (name.size() < arg.size() && syntax.flags.count(name) != 0) {
            throw UsageError("option " + name + " takes no value");
        }
    }
    std::vector<std::string> reversed(args.rbegin(), args.rend());
    try {
        app.parse(reversed);
    } catch (const CLI::CallForHelp&) {
        throw HelpRequested();
    } catch (const CLI::ParseError& error) {
        throw usageError(error, app, syntax);
    }
    for (const auto* option : valueOptions) {
        if (option->count() != 0) {
            parsed.values.emplace(option->get_name(), values[option->get_name()]);
        }
    }
    for (const auto& [name, set] : flags) {
        if (set) {
            parsed.flags.insert(name);
        }
    }
    if (parsed.positionals.size() < syntax.minPositionals) {
        throw UsageError("'" + syntax.name + "' needs " + syntax.positionalName);
    }
    if (parsed.positionals.size() > syntax.maxPositionals) {
        throw UsageError("unexpected argument '" + parsed.positionals[syntax.maxPositionals] + "' for '" + syntax.name +
                         "'");
    }
    return parsed;
}

} // namespace refdoc::tool
