#pragma once

#include <reference/docparser/ParseDiagnostics.hpp>
#include <reference/docparser/ProductData.hpp>

#include <cstdint>
#include <string>

namespace reference::docparser {

// Largest file read from disk. A data file is read whole into memory; anything larger is not
// documentation data, and the bound keeps a stray huge file from exhausting memory.
inline constexpr std::uint64_t kMaxDataFileSize = std::uint64_t{1} << 30; // 1 GiB

// Why a read gave no text, said by the code that failed: Missing (no such file), Unreadable (not
// a regular file, the system refused, over the size bound, a damaged or encrypted package entry)
// or NoData (the file or entry is empty). None: the text was read.
struct ReadResult {
    DropReason reason = DropReason::None;
    std::string message;

    bool read() const noexcept { return reason == DropReason::None; }
};

// The bytes of the regular file at `path`, unchanged, into `content` (whose memory is reused);
// "" when the read fails. Without a log record when the path names no readable regular file
// (missing, no permission, a folder, a device); with the record "Problem reading JSON file: " +
// path when an opened file cannot be read whole (larger than kMaxDataFileSize, or failing while
// being read). Never throws for a file error.
ReadResult readFileContents(const std::u16string& path, std::string& content);

// What openAndReadFile does for a lookup file on disk or in a package, log records included,
// into `text`, whose memory is reused: a loading call reads every file into one buffer, so that
// reading a file does not allocate after the many small frees of merging the previous one.
ReadResult readResourceText(const ProductPathData& file, std::string& text);
ReadResult readResourceText(const ProductZipData& file, std::string& text);

} // namespace reference::docparser
