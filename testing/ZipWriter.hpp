#pragma once

// Writes zip packages with libzip, for the test fixtures and the benchmark corpus. Entry times
// and the deflate level are fixed, so that unencrypted packages depend on their entries alone.

#include <filesystem>
#include <string>
#include <vector>

namespace refdoc::test {

class ZipWriter {
public:
    enum class Compression { Store, Deflate };

    // A file entry; `name` may hold folder parts ("a/b/c.json").
    ZipWriter& add(std::string name, std::string content, Compression compression = Compression::Deflate);
    // A file entry encrypted with WinZip AES-256 under `password`.
    ZipWriter& addEncrypted(std::string name, std::string content, std::string password);
    // A folder entry; libzip stores it with a trailing '/'.
    ZipWriter& addDirectory(std::string name);

    // Writes the package to `path` (replacing any file there) and returns `path`. Throws
    // std::runtime_error when libzip fails.
    const std::filesystem::path& write(const std::filesystem::path& path) const;

private:
    struct Item {
        enum class Kind { File, EncryptedFile, Directory } kind;
        std::string name;
        std::string content;
        Compression compression;
        std::string password;
    };
    std::vector<Item> items_;
};

} // namespace refdoc::test
