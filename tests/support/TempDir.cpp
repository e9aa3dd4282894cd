#include "support/TempDir.hpp"

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include <stdlib.h>

namespace refdoc::test {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "refdoc-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot create a temporary folder");
    }
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
}

std::filesystem::path TempDir::write(const std::filesystem::path& relative, std::string_view bytes) const {
    const auto full = path_ / relative;
    std::filesystem::create_directories(full.parent_path());
    writeBytes(full, bytes);
    return full;
}

std::string readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeBytes(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

} // namespace refdoc::test
