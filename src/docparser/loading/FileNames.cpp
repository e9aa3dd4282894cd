#include "docparser/loading/FileNames.hpp"

#include "docparser/parsing/TextConversion.hpp"

namespace reference::docparser {
namespace {

template <class CharT>
FileNameParts<CharT> split(std::basic_string_view<CharT> fileName) noexcept {
    const auto dot = fileName.rfind(CharT('.'));
    if (dot == std::basic_string_view<CharT>::npos) {
        return {fileName, {}};
    }
    return {fileName.substr(0, dot), fileName.substr(dot + 1)};
}

} // namespace

std::filesystem::path toNativePath(std::u16string_view path) {
    // The std::string constructor takes the bytes as the native form, without a locale.
    return std::filesystem::path(text::utf16ToUtf8(path));
}

FileNameParts<char> splitFileName(std::string_view fileName) noexcept { return split(fileName); }

FileNameParts<char16_t> splitFileName(std::u16string_view fileName) noexcept { return split(fileName); }

bool isValidUtf8Name(std::string_view bytes) { return text::utf16ToUtf8(text::utf8ToUtf16(bytes)) == bytes; }

bool equalsAscii(std::string_view narrow, std::u16string_view wide) noexcept {
    if (narrow.size() != wide.size()) {
        return false;
    }
    for (std::size_t i = 0; i < narrow.size(); ++i) {
        if (static_cast<unsigned char>(narrow[i]) != wide[i]) {
            return false;
        }
    }
    return true;
}

} // namespace reference::docparser
