// Reads one kind of resource for every product in a data folder: zip packages first, then loose
// files, English base files plus the current language's variants, and files each resulting
// resource as installed or uninstalled. A file or package that cannot be read or parsed is
// skipped without a word; the file-access records are the only trace of it.

#include "docparser/diagnostics/DiagnosticHooks.hpp"
#include "docparser/loading/EmptyReadExplanation.hpp"
#include "docparser/loading/FileAccess.hpp"
#include "docparser/loading/FileNames.hpp"
#include "docparser/loading/ZipPackage.hpp"
#include "docparser/parsing/ScratchMemory.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <string>
#include <utility>

namespace reference::docparser {
namespace {

bool endsWithAny(std::u16string_view stem, const std::vector<std::u16string>& suffixes) {
    for (const auto& suffix : suffixes) {
        if (stem.ends_with(suffix)) {
            return true;
        }
    }
    return false;
}

} // namespace

template <PipelineResourceMap T>
DocResourceParser::ParsingResults<T> DocResourceParser::ParsingTools::parseMultipleProductFiles(
    const std::u16string& folder, const typename ParsingInfo<T>::JsonParsingFcn& jsonParsingFcn,
    const typename ParsingInfo<T>::IsInstalledFcn& isInstalledFcn) {
    if (folder.empty()) {
        return {};
    }
    std::vector<std::u16string> locales = getSupportedDocLocales();
    std::u16string localeSuffix = kLocaleSeparator + getCurrentLocale();
    auto [jsonFiles, zipPackages] = getAllProducts(folder, locales, localeSuffix);

    const ParsingInfo<T> info{jsonParsingFcn, isInstalledFcn, std::move(locales), std::move(localeSuffix)};
    const ScratchScope scratch;
    ParsingResults<T> results = readZipFiles(zipPackages, info);
    readJsonFiles(jsonFiles, info, results);
    return results;
}

template <PipelineResourceMap T>
DocResourceParser::ParsingResults<T>
DocResourceParser::ParsingTools::readZipFiles(const std::vector<ProductPathData>& zipPackages,
                                              const ParsingInfo<T>& info) {
    ParsingResults<T> results;
    for (const auto& packageFile : zipPackages) {
        diagnostics::packageBegin(packageFile);
        try {
            // The package stays open exactly while its entries are read: the records below point
            // at it and are destroyed first.
            ZipPackage package(packageFile.getFullPath());
            const std::vector<ZipLeaf> leaves = package.getAllLeafs();
            std::vector<ProductZipData> entries;
            entries.reserve(leaves.size());
            for (const auto& leaf : leaves) {
                if (!isValidFilename(toNativePath(leaf.baseName))) {
                    continue;
                }
                const std::u16string_view stem = splitFileName(std::u16string_view(leaf.baseName)).stem;
                bool isVariant = false;
                if (leaves.size() > 1) {
                    // Several leaves: each leaf's own name tells whether it is a locale variant.
                    isVariant = endsWithAny(stem, info.supportedLocales);
                } else {
                    // A single leaf inherits the package's flag, which comes from the package's name.
                    isVariant = packageFile.isNonEnglishLocale();
                }
                if (isVariant && !stem.ends_with(info.localeSuffix)) {
                    continue;
                }
                entries.emplace_back(std::u16string(stem), isVariant, leaf.entry, package);
            }
            readJsonFiles(entries, info, results);
        } catch (...) {
            // A package that cannot be opened or listed counts as absent.
            diagnostics::packageDropped();
        }
    }
    return results;
}

template <PipelineResourceMap T, PipelineFileRecord D>
void DocResourceParser::ParsingTools::readJsonFiles(const std::vector<D>& files, const ParsingInfo<T>& info,
                                                    ParsingResults<T>& results) {
    std::string ownText;
    ScratchMemory* scratch = ScratchScope::active();
    std::string& text = scratch != nullptr ? scratch->text : ownText;
    for (const auto& file : files) {
        diagnostics::fileBegin(file);
        try {
            const bool sourceTakesPrecedence = file.isNonEnglishLocale();
            readResourceText(file, text);
            T parsed = info.jsonParsingFcn(text);
            diagnostics::fileParsed(parsed);
            for (auto it = parsed.begin(); it != parsed.end();) {
                const auto current = it++;
                T& target =
                    info.isInstalledFcn(current->first) ? results.installedResources : results.uninstalledResources;
                const auto position = target.lower_bound(current->first);
                if (position != target.end() && position->first == current->first) {
                    mergeResourceFiles(position->second, std::move(current->second), sourceTakesPrecedence);
                } else {
                    // The parsed node moves over whole: no key or resource is copied.
                    target.insert(position, parsed.extract(current));
                }
            }
        } catch (...) {
            // Unreadable text, a JSON syntax error, a missing key: the file counts as absent. What
            // it merged before the failure stays merged.
            diagnostics::fileDropped(file, [&file] { return explainEmptyRead(file); });
        }
    }
}

using LookupMap = DocResourceParser::LookupResourceMap;

template DocResourceParser::ParsingResults<LookupMap>
DocResourceParser::ParsingTools::parseMultipleProductFiles<LookupMap>(const std::u16string&,
                                                                      const ParsingInfo<LookupMap>::JsonParsingFcn&,
                                                                      const ParsingInfo<LookupMap>::IsInstalledFcn&);
template DocResourceParser::ParsingResults<LookupMap>
DocResourceParser::ParsingTools::readZipFiles<LookupMap>(const std::vector<ProductPathData>&,
                                                         const ParsingInfo<LookupMap>&);
template void DocResourceParser::ParsingTools::readJsonFiles<LookupMap, ProductPathData>(
    const std::vector<ProductPathData>&, const ParsingInfo<LookupMap>&, ParsingResults<LookupMap>&);
template void DocResourceParser::ParsingTools::readJsonFiles<LookupMap, ProductZipData>(
    const std::vector<ProductZipData>&, const ParsingInfo<LookupMap>&, ParsingResults<LookupMap>&);

} // namespace reference::docparser
