#pragma once

// The library's side of ParseDiagnosticsScope: the calls that the parsers and loaders make at
// file boundaries and on failure paths. Each inline hook tests one thread-local pointer and
// does nothing more unless a scope is active on the calling thread; the recording itself is out
// of line and never throws, so a hook cannot change what the loaders return.

#include <reference/docparser/ParseDiagnostics.hpp>
#include <reference/docparser/ProductData.hpp>

#include <boost/json/storage_ptr.hpp>
#include <boost/json/value.hpp>

#include <string>
#include <string_view>

namespace reference::docparser {

namespace detail {
enum class ReadFailure; // FieldAccess.hpp
}

namespace diagnostics {

// The active scope's recorder on this thread; null when there is none.
extern constinit thread_local Recorder* tActiveRecorder;

inline Recorder* activeRecorder() noexcept {
    return tActiveRecorder;
}

// Parses the text of one resource file exactly as boost::json::parse(text, storage,
// parse_options()) does, throwing its boost::system::system_error for text that is not strict
// JSON; it only keeps, for the active recorder, the offset at which the parser stopped.
boost::json::value parseResourceText(std::string_view text, boost::json::storage_ptr storage);

// The recording, out of line; every one of these swallows its own failures.
void recordPackageBegin(Recorder& recorder, const ProductPathData& package) noexcept;
void recordPackageDropped(Recorder& recorder) noexcept;
void recordFileBegin(Recorder& recorder, const ProductPathData& file) noexcept;
void recordFileBegin(Recorder& recorder, const ProductZipData& file) noexcept;
void recordPageFileBegin(Recorder& recorder, const std::u16string& path) noexcept;
void recordFileDropped(Recorder& recorder, const ProductPathData& file) noexcept;
void recordFileDropped(Recorder& recorder, const ProductZipData& file) noexcept;
void recordPageFileDropped(Recorder& recorder, const std::u16string& path) noexcept;
void recordDocumentKey(Recorder& recorder, const std::u16string& key) noexcept;
void recordFileEnd(Recorder& recorder) noexcept;
void recordReadFailure(Recorder& recorder, detail::ReadFailure failure, std::string_view key,
                       const void* node) noexcept;
void recordUnknownEnumText(Recorder& recorder, const boost::json::value& member, std::string_view text) noexcept;
void recordDocumentKeyTaken(Recorder& recorder, const boost::json::value& document,
                            const std::u16string& key) noexcept;
void recordWatchBegin(Recorder& recorder, const boost::json::value& root) noexcept;
void recordWatchEnd(Recorder& recorder) noexcept;

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
template <class File>
void fileDropped(const File& file) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordFileDropped(*recorder, file);
    }
}

inline void pageFileBegin(const std::u16string& path) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordPageFileBegin(*recorder, path);
    }
}

inline void pageFileDropped(const std::u16string& path) noexcept {
    if (Recorder* recorder = activeRecorder()) [[unlikely]] {
        recordPageFileDropped(*recorder, path);
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
