// refdoc page NAME: one product's reference pages, as the library's getResourceFile returns
// them, rendered for a terminal.

#include "Commands.hpp"
#include "Host.hpp"
#include "Json.hpp"
#include "PageView.hpp"
#include "Text.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <memory>

namespace refdoc::tool {
namespace {

using reference::docparser::DocResourceParser;

// "name — purpose" followed by indented detail lines.
void renderArgument(std::ostream& out, const PageView::Argument& argument, std::vector<std::string> details) {
    out << "    " << argument.name;
    if (!argument.purpose.empty()) {
        out << " — " << argument.purpose;
    }
    out << '\n';
    if (!argument.values.empty()) {
        details.insert(details.begin(), "values: " + joinList(argument.values, ", "));
    }
    details.push_back("anchor: " + argument.anchor);
    for (const auto& detail : details) {
        out << "        " << detail << '\n';
    }
}

std::vector<std::string> defaultDetail(const PageView::Argument& argument) {
    if (argument.defaultValue.empty()) {
        return {};
    }
    return {"default: " + argument.defaultValue};
}

void renderPage(std::ostream& out, const PageView& page) {
    std::vector<std::string> kinds;
    for (const auto& entity : page.entities) {
        if (!entity.type.empty()) {
            kinds.push_back(entity.type);
        }
    }
    out << "── " << page.heading();
    if (!kinds.empty()) {
        out << "  [" << joinList(kinds, ", ") << ']';
    }
    out << '\n';
    out << "  " << page.purpose << '\n';
    out << "  Link: " << page.href << '\n';

    std::vector<std::string> facts;
    if (!page.packageName.empty()) {
        facts.push_back("Package: " + page.packageName);
    }
    if (!page.introduced.empty()) {
        facts.push_back("Introduced: " + page.introduced);
    }
    facts.push_back("Status: " + page.deprecationStatus);
    out << "  " << joinList(facts, "   ") << '\n';
    if (!page.description.empty()) {
        out << "  " << page.description << '\n';
    }
    if (!page.thumbnailFileRef.empty()) {
        out << "  Thumbnail: " << page.thumbnailFileRef << " (" << page.thumbnailAltText << ")\n";
    }

    if (!page.syntaxGroups.empty()) {
        out << "\n  Syntax\n";
        for (const auto& group : page.syntaxGroups) {
            out << "    " << group.title;
            if (!group.syntaxType.empty()) {
                out << " (" << group.syntaxType << ')';
            }
            out << '\n';
            for (const auto& line : group.lines) {
                out << "        " << line << '\n';
            }
        }
    }
    for (const auto& group : page.inputGroups) {
        out << "\n  Inputs: " << group.title << '\n';
        for (const auto& input : group.arguments) {
            std::vector<std::string> details;
            if (!input.syntaxType.empty()) {
                details.push_back("kind: " + input.syntaxType + (input.nameValuePair ? ", name-value pair" : ""));
            } else if (input.nameValuePair) {
                details.push_back("kind: name-value pair");
            }
            for (auto& detail : defaultDetail(input)) {
                details.push_back(std::move(detail));
            }
            renderArgument(out, input, std::move(details));
        }
    }
    if (!page.outputs.empty()) {
        out << "\n  Outputs\n";
        for (const auto& output : page.outputs) {
            renderArgument(out, output, {});
        }
    }
    for (const auto& group : page.propertyGroups) {
        out << "\n  Properties" << (group.title.empty() ? "" : ": " + group.title) << '\n';
        for (const auto& property : group.arguments) {
            renderArgument(out, property, defaultDetail(property));
        }
    }
    if (!page.parameters.empty()) {
        out << "\n  Parameters\n";
        for (const auto& parameter : page.parameters) {
            renderArgument(out, parameter, defaultDetail(parameter));
        }
    }
    if (!page.examples.empty()) {
        out << "\n  Examples\n";
        for (const auto& example : page.examples) {
            out << "    " << example.title << "\n        " << example.url << '\n';
            if (!example.openCommand.empty()) {
                out << "        open: " << example.openCommand << '\n';
            }
        }
    }
    if (!page.seeAlso.empty()) {
        out << "\n  See also\n";
        for (const auto& link : page.seeAlso) {
            out << "    " << link.name << "  " << link.url << '\n';
        }
    }
    out << '\n';
}

struct Options {
    HostOptions host;
    bool json = false;
    std::string name;
};

int run(const Options& options, std::ostream& out, std::ostream& err) {
    const std::string& name = options.name;
    if (name.empty() || name.find('/') != std::string::npos) {
        throw UsageError("NAME must be a product's page file name without folder, locale suffix or extension");
    }
    const HostSettings settings = resolveHostSettings(options.host);
    applyHostSettings(settings);
    const auto pages = DocResourceParser::getResourceFile(toUtf16(name));

    if (options.json) {
        writeJson(out, toJson(pages));
        return pages.empty() ? kExitProblem : kExitOk;
    }
    if (pages.empty()) {
        err << "refdoc: no reference pages for '" << name << "' under " << settings.root.string() << " (language "
            << settings.language << "); 'refdoc check' tells whether a file was dropped\n";
        return kExitProblem;
    }
    for (const auto& [key, resource] : pages) {
        std::size_t count = 0;
        for (const auto& entry : resource.getItems()) {
            count += entry.second.size();
        }
        out << "══ " << toUtf8(resource.getHeader().getProductName()) << "  [" << toUtf8(key) << "]  " << count
            << (count == 1 ? " page" : " pages") << ", help in " << toUtf8(resource.getHeader().getHelpLocation())
            << "\n\n";
        for (const auto& entry : resource.getItems()) {
            for (const auto& page : entry.second) {
                renderPage(out, makePageView(page));
            }
        }
    }
    return kExitOk;
}

} // namespace

Command pageCommand() {
    Command command;
    command.name = "page";
    command.needs = "a product NAME";
    command.summary = "show one product's reference pages";
    command.help = "Usage: refdoc page NAME [options]\n"
                   "\n"
                   "Loads the reference pages of the product whose page file is NAME.json (and, unless\n"
                   "the language is English, NAME_<language>.json over it) and prints every page:\n"
                   "purpose, syntax, inputs with their anchors, outputs, properties, parameters,\n"
                   "examples and see-also links. Exit status 1 when there are no pages.\n"
                   "\n"
                   "Options:\n"
                   "  --json                   print the full page records as JSON\n" +
                   hostOptionsHelp();
    command.define = [](CLI::App& app) -> Runner {
        auto options = std::make_shared<Options>();
        addHostOptions(app, options->host);
        addFlag(app, "--json", options->json);
        app.add_option("NAME", options->name)->required();
        return [options](std::ostream& out, std::ostream& err) { return run(*options, out, err); };
    };
    return command;
}

} // namespace refdoc::tool
