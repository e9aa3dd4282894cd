#pragma once

// The straightforward reader a user would write instead of calling the library: nlohmann/json
// parses each file the library reads, plain code copies the fields into UTF-16 records and
// merges the translation over the English data. It is the reference point for the library's
// speed, so it is written plainly and not tuned.

#include "Corpus.hpp"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace refdoc::bench::peer {

// Enumerations as indexes into the spellings the reader knows; 0 for any other text.
struct LookupRecord {
    std::u16string name;
    std::u16string purpose;
    std::u16string href;
    int type = 0;
    int functionType = 0;
    bool deprecated = false;
};

struct Header {
    std::u16string productName;
    std::u16string baseCode;
    std::u16string helpFolder;
    std::u16string helpLocation;
};

struct LookupDocument {
    Header header;
    std::map<std::u16string, std::vector<LookupRecord>> items; // by name
};

// Documents by help folder (main document) or base code (support package).
using LookupResult = std::map<std::u16string, LookupDocument>;

struct Entity {
    int type = 0;
    int functionType = 0;
    std::u16string name;
};

struct Syntax {
    int syntaxType = 0;
    std::u16string title;
    std::vector<std::u16string> lines;
};

struct Argument {
    std::u16string name;
    std::u16string htmlId;
    std::u16string purpose;
    std::u16string defaultValue;
    std::vector<std::u16string> values;
    int syntaxType = 0;
};

struct ArgumentGroup {
    std::u16string title;
    std::vector<Argument> arguments;
};

struct Link {
    std::u16string url;
    std::u16string title; // a see-also link's name
    std::u16string command;
};

struct PageRecord {
    std::u16string href;
    std::u16string purpose;
    std::u16string packageName;
    std::u16string introduced;
    std::u16string description;
    std::u16string thumbnail;
    std::u16string thumbnailAlt;
    int deprecationStatus = 0;
    std::vector<Entity> entities;
    std::vector<Syntax> syntax;
    std::vector<ArgumentGroup> inputGroups; // name-value pair groups follow their input group
    std::vector<Argument> outputs;
    std::vector<ArgumentGroup> classProperties;
    std::vector<Argument> parameters;
    std::vector<Link> examples;
    std::vector<Link> seeAlso;
};

struct PageDocument {
    Header header;
    std::map<std::u16string, std::vector<PageRecord>> items; // by link
};

using PageResult = std::map<std::u16string, PageDocument>;

// The lookup data of the given reads (the manifest's list for one language), translations merged
// over English: a translated document replaces the English one, which fills in the names it lacks.
LookupResult loadLookup(const std::filesystem::path& root, const std::vector<FileRead>& reads);

// The page files given by relative path, merged the same way by link.
PageResult loadPages(const std::filesystem::path& root, const std::vector<std::string>& files);

std::size_t recordCount(const LookupResult& result);
std::size_t recordCount(const PageResult& result);

} // namespace refdoc::bench::peer
