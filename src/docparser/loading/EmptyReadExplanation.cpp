#include "docparser/loading/EmptyReadExplanation.hpp"

#include "docparser/loading/FileAccess.hpp"
#include "docparser/loading/FileNames.hpp"
#include "docparser/loading/ZipPackage.hpp"

#include <exception>
#include <filesystem>
#include <system_error>

namespace reference::docparser {

using diagnostics::DropExplanation;

DropExplanation explainEmptyRead(const std::u16string& path, bool missingIsAbsent) {
    std::error_code error;
    const std::filesystem::path nativePath = toNativePath(path);
    const auto status = std::filesystem::status(nativePath, error);
    if (!std::filesystem::exists(status)) {
        return {missingIsAbsent ? DropReason::Missing : DropReason::Unreadable, "no such file"};
    }
    if (!std::filesystem::is_regular_file(status)) {
        return {DropReason::Unreadable, "not a regular file"};
    }
    const auto size = std::filesystem::file_size(nativePath, error);
    if (!error && size == 0) {
        return {DropReason::NoData, "the file is empty"};
    }
    if (!error && size > kMaxDataFileSize) {
        return {DropReason::Unreadable, "larger than the 1 GiB bound for data files"};
    }
    return {DropReason::Unreadable, "the file cannot be read"};
}

DropExplanation explainEmptyRead(const ProductPathData& file) { return explainEmptyRead(file.getFullPath(), false); }

DropExplanation explainEmptyRead(const ProductZipData& file) {
    try {
        file.getFileSystemManager().readEntry(file.getEntry());
        return {DropReason::NoData, "the entry is empty"};
    } catch (const std::exception& e) {
        return {DropReason::Unreadable, e.what()};
    }
}

} // namespace reference::docparser
