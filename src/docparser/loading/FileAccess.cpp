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

void readFileContents(const std::u16string& path, std::string& content) {
    const std::filesystem::path nativePath = toNativePath(path);
    // An ifstream opens a folder on Linux and seeking to its end reports a meaningless size, so
    // only regular files (symbolic links followed) are read at all.
    std::error_code error;
    if (!std::filesystem::is_regular_file(nativePath, error)) {
        content.clear();
        return;
    }
    std::ifstream in(nativePath, std::ios::in | std::ios::binary);
    if (!in.is_open()) {
        content.clear();
        return;
    }
    try {
        in.exceptions(std::ios::failbit | std::ios::badbit);
        in.seekg(0, std::ios::end);
        const std::streamoff size = in.tellg();
        if (size < 0 || static_cast<std::uint64_t>(size) > kMaxDataFileSize) {
            throw std::length_error("data file size out of range");
        }
        // Resizing the reused buffer in place writes only what it grows by; the read overwrites
        // the rest.
        content.resize(static_cast<std::size_t>(size));
        in.seekg(0, std::ios::beg);
        in.read(content.data(), size);
    } catch (...) {
        content.clear();
        FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileReadErrorSeverity) << "Problem reading JSON file: " << path;
    }
}

std::string readFileContents(const std::u16string& path) {
    std::string content;
    readFileContents(path, content);
    return content;
}

void readResourceText(const ProductPathData& file, std::string& text) {
    FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << file.getFullPath();
    readFileContents(file.getFullPath(), text);
}

void readResourceText(const ProductZipData& file, std::string& text) {
    FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << file.getName();
    try {
        file.getFileSystemManager().readEntry(file.getEntry(), text);
    } catch (...) {
        text.clear();
        // Same level as the announcement: a bad entry is routine, one package among many.
        FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Error reading file: " << file.getName();
    }
}

std::string DocResourceParser::openAndReadFile(const std::u16string& path) {
    FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << path;
    return readFileContents(path);
}

std::string DocResourceParser::openAndReadFile(const ProductPathData& file) {
    std::string text;
    readResourceText(file, text);
    return text;
}

std::string DocResourceParser::openAndReadFile(const ProductZipData& file) {
    std::string text;
    readResourceText(file, text);
    return text;
}

} // namespace reference::docparser
