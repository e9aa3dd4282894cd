#include "Peer.hpp"

#include "Floor.hpp"

#include <nlohmann/json.hpp>

#include <utility>

namespace refdoc::bench::peer {
namespace {

using nlohmann::json;

std::u16string toUtf16(const std::string& text) {
    std::u16string out;
    std::size_t i = 0;
    while (i < text.size()) {
        const auto byte = static_cast<unsigned char>(text[i]);
        char32_t code = 0xFFFD;
        std::size_t length = 1;
        if (byte < 0x80) {
            code = byte;
        } else if ((byte & 0xE0) == 0xC0 && i + 1 < text.size()) {
            code = ((byte & 0x1Fu) << 6) | (static_cast<unsigned char>(text[i + 1]) & 0x3Fu);
            length = 2;
        } else if ((byte & 0xF0) == 0xE0 && i + 2 < text.size()) {
            code = ((byte & 0x0Fu) << 12) | ((static_cast<unsigned char>(text[i + 1]) & 0x3Fu) << 6) |
                   (static_cast<unsigned char>(text[i + 2]) & 0x3Fu);
            length = 3;
        } else if ((byte & 0xF8) == 0xF0 && i + 3 < text.size()) {
            code = ((byte & 0x07u) << 18) | ((static_cast<unsigned char>(text[i + 1]) & 0x3Fu) << 12) |
                   ((static_cast<unsigned char>(text[i + 2]) & 0x3Fu) << 6) |
                   (static_cast<unsigned char>(text[i + 3]) & 0x3Fu);
            length = 4;
        }
        if (code >= 0x10000) {
            code -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (code >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(code));
        }
        i += length;
    }
    return out;
}

std::u16string text(const json& object, const char* key) { return toUtf16(object.at(key).get<std::string>()); }

std::u16string optionalText(const json& object, const char* key) { return toUtf16(object.value(key, std::string())); }

int enumIndex(const json& object, const char* key, const std::vector<std::string>& spellings) {
    const std::string value = object.value(key, std::string());
    for (std::size_t i = 0; i < spellings.size(); ++i) {
        if (spellings[i] == value) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

const std::vector<std::string> kTypes = {"function", "class",       "method", "property", "object", "namespace",
                                         "package",  "enumeration", "event",  "constant", "app",    "block"};
const std::vector<std::string> kFunctionTypes = {"ordinary", "builtin", "method", "staticmethod", "constructor"};
const std::vector<std::string> kSyntaxTypes = {"function", "method",    "constructor", "required",
                                               "optional", "namevalue", "repeating"};
const std::vector<std::string> kDeprecationStates = {"current", "notrecommended", "deprecated"};

Header readHeader(const json& document) {
    return {text(document, "productName"), text(document, "baseCode"), text(document, "helpFolder"),
            text(document, "helpLocation")};
}

LookupDocument readLookupDocument(const json& document) {
    LookupDocument result;
    result.header = readHeader(document);
    for (const auto& item : document.at("refItems")) {
        LookupRecord record;
        record.name = text(item, "name");
        record.purpose = text(item, "refpurpose");
        record.href = text(item, "href");
        record.type = enumIndex(item, "type", kTypes);
        record.functionType = enumIndex(item, "fcntype", kFunctionTypes);
        record.deprecated = item.contains("deprecated");
        result.items[record.name].push_back(record);
    }
    return result;
}

std::vector<std::u16string> textList(const json& object, const char* key) {
    std::vector<std::u16string> list;
    if (object.contains(key)) {
        for (const auto& value : object.at(key)) {
            list.push_back(toUtf16(value.get<std::string>()));
        }
    }
    return list;
}

Argument readArgument(const json& object) {
    Argument argument;
    argument.name = text(object, "name");
    argument.htmlId = optionalText(object, "htmlid");
    argument.purpose = text(object, "purpose");
    argument.defaultValue = optionalText(object, "defaultvalue");
    argument.values = textList(object, "value");
    argument.syntaxType = enumIndex(object, "syntaxtype", kSyntaxTypes);
    return argument;
}

std::vector<Argument> argumentList(const json& object, const char* key) {
    std::vector<Argument> list;
    if (object.contains(key)) {
        for (const auto& element : object.at(key)) {
            list.push_back(readArgument(element));
        }
    }
    return list;
}

PageRecord readPage(const json& item) {
    PageRecord page;
    page.href = text(item, "href");
    page.purpose = text(item, "refpurpose");
    page.packageName = optionalText(item, "packagename");
    page.introduced = optionalText(item, "introduced");
    page.description = optionalText(item, "description");
    if (item.contains("appthumbnail")) {
        page.thumbnail = optionalText(item.at("appthumbnail"), "fileref");
        page.thumbnailAlt = optionalText(item.at("appthumbnail"), "alt");
    }
    page.deprecationStatus = enumIndex(item, "deprecationstatus", kDeprecationStates);
    if (item.contains("refentity")) {
        for (const auto& entity : item.at("refentity")) {
            page.entities.push_back({enumIndex(entity, "type", kTypes), enumIndex(entity, "fcntype", kFunctionTypes),
                                     text(entity, "name")});
        }
    }
    if (item.contains("syntaxgroup")) {
        for (const auto& group : item.at("syntaxgroup")) {
            page.syntax.push_back({enumIndex(group, "syntaxtype", kSyntaxTypes), optionalText(group, "title"),
                                   textList(group, "syntax")});
        }
    }
    if (item.contains("inputgroup")) {
        for (const auto& group : item.at("inputgroup")) {
            if (group.contains("inputs")) {
                page.inputGroups.push_back({text(group, "title"), argumentList(group, "inputs")});
            }
            if (group.contains("namevaluepairs")) {
                for (const auto& pairs : group.at("namevaluepairs")) {
                    page.inputGroups.push_back({text(pairs, "title"), argumentList(pairs, "inputs")});
                }
            }
        }
    }
    page.outputs = argumentList(item, "outputs");
    if (item.contains("classpropertygroup")) {
        for (const auto& group : item.at("classpropertygroup")) {
            page.classProperties.push_back({optionalText(group, "title"), argumentList(group, "classproperty")});
        }
    }
    if (item.contains("parameters")) {
        for (const auto& parameter : item.at("parameters")) {
            Argument argument;
            argument.name = text(parameter, "name");
            argument.htmlId = optionalText(parameter, "htmlid");
            argument.purpose = optionalText(parameter, "purpose");
            argument.defaultValue = optionalText(parameter, "defaultvalue");
            page.parameters.push_back(argument);
        }
    }
    if (item.contains("examples")) {
        for (const auto& example : item.at("examples")) {
            page.examples.push_back(
                {text(example, "url"), text(example, "title"), optionalText(example, "open_command")});
        }
    }
    if (item.contains("seealso")) {
        for (const auto& link : item.at("seealso")) {
            page.seeAlso.push_back({text(link, "url"), text(link, "name"), u""});
        }
    }
    return page;
}

PageDocument readPageDocument(const json& document) {
    PageDocument result;
    result.header = readHeader(document);
    for (const auto& item : document.at("refItems")) {
        PageRecord page = readPage(item);
        result.items[page.href].push_back(page);
    }
    return result;
}

// The main document under its help folder, each support package under its base code; the first
// document with a key wins.
template <class Document, class Read>
std::map<std::u16string, Document> readFile(const std::string& bytes, Read readDocument) {
    const json root = json::parse(bytes);
    std::map<std::u16string, Document> documents;
    Document main = readDocument(root);
    const std::u16string key = main.header.helpFolder;
    documents.emplace(key, main);
    if (root.contains("supportPackages")) {
        for (const auto& package : root.at("supportPackages")) {
            Document document = readDocument(package);
            const std::u16string baseCode = document.header.baseCode;
            documents.emplace(baseCode, document);
        }
    }
    return documents;
}

// A translated document wins; the English one adds the entries it lacks.
template <class Document>
void mergeOver(std::map<std::u16string, Document>& english, std::map<std::u16string, Document>& localized) {
    for (auto& [key, document] : localized) {
        auto found = english.find(key);
        if (found == english.end()) {
            english[key] = document;
            continue;
        }
        for (auto& [name, records] : found->second.items) {
            if (document.items.find(name) == document.items.end()) {
                document.items[name] = records;
            }
        }
        found->second = document;
    }
}

// name_ja.json, name_ko.zip: a stem that ends in an underscore and a two-letter code.
bool isLocalized(const std::string& fileName) {
    const std::string stem = std::filesystem::path(fileName).stem().string();
    return stem.size() > 3 && stem[stem.size() - 3] == '_';
}

template <class Document, class Read>
std::map<std::u16string, Document> load(const std::filesystem::path& root, const std::vector<FileRead>& reads,
                                        Read readDocument) {
    std::map<std::u16string, Document> english;
    std::map<std::u16string, Document> localized;
    readEach(root, reads, [&](const FileRead& read, std::string&& bytes) {
        auto documents = readFile<Document>(bytes, readDocument);
        auto& target = isLocalized(read.entry.empty() ? read.file : read.entry) ? localized : english;
        for (auto& [key, document] : documents) {
            if (target.find(key) == target.end()) {
                target[key] = document;
            }
        }
    });
    mergeOver(english, localized);
    return english;
}

template <class Result>
std::size_t countRecords(const Result& result) {
    std::size_t count = 0;
    for (const auto& [key, document] : result) {
        for (const auto& [name, records] : document.items) {
            count += records.size();
        }
    }
    return count;
}

} // namespace

LookupResult loadLookup(const std::filesystem::path& root, const std::vector<FileRead>& reads) {
    return load<LookupDocument>(root, reads, readLookupDocument);
}

PageResult loadPages(const std::filesystem::path& root, const std::vector<std::string>& files) {
    std::vector<FileRead> reads;
    for (const auto& file : files) {
        reads.push_back({file, "", 0});
    }
    return load<PageDocument>(root, reads, readPageDocument);
}

std::size_t recordCount(const LookupResult& result) { return countRecords(result); }

std::size_t recordCount(const PageResult& result) { return countRecords(result); }

} // namespace refdoc::bench::peer
