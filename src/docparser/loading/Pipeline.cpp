// Reads one kind of resource for every product in a data folder: zip packages first, then loose
// files, English base files plus the current language's variants, and files each resulting
// resource as installed or uninstalled. A file or package that cannot be read or parsed is
// skipped without a word; the file-access records are the only trace of it.

#include "docparser/loading/Pipeline.hpp"

#include "docparser/loading/FileNames.hpp"
#include "docparser/loading/ZipPackage.hpp"

#include <reference/docparser/DocParserException.hpp>
#include <reference/docparser/TextConversion.hpp>

#include <exception>
#include <new>
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

// The record of a file or package that the folder listing found, or of a package entry.
FileDiagnostic listedFile(DiagnosticSource source, const ProductPathData& file, const detail::LoadContext&) {
    FileDiagnostic record;
    record.source = source;
    record.path = file.getFullPath();
    record.productName = file.getName();
    record.localeVariant = file.isNonEnglishLocale();
    return record;
}

FileDiagnostic listedFile(DiagnosticSource, const ProductZipData& file, const detail::LoadContext& context) {
    FileDiagnostic record;
    record.source = DiagnosticSource::PackageEntry;
    record.path = context.packagePath;
    record.entry = utf8ToUtf16(file.getEntry().getName());
    record.productName = file.getName();
    record.localeVariant = file.isNonEnglishLocale();
    return record;
}

} // namespace

void detail::recordDrop(FileDiagnostic* record, const ReadResult& read, DropReason fallbackReason,
                        std::string_view fallbackMessage) {
    if (record == nullptr) {
        return;
    }
    if (!read.read()) {
        // The text was empty because the read failed: the parser's complaint about nothing says
        // nothing about the file.
        record->dropReason = read.reason;
        record->message = read.message;
        record->offset = record->line = record->column = 0;
    } else if (record->dropReason == DropReason::None) {
        record->dropReason = fallbackReason;
        record->message = fallbackMessage;
    }
    record->documentKeys.clear();
}

DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap>
detail::parseProductFiles(const std::u16string& folder,
                          const ParsingInfo<DocResourceParser::LookupResourceMap>::JsonParsingFcn& jsonParsingFcn,
                          const ParsingInfo<DocResourceParser::LookupResourceMap>::IsInstalledFcn& isInstalledFcn,
                          LoadContext& context) {
    using Tools = DocResourceParser::ParsingTools;
    if (folder.empty()) {
        return {};
    }
    std::vector<std::u16string> locales = Tools::getSupportedDocLocales();
    std::u16string localeSuffix = Tools::kLocaleSeparator + Tools::getCurrentLocale();
    auto [jsonFiles, zipPackages] = DocResourceParser::getAllProducts(folder, locales, localeSuffix);

    const ParsingInfo<DocResourceParser::LookupResourceMap> info{jsonParsingFcn, isInstalledFcn, std::move(locales),
                                                                 std::move(localeSuffix), &context};
    auto results = Tools::readZipFiles(zipPackages, info);
    Tools::readJsonFiles(jsonFiles, info, results);
    return results;
}

template <PipelineResourceMap T>
DocResourceParser::ParsingResults<T> DocResourceParser::ParsingTools::parseMultipleProductFiles(
    const std::u16string& folder, const typename ParsingInfo<T>::JsonParsingFcn& jsonParsingFcn,
    const typename ParsingInfo<T>::IsInstalledFcn& isInstalledFcn) {
    detail::LoadContext context;
    return detail::parseProductFiles(folder, jsonParsingFcn, isInstalledFcn, context);
}

template <PipelineResourceMap T>
DocResourceParser::ParsingResults<T>
DocResourceParser::ParsingTools::readZipFiles(const std::vector<ProductPathData>& zipPackages,
                                              const ParsingInfo<T>& info) {
    if (info.context == nullptr) {
        detail::LoadContext own;
        return readZipFiles(zipPackages, ParsingInfo<T>{info.jsonParsingFcn, info.isInstalledFcn, info.supportedLocales,
                                                        info.localeSuffix, &own});
    }
    detail::LoadContext& context = *info.context;
    ParsingResults<T> results;
    for (const auto& packageFile : zipPackages) {
        const std::size_t record =
            context.recorder != nullptr
                ? context.recorder->add(listedFile(DiagnosticSource::Package, packageFile, context))
                : 0;
        try {
            context.packagePath = packageFile.getFullPath();
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
        } catch (const std::exception& e) {
            // A package that cannot be opened or listed counts as absent; the zip reader's own
            // message says what was wrong with it.
            if (context.recorder != nullptr) {
                FileDiagnostic& dropped = context.recorder->files[record];
                dropped.dropReason = DropReason::Unreadable;
                dropped.message = e.what();
            }
        }
    }
    return results;
}

template <PipelineResourceMap T, PipelineFileRecord D>
void DocResourceParser::ParsingTools::readJsonFiles(const std::vector<D>& files, const ParsingInfo<T>& info,
                                                    ParsingResults<T>& results) {
    if (info.context == nullptr) {
        detail::LoadContext own;
        readJsonFiles(
            files,
            ParsingInfo<T>{info.jsonParsingFcn, info.isInstalledFcn, info.supportedLocales, info.localeSuffix, &own},
            results);
        return;
    }
    detail::LoadContext& context = *info.context;
    std::string& text = context.scratch.text;
    for (const auto& file : files) {
        FileDiagnostic* record =
            context.begin([&file, &context] { return listedFile(DiagnosticSource::File, file, context); });
        context.file = record;
        ReadResult read;
        try {
            const bool sourceTakesPrecedence = file.isNonEnglishLocale();
            read = readResourceText(file, text);
            T parsed = info.jsonParsingFcn(text);
            if (record != nullptr) {
                for (const auto& entry : parsed) {
                    record->documentKeys.push_back(entry.first);
                }
            }
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
        } catch (const std::bad_alloc&) {
            // Unreadable text, a JSON syntax error, a missing key, memory: the file counts as
            // absent. What it merged before the failure stays merged.
            detail::recordDrop(record, read, DropReason::Other, "out of memory");
        } catch (const DocParserException&) {
            detail::recordDrop(record, read, DropReason::Other, "a required member is missing or has the wrong kind");
        } catch (const std::exception& e) {
            detail::recordDrop(record, read, DropReason::Other, e.what());
        } catch (...) {
            detail::recordDrop(record, read, DropReason::Other, "unknown failure");
        }
        context.file = nullptr;
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
