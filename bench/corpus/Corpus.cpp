#include "Corpus.hpp"

#include "Random.hpp"

#include "JsonWriter.hpp"
#include "ZipWriter.hpp"

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace refdoc::bench {
namespace {

namespace fs = std::filesystem;
using test::JsonWriter;

constexpr std::array kLocalized{Language::Japanese, Language::Korean};
// Share of products translated into each language, and of a translated product's entries that
// the translation lacks (new pages not translated yet; the English ones fill in).
constexpr double kTranslatedProducts[] = {0.9, 0.75};
constexpr double kUntranslatedItems = 0.03;

// What a profile changes. The default's values keep its bytes as they always were.
struct Shape {
    bool pretty = false;           // indentation and newlines
    bool sortedNames = true;       // entries sorted by name, as the documentation build writes them
    double unusualSpellings = 0.0; // share of entries whose enumeration texts the library does not know
    double untranslatedItems = kUntranslatedItems;
    double localizedOnlyItems = 0.0;   // share of entries that only the translations have
    double supportPackageChance = 0.2; // share of products with support packages
    int minSupportPackages = 1;
    int maxSupportPackages = 3;
    std::size_t descriptionScale = 1; // page descriptions this many times the usual length
};

constexpr Shape kDefaultShape{};
constexpr Shape kVariedShape{true, false, 0.5, 0.12, 0.08, 1.0, 2, 5, 3};

const Shape& shapeOf(Profile profile) { return profile == Profile::Varied ? kVariedShape : kDefaultShape; }

// Spellings other data sets use for the same enumerations, and kinds newer than the library's
// lists: all must load as the enumeration's default.
constexpr std::string_view kUnusualTypes[] = {"Function",  "classdef", "livetask", "enum",     "Method",
                                              "sysobject", "Property", "mlapp",    "callback", "BLOCK"};
constexpr std::string_view kUnusualFunctionTypes[] = {"Ordinary", "mex", "pcode", "local", "nested", "Builtin"};
constexpr std::string_view kUnusualSyntaxTypes[] = {"Function", "positional", "nameValue", "Optional", "input"};
constexpr std::string_view kUnusualDeprecationStates[] = {"Current", "active", "phased-out", "Deprecated", "warning"};

enum class Kind { Function, Class, Method, Property, Block, Object, App, Constant, Event };

struct KindRow {
    Kind kind;
    std::string_view type;
    double weight;
};

constexpr KindRow kKinds[] = {
    {Kind::Function, "function", 0.45}, {Kind::Class, "class", 0.08},       {Kind::Method, "method", 0.15},
    {Kind::Property, "property", 0.13}, {Kind::Block, "block", 0.07},       {Kind::Object, "object", 0.04},
    {Kind::App, "app", 0.02},           {Kind::Constant, "constant", 0.04}, {Kind::Event, "event", 0.02},
};

const KindRow& pickKind(Random& random) {
    double roll = random.unit();
    for (const auto& row : kKinds) {
        if (roll < row.weight) {
            return row;
        }
        roll -= row.weight;
    }
    return kKinds[0];
}

struct ItemModel {
    std::string name;
    std::string href;
    const KindRow* kind = nullptr;
    std::string_view type;         // "type" text: the kind's, or an unusual spelling
    std::string_view functionType; // empty: the key is left out
    bool deprecated = false;
    bool unusualSpellings = false; // its page's enumeration texts are unusual too
    bool inEnglish = true;         // false: only the translations have it
    std::uint64_t key = 0;         // stream of its texts and page structure
    std::array<bool, kLocalized.size()> translated{};
};

struct DocumentModel {
    std::string productName;
    std::string baseCode;
    std::string helpFolder;
    std::string helpLocation;
    std::vector<ItemModel> items; // sorted by name, then href, in the default profile
    bool installed = false;       // support packages only
};

struct ProductModel {
    DocumentModel main;
    std::vector<DocumentModel> supportPackages;
    Packaging packaging = Packaging::Loose;
    bool installed = false;
    std::array<bool, kLocalized.size()> translated{};
};

constexpr std::string_view kNamePrefixes[] = {"signal", "image",  "optim",  "control", "stats", "audio", "radar",
                                              "vision", "fin",    "bio",    "geo",     "power", "motor", "robot",
                                              "comm",   "wave",   "text",   "map",     "sim",   "test",  "lidar",
                                              "sensor", "fusion", "phased", "antenna", "deep",  "rf",    "mesh"};
constexpr std::string_view kNameSuffixes[] = {"kit", "lab", "works", "suite", "tools", "studio", "box"};
constexpr std::string_view kHardware[] = {"Nimbus", "Orion", "Vega", "Lyra", "Atlas", "Helix", "Quasar", "Tundra"};
constexpr std::string_view kDevices[] = {"Board", "Camera", "Radio", "Controller"};
constexpr std::string_view kSyntaxTypes[] = {"required", "optional", "namevalue", "repeating"};
constexpr std::string_view kDefaults[] = {"[]", "1", "0", "\"auto\"", "true", "\"linear\"", "1e-6"};
constexpr std::string_view kValueWords[] = {"vector",           "matrix",     "scalar",
                                            "\"linear\"",       "\"spline\"", "string scalar",
                                            "character vector", "cell array", "table"};

std::string upper(std::string_view text) {
    std::string out(text);
    for (auto& c : out) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return out;
}

std::string lower(std::string_view text) {
    std::string out(text);
    for (auto& c : out) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

// "Moving Average Filter" -> "movingaveragefilter": links are lower-case ASCII without spaces.
std::string slug(std::string_view name) {
    std::string out;
    for (const char c : name) {
        if (c != ' ') {
            out.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
        }
    }
    return out;
}

std::uint64_t itemKey(std::size_t product, std::size_t document, std::size_t item) {
    return (static_cast<std::uint64_t>(product + 1) << 40) | (static_cast<std::uint64_t>(document) << 24) | item;
}

std::vector<ItemModel> makeItems(Random& random, std::size_t count, const std::string& helpFolder, std::size_t product,
                                 std::size_t document, const Shape& shape) {
    std::vector<ItemModel> items;
    items.reserve(count);
    std::set<std::string> hrefs;
    std::string lastClass = className(random);
    for (std::size_t i = 0; i < count; ++i) {
        ItemModel item;
        item.kind = &pickKind(random);
        std::string page;
        switch (item.kind->kind) {
        case Kind::Function:
            item.name = functionName(random);
            item.functionType = random.chance(0.85) ? "ordinary" : "builtin";
            page = item.name;
            break;
        case Kind::Class:
        case Kind::Object:
            lastClass = className(random);
            item.name = lastClass;
            page = item.name;
            break;
        case Kind::Method:
            // Method names are shared by many classes: one name, several entries.
            item.name = methodName(random);
            item.functionType = random.chance(0.85) ? "method" : "staticmethod";
            page = lastClass + "." + item.name;
            break;
        case Kind::Property:
            item.name = lastClass + "." + propertyName(random);
            page = item.name;
            break;
        case Kind::Block:
            item.name = blockName(random);
            page = item.name;
            break;
        case Kind::App:
            item.name = functionName(random) + "App";
            page = item.name;
            break;
        case Kind::Constant:
            item.name = upper(functionName(random));
            page = item.name;
            break;
        case Kind::Event:
            item.name = capitalizedWord(random) + "Changed";
            page = item.name;
            break;
        }
        item.href = helpFolder + "/ref/" + slug(page);
        for (int n = 2; !hrefs.insert(item.href).second; ++n) {
            item.href = helpFolder + "/ref/" + slug(page) + std::to_string(n);
        }
        item.href += ".html";
        item.deprecated = random.chance(0.03);
        item.key = itemKey(product, document, i);
        for (auto& translated : item.translated) {
            translated = !random.chance(shape.untranslatedItems);
        }
        item.type = item.kind->type;
        // The default profile draws nothing more, so that its bytes stay as they were.
        if (shape.unusualSpellings > 0.0 && random.chance(shape.unusualSpellings)) {
            item.unusualSpellings = true;
            item.type = kUnusualTypes[random.below(std::size(kUnusualTypes))];
            if (!item.functionType.empty()) {
                item.functionType = kUnusualFunctionTypes[random.below(std::size(kUnusualFunctionTypes))];
            }
        }
        if (shape.localizedOnlyItems > 0.0 && random.chance(shape.localizedOnlyItems)) {
            item.inEnglish = false;
            item.translated.fill(true);
        }
        items.push_back(std::move(item));
    }
    if (shape.sortedNames) {
        std::sort(items.begin(), items.end(), [](const ItemModel& a, const ItemModel& b) {
            return a.name != b.name ? a.name < b.name : a.href < b.href;
        });
    } else {
        for (std::size_t i = items.size(); i > 1; --i) {
            std::swap(items[i - 1], items[random.below(i)]);
        }
    }
    return items;
}

// Item counts of all products: log-normal draws, scaled so that their mean is exactly the mean
// asked for (a sample of sixty is otherwise easily 15% off), each drawn first from its product's
// own stream.
std::vector<std::size_t> itemCounts(const CorpusOptions& options) {
    std::vector<double> drawn;
    double total = 0.0;
    for (int p = 0; p < options.products; ++p) {
        Random own = Random::forStream(options.seed, static_cast<std::uint64_t>(p) + 1);
        drawn.push_back(own.logNormal(options.meanItems, options.itemSpread));
        total += drawn.back();
    }
    const double scale = options.meanItems * options.products / total;
    std::vector<std::size_t> counts;
    for (const double count : drawn) {
        counts.push_back(static_cast<std::size_t>(std::clamp(count * scale, 10.0, options.meanItems * 20.0)));
    }
    return counts;
}

std::size_t englishItems(const DocumentModel& document) {
    return static_cast<std::size_t>(std::count_if(document.items.begin(), document.items.end(),
                                                  [](const ItemModel& item) { return item.inEnglish; }));
}

std::vector<ProductModel> makeProducts(const CorpusOptions& options) {
    const Shape& shape = shapeOf(options.profile);
    Random random = Random::forStream(options.seed, 0);

    // Distinct short names: a shuffled walk over prefix x suffix, numbered once exhausted.
    std::vector<std::string> names;
    for (const auto prefix : kNamePrefixes) {
        for (const auto suffix : kNameSuffixes) {
            names.push_back(std::string(prefix) + std::string(suffix));
        }
    }
    for (std::size_t i = names.size(); i > 1; --i) {
        std::swap(names[i - 1], names[random.below(i)]);
    }

    const std::vector<std::size_t> counts = itemCounts(options);
    std::vector<ProductModel> products(static_cast<std::size_t>(options.products));
    std::set<std::string> baseCodes;
    std::size_t largest = 0;
    for (std::size_t p = 0; p < products.size(); ++p) {
        auto& product = products[p];
        Random own = Random::forStream(options.seed, p + 1);
        own.logNormal(1.0, 1.0); // the count's draw, taken in itemCounts
        const std::string name =
            p < names.size() ? names[p] : names[p % names.size()] + std::to_string(p / names.size());
        auto& main = product.main;
        main.helpFolder = name;
        main.helpLocation = "help/" + name;
        main.productName = upper(name.substr(0, 1)) + name.substr(1) + (own.chance(0.2) ? "®" : "");
        std::string code = upper(name.substr(0, 3));
        for (int n = 2; !baseCodes.insert(code).second; ++n) {
            code = upper(name.substr(0, 3)) + std::to_string(n);
        }
        main.baseCode = code;
        main.items = makeItems(own, counts[p], name, p, 0, shape);
        if (englishItems(main) > englishItems(products[largest].main)) {
            largest = p;
        }

        product.installed = own.chance(0.75);
        const std::size_t slot = p % 10;
        product.packaging = (slot == 3 || slot == 7) ? Packaging::MultiLeafZip
                            : (p % 15 == 5)          ? Packaging::SingleLeafZips
                                                     : Packaging::Loose;
        for (std::size_t l = 0; l < kLocalized.size(); ++l) {
            product.translated[l] = own.chance(kTranslatedProducts[l]);
        }

        if (own.chance(shape.supportPackageChance)) {
            const int count = own.between(shape.minSupportPackages, shape.maxSupportPackages);
            for (int s = 0; s < count; ++s) {
                DocumentModel package;
                const std::string hardware = std::string(kHardware[own.below(std::size(kHardware))]);
                const std::string device = std::string(kDevices[own.below(std::size(kDevices))]);
                package.productName = main.productName + " Support Package for " + hardware + " " + device;
                package.baseCode = main.baseCode + "_" + upper(hardware) + "_" + upper(device) + std::to_string(s);
                package.helpFolder = name + "_" + lower(hardware) + std::to_string(s);
                package.helpLocation = "help/supportpkg/" + package.helpFolder;
                package.items = makeItems(own, static_cast<std::size_t>(own.between(20, 150)), package.helpFolder, p,
                                          static_cast<std::size_t>(s) + 1, shape);
                package.installed = own.chance(0.5);
                product.supportPackages.push_back(std::move(package));
            }
        }
    }
    // The page benchmarks load the largest product in every language.
    products[largest].translated.fill(true);
    return products;
}

// ---- lookup files ---------------------------------------------------------------------------

Random textStream(std::uint64_t seed, const ItemModel& item, Language language, std::uint64_t purpose) {
    return Random::forStream(seed, item.key * 16 + static_cast<std::uint64_t>(language) * 4 + purpose);
}

bool inLanguage(const ItemModel& item, Language language) {
    for (std::size_t l = 0; l < kLocalized.size(); ++l) {
        if (kLocalized[l] == language) {
            return item.translated[l];
        }
    }
    return item.inEnglish;
}

std::string itemPurpose(std::uint64_t seed, const ItemModel& item, Language language) {
    Random words = textStream(seed, item, language, 0);
    return TextSource(language).purpose(words);
}

void writeHeader(JsonWriter& json, const DocumentModel& document) {
    json.member("productName", document.productName);
    json.member("baseCode", document.baseCode);
    json.member("helpFolder", document.helpFolder);
    json.member("helpLocation", document.helpLocation);
}

void writeLookupDocument(JsonWriter& json, const DocumentModel& document, Language language, std::uint64_t seed) {
    writeHeader(json, document);
    json.key("refItems");
    json.beginArray();
    for (const auto& item : document.items) {
        if (!inLanguage(item, language)) {
            continue;
        }
        json.beginObject();
        json.member("name", item.name);
        json.member("type", item.type);
        if (!item.functionType.empty()) {
            json.member("fcntype", item.functionType);
        }
        json.member("refpurpose", itemPurpose(seed, item, language));
        json.member("href", item.href);
        if (item.deprecated) {
            json.key("deprecated");
            json.boolean(true);
        }
        json.endObject();
    }
    json.endArray();
}

std::string lookupFile(const ProductModel& product, Language language, std::uint64_t seed, const Shape& shape) {
    JsonWriter json(shape.pretty);
    json.beginObject();
    writeLookupDocument(json, product.main, language, seed);
    if (!product.supportPackages.empty()) {
        json.key("supportPackages");
        json.beginArray();
        for (const auto& package : product.supportPackages) {
            json.beginObject();
            writeLookupDocument(json, package, language, seed);
            json.endObject();
        }
        json.endArray();
    }
    json.endObject();
    return json.take();
}

// ---- page files -----------------------------------------------------------------------------

// Writes one page. Structure (counts, identifiers, links) comes from a stream shared by all
// languages, texts from the language's own stream, so a translated page mirrors the English one.
class PageWriter {
public:
    PageWriter(JsonWriter& json, const ItemModel& item, Language language, std::uint64_t seed,
               std::size_t descriptionScale)
        : json_(json), item_(item), descriptionScale_(descriptionScale), text_(language), heading_(headings(language)),
          shape_(Random::forStream(seed, item.key * 16 + 15)), words_(textStream(seed, item, language, 1)),
          purpose_(itemPurpose(seed, item, language)) {}

    void write() {
        json_.beginObject();
        json_.member("href", item_.href);
        json_.member("refpurpose", purpose_);
        writeEntities();
        const Kind kind = item_.kind->kind;
        if (kind == Kind::Class || kind == Kind::Object || shape_.chance(0.1)) {
            json_.member("packagename", lower(item_.href.substr(0, item_.href.find('/'))) + ".internal");
        }
        json_.member("introduced",
                     "v" + std::to_string(shape_.between(1, 12)) + "." + std::to_string(shape_.between(0, 9)));
        json_.member("description", text_.description(words_, codeName(), descriptionLength(kind) * descriptionScale_));
        if (kind == Kind::App || kind == Kind::Block) {
            json_.key("appthumbnail");
            json_.beginObject();
            json_.member("fileref", "images/" + slug(item_.name) + ".png");
            json_.member("alt", text_.title(words_));
            json_.endObject();
        }
        json_.member("deprecationstatus", item_.unusualSpellings ? unusual(kUnusualDeprecationStates)
                                          : item_.deprecated ? (shape_.chance(0.5) ? "deprecated" : "notrecommended")
                                                             : "current");
        switch (kind) {
        case Kind::Function:
            writeFunction();
            break;
        case Kind::Class:
        case Kind::Object:
            writeClass();
            break;
        case Kind::Method:
            writeMethod();
            break;
        case Kind::Block:
            writeBlock();
            break;
        case Kind::App:
        case Kind::Property:
        case Kind::Constant:
        case Kind::Event:
            break;
        }
        writeExamples(kind == Kind::Function || kind == Kind::Class || kind == Kind::App ? 3 : 1);
        writeSeeAlso();
        json_.endObject();
    }

private:
    template <std::size_t N>
    std::string_view unusual(const std::string_view (&spellings)[N]) {
        return spellings[shape_.below(N)];
    }
    std::string_view syntaxType(std::string_view usual) {
        return item_.unusualSpellings ? unusual(kUnusualSyntaxTypes) : usual;
    }

    std::string codeName() const {
        const auto dot = item_.name.rfind('.');
        return dot == std::string::npos ? item_.name : item_.name.substr(dot + 1);
    }

    std::size_t descriptionLength(Kind kind) {
        switch (kind) {
        case Kind::Function:
        case Kind::Class:
        case Kind::Block:
        case Kind::App:
            return static_cast<std::size_t>(shape_.between(300, 1400));
        default:
            return static_cast<std::size_t>(shape_.between(80, 400));
        }
    }

    void writeEntities() {
        json_.key("refentity");
        json_.beginArray();
        writeEntity(item_.type, item_.functionType, item_.name);
        if (item_.kind->kind == Kind::Class) { // the constructor is documented on the class page
            writeEntity(item_.unusualSpellings ? unusual(kUnusualTypes) : "function",
                        item_.unusualSpellings ? unusual(kUnusualFunctionTypes) : "constructor", codeName());
        }
        json_.endArray();
    }

    void writeEntity(std::string_view type, std::string_view functionType, std::string_view name) {
        json_.beginObject();
        json_.member("type", type);
        if (!functionType.empty()) {
            json_.member("fcntype", functionType);
        }
        json_.member("name", name);
        json_.endObject();
    }

    void writeSyntax(std::string_view title, int lines, std::string_view syntaxType) {
        json_.beginObject();
        json_.member("syntaxtype", this->syntaxType(syntaxType));
        json_.member("title", title);
        json_.key("syntax");
        json_.beginArray();
        std::string arguments = argumentName(shape_);
        for (int i = 0; i < lines; ++i) {
            json_.string((i % 2 == 0 ? "y = " : "[y,info] = ") + codeName() + "(" + arguments + ")");
            arguments += "," + argumentName(shape_);
        }
        json_.endArray();
        json_.endObject();
    }

    // An input, output or parameter; `name` may be a localized label (block ports).
    void writeArgument(const std::string& name, std::string_view idPrefix, bool input) {
        json_.beginObject();
        json_.member("name", name);
        json_.member("htmlid", std::string(idPrefix) + slug(argumentIdentity_));
        json_.member("purpose", text_.argumentPurpose(words_, name));
        if (shape_.chance(0.4)) {
            std::vector<std::string> values;
            for (int i = shape_.between(1, 4); i > 0; --i) {
                values.emplace_back(kValueWords[shape_.below(std::size(kValueWords))]);
            }
            json_.stringArray("value", values);
        }
        if (input || shape_.chance(0.5)) {
            json_.member("syntaxtype", syntaxType(kSyntaxTypes[shape_.below(std::size(kSyntaxTypes))]));
        }
        if (input && shape_.chance(0.4)) {
            json_.member("defaultvalue", kDefaults[shape_.below(std::size(kDefaults))]);
        }
        json_.endObject();
    }

    void writeArguments(int count, std::string_view idPrefix, bool input) {
        for (int i = 0; i < count; ++i) {
            argumentIdentity_ = argumentName(shape_);
            writeArgument(argumentIdentity_, idPrefix, input);
        }
    }

    void writeInputGroups(int inputs, bool nameValuePairs) {
        json_.key("inputgroup");
        json_.beginArray();
        json_.beginObject();
        json_.member("title", heading_.inputArguments);
        json_.key("inputs");
        json_.beginArray();
        writeArguments(inputs, "input_", true);
        json_.endArray();
        json_.endObject();
        if (nameValuePairs) {
            json_.beginObject();
            json_.key("namevaluepairs");
            json_.beginArray();
            for (int group = shape_.between(1, 2); group > 0; --group) {
                json_.beginObject();
                json_.member("title", heading_.nameValueArguments);
                json_.key("inputs");
                json_.beginArray();
                writeArguments(shape_.between(2, 8), "namevalue_", true);
                json_.endArray();
                json_.endObject();
            }
            json_.endArray();
            json_.endObject();
        }
        json_.endArray();
    }

    void writeOutputs(int count) {
        json_.key("outputs");
        json_.beginArray();
        writeArguments(count, "output_", false);
        json_.endArray();
    }

    void writeFunction() {
        json_.key("syntaxgroup");
        json_.beginArray();
        writeSyntax(heading_.syntax, shape_.between(1, 5), "function");
        json_.endArray();
        writeInputGroups(shape_.between(1, 5), shape_.chance(0.4));
        writeOutputs(shape_.between(1, 3));
    }

    void writeClass() {
        json_.key("syntaxgroup");
        json_.beginArray();
        writeSyntax(heading_.createObject, shape_.between(1, 3), "constructor");
        json_.endArray();
        writeInputGroups(shape_.between(0, 3), shape_.chance(0.3));
        json_.key("classpropertygroup");
        json_.beginArray();
        for (int group = shape_.between(1, 3); group > 0; --group) {
            json_.beginObject();
            json_.member("title", group == 1 ? heading_.properties : heading_.readOnlyProperties);
            json_.key("classproperty");
            json_.beginArray();
            for (int i = shape_.between(2, 10); i > 0; --i) {
                const std::string name = propertyName(shape_);
                json_.beginObject();
                json_.member("name", name);
                json_.member("purpose", text_.argumentPurpose(words_, name));
                if (shape_.chance(0.3)) {
                    json_.stringArray("value", {std::string(kValueWords[shape_.below(std::size(kValueWords))])});
                }
                if (shape_.chance(0.5)) {
                    json_.member("defaultvalue", kDefaults[shape_.below(std::size(kDefaults))]);
                }
                json_.endObject();
            }
            json_.endArray();
            json_.endObject();
        }
        json_.endArray();
    }

    void writeMethod() {
        json_.key("syntaxgroup");
        json_.beginArray();
        writeSyntax(heading_.syntax, shape_.between(1, 2), "method");
        json_.endArray();
        writeInputGroups(shape_.between(1, 3), false);
        if (shape_.chance(0.6)) {
            writeOutputs(1);
        }
    }

    // Blocks name their ports and parameters with display labels, translated on localized pages.
    void writeBlock() {
        json_.key("inputgroup");
        json_.beginArray();
        json_.beginObject();
        json_.member("title", heading_.inputPort);
        json_.key("inputs");
        json_.beginArray();
        for (int port = 1, ports = shape_.between(1, 3); port <= ports; ++port) {
            argumentIdentity_ = "port" + std::to_string(port);
            writeArgument(std::string(heading_.inputPort) + " " + std::to_string(port), "input_", true);
        }
        json_.endArray();
        json_.endObject();
        json_.endArray();
        json_.key("outputs");
        json_.beginArray();
        argumentIdentity_ = "out1";
        writeArgument(text_.label(words_), "output_", false);
        json_.endArray();
        json_.key("parameters");
        json_.beginArray();
        for (int i = shape_.between(3, 12); i > 0; --i) {
            argumentIdentity_ = argumentName(shape_);
            json_.beginObject();
            json_.member("name", text_.label(words_));
            json_.member("htmlid", "param_" + slug(argumentIdentity_));
            json_.member("purpose", text_.argumentPurpose(words_, argumentIdentity_));
            json_.member("defaultvalue", kDefaults[shape_.below(std::size(kDefaults))]);
            json_.endObject();
        }
        json_.endArray();
    }

    void writeExamples(int most) {
        const int count = shape_.between(0, most);
        if (count == 0) {
            return;
        }
        json_.key("examples");
        json_.beginArray();
        for (int i = 0; i < count; ++i) {
            const std::string id = slug(codeName()) + "Example" + std::to_string(i + 1);
            json_.beginObject();
            json_.member("url", item_.href.substr(0, item_.href.find('/')) + "/ug/" + lower(id) + ".html");
            if (shape_.chance(0.7)) {
                json_.member("open_command",
                             "openExample('" + item_.href.substr(0, item_.href.find('/')) + "/" + id + "')");
            }
            json_.member("title", text_.title(words_));
            json_.endObject();
        }
        json_.endArray();
    }

    void writeSeeAlso() {
        json_.key("seealso");
        json_.beginArray();
        for (int i = shape_.between(2, 6); i > 0; --i) {
            const std::string target = functionName(shape_);
            json_.beginObject();
            json_.member("url", item_.href.substr(0, item_.href.find('/')) + "/ref/" + lower(target) + ".html");
            json_.member("name", target);
            json_.endObject();
        }
        json_.endArray();
    }

    JsonWriter& json_;
    const ItemModel& item_;
    std::size_t descriptionScale_;
    TextSource text_;
    const Headings& heading_;
    Random shape_;
    Random words_;
    std::string purpose_;
    std::string argumentIdentity_;
};

void writePageDocument(JsonWriter& json, const DocumentModel& document, Language language, std::uint64_t seed,
                       const Shape& shape) {
    writeHeader(json, document);
    json.key("refItems");
    json.beginArray();
    for (const auto& item : document.items) {
        if (inLanguage(item, language)) {
            PageWriter(json, item, language, seed, shape.descriptionScale).write();
        }
    }
    json.endArray();
}

std::string pageFile(const ProductModel& product, Language language, std::uint64_t seed, const Shape& shape) {
    JsonWriter json(shape.pretty);
    json.beginObject();
    writePageDocument(json, product.main, language, seed, shape);
    if (!product.supportPackages.empty()) {
        json.key("supportPackages");
        json.beginArray();
        for (const auto& package : product.supportPackages) {
            json.beginObject();
            writePageDocument(json, package, language, seed, shape);
            json.endObject();
        }
        json.endArray();
    }
    json.endObject();
    return json.take();
}

// ---- writing --------------------------------------------------------------------------------

void writeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

std::string variantStem(const std::string& name, Language language) {
    return language == Language::English ? name : name + "_" + std::string(languageCode(language));
}

std::string_view packagingName(Packaging packaging) {
    switch (packaging) {
    case Packaging::MultiLeafZip:
        return "multi-leaf zip";
    case Packaging::SingleLeafZips:
        return "single-leaf zips";
    case Packaging::Loose:
        break;
    }
    return "loose";
}

Packaging packagingFromName(std::string_view name) {
    if (name == "multi-leaf zip") {
        return Packaging::MultiLeafZip;
    }
    return name == "single-leaf zips" ? Packaging::SingleLeafZips : Packaging::Loose;
}

void writeManifest(const fs::path& root, const Manifest& manifest) {
    JsonWriter json;
    json.beginObject();
    json.member("profile", manifest.profile);
    json.member("seed", std::to_string(manifest.seed));
    json.member("largestProduct", manifest.largestProduct);
    json.member("supportPackageRoot", manifest.supportPackageRoot);
    json.stringArray("localeCodes", manifest.localeCodes);
    json.key("products");
    json.beginArray();
    for (const auto& product : manifest.products) {
        json.beginObject();
        json.member("name", product.name);
        json.member("productName", product.productName);
        json.key("installed");
        json.boolean(product.installed);
        json.member("packaging", packagingName(product.packaging));
        json.member("items", std::to_string(product.items));
        json.member("localizedOnlyItems", std::to_string(product.localizedOnlyItems));
        json.stringArray("languages", product.languages);
        json.key("supportPackages");
        json.beginArray();
        for (const auto& package : product.supportPackages) {
            json.beginObject();
            json.member("baseCode", package.baseCode);
            json.key("installed");
            json.boolean(package.installed);
            json.member("items", std::to_string(package.items));
            json.endObject();
        }
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.key("lookupReads");
    json.beginObject();
    for (const auto& [language, reads] : manifest.lookupReads) {
        json.key(language);
        json.beginArray();
        for (const auto& read : reads) {
            json.beginArray();
            json.string(read.file);
            json.string(read.entry);
            json.string(std::to_string(read.bytes));
            json.endArray();
        }
        json.endArray();
    }
    json.endObject();
    json.key("pageFileBytes");
    json.beginObject();
    for (const auto& [file, bytes] : manifest.pageFileBytes) {
        json.member(file, std::to_string(bytes));
    }
    json.endObject();
    json.endObject();
    writeFile(root / kManifestName, json.text());
}

} // namespace

std::vector<std::string> Manifest::installedProducts() const {
    std::vector<std::string> names;
    for (const auto& product : products) {
        if (product.installed) {
            names.push_back(product.name);
        }
    }
    return names;
}

std::vector<std::string> Manifest::installedSupportPackages() const {
    std::vector<std::string> names;
    for (const auto& product : products) {
        for (const auto& package : product.supportPackages) {
            if (package.installed) {
                names.push_back(package.baseCode);
            }
        }
    }
    return names;
}

std::vector<std::string> Manifest::pageReads(const std::string& product, const std::string& language) const {
    std::vector<std::string> files{std::string(kPageFolder) + "/" + product + ".json"};
    if (language != "en") {
        files.push_back(std::string(kPageFolder) + "/" + product + "_" + language + ".json");
    }
    return files;
}

std::size_t Manifest::largestLookupRead(const std::string& language) const {
    std::size_t largest = 0;
    for (const auto& read : lookupReads.at(language)) {
        largest = std::max(largest, read.bytes);
    }
    return largest;
}

std::size_t Manifest::largestPageRead(const std::string& product, const std::string& language) const {
    std::size_t largest = 0;
    for (const auto& file : pageReads(product, language)) {
        const auto found = pageFileBytes.find(file);
        largest = std::max(largest, found == pageFileBytes.end() ? 0 : found->second);
    }
    return largest;
}

std::string_view profileName(Profile profile) noexcept { return profile == Profile::Varied ? "varied" : "default"; }

Profile profileFromName(std::string_view name) {
    if (name == "default") {
        return Profile::Default;
    }
    if (name == "varied") {
        return Profile::Varied;
    }
    throw std::invalid_argument("unknown corpus profile " + std::string(name));
}

Manifest generateCorpus(const fs::path& root, const CorpusOptions& options) {
    if (options.products < 1 || options.meanItems < 1.0) {
        throw std::invalid_argument("a corpus needs at least one product and one item");
    }
    const Shape& shape = shapeOf(options.profile);
    const std::vector<ProductModel> products = makeProducts(options);
    const fs::path lookupFolder = root / kLookupFolder;
    const fs::path pageFolder = root / kPageFolder;
    fs::create_directories(lookupFolder);
    fs::create_directories(pageFolder);

    Manifest manifest;
    manifest.profile = profileName(options.profile);
    manifest.seed = options.seed;
    manifest.supportPackageRoot = "supportpackages";
    for (const auto language : kLocalized) {
        manifest.localeCodes.emplace_back(languageCode(language));
    }
    std::vector<std::string> languages{"en"};
    languages.insert(languages.end(), manifest.localeCodes.begin(), manifest.localeCodes.end());

    const std::string lookupPrefix = std::string(kLookupFolder) + "/";
    std::size_t largestItems = 0;
    for (const auto& product : products) {
        const std::string& name = product.main.helpFolder;
        ProductInfo info;
        info.name = name;
        info.productName = product.main.productName;
        info.installed = product.installed;
        info.packaging = product.packaging;
        info.items = englishItems(product.main);
        info.localizedOnlyItems = product.main.items.size() - info.items;
        info.languages.emplace_back("en");
        for (const auto& package : product.supportPackages) {
            info.supportPackages.push_back({package.baseCode, package.installed, englishItems(package)});
            if (package.installed) {
                fs::create_directories(root / manifest.supportPackageRoot / package.baseCode);
            }
        }
        if (info.items > largestItems) {
            largestItems = info.items;
            manifest.largestProduct = name;
        }

        std::vector<Language> written{Language::English};
        for (std::size_t l = 0; l < kLocalized.size(); ++l) {
            if (product.translated[l]) {
                written.push_back(kLocalized[l]);
                info.languages.emplace_back(languageCode(kLocalized[l]));
            }
        }

        // Lookup data, and which reads a load makes of it in each current language: English
        // files always, a variant only when its language is current. The zip writer fixes entry
        // times, so packages too depend on the seed alone.
        test::ZipWriter multiLeaf;
        for (const auto language : written) {
            const std::string stem = variantStem(name, language);
            const std::string text = lookupFile(product, language, options.seed, shape);
            FileRead read;
            switch (product.packaging) {
            case Packaging::Loose:
                writeFile(lookupFolder / (stem + ".json"), text);
                read = {lookupPrefix + stem + ".json", "", text.size()};
                break;
            case Packaging::MultiLeafZip:
                multiLeaf.add(stem + ".json", text);
                read = {lookupPrefix + name + ".zip", stem + ".json", text.size()};
                break;
            case Packaging::SingleLeafZips:
                test::ZipWriter().add(stem + ".json", text).write(lookupFolder / (stem + ".zip"));
                read = {lookupPrefix + stem + ".zip", stem + ".json", text.size()};
                break;
            }
            for (const auto& current : languages) {
                if (language == Language::English || current == languageCode(language)) {
                    manifest.lookupReads[current].push_back(read);
                }
            }
        }
        if (product.packaging == Packaging::MultiLeafZip) {
            multiLeaf.write(lookupFolder / (name + ".zip"));
        }

        if (options.pages) {
            for (const auto language : written) {
                const std::string file = variantStem(name, language) + ".json";
                const std::string text = pageFile(product, language, options.seed, shape);
                writeFile(pageFolder / file, text);
                manifest.pageFileBytes[std::string(kPageFolder) + "/" + file] = text.size();
            }
        }
        manifest.products.push_back(std::move(info));
    }
    for (auto& [language, reads] : manifest.lookupReads) {
        std::sort(reads.begin(), reads.end());
    }
    writeManifest(root, manifest);
    return manifest;
}

Manifest readManifest(const fs::path& root) {
    std::ifstream in(root / kManifestName, std::ios::binary);
    if (!in) {
        throw std::runtime_error("no corpus manifest in " + root.string());
    }
    std::stringstream text;
    text << in.rdbuf();
    const boost::json::value value = boost::json::parse(text.str());
    const auto& object = value.as_object();
    const auto string = [](const boost::json::value& v) { return std::string(v.as_string()); };

    Manifest manifest;
    manifest.profile = string(object.at("profile"));
    manifest.seed = std::stoull(string(object.at("seed")));
    manifest.largestProduct = string(object.at("largestProduct"));
    manifest.supportPackageRoot = string(object.at("supportPackageRoot"));
    for (const auto& code : object.at("localeCodes").as_array()) {
        manifest.localeCodes.push_back(string(code));
    }
    for (const auto& element : object.at("products").as_array()) {
        const auto& product = element.as_object();
        ProductInfo info;
        info.name = string(product.at("name"));
        info.productName = string(product.at("productName"));
        info.installed = product.at("installed").as_bool();
        info.packaging = packagingFromName(string(product.at("packaging")));
        info.items = std::stoull(string(product.at("items")));
        info.localizedOnlyItems = std::stoull(string(product.at("localizedOnlyItems")));
        for (const auto& language : product.at("languages").as_array()) {
            info.languages.push_back(string(language));
        }
        for (const auto& packageElement : product.at("supportPackages").as_array()) {
            const auto& package = packageElement.as_object();
            info.supportPackages.push_back({string(package.at("baseCode")), package.at("installed").as_bool(),
                                            std::stoull(string(package.at("items")))});
        }
        manifest.products.push_back(std::move(info));
    }
    for (const auto& [language, reads] : object.at("lookupReads").as_object()) {
        auto& list = manifest.lookupReads[std::string(language)];
        for (const auto& read : reads.as_array()) {
            const auto& pair = read.as_array();
            list.push_back({string(pair.at(0)), string(pair.at(1)), std::stoull(string(pair.at(2)))});
        }
    }
    for (const auto& [file, bytes] : object.at("pageFileBytes").as_object()) {
        manifest.pageFileBytes[std::string(file)] = std::stoull(string(bytes));
    }
    return manifest;
}

} // namespace refdoc::bench
