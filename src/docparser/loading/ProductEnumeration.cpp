#include "docparser/loading/FileNames.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <filesystem>
#include <string_view>
#include <system_error>

namespace reference::docparser {

const std::u16string DocResourceParser::ParsingTools::kJsonExt = u"json";
const std::u16string DocResourceParser::ParsingTools::kZipExt = u"zip";
const std::u16string DocResourceParser::ParsingTools::kDotJsonExt = u".json";
const std::u16string DocResourceParser::ParsingTools::kDotZipExt = u".zip";

bool DocResourceParser::isValidFilename(const std::filesystem::path& path) {
    // Extensions are compared case-sensitively: pname.JSON is not a data file.
    const std::filesystem::path fileName = path.filename();
    const auto extension = splitFileName(std::string_view(fileName.native())).extension;
    return equalsAscii(extension, ParsingTools::kZipExt) || equalsAscii(extension, ParsingTools::kJsonExt);
}

std::pair<std::vector<ProductPathData>, std::vector<ProductPathData>>
DocResourceParser::getAllProducts(const std::u16string& folder, const std::vector<std::u16string>& localeSuffixes,
                                  const std::u16string& currentLocaleSuffix) {
    std::vector<ProductPathData> jsonFiles;
    std::vector<ProductPathData> zipFiles;
    if (folder.empty()) {
        return {std::move(jsonFiles), std::move(zipFiles)};
    }
    // A folder that is missing or cannot be listed simply holds no products.
    std::error_code error;
    std::filesystem::directory_iterator entries(toNativePath(folder), error);
    if (error) {
        return {std::move(jsonFiles), std::move(zipFiles)};
    }
    for (const auto& entry : entries) {
        const std::filesystem::path fileName = entry.path().filename();
        const std::string& name = fileName.native();
        if (name.empty() || !isValidFilename(fileName) || !isValidUtf8Name(name)) {
            continue;
        }
        const auto parts = splitFileName(std::string_view(name));
        std::u16string stem = text::utf8ToUtf16(parts.stem);

        bool isVariant = false;
        for (const auto& suffix : localeSuffixes) {
            if (std::u16string_view(stem).ends_with(suffix)) {
                isVariant = true;
                break;
            }
        }
        // Of the locale variants only the current language's is wanted; the English base file is
        // always kept, and the merge step later lets the variant win.
        if (isVariant && !std::u16string_view(stem).ends_with(currentLocaleSuffix)) {
            continue;
        }
        auto& target = equalsAscii(parts.extension, ParsingTools::kZipExt) ? zipFiles : jsonFiles;
        target.emplace_back(std::move(stem), isVariant, text::utf8ToUtf16(entry.path().native()));
    }
    return {std::move(jsonFiles), std::move(zipFiles)};
}

} // namespace reference::docparser
