#include "docparser/loading/FileAccess.hpp"

#include "docparser/loading/FileNames.hpp"
#include "docparser/loading/ZipPackage.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>
#include <reference/docparser/DocResourceParser.hpp>

#include <filesystem>
#include <fstream>
#include <ios>
#include <stdexcept>
#include <system_error>

namespace reference::docparser {

std::string readFileContents(const std::u16string& path) {
    const std::filesystem::path nativePath = toNativePath(path);
    // An ifstream opens a folder on Linux and seeking to its end reports a meaningless size, so
    // only regular files (symbolic links followed) are read at all.
    std::error_code error;
    if (!std::filesystem::is_regular_file(nativePath, error)) {
        return {};
    }
    std::ifstream in(nativePath, std::ios::in | std::ios::binary);
    if (!in.is_open()) {
        return {};
    }
    try {
        in.exceptions(std::ios::failbit | std::ios::badbit);
        in.seekg(0, std::ios::end);
        const std::streamoff size = in.tellg();
        if (size < 0 || static_cast<std::uint64_t>(size) > kMaxDataFileSize) {
            throw std::length_error("data file size out of range");
        }
        std::string content(static_cast<std::size_t>(size), '\0');
        in.seekg(0, std::ios::beg);
        in.read(content.data(), size);
        return content;
    } catch (...) {
        FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileReadErrorSeverity) << "Problem reading JSON file: " << path;
        return {};
    }
}

std::string DocResourceParser::openAndReadFile(const std::u16string& path) {
    FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << path;
    return readFileContents(path);
}

std::string DocResourceParser::openAndReadFile(const ProductPathData& file) {
    FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << file.getFullPath();
    return readFileContents(file.getFullPath());
}

std::string DocResourceParser::openAndReadFile(const ProductZipData& file) {
    FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << file.getName();
    try {
        return file.getFileSystemManager().readEntry(file.getEntry());
    } catch (...) {
        // Same level as the announcement: a bad entry is routine, one package among many.
        FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Error reading file: " << file.getName();
        return {};
    }
}

} // namespace reference::docparser
