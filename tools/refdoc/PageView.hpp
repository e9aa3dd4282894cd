#pragma once

// One reference page as the tool shows it: texts in UTF-8, enumeration values by their JSON
// spelling ("" for a value that has none), the sections in the order every view gives them.
// `refdoc page` prints it as text, `refdoc page --json` writes it as JSON and `refdoc serve`
// renders it as HTML; each of them walks this model, not the library's record.

#include <reference/property/RefItem.hpp>

#include <string>
#include <vector>

namespace refdoc::tool {

struct PageView {
    struct Entity {
        std::string type;
        std::string name;
        std::string functionType;
    };
    struct SyntaxGroup {
        std::string title;
        std::string syntaxType;
        std::vector<std::string> lines;
    };
    // An input, output, property or parameter; the fields a kind has not stay empty.
    struct Argument {
        std::string name;
        std::string purpose;
        std::vector<std::string> values;
        std::string anchor;
        std::string syntaxType;   // inputs and outputs
        std::string defaultValue; // inputs, properties and parameters
        bool nameValuePair = false;
    };
    struct ArgumentGroup {
        std::string title;
        std::vector<Argument> arguments;
    };
    struct Link {
        std::string url;
        std::string name;
    };
    struct Example {
        std::string url;
        std::string openCommand;
        std::string title;
    };

    std::string href;
    std::vector<Entity> entities;
    std::string packageName;
    std::string purpose;
    std::string introduced;
    std::string description;
    std::string thumbnailFileRef;
    std::string thumbnailAltText;
    std::string deprecationStatus;
    bool deprecated = false; // a status other than the default
    std::vector<SyntaxGroup> syntaxGroups;
    std::vector<ArgumentGroup> inputGroups;
    std::vector<Argument> outputs;
    std::vector<ArgumentGroup> propertyGroups;
    std::vector<Link> seeAlso;
    std::vector<Example> examples;
    std::vector<Argument> parameters;

    // The entities' names joined with ", ", or the link when there is none.
    std::string heading() const;
};

PageView makePageView(const reference::property::RefItem& page);

// A section of a page as every view names it: the id of its element and its heading.
struct PageSection {
    const char* id;
    const char* title;

    bool operator==(const PageSection& other) const;
};
// The page's sections that have content, in the order they are shown.
std::vector<PageSection> sectionsOf(const PageView& page);
// The same from the record, without making its view (a section is present when the record
// has any of it, as the view then shows it).
std::vector<PageSection> sectionsOf(const reference::property::RefItem& page);
// The sections `english` has and `translated` lacks, in the order they are shown.
std::vector<PageSection> lackingSections(const PageView& english, const PageView& translated);
std::vector<PageSection> lackingSections(const reference::property::RefItem& english,
                                         const reference::property::RefItem& translated);

} // namespace refdoc::tool
