// The two public loading operations: every product's lookup index, and one product's pages.

#include "docparser/diagnostics/DiagnosticHooks.hpp"
#include "docparser/loading/EmptyReadExplanation.hpp"
#include "docparser/loading/OrderedMerge.hpp"
#include "docparser/loading/Settings.hpp"
#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/JsonKeys.hpp"
#include "docparser/parsing/LookupParser.hpp"
#include "docparser/parsing/RefItemFile.hpp"
#include "docparser/parsing/RefItemParser.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>

#include <optional>
#include <utility>

namespace reference::docparser {

using RefItemFileMap = DocResourceParser::RefItemFileMap;

namespace {

// A page file that is missing, unreadable or broken counts as absent.
RefItemFileMap parsePageFile(const std::u16string& path, const std::string& text,
                             const RefItemFileMap* replacement = nullptr) {
    diagnostics::pageFileBegin(path);
    try {
        RefItemFileMap pages = parseRefItemFile(text, replacement);
        diagnostics::fileParsed(pages);
        return pages;
    } catch (...) {
        diagnostics::pageFileDropped(path, [&path] { return explainEmptyRead(path, true); });
        return {};
    }
}

std::string readPageText(const std::u16string& path) {
    try {
        return DocResourceParser::openAndReadFile(path);
    } catch (...) {
        return {}; // parses as nothing, like a missing file
    }
}

// Joins a folder and a file name with one separator; an empty folder leaves the name alone.
std::u16string joinPath(const std::u16string& folder, const std::u16string& fileName) {
    if (folder.empty()) {
        return fileName;
    }
    if (folder.back() == u'/') {
        return folder + fileName;
    }
    return folder + u'/' + fileName;
}

} // namespace

DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap> DocResourceParser::getResourceLookupFiles() {
    // Each setting is taken once and held for the rest of the call, so a result reflects one
    // consistent set of settings. The roots are taken now; the installed products and support
    // packages together, as one pair, when the first key is tested. A load that tests no key
    // leaves the support-package cache as it was, and a failure while the pair is taken counts
    // against the file being filed, like any other failure there.
    const std::shared_ptr<const ReferenceRoots> roots = getReferenceRoots();
    std::optional<InstalledProducts> installed;

    const ParsingInfo<LookupResourceMap>::JsonParsingFcn parser = lookupFileParser;
    const ParsingInfo<LookupResourceMap>::IsInstalledFcn isInstalled = [&installed](const std::u16string& key) {
        if (!installed) {
            installed = takeInstalledProducts();
        }
        return installed->contains(key);
    };
    return ParsingTools::parseMultipleProductFiles<LookupResourceMap>(roots->lookupFolder, parser, isInstalled);
}

DocResourceParser::RefItemFileMap DocResourceParser::getResourceFile(const std::u16string& name) {
    const std::shared_ptr<const ReferenceRoots> roots = getReferenceRoots();
    const std::u16string& folder = roots->referenceFolder;

    // The files are read in this order, English first; the English text is parsed last, when the
    // translation is known, so that English pages the translation replaces are never built.
    const std::u16string englishPath = joinPath(folder, name + ParsingTools::kDotJsonExt);
    const std::string englishText = readPageText(englishPath);
    const std::u16string locale = ParsingTools::getCurrentLocale();
    if (locale == ParsingTools::kEnglishLocale) {
        return parsePageFile(englishPath, englishText);
    }
    const std::u16string localizedPath =
        joinPath(folder, name + ParsingTools::kLocaleSeparator + locale + ParsingTools::kDotJsonExt);
    RefItemFileMap localized = parsePageFile(localizedPath, readPageText(localizedPath));
    if (localized.empty()) {
        return parsePageFile(englishPath, englishText);
    }
    RefItemFileMap english = parsePageFile(englishPath, englishText, &localized);
    if (english.empty()) {
        return localized;
    }
    // Per document the localized header and items win; English pages whose link the
    // translation lacks move over into it, and English pages it has are dropped.
    for (auto it = localized.begin(); it != localized.end();) {
        const auto current = it++;
        const auto englishEntry = english.find(current->first);
        if (englishEntry == english.end()) {
            english.insert(localized.extract(current));
            continue;
        }
        // English pages whose link the translation lacks move over; the others are dropped.
        mergeOrderedMaps(englishEntry->second.getItems(), current->second.getItems(), [](auto&, auto&) {});
        englishEntry->second = std::move(current->second);
    }
    return english;
}

} // namespace reference::docparser
