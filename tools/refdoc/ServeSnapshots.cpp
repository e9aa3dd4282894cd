#include "ServeSnapshots.hpp"

#include "ProductPages.hpp"
#include "Text.hpp"

#include <doclanguage/DocLanguage.hpp>

#include <algorithm>
#include <chrono>
#include <system_error>

namespace refdoc::tool::serve {

using reference::docparser::DocResourceParser;
using reference::docparser::DropReason;
using reference::docparser::ParseDiagnosticsScope;

void LoadCounts::add(const LoadCounts& other) {
    filesRead += other.filesRead;
    dropped += other.dropped;
    warnings += other.warnings;
}

LoadCounts LoadCounts::of(const ParseDiagnosticsScope& scope) {
    LoadCounts counts;
    for (const auto& file : scope.files()) {
        if (file.dropReason == DropReason::Missing) {
            continue;
        }
        ++counts.filesRead;
        counts.dropped += file.dropped() ? 1 : 0;
        counts.warnings += file.warnings.size();
    }
    return counts;
}

void LanguageGate::run(const std::string& language, const std::function<void()>& load) {
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return holders_ == 0 || current_ == language; });
        if (current_ != language) {
            doclanguage::DocLanguage::getInstance().setDocLanguage(toUtf16(language));
            current_ = language;
        }
        ++holders_;
    }
    struct Leave {
        LanguageGate& gate;
        ~Leave() {
            const std::lock_guard lock(gate.mutex_);
            --gate.holders_;
            gate.changed_.notify_all();
        }
    } leave{*this};
    load();
}

std::filesystem::file_time_type Fingerprint::newest() const {
    std::filesystem::file_time_type latest = std::filesystem::file_time_type::min();
    for (const auto* folder : {&lookupFolder, &pageFolder}) {
        for (const auto& file : *folder) {
            latest = std::max(latest, file.modified);
        }
    }
    return latest;
}

namespace {

std::vector<FileStamp> stampsOf(const std::filesystem::path& folder) {
    std::vector<FileStamp> stamps;
    std::error_code error;
    std::filesystem::directory_iterator entries(folder, error);
    if (error) {
        return stamps;
    }
    for (const auto& entry : entries) {
        FileStamp stamp;
        stamp.name = entry.path().filename().string();
        // A file that goes away between the listing and the stat keeps the error values, which
        // differ from any real one.
        stamp.size = entry.file_size(error);
        stamp.modified = entry.last_write_time(error);
        stamps.push_back(std::move(stamp));
    }
    std::sort(stamps.begin(), stamps.end(), [](const FileStamp& a, const FileStamp& b) { return a.name < b.name; });
    return stamps;
}

} // namespace

Fingerprint takeFingerprint(const std::filesystem::path& lookupFolder, const std::filesystem::path& pageFolder) {
    return Fingerprint{stampsOf(lookupFolder), stampsOf(pageFolder)};
}

Snapshot::Snapshot(std::string language, Fingerprint fingerprint, LanguageGate& gate)
    : language_(std::move(language)), fingerprint_(std::move(fingerprint)), gate_(gate) {}

std::shared_ptr<const PageLoad> Snapshot::pages(const std::string& name) const {
    {
        const std::lock_guard lock(pagesMutex_);
        if (const auto found = pages_.find(name); found != pages_.end()) {
            return found->second;
        }
    }
    // Loaded outside the lock, so views of pages already kept never wait for it; two views that
    // need the same new file may both load it, and the first one's is kept.
    auto load = std::make_shared<PageLoad>();
    gate_.run(language_, [&] {
        ParseDiagnosticsScope scope;
        load->files = DocResourceParser::getResourceFile(toUtf16(name));
        load->counts = LoadCounts::of(scope);
    });
    const std::lock_guard lock(pagesMutex_);
    return pages_.emplace(name, std::move(load)).first->second;
}

std::string Snapshot::pageFileOf(const std::string& href) const {
    {
        const std::lock_guard lock(pageFileOfMutex_);
        if (const auto found = pageFileOf_.find(href); found != pageFileOf_.end()) {
            return found->second;
        }
    }
    const std::u16string wanted = toUtf16(href);
    std::string file;
    for (const auto& name : readingOrder(pageNames_, firstFolder(href))) {
        const auto load = pages(name);
        const bool has = std::any_of(load->files.begin(), load->files.end(),
                                     [&](const auto& entry) { return entry.second.getItems().count(wanted) != 0; });
        if (has) {
            file = name;
            break;
        }
    }
    const std::lock_guard lock(pageFileOfMutex_);
    return pageFileOf_.emplace(href, file).first->second;
}

SnapshotCache::SnapshotCache(HostSettings settings) : settings_(std::move(settings)), gate_(settings_.language) {
    const auto roots = DocResourceParser::getReferenceRoots();
    lookupFolder_ = toUtf8(roots->lookupFolder);
    pageFolder_ = toUtf8(roots->referenceFolder);
}

Fingerprint SnapshotCache::fingerprint() const { return takeFingerprint(lookupFolder_, pageFolder_); }

bool SnapshotCache::settled(const Fingerprint& fingerprint, std::filesystem::file_time_type seen) {
    // Generous against coarse timestamps (a tick of the kernel's clock, or seconds on some file
    // systems): during edits every request loads afresh, as it must.
    constexpr auto kGranularity = std::chrono::seconds(2);
    return fingerprint.newest() + kGranularity < seen;
}

std::shared_ptr<const Snapshot> SnapshotCache::snapshot(const std::string& language) {
    Slot* slot = nullptr;
    {
        const std::lock_guard lock(slotsMutex_);
        auto& owned = slots_[language];
        if (!owned) {
            owned = std::make_unique<Slot>();
        }
        slot = owned.get();
    }
    const std::lock_guard lock(slot->mutex);
    const auto seen = std::filesystem::file_time_type::clock::now();
    Fingerprint now = fingerprint();
    if (slot->snapshot && slot->snapshot->fingerprint() == now) {
        return slot->snapshot;
    }
    const bool keep = settled(now, seen);
    auto fresh = std::make_shared<Snapshot>(language, std::move(now), gate_);
    LookupResults lookup;
    gate_.run(language, [&] {
        ParseDiagnosticsScope scope;
        lookup = DocResourceParser::getResourceLookupFiles();
        fresh->lookupCounts_ = LoadCounts::of(scope);
        fresh->pageNames_ = pageFileRoles(pageFolder_).names;
    });
    fresh->index_ = std::make_unique<const reference::search::SearchIndex>(std::move(lookup));
    slot->snapshot = keep ? fresh : nullptr;
    return fresh;
}

std::shared_ptr<const Report> SnapshotCache::report() {
    const std::lock_guard lock(reportMutex_);
    const auto seen = std::filesystem::file_time_type::clock::now();
    Fingerprint now = fingerprint();
    if (report_ && reportFingerprint_ == now) {
        return report_;
    }
    auto fresh = std::make_shared<const Report>(
        buildReport(settings_, [this](const std::string& language, const std::function<void()>& load) {
            gate_.run(language, load);
        }));
    if (settled(now, seen)) {
        report_ = fresh;
        reportFingerprint_ = std::move(now);
    } else {
        report_ = nullptr;
    }
    return fresh;
}

std::shared_ptr<const Coverage> SnapshotCache::coverage() {
    const std::lock_guard lock(coverageMutex_);
    const auto seen = std::filesystem::file_time_type::clock::now();
    Fingerprint now = fingerprint();
    if (coverage_ && coverageFingerprint_ == now) {
        return coverage_;
    }
    auto fresh = std::make_shared<const Coverage>(
        buildReportWithCoverage(settings_, [this](const std::string& language, const std::function<void()>& load) {
            gate_.run(language, load);
        }).second);
    if (settled(now, seen)) {
        coverage_ = fresh;
        coverageFingerprint_ = std::move(now);
    } else {
        coverage_ = nullptr;
    }
    return fresh;
}

} // namespace refdoc::tool::serve
