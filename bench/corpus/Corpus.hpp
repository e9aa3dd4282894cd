#pragma once

// A generated documentation root for the benchmarks: products with log-normally spread item
// counts, English lookup and page files with Japanese and Korean variants, some products in zip
// packages (several leaves in one package, or one leaf per package), and support packages nested
// in some product files. The same options always give the same bytes.
//
// Besides the data, the generator writes corpus.json, the manifest: which products exist, which
// are installed, and which files (and zip entries) a lookup load reads in each language. The
// benchmark's parse floor reads exactly those, without the library's logic.

#include "Text.hpp"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace refdoc::bench {

// How the data is shaped. Default: compact files with sorted names and known enumeration texts,
// the way the documentation build emits them. Varied: the opposite on every axis the loaders
// might depend on (see bench/README.md).
enum class Profile { Default, Varied };

std::string_view profileName(Profile profile) noexcept;
// Throws std::invalid_argument for a name that is no profile.
Profile profileFromName(std::string_view name);

struct CorpusOptions {
    Profile profile = Profile::Default;
    std::uint64_t seed = 20240611;
    int products = 60;
    double meanItems = 900.0; // mean lookup entries per product
    double itemSpread = 0.9;  // shape of the log-normal spread: a few products get several thousand
    bool pages = true;        // also write the reference page files
};

enum class Packaging {
    Loose,          // name.json, name_ja.json, ... in the lookup folder
    MultiLeafZip,   // name.zip holding name.json, name_ja.json, ...
    SingleLeafZips, // name.zip holding name.json, name_ja.zip holding name_ja.json, ...
};

// One file a lookup load reads: a loose file, or an entry of a zip package. Paths are relative to
// the documentation root, '/' separated.
struct FileRead {
    std::string file;
    std::string entry;     // empty for a loose file
    std::size_t bytes = 0; // the JSON text's size (uncompressed for a zip entry)

    bool operator<(const FileRead& other) const { return file != other.file ? file < other.file : entry < other.entry; }
    bool operator==(const FileRead&) const = default;
};

struct SupportPackageInfo {
    std::string baseCode; // its key in the results
    bool installed = false;
    std::size_t items = 0;
};

struct ProductInfo {
    std::string name;        // file stem, help folder and short name in the product catalogue
    std::string productName; // display name
    bool installed = false;
    Packaging packaging = Packaging::Loose;
    std::size_t items = 0;              // English lookup entries of the main document
    std::size_t localizedOnlyItems = 0; // main-document entries that only the translations have
    std::vector<std::string> languages; // "en" plus the translations that exist
    std::vector<SupportPackageInfo> supportPackages;
};

struct Manifest {
    std::string profile = "default";
    std::uint64_t seed = 0;
    std::vector<ProductInfo> products;
    std::vector<std::string> localeCodes;                     // the supported non-English languages
    std::map<std::string, std::vector<FileRead>> lookupReads; // per current language, sorted
    std::string largestProduct;
    std::string supportPackageRoot;                   // relative: one sub-folder per installed support package
    std::map<std::string, std::size_t> pageFileBytes; // page file path (relative) -> size

    std::vector<std::string> installedProducts() const;
    std::vector<std::string> installedSupportPackages() const;
    // Page files of a product for a language: English alone, or English and the translation.
    std::vector<std::string> pageReads(const std::string& product, const std::string& language) const;
    // The largest single JSON text a load reads, which bounds the buffers a loader needs at once.
    std::size_t largestLookupRead(const std::string& language) const;
    std::size_t largestPageRead(const std::string& product, const std::string& language) const;
};

inline constexpr const char* kLookupFolder = "docCatalog/referenceapi_lookup";
inline constexpr const char* kPageFolder = "docCatalog/referenceapi";
inline constexpr const char* kManifestName = "corpus.json";

// Writes the corpus below `root` (created if needed; existing corpus files are overwritten) and
// returns its manifest, which is also written to root/corpus.json.
Manifest generateCorpus(const std::filesystem::path& root, const CorpusOptions& options);

// The manifest of a corpus written earlier. Throws std::runtime_error when it cannot be read.
Manifest readManifest(const std::filesystem::path& root);

} // namespace refdoc::bench
