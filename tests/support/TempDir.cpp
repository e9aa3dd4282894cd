#include "support/TempDir.hpp"

#include <atomic>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace refdoc::test {

TempDir::TempDir() {
    static std::atomic<unsigned> counter{0};
    std::random_device rd;
    const auto base = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 100; ++attempt) {
        auto candidate = base / ("refdoc-test-" + std::to_string(::getpid()) + "-" +
                                 std::to_string(counter.fetch_add(1)) + "-" + std::to_string(rd()));
        if (std::filesystem::create_directory(candidate)) {
            path_ = std::move(candidate);
            return;
        }
    }
    throw std::runtime_error("cannot create a temporary folder");
}

TempDir::~TempDir() {
    std::error_code ec;
    // Make everything writable again first, in case a test took permissions away.
    for (auto it = std::filesystem::recursive_directory_iterator(
             path_, std::filesystem::directory_options::skip_permission_denied, ec);
         !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
        if (!it->is_symlink(ec)) {
            std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                         std::filesystem::perm_options::add, ec);
        }
    }
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
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

} // namespace refdoc::test
