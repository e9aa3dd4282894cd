#include "Cli.hpp"

#include "Text.hpp"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace refdoc::tool {

CLI::Option* addValueOption(CLI::App& app, const std::string& name, std::optional<std::string>& target) {
    return app
        .add_option_function<std::string>(
            name, [&target](const std::string& value) { target = value; }, "")
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

CLI::Option* addListOption(CLI::App& app, const std::string& name, std::optional<std::vector<std::string>>& target) {
    return app
        .add_option_function<std::string>(
            name, [&target](const std::string& value) { target = splitList(value); }, "")
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

CLI::Option* addFlag(CLI::App& app, const std::string& name, bool& target) {
    return app.add_flag(name, target)->disable_flag_override();
}

CLI::Validator toolCheck(std::function<std::string(const std::string& value)> problem, const std::string& name) {
    return CLI::Validator([problem = std::move(problem)](std::string& value) { return problem(value); }, "", name);
}

UsageError usageError(const CLI::ParseError& error, const CLI::App& app, const Command& command) {
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        const auto remaining = app.remaining();
        const std::string first = remaining.empty() ? error.what() : remaining.front();
        if (first.size() >= 2 && first[0] == '-') {
            return UsageError("unknown option " + first.substr(0, first.find('=')) + " for '" + command.name + "'");
        }
        return UsageError("unexpected argument '" + first + "' for '" + command.name + "'");
    }
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        return UsageError("'" + command.name + "' needs " + command.needs);
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        // CLI11 names the option first: "--root: 1 required TEXT missing" for a value option
        // without its value, "json was given a disallowed flag override" for a flag with one.
        std::string name(error.what());
        name = name.substr(0, name.find_first_of(": "));
        name = name.substr(name.find_first_not_of('-') == std::string::npos ? 0 : name.find_first_not_of('-'));
        const CLI::Option* option = app.get_option_no_throw("--" + name);
        if (option != nullptr && option->get_expected_max() == 0) {
            return UsageError("option --" + name + " takes no value");
        }
        return UsageError("option --" + name + " needs a value");
    }
    return UsageError(error.what());
}

void rejectRepeatedOptions(const CLI::App& app) {
    for (const CLI::Option* option : app.get_options()) {
        if (option->nonpositional() && option->get_expected_max() != 0 && option->count() > 1) {
            throw UsageError("option " + option->get_name() + " given more than once");
        }
    }
}

} // namespace refdoc::tool
