// The two public loading operations: every product's lookup index, and one product's pages.

#include "docparser/loading/FileAccess.hpp"
#include "docparser/loading/FileNames.hpp"
#include "docparser/loading/LoadContext.hpp"
#include "docparser/loading/OrderedMerge.hpp"
#include "docparser/loading/Pipeline.hpp"
#include "docparser/loading/Settings.hpp"
#include "docparser/parsing/LookupParser.hpp"
#include "docparser/parsing/RefItemParser.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>
#include <reference/docparser/DocParserException.hpp>
#include <reference/docparser/DocResourceParser.hpp>

#include <exception>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

namespace reference::docparser {

using RefItemFileMap = DocResourceParser::RefItemFileMap;

namespace {

// One page file, read whole: what openAndReadFile does, and why it gave no text.
struct PageText {
    std::u16string path;
    std::string text;
    ReadResult read;

    explicit PageText(std::u16string filePath) : path(std::move(filePath)) {
        FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << path;
        try {
            read = readFileContents(path, text);
        } catch (const std::exception& e) {
            text.clear(); // parses as nothing, like a missing file
            read = {DropReason::Unreadable, e.what()};
        }
    }
};

// A page file that is missing, unreadable or broken counts as absent.
RefItemFileMap parsePageFile(const PageText& file, detail::LoadContext& context,
                             const RefItemFileMap* replacement = nullptr) {
    FileDiagnostic* record = context.begin([&file] {
        FileDiagnostic description;
        description.source = DiagnosticSource::PageFile;
        description.path = file.path;
        const std::u16string_view path(file.path);
        description.productName = std::u16string(splitFileName(path.substr(path.find_last_of(u'/') + 1)).stem);
        return description;
    });
    try {
        RefItemFileMap pages = parseRefItemFile(file.text, replacement, record);
        if (record != nullptr) {
            for (const auto& entry : pages) {
                record->documentKeys.push_back(entry.first);
            }
        }
        return pages;
    } catch (const std::bad_alloc&) {
        detail::recordDrop(record, file.read, DropReason::Other, "out of memory");
    } catch (const DocParserException&) {
        detail::recordDrop(record, file.read, DropReason::Other, "a required member is missing or has the wrong kind");
    } catch (const std::exception& e) {
        detail::recordDrop(record, file.read, DropReason::Other, e.what());
    }
    return {};
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

// A page file is named by its product's base name. A separator or a ".." would lead out of the
// reference folder, and a NUL would cut the path short when the file is opened, so such a name
// names no page file.
bool isBaseName(std::u16string_view name) {
    constexpr std::u16string_view kRefused(u"/\\\0", 3);
    return name != u".." && name.find_first_of(kRefused) == std::u16string_view::npos;
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

    detail::LoadContext context;
    const ParsingInfo<LookupResourceMap>::JsonParsingFcn parser = [&context](const std::string& text) {
        return parseLookupFile(text, context.scratch, context.file);
    };
    const ParsingInfo<LookupResourceMap>::IsInstalledFcn isInstalled = [&installed](const std::u16string& key) {
        if (!installed) {
            installed = takeInstalledProducts();
        }
        return installed->contains(key);
    };
    return detail::parseProductFiles(roots->lookupFolder, parser, isInstalled, context);
}

DocResourceParser::RefItemFileMap DocResourceParser::getResourceFile(const std::u16string& name) {
    if (!isBaseName(name)) {
        return {};
    }
    const std::shared_ptr<const ReferenceRoots> roots = getReferenceRoots();
    const std::u16string& folder = roots->referenceFolder;

    // The files are read in this order, English first; the English text is parsed last, when the
    // translation is known, so that English pages the translation replaces are never built.
    detail::LoadContext context;
    const PageText english(joinPath(folder, name + ParsingTools::kDotJsonExt));
    const std::u16string locale = ParsingTools::getCurrentLocale();
    if (locale == ParsingTools::kEnglishLocale) {
        return parsePageFile(english, context);
    }
    RefItemFileMap localized = parsePageFile(
        PageText(joinPath(folder, name + ParsingTools::kLocaleSeparator + locale + ParsingTools::kDotJsonExt)),
        context);
    if (localized.empty()) {
        return parsePageFile(english, context);
    }
    RefItemFileMap englishPages = parsePageFile(english, context, &localized);
    if (englishPages.empty()) {
        return localized;
    }
    // Per document the localized header and items win; English pages whose link the
    // translation lacks move over into it, and English pages it has are dropped.
    for (auto it = localized.begin(); it != localized.end();) {
        const auto current = it++;
        const auto englishEntry = englishPages.find(current->first);
        if (englishEntry == englishPages.end()) {
            englishPages.insert(localized.extract(current));
            continue;
        }
        // English pages whose link the translation lacks move over; the others are dropped.
        mergeOrderedMaps(englishEntry->second.getItems(), current->second.getItems(), [](auto&, auto&) {});
        englishEntry->second = std::move(current->second);
    }
    return englishPages;
}

} // namespace reference::docparser
