#include "Cli.hpp"

namespace refdoc::tool {

std::optional<std::string> ParsedArgs::value(const std::string& option) const {
    const auto found = values.find(option);
    if (found == values.end()) {
        return std::nullopt;
    }
    return found->second;
}

ParsedArgs parseArgs(const CommandSyntax& syntax, const std::vector<std::string>& args) {
    ParsedArgs parsed;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (optionsEnded || arg.size() < 2 || arg[0] != '-') {
            parsed.positionals.push_back(arg);
            continue;
        }
        if (arg == "--") {
            optionsEnded = true;
            continue;
        }
        const std::size_t equals = arg.find('=');
        const std::string name = arg.substr(0, equals);
        if (syntax.flags.count(name) != 0) {
            if (equals != std::string::npos) {
                throw UsageError("option " + name + " takes no value");
            }
            parsed.flags.insert(name);
            continue;
        }
        if (syntax.valueOptions.count(name) == 0) {
            throw UsageError("unknown option " + name + " for '" + syntax.name + "'");
        }
        std::string value;
        if (equals != std::string::npos) {
            value = arg.substr(equals + 1);
        } else if (i + 1 < args.size()) {
            value = args[++i];
        } else {
            throw UsageError("option " + name + " needs a value");
        }
        if (!parsed.values.emplace(name, std::move(value)).second) {
            throw UsageError("option " + name + " given more than once");
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
