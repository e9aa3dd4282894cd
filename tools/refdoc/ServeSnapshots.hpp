#pragma once

// What `refdoc serve` has loaded, kept per language as a snapshot of the data folders. A
// snapshot is keyed by the data files' names, sizes and modification times; every request
// compares them with the files as they are (a directory listing and a stat per file) and loads
// afresh only when one changed, so an edited file shows on the next request while an unchanged
// root is read once.

#include "CheckReport.hpp"
#include "Coverage.hpp"
#include "Host.hpp"
#include "Search.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/ParseDiagnostics.hpp>

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace refdoc::tool::serve {

using PageFiles = reference::docparser::DocResourceParser::RefItemFileMap;

// What the library dropped or warned about in the files a view read.
struct LoadCounts {
    std::size_t filesRead = 0;
    std::size_t dropped = 0;
    std::size_t warnings = 0;

    void add(const LoadCounts& other);
    static LoadCounts of(const reference::docparser::ParseDiagnosticsScope& scope);
};

// The documentation language is a process-wide host setting that every loading call reads
// when it starts. Loads in the same language run together; a load in another language waits
// until they are done. Views served from a kept snapshot never come here.
class LanguageGate {
public:
    explicit LanguageGate(std::string current) : current_(std::move(current)) {}

    // Runs `load` with `language` current.
    void run(const std::string& language, const std::function<void()>& load);

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string current_;
    int holders_ = 0;
};

// One data file as the snapshot saw it.
struct FileStamp {
    std::string name;
    std::uintmax_t size = 0;
    std::filesystem::file_time_type modified;

    bool operator==(const FileStamp&) const = default;
};

struct Fingerprint {
    std::vector<FileStamp> lookupFolder;
    std::vector<FileStamp> pageFolder;

    bool operator==(const Fingerprint& other) const {
        return lookupFolder == other.lookupFolder && pageFolder == other.pageFolder;
    }
    // The latest modification time of any file.
    std::filesystem::file_time_type newest() const;
};

// The entries of both data folders now, sorted by name.
Fingerprint takeFingerprint(const std::filesystem::path& lookupFolder, const std::filesystem::path& pageFolder);

struct PageLoad {
    PageFiles files;
    LoadCounts counts;
};

// The data of one language at one fingerprint: the lookup results, loaded with the snapshot,
// and page files, each loaded when a view first needs it.
class Snapshot {
public:
    Snapshot(std::string language, Fingerprint fingerprint, LanguageGate& gate);

    const std::string& language() const { return language_; }
    const Fingerprint& fingerprint() const { return fingerprint_; }
    const LookupResults& lookup() const { return index_->lookups(); }
    const LoadCounts& lookupCounts() const { return lookupCounts_; }
    // The search index over the lookup results, which it holds.
    const reference::search::SearchIndex& index() const { return *index_; }
    // The names the page loader takes in this language (see pageFileRoles).
    const std::set<std::string>& pageNames() const { return pageNames_; }

    // The page file `name` (one of pageNames(), or any base name) in this snapshot's language.
    std::shared_ptr<const PageLoad> pages(const std::string& name) const;
    // The name of the page file that has the page `href` (a link without its fragment): the
    // file named for the link's first folder when it has it, else the first other one that
    // does; "" when none does. Loads the page files it needs and remembers its answers.
    std::string pageFileOf(const std::string& href) const;

private:
    friend class SnapshotCache;

    std::string language_;
    Fingerprint fingerprint_;
    LanguageGate& gate_;
    std::unique_ptr<const reference::search::SearchIndex> index_;
    LoadCounts lookupCounts_;
    std::set<std::string> pageNames_;
    mutable std::mutex pagesMutex_;
    mutable std::map<std::string, std::shared_ptr<const PageLoad>> pages_;
    mutable std::mutex pageFileOfMutex_;
    mutable std::map<std::string, std::string> pageFileOf_;
};

class SnapshotCache {
public:
    explicit SnapshotCache(HostSettings settings);

    const HostSettings& settings() const { return settings_; }

    // The snapshot of `language` for the data files as they are now.
    std::shared_ptr<const Snapshot> snapshot(const std::string& language);
    // What `refdoc check` reports for the data files as they are now.
    std::shared_ptr<const Report> report();
    // The translation coverage (refdoc check --coverage) of the data files as they are now.
    std::shared_ptr<const Coverage> coverage();

private:
    struct Slot {
        std::mutex mutex; // held while the slot's language loads, so one load serves every waiter
        std::shared_ptr<const Snapshot> snapshot;
    };
    Fingerprint fingerprint() const;
    // Whether a load that saw `fingerprint` at `seen` may be kept: a file changed within the
    // file system's timestamp granularity of the look could change again unnoticed.
    static bool settled(const Fingerprint& fingerprint, std::filesystem::file_time_type seen);

    HostSettings settings_;
    std::filesystem::path lookupFolder_;
    std::filesystem::path pageFolder_;
    LanguageGate gate_;
    std::mutex slotsMutex_;
    std::map<std::string, std::unique_ptr<Slot>> slots_;
    std::mutex reportMutex_;
    std::shared_ptr<const Report> report_;
    Fingerprint reportFingerprint_;
    std::mutex coverageMutex_;
    std::shared_ptr<const Coverage> coverage_;
    Fingerprint coverageFingerprint_;
};

} // namespace refdoc::tool::serve
