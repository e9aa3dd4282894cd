#pragma once

#include <cstdint>
#include <string>

#include <reference/docparser/ProductData.hpp>

namespace reference::docparser {

// Largest file read from disk. A data file is read whole into memory; anything larger is not
// documentation data, and the bound keeps a stray huge file from exhausting memory.
inline constexpr std::uint64_t kMaxDataFileSize = std::uint64_t{1} << 30; // 1 GiB

// The bytes of the regular file at `path`, unchanged. "" without a record when the path names no
// readable regular file (missing, no permission, a folder, a device); "" and the record
// "Problem reading JSON file: " + path when an opened file cannot be read whole (larger than
// kMaxDataFileSize, or failing while being read). Never throws for a file error.
std::string readFileContents(const std::u16string& path);
// The same into `content`, whose memory is reused ("" as above).
void readFileContents(const std::u16string& path, std::string& content);

// What openAndReadFile does for a lookup file on disk or in a package, log records included,
// into `text`, whose memory is reused: a loading call reads every file into one buffer, so that
// reading a file does not allocate after the many small frees of merging the previous one.
void readResourceText(const ProductPathData& file, std::string& text);
void readResourceText(const ProductZipData& file, std::string& text);

} // namespace reference::docparser
