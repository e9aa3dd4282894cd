#pragma once

// The library's side of ParseDiagnosticsScope: the calls that the parsers and loaders make at
// file boundaries and on failure paths. Each inline hook tests one thread-local pointer and
// does nothing more unless a scope is active on the calling thread; the recording itself is out
// of line and never throws, so a hook cannot change what the loaders return.

#include <reference/docparser/ParseDiagnostics.hpp>
#include <reference/docparser/ProductData.hpp>

#include <boost/json/fwd.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace boost::system {
class error_code;
}

namespace reference::docparser {

namespace detail {

// Why a read of resource data failed.
enum class ReadFailure {
    MissingKey,  // a required member is absent
    NotAnObject, // a document, an item or an object member is not a JSON object
    NotAnArray,  // an array member is not a JSON array
    NotAString,  // a string member or array element is not a JSON string
};

} // namespace detail

namespace diagnostics {

// The active scope's recorder on this thread; null when there is none.
extern constinit thread_local Recorder* tActiveRecorder;

inline Recorder* activeRecorder() noexcept { return tActiveRecorder; }

// Why a reader gave no text for a file, which only the reader can tell: the file or entry
// reader returns "" alike for a missing, unreadable, oversized and empty file.
struct DropExplanation {
    DropReason reason;
    std::string message;
};

// A reference to the loader's explanation of an empty text, called only when a scope records
// the drop of a file that gave no text. Made without allocating, so a hook stays noexcept.
class ExplainEmptyText {
public:
    template <class Explain>
    ExplainEmptyText(const Explain& explain) noexcept
        : object_(&explain), call_([](const void* object) { return (*static_cast<const Explain*>(object))(); }) {}

    DropExplanation operator()() const { return call_(object_); }

private:
    const void* object_;
    DropExplanation (*call_)(const void*);
};

// The recording, out of line; every one of these swallows its own failures.
void recordSyntaxError(Recorder& recorder, std::string_view text, std::size_t consumed,
                       const boost::system::error_code& error) noexcept;
void recordPackageBegin(Recorder& recorder, const ProductPathData& package) noexcept;
void recordPackageDropped(Recorder& recorder) noexcept;
void recordFileBegin(Recorder& recorder, const ProductPathData& file) noexcept;
void recordFileBegin(Recorder& recorder, const ProductZipData& file) noexcept;
void recordPageFileBegin(Recorder& recorder, const std::u16string& path) noexcept;
void recordFileDropped(Recorder& recorder, const ProductPathData& file, ExplainEmptyText explainEmpty) noexcept;
void recordFileDropped(Recorder& recorder, const ProductZipData& file, ExplainEmptyText explainEmpty) noexcept;
void recordPageFileDropped(Recorder& recorder, const std::u16string& path, ExplainEmptyText explainEmpty) noexcept;
void recordDocumentKey(Recorder& recorder, const std::u16string& key) noexcept;
void recordFileEnd(Recorder& recorder) noexcept;
void recordReadFailure(Recorder& recorder, detail::ReadFailure failure, std::string_view key,
                       const void* node) noexcept;
void recordUnknownEnumText(Recorder& recorder, const boost::json::value& member, std::string_view text) noexcept;
void recordDocumentKeyTaken(Recorder& recorder, const boost::json::value& document, const std::u16string& key) noexcept;
void recordWatchBegin(Recorder& recorder, const boost::json::value& root) noexcept;
void recordWatchEnd(Recorder& recorder) noexcept;

// The text of the file being read is not strict JSON: the parser stopped after `consumed` bytes.
inline void syntaxError(std::string_view text, std::size_t consumed, const boost::system::error_code& error) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordSyntaxError(*recorder, text, consumed, error);
    }
}

// A zip package is about to be opened and listed; its entries follow.
inline void packageBegin(const ProductPathData& package) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordPackageBegin(*recorder, package);
    }
}

// The package being read could not be opened or listed; called inside the catch block.
inline void packageDropped() noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordPackageDropped(*recorder);
    }
}

// A lookup file (loose or a package entry) is about to be read.
template <class File>
void fileBegin(const File& file) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordFileBegin(*recorder, file);
    }
}

// The file being read counts as absent; called inside the catch block that drops it.
// `explainEmpty` says why the file gave no text, should that be the reason.
template <class File, class Explain>
void fileDropped(const File& file, const Explain& explainEmpty) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordFileDropped(*recorder, file, explainEmpty);
    }
}

inline void pageFileBegin(const std::u16string& path) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordPageFileBegin(*recorder, path);
    }
}

template <class Explain>
void pageFileDropped(const std::u16string& path, const Explain& explainEmpty) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordPageFileDropped(*recorder, path, explainEmpty);
    }
}

// The file being read parsed into `documents` (a map keyed by product key); ends the file.
template <class DocumentMap>
void fileParsed(const DocumentMap& documents) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        for (const auto& entry : documents) {
            recordDocumentKey(*recorder, entry.first);
        }
        recordFileEnd(*recorder);
    }
}

// The single exit of failed field reads reports here. `node` is the value (or, for a missing
// key, the object) at which the read stopped.
inline void readFailed(detail::ReadFailure failure, std::string_view key, const void* node) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordReadFailure(*recorder, failure, key, node);
    }
}

// An enumeration member whose text names no value; the default is used.
inline void unknownEnumText(const boost::json::value& member, std::string_view text) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordUnknownEnumText(*recorder, member, text);
    }
}

// A support package document dropped because an earlier document of the file holds its key.
inline void documentKeyTaken(const boost::json::value& document, const std::u16string& key) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordDocumentKeyTaken(*recorder, document, key);
    }
}

// While it lives, failures and warnings are located by their JSON Pointer below `root`. Made
// right after the parse, so that it ends before the tree is freed (also when a read fails).
class WatchedDocument {
public:
    explicit WatchedDocument(const boost::json::value& root) noexcept : recorder_(activeRecorder()) {
        if (recorder_ != nullptr) [[unlikely]] {
            recordWatchBegin(*recorder_, root);
        }
    }
    ~WatchedDocument() {
        if (recorder_ != nullptr) [[unlikely]] {
            recordWatchEnd(*recorder_);
        }
    }
    WatchedDocument(const WatchedDocument&) = delete;
    WatchedDocument& operator=(const WatchedDocument&) = delete;

private:
    Recorder* recorder_;
};

} // namespace diagnostics
} // namespace reference::docparser
