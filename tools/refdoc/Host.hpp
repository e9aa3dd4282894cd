#pragma once

// The host settings a command runs with: the documentation root, the documentation language
// and the supported languages, and which products and support packages count as installed.
// They come from the command line, else from the root's refdoc-host.json, else from defaults
// (the supported languages: those the root's data files are named for), and are handed to the library and to the host services' stand-ins before a command runs.

#include "Cli.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace refdoc::tool {

// The file, at the top of a documentation root, that describes a host installation for the
// tool (the library itself never reads it).
inline constexpr const char* kHostFileName = "refdoc-host.json";

struct HostSettings {
    std::filesystem::path root;
    bool sampleRoot = false; // the root is the bundled sample, not one given with --root
    std::string language = "en";
    std::vector<std::string> supportedLanguages;
    std::vector<std::string> installedProducts;
    std::vector<std::string> installedSupportPackages;
};

// The host settings given on the command line; what is not given comes from the host file or
// the defaults.
struct HostOptions {
    std::optional<std::string> root;
    std::optional<std::string> language;
    std::optional<std::vector<std::string>> supportedLanguages;
    std::optional<std::vector<std::string>> installedProducts;
    std::optional<std::vector<std::string>> installedSupportPackages;
};

// The options every command that loads data accepts.
void addHostOptions(CLI::App& app, HostOptions& options);

// The settings for `options`. Throws UsageError for a root that is missing or not a
// documentation root, for a malformed language code and for a host file that cannot be used.
HostSettings resolveHostSettings(const HostOptions& options);

// Makes the library and the stand-ins use `settings`, for this process.
void applyHostSettings(const HostSettings& settings);

// The language code a file stem seems to end with ("ja" in "optics_ja", "zh_CN" in
// "map_zh_CN") and the stem without it; nothing when the stem does not look like a locale
// variant. This is the tool's own guess: the library only knows the supported languages.
std::optional<std::pair<std::string, std::string>> localeLikeSuffix(const std::string& stem);

// "en" and the language codes the data files of `root` are named for: CODE of every data file
// STEM_CODE.EXT beside a data file STEM.EXT of the same folder.
std::vector<std::string> languagesPresent(const std::filesystem::path& root);

// The bundled sample root: next to the executable, in the installed share folder, or in the
// source tree the tool was built from; empty when none of them exists.
std::filesystem::path findSampleRoot();

} // namespace refdoc::tool
