#pragma once

// Small helpers for the names of data files and packages, shared by the folder listing, file
// access and the zip reader.

#include <filesystem>
#include <string>
#include <string_view>

namespace reference::docparser {

// The path to hand to the operating system for a UTF-16 path. Linux file names are bytes, so
// the path is encoded as UTF-8 (a lone surrogate becomes U+FFFD); this never throws for a badly
// formed name, which then simply names no file.
std::filesystem::path toNativePath(std::u16string_view path);

// Whether a file or entry name, taken as the bytes it has on disk or in the package, is valid
// UTF-8. A name that is not has no UTF-16 form to carry through the library, so it cannot name a
// product: loose files and package entries so named are left out alike, rather than read under a
// mangled name.
bool isValidUtf8Name(std::string_view bytes);

// A file name split at its last dot: "pname_ja.json" gives "pname_ja" and "json", ".json" gives
// "" and "json", a name without a dot is all stem with an empty extension. The parts are views
// into `fileName`, which must outlive them.
template <class CharT>
struct FileNameParts {
    std::basic_string_view<CharT> stem;
    std::basic_string_view<CharT> extension;
};
FileNameParts<char> splitFileName(std::string_view fileName) noexcept;
FileNameParts<char16_t> splitFileName(std::u16string_view fileName) noexcept;

// Compares narrow bytes with UTF-16 code units one to one; meant for ASCII constants such as
// the data file extensions, without converting either side.
bool equalsAscii(std::string_view narrow, std::u16string_view wide) noexcept;

} // namespace reference::docparser
