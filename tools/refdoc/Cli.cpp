#include "Cli.hpp"

namespace refdoc::tool {

std::optional<std::string> ParsedArgs::value(const std::string& option) const {
    const auto found = values.find(option);
    if (found == values.end()) {
        return std::nullopt;
    }
    return found->second;
}

ParsedArgs parseArgs(const CommandSpec& spec, const std::vector<std::string>& args) {
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
        if (spec.flags.count(name) != 0) {
            if (equals != std::string::npos) {
                throw UsageError("option " + name + " takes no value");
            }
            parsed.flags.insert(name);
            continue;
        }
        if (spec.valueOptions.count(name) == 0) {
            throw UsageError("unknown option " + name + " for '" + spec.name + "'");
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
    if (parsed.positionals.size() < spec.minPositionals) {
        throw UsageError("'" + spec.name + "' needs " + spec.positionalName);
    }
    if (parsed.positionals.size() > spec.maxPositionals) {
        throw UsageError("unexpected argument '" + parsed.positionals[spec.maxPositionals] + "' for '" + spec.name +
                         "'");
    }
    return parsed;
}

} // namespace refdoc::tool
