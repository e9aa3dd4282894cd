#include "PageView.hpp"

#include "Text.hpp"

#include <algorithm>
#include <string_view>

namespace refdoc::tool {
namespace {

using namespace reference::property;

template <class Enumeration>
std::string spelling(typename Enumeration::Value value) {
    return std::string(Enumeration::toString(value));
}

std::vector<std::string> texts(const std::vector<std::u16string>& values) {
    std::vector<std::string> out;
    out.reserve(values.size());
    for (const auto& value : values) {
        out.push_back(toUtf8(value));
    }
    return out;
}

PageView::Argument argument(const ObjectInfo& info) {
    PageView::Argument out;
    out.name = toUtf8(info.getName());
    out.purpose = toUtf8(info.getPurpose());
    out.values = texts(info.getValues());
    out.anchor = toUtf8(info.getAnchor());
    return out;
}

} // namespace

std::string PageView::heading() const {
    if (entities.empty()) {
        return href;
    }
    std::vector<std::string> names;
    for (const auto& entity : entities) {
        names.push_back(entity.name);
    }
    return joinList(names, ", ");
}

PageView makePageView(const RefItem& page) {
    PageView view;
    view.href = toUtf8(page.getHref());
    for (const auto& entity : page.getEntities()) {
        view.entities.push_back({spelling<RefEntityType>(entity.getEntityType()), toUtf8(entity.getName()),
                                 spelling<FunctionType>(entity.getFunctionType())});
    }
    view.packageName = toUtf8(page.getPackageName());
    view.purpose = toUtf8(page.getPurpose());
    view.introduced = toUtf8(page.getIntroduced());
    view.description = toUtf8(page.getDescription());
    view.thumbnailFileRef = toUtf8(page.getThumbnailFileRef());
    view.thumbnailAltText = toUtf8(page.getThumbnailAltText());
    view.deprecationStatus = spelling<DeprecationStatus>(page.getDeprecationStatus());
    view.deprecated = page.getDeprecationStatus() != DeprecationStatus::Value{};
    for (const auto& group : page.getSyntaxGroups()) {
        view.syntaxGroups.push_back(
            {toUtf8(group.getTitle()), spelling<SyntaxType>(group.getSyntaxType()), texts(group.getSyntaxLines())});
    }
    for (const auto& group : page.getInputGroups()) {
        PageView::ArgumentGroup out{toUtf8(group.getTitle()), {}};
        for (const auto& input : group.getInputs()) {
            PageView::Argument entry = argument(input.getInfo());
            entry.syntaxType = spelling<SyntaxType>(input.getSyntaxType());
            entry.defaultValue = toUtf8(input.getDefaultValue());
            entry.nameValuePair = input.isNameValuePair();
            out.arguments.push_back(std::move(entry));
        }
        view.inputGroups.push_back(std::move(out));
    }
    for (const auto& output : page.getOutputs()) {
        PageView::Argument entry = argument(output.getInfo());
        entry.syntaxType = spelling<SyntaxType>(output.getSyntaxType());
        view.outputs.push_back(std::move(entry));
    }
    for (const auto& group : page.getClassPropertyGroups()) {
        PageView::ArgumentGroup out{toUtf8(group.getTitle()), {}};
        for (const auto& property : group.getProperties()) {
            PageView::Argument entry = argument(property.getInfo());
            entry.defaultValue = toUtf8(property.getDefaultValue());
            out.arguments.push_back(std::move(entry));
        }
        view.propertyGroups.push_back(std::move(out));
    }
    for (const auto& link : page.getSeeAlso()) {
        view.seeAlso.push_back({toUtf8(link.getUrl()), toUtf8(link.getName())});
    }
    for (const auto& example : page.getExamples()) {
        view.examples.push_back(
            {toUtf8(example.getUrl()), toUtf8(example.getOpenCommand()), toUtf8(example.getTitle())});
    }
    for (const auto& parameter : page.getParameters()) {
        PageView::Argument entry = argument(parameter.getInfo());
        entry.defaultValue = toUtf8(parameter.getDefaultValue());
        view.parameters.push_back(std::move(entry));
    }
    return view;
}

bool PageSection::operator==(const PageSection& other) const { return std::string_view(id) == other.id; }

namespace {

// The sections in the order the page shows them, kept where `present` says so.
std::vector<PageSection> presentSections(std::initializer_list<bool> present) {
    static constexpr PageSection kSections[] = {
        {"syntax", "Syntax"},         {"inputs", "Inputs"},     {"outputs", "Outputs"}, {"properties", "Properties"},
        {"parameters", "Parameters"}, {"examples", "Examples"}, {"seealso", "See also"}};
    std::vector<PageSection> sections;
    std::size_t i = 0;
    for (const bool is : present) {
        if (is) {
            sections.push_back(kSections[i]);
        }
        ++i;
    }
    return sections;
}

template <class Page>
std::vector<PageSection> lacking(const Page& english, const Page& translated) {
    const std::vector<PageSection> present = sectionsOf(translated);
    std::vector<PageSection> missing;
    for (const auto& section : sectionsOf(english)) {
        if (std::find(present.begin(), present.end(), section) == present.end()) {
            missing.push_back(section);
        }
    }
    return missing;
}

} // namespace

std::vector<PageSection> sectionsOf(const PageView& page) {
    return presentSections({!page.syntaxGroups.empty(), !page.inputGroups.empty(), !page.outputs.empty(),
                            !page.propertyGroups.empty(), !page.parameters.empty(), !page.examples.empty(),
                            !page.seeAlso.empty()});
}

std::vector<PageSection> sectionsOf(const RefItem& page) {
    return presentSections({!page.getSyntaxGroups().empty(), !page.getInputGroups().empty(), !page.getOutputs().empty(),
                            !page.getClassPropertyGroups().empty(), !page.getParameters().empty(),
                            !page.getExamples().empty(), !page.getSeeAlso().empty()});
}

std::vector<PageSection> lackingSections(const PageView& english, const PageView& translated) {
    return lacking(english, translated);
}

std::vector<PageSection> lackingSections(const RefItem& english, const RefItem& translated) {
    return lacking(english, translated);
}

} // namespace refdoc::tool
