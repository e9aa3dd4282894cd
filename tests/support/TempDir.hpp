#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace refdoc::test {

// A fresh folder under the system temp folder, removed with everything in it on destruction.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const noexcept { return path_; }
    std::u16string u16() const { return path_.u16string(); }

    // Writes `bytes` to path()/relative, creating parent folders; returns the full path.
    std::filesystem::path write(const std::filesystem::path& relative, std::string_view bytes) const;

private:
    std::filesystem::path path_;
};

// A whole file's bytes; throws std::runtime_error when it cannot be read.
std::string readBytes(const std::filesystem::path& path);
// Replaces the file at `path` with `bytes`; throws std::runtime_error when it cannot be written.
void writeBytes(const std::filesystem::path& path, std::string_view bytes);

} // namespace refdoc::test
