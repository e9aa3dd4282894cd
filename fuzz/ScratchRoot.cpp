#include "FuzzTargets.hpp"

#include <cstdlib>
#include <fstream>
#include <system_error>

namespace refdoc::fuzz {

ScratchRoot::ScratchRoot() {
    std::string pattern = (std::filesystem::temp_directory_path() / "refdoc-fuzz-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot create a temporary folder from " + pattern);
    }
    path_ = pattern;
    std::filesystem::create_directories(lookupFolder());
    std::filesystem::create_directories(referenceFolder());
}

ScratchRoot::~ScratchRoot() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void ScratchRoot::write(const std::filesystem::path& file, std::string_view bytes) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) {
        throw std::runtime_error("cannot write " + file.string());
    }
}

} // namespace refdoc::fuzz
