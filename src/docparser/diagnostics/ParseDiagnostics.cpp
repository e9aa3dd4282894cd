#include <reference/docparser/ParseDiagnostics.hpp>

#include "docparser/diagnostics/DiagnosticHooks.hpp"
#include "docparser/loading/FileAccess.hpp"
#include "docparser/loading/FileNames.hpp"
#include "docparser/loading/ZipPackage.hpp"
#include "docparser/parsing/FieldAccess.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <reference/docparser/DocParserException.hpp>

#include <boost/json/parser.hpp>
#include <boost/system/system_error.hpp>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <new>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <utility>

namespace reference::docparser {

namespace diagnostics {

constinit thread_local Recorder* tActiveRecorder = nullptr;

// The state of one scope. Events arrive in file order: a file begins, its text is parsed and
// watched, reads may fail or warn, and the file ends parsed or dropped. JSON Pointers are found
// once per watched document, when the watch ends, by one walk of the tree for all the nodes
// that were reported in it; the parsers pass nothing but the node's address.
class Recorder {
public:
    std::vector<FileDiagnostic> files;

    void begin(FileDiagnostic record) {
        files.push_back(std::move(record));
        current_ = files.size() - 1;
        implicit_ = false;
        textWasEmpty_ = false;
    }

    void end() noexcept { current_.reset(); }

    // The file that parse events belong to. Events outside a loading operation (the public
    // field-access tools) get a Text record of their own, which ends with its watched document.
    FileDiagnostic& currentFile() {
        if (!current_) {
            begin(FileDiagnostic{});
            implicit_ = true;
        }
        return files[*current_];
    }

    // The last record of a file that began; null when there is none.
    template <class Matches>
    FileDiagnostic* lastRecord(Matches&& matches) noexcept {
        for (auto it = files.rbegin(); it != files.rend(); ++it) {
            if (matches(*it)) {
                return &*it;
            }
        }
        return nullptr;
    }

    void endImplicitFile() noexcept {
        if (implicit_) {
            implicit_ = false;
            end();
        }
    }

    void noteEmptyText(bool empty) noexcept { textWasEmpty_ = empty; }
    bool textWasEmpty() const noexcept { return textWasEmpty_; }

    std::u16string packagePath;

    // Watching a parsed document.
    void watch(const boost::json::value& root) noexcept {
        root_ = &root;
        pending_.clear();
    }
    bool watching() const noexcept { return root_ != nullptr; }

    // `node` is located when the watch ends; its pointer then goes to the current file's failure
    // (warning < 0) or to one of its warnings, with `missingKey` appended for an absent member.
    void locateLater(const void* node, long warning, std::string missingKey, bool describeKind) {
        pending_.push_back(Pending{node, *current_, warning, std::move(missingKey), describeKind});
    }

    void unwatch() noexcept;

private:
    struct Pending {
        const void* node;
        std::size_t file;
        long warning;
        std::string missingKey;
        bool describeKind;
    };

    void walk(const boost::json::value& value, std::string& pointer,
              std::unordered_map<const void*, std::vector<const Pending*>>& wanted, std::size_t& remaining);
    void resolve(const Pending& pending, const std::string& pointer, const boost::json::value& node);

    std::optional<std::size_t> current_;
    bool implicit_ = false;
    bool textWasEmpty_ = false;
    const boost::json::value* root_ = nullptr;
    std::vector<Pending> pending_;
};

namespace {

std::string_view kindName(const boost::json::value& value) noexcept {
    switch (value.kind()) {
    case boost::json::kind::null:
        return "null";
    case boost::json::kind::bool_:
        return "a boolean";
    case boost::json::kind::int64:
    case boost::json::kind::uint64:
    case boost::json::kind::double_:
        return "a number";
    case boost::json::kind::string:
        return "a string";
    case boost::json::kind::array:
        return "an array";
    case boost::json::kind::object:
        return "an object";
    }
    return "a value";
}

// One reference token of a JSON Pointer (RFC 6901): '~' and '/' are escaped.
void appendToken(std::string& pointer, std::string_view token) {
    pointer += '/';
    for (const char c : token) {
        if (c == '~') {
            pointer += "~0";
        } else if (c == '/') {
            pointer += "~1";
        } else {
            pointer += c;
        }
    }
}

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

std::u16string stemOf(const std::u16string& path) {
    const std::size_t slash = path.find_last_of(u'/');
    const std::u16string_view name =
        slash == std::u16string::npos ? std::u16string_view(path) : std::u16string_view(path).substr(slash + 1);
    return std::u16string(splitFileName(name).stem);
}

// Why the file reader gave no text for a file on disk, which it does not say itself: it
// returns "" alike for a missing, unreadable, oversized and empty file.
void explainEmptyRead(FileDiagnostic& record, bool missingIsAbsent) {
    std::error_code error;
    const std::filesystem::path path = toNativePath(record.path);
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        record.dropReason = missingIsAbsent ? DropReason::Missing : DropReason::Unreadable;
        record.message = "no such file";
        return;
    }
    if (!std::filesystem::is_regular_file(status)) {
        record.dropReason = DropReason::Unreadable;
        record.message = "not a regular file";
        return;
    }
    const auto size = std::filesystem::file_size(path, error);
    if (!error && size == 0) {
        record.dropReason = DropReason::NoData;
        record.message = "the file is empty";
        return;
    }
    record.dropReason = DropReason::Unreadable;
    if (!error && size > kMaxDataFileSize) {
        record.message = "larger than the 1 GiB bound for data files";
    } else {
        record.message = "the file cannot be read";
    }
}

// The reason for a drop that no parse event explained, from the exception being handled.
// `readerFailure` is the reason to give a failure of the file or package reader itself.
void explainException(FileDiagnostic& record, DropReason readerFailure) {
    const std::exception_ptr failure = std::current_exception();
    if (!failure) {
        record.dropReason = DropReason::Other;
        record.message = "unknown failure";
        return;
    }
    try {
        std::rethrow_exception(failure);
    } catch (const boost::system::system_error& e) {
        record.dropReason = DropReason::SyntaxError;
        record.message = e.code().message();
    } catch (const DocParserException&) {
        record.dropReason = DropReason::Other;
        record.message = "a required member is missing or has the wrong kind";
    } catch (const std::bad_alloc&) {
        record.dropReason = DropReason::Other;
        record.message = "out of memory";
    } catch (const ZipError& e) {
        record.dropReason = readerFailure;
        record.message = e.what();
    } catch (const std::exception& e) {
        record.dropReason = DropReason::Other;
        record.message = e.what();
    } catch (...) {
        record.dropReason = DropReason::Other;
        record.message = "unknown failure";
    }
}

// Fills in a drop: a parse event may already have said why; an empty text is explained by the
// file itself, anything else by the exception in flight.
template <class ExplainEmpty>
void completeDrop(Recorder& recorder, FileDiagnostic& record, ExplainEmpty&& explainEmpty) {
    if (record.dropReason == DropReason::SyntaxError && recorder.textWasEmpty()) {
        // The parser stopped at the start of nothing; the position says nothing about the file.
        record.offset = record.line = record.column = 0;
        explainEmpty(record);
    } else if (record.dropReason == DropReason::None) {
        explainException(record, DropReason::Other);
    }
    record.documentKeys.clear();
}

bool sameFile(const FileDiagnostic& record, DiagnosticSource source, const std::u16string& path,
              const std::u16string& entry = {}) {
    return record.source == source && record.path == path && record.entry == entry;
}

} // namespace

void Recorder::walk(const boost::json::value& value, std::string& pointer,
                    std::unordered_map<const void*, std::vector<const Pending*>>& wanted, std::size_t& remaining) {
    if (remaining == 0) {
        return;
    }
    // A missing key is reported with the object, which lies at its value's address.
    for (const void* address : {static_cast<const void*>(&value), static_cast<const void*>(value.if_object()),
                                static_cast<const void*>(value.if_array())}) {
        if (address == nullptr) {
            continue;
        }
        const auto found = wanted.find(address);
        if (found != wanted.end()) {
            for (const Pending* pending : found->second) {
                resolve(*pending, pointer, value);
            }
            remaining -= found->second.size();
            wanted.erase(found);
        }
    }
    const std::size_t length = pointer.size();
    if (const auto* object = value.if_object()) {
        for (const auto& member : *object) {
            appendToken(pointer, member.key());
            walk(member.value(), pointer, wanted, remaining);
            pointer.resize(length);
        }
    } else if (const auto* array = value.if_array()) {
        std::size_t index = 0;
        for (const auto& element : *array) {
            appendToken(pointer, std::to_string(index++));
            walk(element, pointer, wanted, remaining);
            pointer.resize(length);
        }
    }
}

void Recorder::resolve(const Pending& pending, const std::string& pointer, const boost::json::value& node) {
    FileDiagnostic& record = files[pending.file];
    std::string path = pointer;
    if (!pending.missingKey.empty()) {
        appendToken(path, pending.missingKey);
    }
    if (pending.warning >= 0) {
        record.warnings[static_cast<std::size_t>(pending.warning)].jsonPath = std::move(path);
        return;
    }
    record.jsonPath = std::move(path);
    if (pending.describeKind) {
        record.message += ", found ";
        record.message += kindName(node);
        if (record.jsonPath.empty()) {
            // The empty pointer is the whole document, which a reader would not recognise.
            record.message += " at the top level";
        }
    }
}

void Recorder::unwatch() noexcept {
    if (root_ == nullptr) {
        return;
    }
    try {
        if (!pending_.empty()) {
            std::unordered_map<const void*, std::vector<const Pending*>> wanted;
            for (const auto& pending : pending_) {
                wanted[pending.node].push_back(&pending);
            }
            std::size_t remaining = pending_.size();
            std::string pointer;
            walk(*root_, pointer, wanted, remaining);
        }
    } catch (...) {
        // Pointers that could not be found stay empty; the reasons themselves are recorded.
    }
    root_ = nullptr;
    pending_.clear();
    endImplicitFile();
}

boost::json::value parseResourceText(std::string_view text, boost::json::storage_ptr storage) {
    // What boost::json::parse does, keeping the number of bytes the parser took.
    unsigned char buffer[BOOST_JSON_STACK_BUFFER_SIZE];
    boost::json::parser parser(boost::json::storage_ptr(), boost::json::parse_options(), buffer);
    parser.reset(std::move(storage));
    boost::json::error_code error;
    const std::size_t consumed = parser.write(text.data(), text.size(), error);
    if (error) [[unlikely]] {
        if (Recorder* recorder = activeRecorder()) {
            try {
                FileDiagnostic& record = recorder->currentFile();
                record.dropReason = DropReason::SyntaxError;
                record.message = error.message();
                setPosition(record, text, consumed);
                recorder->noteEmptyText(text.empty());
                recorder->endImplicitFile();
            } catch (...) {
            }
        }
        throw boost::system::system_error(error);
    }
    return parser.release();
}

void recordPackageBegin(Recorder& recorder, const ProductPathData& package) noexcept {
    try {
        FileDiagnostic record;
        record.source = DiagnosticSource::Package;
        record.path = package.getFullPath();
        record.productName = package.getName();
        record.localeVariant = package.isNonEnglishLocale();
        recorder.begin(std::move(record));
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
        FileDiagnostic record;
        record.source = DiagnosticSource::File;
        record.path = file.getFullPath();
        record.productName = file.getName();
        record.localeVariant = file.isNonEnglishLocale();
        recorder.begin(std::move(record));
    } catch (...) {
        recorder.end();
    }
}

void recordFileBegin(Recorder& recorder, const ProductZipData& file) noexcept {
    try {
        FileDiagnostic record;
        record.source = DiagnosticSource::PackageEntry;
        record.path = recorder.packagePath;
        record.entry = text::utf8ToUtf16(file.getEntry().getName());
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

void recordFileDropped(Recorder& recorder, const ProductPathData& file) noexcept {
    try {
        FileDiagnostic* record = recorder.lastRecord([&file](const FileDiagnostic& candidate) {
            return sameFile(candidate, DiagnosticSource::File, file.getFullPath());
        });
        if (record != nullptr) {
            completeDrop(recorder, *record, [](FileDiagnostic& r) { explainEmptyRead(r, false); });
        }
    } catch (...) {
    }
    recorder.end();
}

void recordFileDropped(Recorder& recorder, const ProductZipData& file) noexcept {
    try {
        const std::u16string entry = text::utf8ToUtf16(file.getEntry().getName());
        FileDiagnostic* record = recorder.lastRecord([&recorder, &entry](const FileDiagnostic& candidate) {
            return sameFile(candidate, DiagnosticSource::PackageEntry, recorder.packagePath, entry);
        });
        if (record != nullptr) {
            completeDrop(recorder, *record, [&file](FileDiagnostic& r) {
                // The entry reader returns "" for an entry it cannot read; reading it again is the
                // only way to learn its reason, and happens only here, for a dropped entry.
                try {
                    file.getFileSystemManager().readEntry(file.getEntry());
                    r.dropReason = DropReason::NoData;
                    r.message = "the entry is empty";
                } catch (const std::exception& e) {
                    r.dropReason = DropReason::Unreadable;
                    r.message = e.what();
                }
            });
        }
    } catch (...) {
    }
    recorder.end();
}

void recordPageFileDropped(Recorder& recorder, const std::u16string& path) noexcept {
    try {
        FileDiagnostic* record = recorder.lastRecord([&path](const FileDiagnostic& candidate) {
            return sameFile(candidate, DiagnosticSource::PageFile, path);
        });
        if (record != nullptr) {
            completeDrop(recorder, *record, [](FileDiagnostic& r) { explainEmptyRead(r, true); });
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

void recordFileEnd(Recorder& recorder) noexcept {
    recorder.end();
}

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
        record.warnings.push_back(ParseWarning{WarningKind::DocumentKeyTaken, {}, text::utf16ToUtf8(key)});
        if (recorder.watching()) {
            recorder.locateLater(&document, static_cast<long>(record.warnings.size() - 1), {}, false);
        } else {
            recorder.endImplicitFile();
        }
    } catch (...) {
    }
}

void recordWatchBegin(Recorder& recorder, const boost::json::value& root) noexcept {
    recorder.watch(root);
}

void recordWatchEnd(Recorder& recorder) noexcept {
    recorder.unwatch();
}

} // namespace diagnostics

ParseDiagnosticsScope::ParseDiagnosticsScope()
    : recorder_(std::make_unique<diagnostics::Recorder>()), previous_(diagnostics::tActiveRecorder) {
    diagnostics::tActiveRecorder = recorder_.get();
}

ParseDiagnosticsScope::~ParseDiagnosticsScope() {
    // Only the thread that made the scope has it installed.
    if (diagnostics::tActiveRecorder == recorder_.get()) {
        diagnostics::tActiveRecorder = previous_;
    }
}

const std::vector<FileDiagnostic>& ParseDiagnosticsScope::files() const noexcept {
    return recorder_->files;
}

std::vector<FileDiagnostic> ParseDiagnosticsScope::takeFiles() noexcept {
    std::vector<FileDiagnostic> taken = std::move(recorder_->files);
    recorder_->files.clear();
    recorder_->end();
    return taken;
}

std::string_view toString(DiagnosticSource source) noexcept {
    switch (source) {
    case DiagnosticSource::File:
        return "file";
    case DiagnosticSource::PackageEntry:
        return "package entry";
    case DiagnosticSource::Package:
        return "package";
    case DiagnosticSource::PageFile:
        return "page file";
    case DiagnosticSource::Text:
        return "text";
    }
    return "unknown";
}

std::string_view toString(DropReason reason) noexcept {
    switch (reason) {
    case DropReason::None:
        return "read";
    case DropReason::Missing:
        return "missing";
    case DropReason::NoData:
        return "no data";
    case DropReason::Unreadable:
        return "unreadable";
    case DropReason::SyntaxError:
        return "syntax error";
    case DropReason::MissingKey:
        return "missing key";
    case DropReason::WrongKind:
        return "wrong kind";
    case DropReason::Other:
        return "other failure";
    }
    return "unknown";
}

std::string_view toString(WarningKind kind) noexcept {
    switch (kind) {
    case WarningKind::DocumentKeyTaken:
        return "document key taken";
    case WarningKind::UnknownEnumText:
        return "unknown enumeration text";
    }
    return "unknown";
}

} // namespace reference::docparser
