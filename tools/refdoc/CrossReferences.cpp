#include "CrossReferences.hpp"

#include "ProductPages.hpp"
#include "Text.hpp"

#include <algorithm>
#include <set>
#include <tuple>

namespace refdoc::tool {

using reference::docparser::DiagnosticSource;
using reference::docparser::DocResourceParser;
using reference::docparser::FileDiagnostic;
using reference::property::RefEntityType;

namespace {

// Whether the link starts with a URI scheme, RFC 3986: ALPHA *( ALPHA / DIGIT / "+" / "-" / "." ) ":"
template <class Char>
bool hasScheme(std::basic_string_view<Char> link) {
    const auto isAlpha = [](Char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    if (link.empty() || !isAlpha(link.front())) {
        return false;
    }
    for (std::size_t i = 1; i < link.size(); ++i) {
        const Char c = link[i];
        if (c == ':') {
            return true;
        }
        if (!isAlpha(c) && !(c >= '0' && c <= '9') && c != '+' && c != '-' && c != '.') {
            return false;
        }
    }
    return false;
}

} // namespace

bool isExternalLink(const std::string& link) { return hasScheme(std::string_view(link)); }

namespace {

using LookupResource = DocResourceParser::LookupResourceMap::mapped_type;
using PageResource = DocResourceParser::RefItemFileMap::mapped_type;
using Identity = std::tuple<DiagnosticSource, std::u16string, std::u16string>;

// The link up to its fragment. The checks compare links as the data holds them (UTF-16) and
// write UTF-8 only into the warnings they give.
std::u16string_view withoutFragment(std::u16string_view link) { return link.substr(0, link.find(u'#')); }

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string typeName(RefEntityType::Value type) { return std::string(RefEntityType::toString(type)); }

class Checker {
public:
    Checker(Report& report, const LoadedData& data, const std::filesystem::path& root)
        : report_(report), data_(data), root_(root) {
        for (std::size_t i = 0; i < report.files.size(); ++i) {
            const FileDiagnostic& d = report.files[i].diagnostic;
            files_.emplace(Identity{d.source, d.path, d.entry}, i);
        }
        for (const auto& record : data.lookupRecords) {
            lookupDropped_ = lookupDropped_ || record.dropped();
        }
        for (const auto& [name, records] : data.pageRecords) {
            for (const auto& record : records) {
                pageDropped_ = pageDropped_ || record.dropped();
            }
        }
        for (const auto& [name, files] : data.pages) {
            names_.insert(name);
            for (const auto& [key, resource] : *files) {
                for (const auto& [href, pages] : resource.getItems()) {
                    allPages_.insert(href);
                }
            }
        }
        // Who holds each product key, in the order the library read them.
        for (const auto& record : data.lookupRecords) {
            if (record.dropped() || record.source == DiagnosticSource::Package) {
                continue;
            }
            for (const auto& key : std::set<std::u16string>(record.documentKeys.begin(), record.documentKeys.end())) {
                lookupHolders_[toUtf8(key)].push_back(&record);
            }
        }
    }

    void run() {
        for (const auto* map : {&data_.lookup->installedResources, &data_.lookup->uninstalledResources}) {
            for (const auto& [key, resource] : *map) {
                checkEntries(toUtf8(key), resource);
            }
        }
        for (const auto& [name, files] : data_.pages) {
            for (const auto& [key, resource] : *files) {
                const std::string productKey = toUtf8(key);
                if (pageFileOf(productKey) == name) {
                    checkPages(name, productKey, resource);
                }
                checkSeeAlso(name, resource);
            }
        }
        checkLookupKeys();
        checkPageKeys();
    }

private:
    // The lookup resource of a product key, or null.
    const LookupResource* lookupOf(const std::string& key) const {
        const std::u16string wanted = toUtf16(key);
        for (const auto* map : {&data_.lookup->installedResources, &data_.lookup->uninstalledResources}) {
            if (const auto found = map->find(wanted); found != map->end()) {
                return &found->second;
            }
        }
        return nullptr;
    }

    // The page file the tool takes a product's pages from, "" when no page file has the product.
    std::string pageFileOf(const std::string& key) {
        const auto known = pageFileOf_.find(key);
        if (known != pageFileOf_.end()) {
            return known->second;
        }
        const std::u16string wanted = toUtf16(key);
        const std::string file =
            productPageFile(names_, productFolder(lookupOf(key), key),
                            [&](const std::string& name) { return data_.pages.at(name)->count(wanted) != 0; });
        return pageFileOf_.emplace(key, file).first->second;
    }

    // The lookup file the library read a product key from first.
    const FileDiagnostic* lookupFileOf(const std::string& key) const {
        const auto found = lookupHolders_.find(key);
        return found == lookupHolders_.end() ? nullptr : found->second.front();
    }

    // The English record of a page file.
    const FileDiagnostic* pageRecordOf(const std::string& name) const {
        const auto found = data_.pageRecords.find(name);
        if (found == data_.pageRecords.end()) {
            return nullptr;
        }
        for (const auto& record : found->second) {
            if (!record.dropped()) {
                return &record;
            }
        }
        return nullptr;
    }

    std::string label(const FileDiagnostic* record) const { return record ? fileLabel(*record, root_) : "?"; }

    void warn(const FileDiagnostic* record, NameWarning warning) {
        if (record == nullptr) {
            return;
        }
        const auto found = files_.find(Identity{record->source, record->path, record->entry});
        if (found != files_.end()) {
            report_.files[found->second].nameWarnings.push_back(std::move(warning));
        }
    }

    void checkEntries(const std::string& key, const LookupResource& resource) {
        const FileDiagnostic* lookupFile = lookupFileOf(key);
        const std::string pageName = pageFileOf(key);
        if (pageName.empty() && pageDropped_) {
            return; // the product's pages may be in the dropped file: its drop is reported
        }
        const PageResource* pages = pageName.empty() ? nullptr : &data_.pages.at(pageName)->at(toUtf16(key));
        const std::string pageLabel = pageName.empty() ? "" : label(pageRecordOf(pageName));
        for (const auto& [name, entries] : resource.getItems()) {
            for (const auto& entry : entries) {
                const std::u16string href16(withoutFragment(entry.getHref()));
                const auto found = pages ? pages->getItems().find(href16) : PageResource::ItemMap::const_iterator{};
                if (pages == nullptr || found == pages->getItems().end() || found->second.empty()) {
                    reportEntryWithoutPage(lookupFile, key, pages != nullptr, pageLabel, entry, toUtf8(href16));
                    continue;
                }
                checkAgreement(lookupFile, key, entry, href16, found->second.front());
            }
        }
    }

    void reportEntryWithoutPage(const FileDiagnostic* lookupFile, const std::string& key, bool hasPageFile,
                                const std::string& pageLabel, const reference::property::RefItemLookup& entry,
                                const std::string& href) {
        const std::string entryName = quoted(toUtf8(entry.getName()));
        if (!hasPageFile) {
            warn(lookupFile, {kEntryWithoutPage,
                              "entry " + entryName + " of " + key + " links to " + href +
                                  ", but no page file has the product " + key,
                              "add a page file with the product " + key + " and a page with href " + href +
                                  ", or correct the entry's href"});
            return;
        }
        warn(lookupFile,
             {kEntryWithoutPage,
              "entry " + entryName + " of " + key + " links to " + href + ", which " + pageLabel + " does not have",
              "add a page with href " + href + " to " + pageLabel + " (product " + key +
                  ") or correct the entry's href"});
    }

    void checkAgreement(const FileDiagnostic* lookupFile, const std::string& key,
                        const reference::property::RefItemLookup& entry, const std::u16string& href16,
                        const reference::property::RefItem& page) {
        const auto& entities = page.getEntities();
        if (entities.empty()) {
            return;
        }
        const auto entryName = [&] { return quoted(toUtf8(entry.getName())); };
        const auto href = [&] { return toUtf8(href16); };
        const auto named = std::find_if(entities.begin(), entities.end(),
                                        [&](const auto& entity) { return entity.getName() == entry.getName(); });
        if (named == entities.end()) {
            std::vector<std::string> names;
            for (const auto& entity : entities) {
                names.push_back(quoted(toUtf8(entity.getName())));
            }
            warn(lookupFile, {kEntryPageMismatch,
                              "entry " + entryName() + " of " + key + " and its page " + href() +
                                  " disagree on the name: the page documents " + joinList(names, ", "),
                              "rename the entry to " + names.front() + " or correct the page's entity names"});
            return;
        }
        const RefEntityType::Value entryType = entry.getEntityType();
        const RefEntityType::Value pageType = named->getEntityType();
        if (entryType != pageType && entryType != RefEntityType::Unspecified &&
            pageType != RefEntityType::Unspecified) {
            warn(lookupFile,
                 {kEntryPageMismatch,
                  "entry " + entryName() + " of " + key + " is a " + typeName(entryType) + ", its page " + href() +
                      " documents it as a " + typeName(pageType),
                  "give the entry the type \"" + typeName(pageType) + "\" or correct the page's entity type"});
        }
    }

    void checkPages(const std::string& pageName, const std::string& key, const PageResource& pages) {
        const FileDiagnostic* pageFile = pageRecordOf(pageName);
        const LookupResource* resource = lookupOf(key);
        if (resource == nullptr && lookupDropped_) {
            return; // the product's entries may be in the dropped file: its drop is reported
        }
        std::set<std::u16string, std::less<>> linked; // entries give their links by value
        if (resource != nullptr) {
            for (const auto& [name, entries] : resource->getItems()) {
                for (const auto& entry : entries) {
                    linked.emplace(withoutFragment(entry.getHref()));
                }
            }
        }
        const std::string lookupLabel = label(lookupFileOf(key));
        for (const auto& [href16, list] : pages.getItems()) {
            if (linked.count(href16) != 0) {
                continue;
            }
            const std::string href = toUtf8(href16);
            if (resource == nullptr) {
                warn(pageFile,
                     {kPageWithoutEntry, "page " + href + " of " + key + ": no lookup file has the product " + key,
                      "add a lookup file with the product " + key + " and an entry that links to " + href +
                          ", or remove the page"});
            } else {
                warn(pageFile,
                     {kPageWithoutEntry,
                      "page " + href + " of " + key + ": no entry of " + key + " in " + lookupLabel + " links to it",
                      "add an entry with href " + href + " to " + lookupLabel + " (product " + key +
                          ") or remove the page"});
            }
        }
    }

    void checkSeeAlso(const std::string& pageName, const PageResource& pages) {
        const FileDiagnostic* pageFile = pageRecordOf(pageName);
        for (const auto& [href, list] : pages.getItems()) {
            for (const auto& page : list) {
                for (const auto& link : page.getSeeAlso()) {
                    const std::u16string_view url16 = link.getUrl();
                    const std::u16string_view target16 = withoutFragment(url16);
                    if (target16.empty() || hasScheme(url16) || allPages_.count(target16) != 0) {
                        continue;
                    }
                    const std::string url = toUtf8(url16);
                    const std::string target = toUtf8(target16);
                    warn(pageFile, {kBrokenSeeAlso,
                                    "page " + toUtf8(href) + ": see-also " + quoted(toUtf8(link.getName())) +
                                        " links to " + url + ", which no page file has",
                                    "link to the href of an existing page, add a page with href " + target +
                                        ", or give the full URL (https:...) of an outside page"});
                }
            }
        }
    }

    void checkLookupKeys() {
        for (const auto& [key, holders] : lookupHolders_) {
            for (std::size_t i = 1; i < holders.size(); ++i) {
                warn(holders[i],
                     {kKeyInSeveralFiles,
                      "product key \"" + key + "\" is also in " + label(holders.front()) +
                          ", which the library reads first: its header and entries win, this file adds only the "
                          "entries under names that one lacks",
                      "keep the product " + key + " in one file: remove it here or in " + label(holders.front()) +
                          ", or give one of them another key (helpFolder; baseCode for a support package)"});
            }
        }
    }

    void checkPageKeys() {
        std::map<std::string, std::vector<std::string>> holders; // key → page file names, in name order
        for (const auto& [name, files] : data_.pages) {
            for (const auto& [key, resource] : *files) {
                holders[toUtf8(key)].push_back(name);
            }
        }
        for (const auto& [key, names] : holders) {
            if (names.size() < 2) {
                continue;
            }
            const std::string winner = pageFileOf(key);
            const std::string winnerLabel = label(pageRecordOf(winner));
            for (const auto& name : names) {
                if (name == winner) {
                    continue;
                }
                warn(pageRecordOf(name),
                     {kKeyInSeveralFiles,
                      "product key \"" + key + "\" is also in " + winnerLabel + ", whose pages of " + key +
                          " refdoc shows (the page file named for the folder of the product's links first, then "
                          "the others by name); these are not",
                      "keep the pages of " + key + " in one file: move them to " + winnerLabel +
                          ", or give one of the documents another key (helpFolder; baseCode for a support package)"});
            }
        }
    }

    Report& report_;
    const LoadedData& data_;
    const std::filesystem::path& root_;
    std::map<Identity, std::size_t> files_;
    std::set<std::string> names_;
    std::set<std::u16string_view, std::less<>> allPages_; // views of the page files' keys
    std::map<std::string, std::vector<const FileDiagnostic*>> lookupHolders_;
    std::map<std::string, std::string> pageFileOf_;
    bool lookupDropped_ = false;
    bool pageDropped_ = false;
};

} // namespace

void addCrossReferenceWarnings(Report& report, const LoadedData& data, const std::filesystem::path& root) {
    if (data.lookup) {
        Checker(report, data, root).run();
    }
}

} // namespace refdoc::tool
