#pragma once

// The host settings a command runs with: the documentation root, the documentation language
// and the supported languages, and which products and support packages count as installed.
// They come from the command line, else from the root's refdoc-host.json, else from defaults,
// and are handed to the library and to the host services' stand-ins before a command runs.

#include "Cli.hpp"

#include <filesystem>
#include <string>
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

// The options every command that loads data accepts.
void addHostOptions(CommandSyntax& syntax);

// The settings for `args`. Throws UsageError for a root that is missing or not a documentation
// root, for a malformed language code and for a host file that cannot be used.
HostSettings resolveHostSettings(const ParsedArgs& args);

// Makes the library and the stand-ins use `settings`, for this process.
void applyHostSettings(const HostSettings& settings);

// The bundled sample root: next to the executable, in the installed share folder, or in the
// source tree the tool was built from; empty when none of them exists.
std::filesystem::path findSampleRoot();

} // namespace refdoc::tool
