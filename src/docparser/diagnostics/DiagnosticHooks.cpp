// The recording behind the diagnostics hooks: one record per file, package and entry, in the order
// the loaders read them, with the reason of every drop and the warnings of lenient reads.

#include "docparser/diagnostics/DiagnosticHooks.hpp"

#include "docparser/diagnostics/FailureExplanation.hpp"
#include "docparser/diagnostics/Recorder.hpp"

#include <reference/docparser/TextConversion.hpp>

#include <boost/system/error_code.hpp>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

namespace reference::docparser::diagnostics {

constinit thread_local Recorder* tActiveRecorder = nullptr;

namespace {

std::string quoted(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 2);
    out += '"';
    out += text;
    out += '"';
    return out;
}

// Line and column (both from 1, the column in UTF-8 characters) of a byte offset.
void setPosition(FileDiagnostic& record, std::string_view text, std::size_t offset) {
    offset = std::min(offset, text.size());
    std::uint64_t line = 1;
    std::size_t lineStart = 0;
    for (std::size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    std::uint64_t column = 1;
    for (std::size_t i = lineStart; i < offset; ++i) {
        // Continuation bytes belong to the character before them.
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            ++column;
        }
    }
    record.offset = offset;
    record.line = line;
    record.column = column;
}

// The product name a page file stands for: its name without folder and extension.
std::u16string stemOf(const std::u16string& path) {
    const std::size_t slash = path.find_last_of(u'/');
    const std::u16string_view name =
        slash == std::u16string::npos ? std::u16string_view(path) : std::u16string_view(path).substr(slash + 1);
    return std::u16string(name.substr(0, std::min(name.size(), name.find_last_of(u'.'))));
}

bool sameFile(const FileDiagnostic& record, DiagnosticSource source, const std::u16string& path,
              const std::u16string& entry = {}) {
    return record.source == source && record.path == path && record.entry == entry;
}

// The record of a file or package that the folder listing found.
FileDiagnostic listedFile(DiagnosticSource source, const ProductPathData& file) {
    FileDiagnostic record;
    record.source = source;
    record.path = file.getFullPath();
    record.productName = file.getName();
    record.localeVariant = file.isNonEnglishLocale();
    return record;
}

} // namespace

void recordSyntaxError(Recorder& recorder, std::string_view text, std::size_t consumed,
                       const boost::system::error_code& error) noexcept {
    try {
        FileDiagnostic& record = recorder.currentFile();
        record.dropReason = DropReason::SyntaxError;
        record.message = error.message();
        setPosition(record, text, consumed);
        recorder.noteEmptyText(text.empty());
        recorder.endImplicitFile();
    } catch (...) {
    }
}

void recordPackageBegin(Recorder& recorder, const ProductPathData& package) noexcept {
    try {
        recorder.begin(listedFile(DiagnosticSource::Package, package));
        recorder.end();
        recorder.packagePath = package.getFullPath();
    } catch (...) {
    }
}

void recordPackageDropped(Recorder& recorder) noexcept {
    try {
        FileDiagnostic* record = recorder.lastRecord([&recorder](const FileDiagnostic& candidate) {
            return sameFile(candidate, DiagnosticSource::Package, recorder.packagePath);
        });
        if (record != nullptr) {
            // The package reader's own message says what was wrong (not a zip file, damaged, ...).
            explainException(*record, DropReason::Unreadable);
        }
    } catch (...) {
    }
}

void recordFileBegin(Recorder& recorder, const ProductPathData& file) noexcept {
    try {
        recorder.begin(listedFile(DiagnosticSource::File, file));
    } catch (...) {
        recorder.end();
    }
}

void recordFileBegin(Recorder& recorder, const ProductZipData& file) noexcept {
    try {
        FileDiagnostic record;
        record.source = DiagnosticSource::PackageEntry;
        record.path = recorder.packagePath;
        record.entry = utf8ToUtf16(file.getEntry().getName());
        record.productName = file.getName();
        record.localeVariant = file.isNonEnglishLocale();
        recorder.begin(std::move(record));
    } catch (...) {
        recorder.end();
    }
}

void recordPageFileBegin(Recorder& recorder, const std::u16string& path) noexcept {
    try {
        FileDiagnostic record;
        record.source = DiagnosticSource::PageFile;
        record.path = path;
        record.productName = stemOf(path);
        recorder.begin(std::move(record));
    } catch (...) {
        recorder.end();
    }
}

void recordFileDropped(Recorder& recorder, const ProductPathData& file, ExplainEmptyText explainEmpty) noexcept {
    try {
        FileDiagnostic* record = recorder.lastRecord([&file](const FileDiagnostic& candidate) {
            return sameFile(candidate, DiagnosticSource::File, file.getFullPath());
        });
        if (record != nullptr) {
            completeDrop(*record, recorder.textWasEmpty(), explainEmpty);
        }
    } catch (...) {
    }
    recorder.end();
}

void recordFileDropped(Recorder& recorder, const ProductZipData& file, ExplainEmptyText explainEmpty) noexcept {
    try {
        const std::u16string entry = utf8ToUtf16(file.getEntry().getName());
        FileDiagnostic* record = recorder.lastRecord([&recorder, &entry](const FileDiagnostic& candidate) {
            return sameFile(candidate, DiagnosticSource::PackageEntry, recorder.packagePath, entry);
        });
        if (record != nullptr) {
            completeDrop(*record, recorder.textWasEmpty(), explainEmpty);
        }
    } catch (...) {
    }
    recorder.end();
}

void recordPageFileDropped(Recorder& recorder, const std::u16string& path, ExplainEmptyText explainEmpty) noexcept {
    try {
        FileDiagnostic* record = recorder.lastRecord(
            [&path](const FileDiagnostic& candidate) { return sameFile(candidate, DiagnosticSource::PageFile, path); });
        if (record != nullptr) {
            completeDrop(*record, recorder.textWasEmpty(), explainEmpty);
        }
    } catch (...) {
    }
    recorder.end();
}

void recordDocumentKey(Recorder& recorder, const std::u16string& key) noexcept {
    try {
        recorder.currentFile().documentKeys.push_back(key);
    } catch (...) {
    }
}

void recordFileEnd(Recorder& recorder) noexcept { recorder.end(); }

void recordReadFailure(Recorder& recorder, detail::ReadFailure failure, std::string_view key,
                       const void* node) noexcept {
    try {
        FileDiagnostic& record = recorder.currentFile();
        std::string missingKey;
        bool describeKind = false;
        switch (failure) {
        case detail::ReadFailure::MissingKey:
            record.dropReason = DropReason::MissingKey;
            record.message = "missing required member " + quoted(key);
            missingKey = std::string(key);
            break;
        case detail::ReadFailure::NotAnObject:
            record.dropReason = DropReason::WrongKind;
            record.message = "expected an object";
            describeKind = true;
            break;
        case detail::ReadFailure::NotAnArray:
            record.dropReason = DropReason::WrongKind;
            record.message = "expected an array";
            describeKind = true;
            break;
        case detail::ReadFailure::NotAString:
            record.dropReason = DropReason::WrongKind;
            record.message = "expected a string";
            describeKind = true;
            break;
        }
        // Outside a watched document the member cannot be located; the message still names it.
        if (recorder.watching() && node != nullptr) {
            recorder.locateLater(node, -1, std::move(missingKey), describeKind);
        } else {
            recorder.endImplicitFile();
        }
    } catch (...) {
    }
}

void recordUnknownEnumText(Recorder& recorder, const boost::json::value& member, std::string_view text) noexcept {
    try {
        FileDiagnostic& record = recorder.currentFile();
        record.warnings.push_back(ParseWarning{WarningKind::UnknownEnumText, {}, std::string(text)});
        if (recorder.watching()) {
            recorder.locateLater(&member, static_cast<long>(record.warnings.size() - 1), {}, false);
        } else {
            recorder.endImplicitFile();
        }
    } catch (...) {
    }
}

void recordDocumentKeyTaken(Recorder& recorder, const boost::json::value& document,
                            const std::u16string& key) noexcept {
    try {
        FileDiagnostic& record = recorder.currentFile();
        record.warnings.push_back(ParseWarning{WarningKind::DocumentKeyTaken, {}, utf16ToUtf8(key)});
        if (recorder.watching()) {
            recorder.locateLater(&document, static_cast<long>(record.warnings.size() - 1), {}, false);
        } else {
            recorder.endImplicitFile();
        }
    } catch (...) {
    }
}

void recordWatchBegin(Recorder& recorder, const boost::json::value& root) noexcept { recorder.watch(root); }

void recordWatchEnd(Recorder& recorder) noexcept { recorder.unwatch(); }

} // namespace reference::docparser::diagnostics
