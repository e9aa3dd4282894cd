// refdoc page NAME: one product's reference pages, as the library's getResourceFile returns
// them, rendered for a terminal.

#include "Commands.hpp"
#include "Host.hpp"
#include "Json.hpp"
#include "Text.hpp"

#include <reference/docparser/DocResourceParser.hpp>

namespace refdoc::tool {
namespace {

using reference::docparser::DocResourceParser;
using namespace reference::property;

template <class Enumeration>
std::string spelling(typename Enumeration::Value value) {
    return std::string(Enumeration::toString(value));
}

std::string joined(const std::vector<std::u16string>& values, std::string_view separator) {
    std::vector<std::string> items;
    for (const auto& value : values) {
        items.push_back(toUtf8(value));
    }
    return joinList(items, separator);
}

// "name  purpose" followed by indented detail lines.
void renderArgument(std::ostream& out, const ObjectInfo& info, std::vector<std::string> details) {
    out << "    " << toUtf8(info.getName());
    if (!info.getPurpose().empty()) {
        out << " — " << toUtf8(info.getPurpose());
    }
    out << '\n';
    if (!info.getValues().empty()) {
        details.insert(details.begin(), "values: " + joined(info.getValues(), ", "));
    }
    details.push_back("anchor: " + toUtf8(info.getAnchor()));
    for (const auto& detail : details) {
        out << "        " << detail << '\n';
    }
}

void renderPage(std::ostream& out, const RefItem& page) {
    std::vector<std::string> names;
    std::vector<std::string> kinds;
    for (const auto& entity : page.getEntities()) {
        names.push_back(toUtf8(entity.getName()));
        if (const auto kind = spelling<RefEntityType>(entity.getEntityType()); !kind.empty()) {
            kinds.push_back(kind);
        }
    }
    out << "── " << (names.empty() ? toUtf8(page.getHref()) : joinList(names, ", "));
    if (!kinds.empty()) {
        out << "  [" << joinList(kinds, ", ") << ']';
    }
    out << '\n';
    out << "  " << toUtf8(page.getPurpose()) << '\n';
    out << "  Link: " << toUtf8(page.getHref()) << '\n';

    std::vector<std::string> facts;
    if (!page.getPackageName().empty()) {
        facts.push_back("Package: " + toUtf8(page.getPackageName()));
    }
    if (!page.getIntroduced().empty()) {
        facts.push_back("Introduced: " + toUtf8(page.getIntroduced()));
    }
    facts.push_back("Status: " + spelling<DeprecationStatus>(page.getDeprecationStatus()));
    out << "  " << joinList(facts, "   ") << '\n';
    if (!page.getDescription().empty()) {
        out << "  " << toUtf8(page.getDescription()) << '\n';
    }
    if (!page.getThumbnailFileRef().empty()) {
        out << "  Thumbnail: " << toUtf8(page.getThumbnailFileRef()) << " (" << toUtf8(page.getThumbnailAltText())
            << ")\n";
    }

    if (!page.getSyntaxGroups().empty()) {
        out << "\n  Syntax\n";
        for (const auto& group : page.getSyntaxGroups()) {
            out << "    " << toUtf8(group.getTitle());
            if (const auto type = spelling<SyntaxType>(group.getSyntaxType()); !type.empty()) {
                out << " (" << type << ')';
            }
            out << '\n';
            for (const auto& line : group.getSyntaxLines()) {
                out << "        " << toUtf8(line) << '\n';
            }
        }
    }
    for (const auto& group : page.getInputGroups()) {
        out << "\n  Inputs: " << toUtf8(group.getTitle()) << '\n';
        for (const auto& input : group.getInputs()) {
            std::vector<std::string> details;
            if (const auto type = spelling<SyntaxType>(input.getSyntaxType()); !type.empty()) {
                details.push_back("kind: " + type + (input.isNameValuePair() ? ", name-value pair" : ""));
            } else if (input.isNameValuePair()) {
                details.push_back("kind: name-value pair");
            }
            if (!input.getDefaultValue().empty()) {
                details.push_back("default: " + toUtf8(input.getDefaultValue()));
            }
            renderArgument(out, input.getInfo(), std::move(details));
        }
    }
    if (!page.getOutputs().empty()) {
        out << "\n  Outputs\n";
        for (const auto& output : page.getOutputs()) {
            renderArgument(out, output.getInfo(), {});
        }
    }
    for (const auto& group : page.getClassPropertyGroups()) {
        out << "\n  Properties" << (group.getTitle().empty() ? "" : ": " + toUtf8(group.getTitle())) << '\n';
        for (const auto& property : group.getProperties()) {
            std::vector<std::string> details;
            if (!property.getDefaultValue().empty()) {
                details.push_back("default: " + toUtf8(property.getDefaultValue()));
            }
            renderArgument(out, property.getInfo(), std::move(details));
        }
    }
    if (!page.getParameters().empty()) {
        out << "\n  Parameters\n";
        for (const auto& parameter : page.getParameters()) {
            std::vector<std::string> details;
            if (!parameter.getDefaultValue().empty()) {
                details.push_back("default: " + toUtf8(parameter.getDefaultValue()));
            }
            renderArgument(out, parameter.getInfo(), std::move(details));
        }
    }
    if (!page.getExamples().empty()) {
        out << "\n  Examples\n";
        for (const auto& example : page.getExamples()) {
            out << "    " << toUtf8(example.getTitle()) << "\n        " << toUtf8(example.getUrl()) << '\n';
            if (!example.getOpenCommand().empty()) {
                out << "        open: " << toUtf8(example.getOpenCommand()) << '\n';
            }
        }
    }
    if (!page.getSeeAlso().empty()) {
        out << "\n  See also\n";
        for (const auto& link : page.getSeeAlso()) {
            out << "    " << toUtf8(link.getName()) << "  " << toUtf8(link.getUrl()) << '\n';
        }
    }
    out << '\n';
}

int run(const ParsedArgs& args, std::ostream& out, std::ostream& err) {
    const std::string& name = args.positionals.front();
    if (name.empty() || name.find('/') != std::string::npos) {
        throw UsageError("NAME must be a product's page file name without folder, locale suffix or extension");
    }
    const HostSettings settings = resolveHostSettings(args);
    applyHostSettings(settings);
    const auto pages = DocResourceParser::getResourceFile(toUtf16(name));

    if (args.has("--json")) {
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
                renderPage(out, page);
            }
        }
    }
    return kExitOk;
}

} // namespace

Command pageCommand() {
    Command command;
    command.syntax.name = "page";
    addHostOptions(command.syntax);
    command.syntax.flags = {"--json"};
    command.syntax.minPositionals = 1;
    command.syntax.maxPositionals = 1;
    command.syntax.positionalName = "a product NAME";
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
    command.run = run;
    return command;
}

} // namespace refdoc::tool
