#include "Host.hpp"

#include "Text.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <doclanguage/DocLanguage.hpp>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <system_error>

#include <unistd.h>

namespace refdoc::tool {
namespace {

using reference::docparser::DocResourceParser;

// Language codes name files (pname_ja.json), so they are kept to what a file name can carry.
bool isLanguageCode(const std::string& code) {
    return !code.empty() && std::all_of(code.begin(), code.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
    });
}

void checkLanguageCode(const std::string& code, const std::filesystem::path& file) {
    if (!isLanguageCode(code)) {
        throw UsageError(file.string() + ": invalid language code '" + code + "'");
    }
}

std::vector<std::string> stringList(const boost::json::value& value, const std::string& key,
                                    const std::filesystem::path& file) {
    const auto* array = value.if_array();
    if (array == nullptr) {
        throw UsageError(file.string() + ": \"" + key + "\" must be an array of strings");
    }
    std::vector<std::string> items;
    for (const auto& element : *array) {
        const auto* string = element.if_string();
        if (string == nullptr) {
            throw UsageError(file.string() + ": \"" + key + "\" must be an array of strings");
        }
        items.emplace_back(string->data(), string->size());
    }
    return items;
}

// Reads the root's host file into `settings`; a root without one keeps the defaults.
void readHostFile(const std::filesystem::path& file, HostSettings& settings) {
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        return;
    }
    std::ifstream in(file, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.good() && !in.eof()) {
        throw UsageError("cannot read " + file.string());
    }
    boost::json::error_code parseError;
    const boost::json::value root = boost::json::parse(text, parseError);
    if (parseError || !root.is_object()) {
        throw UsageError(file.string() + ": not a JSON object" +
                         (parseError ? " (" + parseError.message() + ")" : std::string()));
    }
    for (const auto& member : root.get_object()) {
        const std::string key(member.key());
        if (key == "language") {
            const auto* language = member.value().if_string();
            if (language == nullptr) {
                throw UsageError(file.string() + ": \"language\" must be a string");
            }
            settings.language.assign(language->data(), language->size());
            checkLanguageCode(settings.language, file);
        } else if (key == "supportedLanguages") {
            settings.supportedLanguages = stringList(member.value(), key, file);
            for (const auto& code : settings.supportedLanguages) {
                checkLanguageCode(code, file);
            }
        } else if (key == "installedProducts") {
            settings.installedProducts = stringList(member.value(), key, file);
        } else if (key == "installedSupportPackages") {
            settings.installedSupportPackages = stringList(member.value(), key, file);
        } else {
            throw UsageError(file.string() + ": unknown setting \"" + key + "\"");
        }
    }
}

std::filesystem::path executableFolder() {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : self.parent_path();
}

std::vector<std::u16string> toUtf16List(const std::vector<std::string>& items) {
    std::vector<std::u16string> out;
    out.reserve(items.size());
    for (const auto& item : items) {
        out.push_back(toUtf16(item));
    }
    return out;
}

bool isLowerAlpha(std::string_view text, std::size_t minimum, std::size_t maximum) {
    if (text.size() < minimum || text.size() > maximum) {
        return false;
    }
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

bool isAlpha(std::string_view text, std::size_t minimum, std::size_t maximum) {
    if (text.size() < minimum || text.size() > maximum) {
        return false;
    }
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); });
}

} // namespace

std::optional<std::pair<std::string, std::string>> localeLikeSuffix(const std::string& stem) {
    const std::size_t last = stem.rfind('_');
    if (last == std::string::npos || last == 0) {
        return std::nullopt;
    }
    const std::string_view tail = std::string_view(stem).substr(last + 1);
    if (isLowerAlpha(tail, 2, 3)) {
        return std::make_pair(stem.substr(0, last), std::string(tail));
    }
    const std::size_t previous = stem.rfind('_', last - 1);
    if (previous != std::string::npos && previous != 0 && isAlpha(tail, 2, 4) &&
        isLowerAlpha(std::string_view(stem).substr(previous + 1, last - previous - 1), 2, 3)) {
        return std::make_pair(stem.substr(0, previous), stem.substr(previous + 1));
    }
    return std::nullopt;
}

namespace {

// The stems of the data files in `folder`, as the library recognises data files.
std::set<std::string> dataStems(const std::filesystem::path& folder) {
    std::set<std::string> stems;
    std::error_code error;
    std::filesystem::directory_iterator entries(folder, error);
    if (error) {
        return stems;
    }
    for (const auto& entry : entries) {
        if (DocResourceParser::isValidFilename(entry.path())) {
            stems.insert(entry.path().stem().string());
        }
    }
    return stems;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    });
}

} // namespace

std::vector<std::string> languagesPresent(const std::filesystem::path& root) {
    const DocResourceParser::ReferenceRoots roots(toUtf16(root.string()));
    std::set<std::string> codes;
    for (const auto* folder : {&roots.lookupFolder, &roots.referenceFolder}) {
        const std::set<std::string> stems = dataStems(toUtf8(*folder));
        for (const auto& stem : stems) {
            const auto suffix = localeLikeSuffix(stem);
            if (suffix && suffix->second != "en" && stems.count(suffix->first) != 0) {
                codes.insert(suffix->second);
            }
        }
    }
    std::vector<std::string> languages{"en"};
    languages.insert(languages.end(), codes.begin(), codes.end());
    return languages;
}

void addHostOptions(CLI::App& app, HostOptions& options) {
    const CLI::Validator languageCode = toolCheck(
        [](const std::string& value) {
            for (const auto& code : splitList(value)) {
                if (!isLanguageCode(code)) {
                    return "invalid language code '" + code + "'";
                }
            }
            return std::string();
        },
        "CODE");
    addValueOption(app, "--root", options.root);
    addValueOption(app, "--lang", options.language)->check(languageCode);
    addListOption(app, "--languages", options.supportedLanguages)->check(languageCode);
    addListOption(app, "--installed", options.installedProducts);
    addListOption(app, "--support-packages", options.installedSupportPackages);
}

std::filesystem::path findSampleRoot() {
    std::vector<std::filesystem::path> candidates;
    if (const auto folder = executableFolder(); !folder.empty()) {
        candidates.push_back(folder / "docroot");
        candidates.push_back(folder.parent_path() / "share" / "refdoc" / "docroot");
    }
#ifdef REFDOC_SAMPLE_ROOT
    candidates.emplace_back(REFDOC_SAMPLE_ROOT);
#endif
    for (const auto& candidate : candidates) {
        std::error_code error;
        if (std::filesystem::is_directory(candidate / "docCatalog", error)) {
            return candidate;
        }
    }
    return {};
}

HostSettings resolveHostSettings(const HostOptions& options) {
    HostSettings settings;
    if (const auto& root = options.root) {
        if (root->empty()) {
            throw UsageError("--root needs a folder");
        }
        settings.root = *root;
    } else {
        settings.root = findSampleRoot();
        settings.sampleRoot = true;
        if (settings.root.empty()) {
            throw UsageError("the bundled sample documentation root was not found; give one with --root DIR");
        }
    }
    std::error_code error;
    if (!std::filesystem::is_directory(settings.root, error)) {
        throw UsageError("no such folder: " + settings.root.string());
    }
    if (!std::filesystem::is_directory(settings.root / "docCatalog", error)) {
        throw UsageError(settings.root.string() + " is not a documentation root: it has no docCatalog folder");
    }
    if (auto absolute = std::filesystem::absolute(settings.root, error); !error) {
        settings.root = absolute.lexically_normal();
    }
    if (!settings.root.has_filename() && settings.root.has_parent_path()) {
        settings.root = settings.root.parent_path(); // no trailing separator in what the tool prints
    }

    readHostFile(settings.root / kHostFileName, settings);

    const bool languagesGiven = options.supportedLanguages.has_value();
    if (options.language) {
        settings.language = *options.language;
    }
    if (languagesGiven) {
        settings.supportedLanguages = *options.supportedLanguages;
    }
    if (options.installedProducts) {
        settings.installedProducts = *options.installedProducts;
    }
    if (options.installedSupportPackages) {
        settings.installedSupportPackages = *options.installedSupportPackages;
    }

    const bool fromRoot = settings.supportedLanguages.empty() && !languagesGiven;
    if (fromRoot) {
        settings.supportedLanguages = languagesPresent(settings.root);
    }
    // Codes are matched ignoring case ("JA" is "ja"); the files' spelling wins.
    for (const auto& code : settings.supportedLanguages) {
        if (equalsIgnoringCase(code, settings.language)) {
            settings.language = code;
            break;
        }
    }
    if (fromRoot && std::find(settings.supportedLanguages.begin(), settings.supportedLanguages.end(),
                              settings.language) == settings.supportedLanguages.end()) {
        throw UsageError("no data file of " + settings.root.string() + " is named for the language '" +
                         settings.language + "'; the languages present are " +
                         joinList(settings.supportedLanguages, ", ") + " (--languages names others)");
    }
    return settings;
}

void applyHostSettings(const HostSettings& settings) {
    auto& language = doclanguage::DocLanguage::getInstance();
    language.setSupportedDocLanguages(toUtf16List(settings.supportedLanguages));
    language.setDocLanguage(toUtf16(settings.language));
    DocResourceParser::setReferenceRoot(toUtf16(settings.root.string()));
    DocResourceParser::setTestProducts(toUtf16List(settings.installedProducts),
                                       toUtf16List(settings.installedSupportPackages));
}

} // namespace refdoc::tool
