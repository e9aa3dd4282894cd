#pragma once

// The bodies of the fuzz targets. The libFuzzer entry point (FuzzerMain.cpp) runs one of them per
// input; the robustness tests replay the committed seeds and the inputs of past faults through the
// very same code. A target throws InvariantViolation when the library's answer breaks a rule that
// holds for every input; any other exception that leaves a target is a fault of the library too.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace refdoc::fuzz {

class InvariantViolation : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

inline void require(bool holds, const char* rule) {
    if (!holds) {
        throw InvariantViolation(rule);
    }
}

// A documentation root in a fresh temporary folder, removed with its contents on destruction.
class ScratchRoot {
public:
    ScratchRoot();
    ~ScratchRoot();
    ScratchRoot(const ScratchRoot&) = delete;
    ScratchRoot& operator=(const ScratchRoot&) = delete;

    const std::filesystem::path& path() const noexcept { return path_; }
    std::filesystem::path lookupFolder() const { return path_ / "docCatalog" / "referenceapi_lookup"; }
    std::filesystem::path referenceFolder() const { return path_ / "docCatalog" / "referenceapi"; }

    static void write(const std::filesystem::path& file, std::string_view bytes);

private:
    std::filesystem::path path_;
};

// The text of a lookup file through the lookup parser. The result must hold every document the
// text holds, first claim of a key winning, with every UTF-8 text decoded losslessly; merging its
// documents in either order must follow the merge rule.
class LookupParserTarget {
public:
    void run(std::string_view input) const;
};

// A product's page files through getResourceFile. Input without kLocalizedSeparator is the
// English file, read with English current; otherwise the part after the separator is the
// Japanese file and Japanese is current. The result must be the two files' own parses combined
// by the page merge rule, a file that fails to parse counting as absent.
class PageFileTarget {
public:
    static constexpr std::string_view kLocalizedSeparator = "\n#ja#\n";

    PageFileTarget();
    void run(std::string_view input) const;

private:
    ScratchRoot root_;
};

// A zip package in the lookup folder through getResourceLookupFiles, next to a sound loose lookup
// file of the installed product "control". Whatever the package holds, the call must return and
// the control product must be among the installed results. Inputs of odd length are named as the
// Japanese variant of a package (Japanese is current), which changes how a single entry is taken.
class ZipPackageTarget {
public:
    ZipPackageTarget();
    ~ZipPackageTarget();
    ZipPackageTarget(const ZipPackageTarget&) = delete;
    ZipPackageTarget& operator=(const ZipPackageTarget&) = delete;

    void run(std::string_view input) const;

private:
    ScratchRoot root_;
    std::uint32_t previousSeverities_;
    struct LogSink;
    std::shared_ptr<LogSink> sink_;
};

} // namespace refdoc::fuzz
