#include "docparser/loading/FileAccess.hpp"

#include "docparser/loading/FileNames.hpp"
#include "docparser/loading/ZipPackage.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>
#include <reference/docparser/DocResourceParser.hpp>

#include <cerrno>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace reference::docparser {

namespace {

// Closes the descriptor when the read is over, whichever way it ends.
class Descriptor {
public:
    explicit Descriptor(int fd) noexcept : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const noexcept { return fd_; }

private:
    int fd_;
};

ReadResult failed(DropReason reason, std::string message, std::string& content) {
    content.clear();
    return {reason, std::move(message)};
}

} // namespace

ReadResult readFileContents(const std::u16string& path, std::string& content) {
    const std::string nativePath = toNativePath(path).native();
    // Not blocking: a FIFO or device is opened only to be refused below. The type is taken from
    // the opened file itself, so it cannot change between the test and the read.
    const Descriptor file(::open(nativePath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.get() < 0) {
        const int error = errno;
        return failed(error == ENOENT || error == ENOTDIR ? DropReason::Missing : DropReason::Unreadable,
                      error == ENOENT || error == ENOTDIR ? "no such file" : std::strerror(error), content);
    }
    struct stat status {};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return failed(DropReason::Unreadable, "not a regular file", content);
    }
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (size > kMaxDataFileSize) {
        FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileReadErrorSeverity) << "Problem reading JSON file: " << path;
        return failed(DropReason::Unreadable, "larger than the 1 GiB bound for data files", content);
    }
    try {
        // Resizing the reused buffer in place writes only what it grows by; the read overwrites
        // the rest.
        content.resize(static_cast<std::size_t>(size));
    } catch (const std::exception& e) {
        FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileReadErrorSeverity) << "Problem reading JSON file: " << path;
        return failed(DropReason::Unreadable, e.what(), content);
    }
    std::size_t total = 0;
    while (total < content.size()) {
        const ssize_t got = ::read(file.get(), content.data() + total, content.size() - total);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            // A file that shrank while it was read is not read whole either.
            const std::string reason = got < 0 ? std::strerror(errno) : "the file shrank while it was read";
            FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileReadErrorSeverity) << "Problem reading JSON file: " << path;
            return failed(DropReason::Unreadable, reason, content);
        }
        total += static_cast<std::size_t>(got);
    }
    if (content.empty()) {
        return {DropReason::NoData, "the file is empty"};
    }
    return {};
}

ReadResult readResourceText(const ProductPathData& file, std::string& text) {
    FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << file.getFullPath();
    return readFileContents(file.getFullPath(), text);
}

ReadResult readResourceText(const ProductZipData& file, std::string& text) {
    FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << file.getName();
    try {
        file.getFileSystemManager().readEntry(file.getEntry(), text);
    } catch (const std::exception& e) {
        // Same level as the announcement: a bad entry is routine, one package among many.
        FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Error reading file: " << file.getName();
        return failed(DropReason::Unreadable, e.what(), text);
    } catch (...) {
        FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Error reading file: " << file.getName();
        return failed(DropReason::Unreadable, "unknown failure", text);
    }
    if (text.empty()) {
        return {DropReason::NoData, "the entry is empty"};
    }
    return {};
}

std::string DocResourceParser::openAndReadFile(const std::u16string& path) {
    FOUNDATION_DIAG_LOG(diagnosticLogger(), kFileAccessSeverity) << "Reading file: " << path;
    std::string text;
    readFileContents(path, text);
    return text;
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
