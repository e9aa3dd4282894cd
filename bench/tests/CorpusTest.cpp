// The benchmark is only as good as its corpus and its floor: the corpus must be what the library
// reads without dropping anything, and the floor must read exactly the files the library reads.

#include "Corpus.hpp"
#include "Floor.hpp"
#include "Host.hpp"
#include "Peer.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>
#include <reference/docparser/DocResourceParser.hpp>

#include "support/HostSettingsFixture.hpp"
#include "support/LogCapture.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;
using reference::docparser::DocResourceParser;
using namespace refdoc::bench;
using refdoc::test::LogCapture;
using refdoc::test::TempDir;

CorpusOptions smallCorpus(std::uint64_t seed = 7, Profile profile = Profile::Default) {
    CorpusOptions options;
    options.profile = profile;
    options.seed = seed;
    options.products = 16; // enough for every packaging, support packages and both translations
    options.meanItems = 40;
    return options;
}

std::map<std::string, std::string> filesBelow(const fs::path& root) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.is_regular_file()) {
            std::ifstream in(entry.path(), std::ios::binary);
            std::stringstream bytes;
            bytes << in.rdbuf();
            files[fs::relative(entry.path(), root).string()] = bytes.str();
        }
    }
    return files;
}

std::u16string widen(const std::string& ascii) { return std::u16string(ascii.begin(), ascii.end()); }

bool hasNonAscii(const std::u16string& text) {
    return std::any_of(text.begin(), text.end(), [](char16_t c) { return c >= 0x80; });
}

TEST(Corpus, SameOptionsGiveTheSameBytesAndAnotherSeedOrProfileOtherBytes) {
    std::map<Profile, std::map<std::string, std::string>> byProfile;
    for (const Profile profile : {Profile::Default, Profile::Varied}) {
        const TempDir first;
        const TempDir second;
        const TempDir other;
        generateCorpus(first.path(), smallCorpus(11, profile));
        generateCorpus(second.path(), smallCorpus(11, profile));
        generateCorpus(other.path(), smallCorpus(12, profile));

        const auto firstFiles = filesBelow(first.path());
        // zip packages included: no time stamps leak in
        EXPECT_EQ(firstFiles, filesBelow(second.path())) << profileName(profile);
        EXPECT_NE(firstFiles, filesBelow(other.path())) << profileName(profile);
        byProfile[profile] = firstFiles;
    }
    EXPECT_NE(byProfile[Profile::Default], byProfile[Profile::Varied]);
}

TEST(Corpus, ManifestReadBackEqualsTheGeneratedOne) {
    const TempDir root;
    const Manifest written = generateCorpus(root.path(), smallCorpus());
    const Manifest read = readManifest(root.path());

    EXPECT_EQ(read.profile, written.profile);
    EXPECT_EQ(read.pageFileBytes, written.pageFileBytes);
    EXPECT_EQ(read.seed, written.seed);
    EXPECT_EQ(read.largestProduct, written.largestProduct);
    EXPECT_EQ(read.localeCodes, written.localeCodes);
    EXPECT_EQ(read.lookupReads, written.lookupReads);
    ASSERT_EQ(read.products.size(), written.products.size());
    for (std::size_t i = 0; i < read.products.size(); ++i) {
        EXPECT_EQ(read.products[i].name, written.products[i].name);
        EXPECT_EQ(read.products[i].items, written.products[i].items);
        EXPECT_EQ(read.products[i].localizedOnlyItems, written.products[i].localizedOnlyItems);
        EXPECT_EQ(read.products[i].packaging, written.products[i].packaging);
        EXPECT_EQ(read.products[i].languages, written.products[i].languages);
        EXPECT_EQ(read.products[i].supportPackages.size(), written.products[i].supportPackages.size());
    }
    EXPECT_THROW(readManifest(root.path() / "nowhere"), std::runtime_error);
}

TEST(Corpus, HoldsEveryShapeTheBenchmarkClaims) {
    const TempDir root;
    const Manifest manifest = generateCorpus(root.path(), smallCorpus());

    std::set<Packaging> packagings;
    std::size_t supportPackages = 0;
    std::size_t installed = 0;
    std::size_t items = 0;
    for (const auto& product : manifest.products) {
        packagings.insert(product.packaging);
        supportPackages += product.supportPackages.size();
        installed += product.installed ? 1 : 0;
        items += product.items;
    }
    EXPECT_EQ(packagings.size(), 3u);
    EXPECT_GT(supportPackages, 0u);
    EXPECT_GT(installed, 0u);
    EXPECT_LT(installed, manifest.products.size());
    EXPECT_EQ(items / manifest.products.size(), 40u); // the mean asked for
    EXPECT_EQ(manifest.localeCodes, (std::vector<std::string>{"ja", "ko"}));
    // Every language reads every product's English data, plus some variants.
    for (const auto& language : {"ja", "ko"}) {
        EXPECT_GT(manifest.lookupReads.at(language).size(), manifest.lookupReads.at("en").size()) << language;
    }
    EXPECT_EQ(manifest.lookupReads.at("en").size(), manifest.products.size());
    for (const auto& page : manifest.pageReads(manifest.largestProduct, "ja")) {
        EXPECT_TRUE(fs::is_regular_file(root.path() / page)) << page;
    }
}

// Loading the corpus through the library: nothing may be dropped, and the floor must read exactly
// what the library reads.
class CorpusLoading : public refdoc::test::HostSettingsFixture {
protected:
    void SetUp() override {
        HostSettingsFixture::SetUp();
        manifest_ = generateCorpus(root_.path(), smallCorpus());
    }

    // What the library announces it reads, in the manifest's terms: loose files by their path
    // below the root, zip entries by their stem (the product name the library logs).
    std::set<std::string> announcedReads(const fs::path& root, const Manifest& manifest, const std::string& language) {
        configureHost(root, manifest, language);
        const LogCapture capture(reference::docparser::kFileAccessSeverity);
        static_cast<void>(DocResourceParser::getResourceLookupFiles());
        std::set<std::string> reads;
        const std::string prefix = "Reading file: " + root.string() + "/";
        for (const auto& message : capture.messages()) {
            if (message.starts_with(prefix)) {
                reads.insert(message.substr(prefix.size()));
            } else if (message.starts_with("Reading file: ")) {
                reads.insert("entry " + message.substr(std::string("Reading file: ").size()));
            }
        }
        return reads;
    }

    static std::set<std::string> manifestReads(const Manifest& manifest, const std::string& language) {
        std::set<std::string> reads;
        for (const auto& read : manifest.lookupReads.at(language)) {
            reads.insert(read.entry.empty() ? read.file : "entry " + fs::path(read.entry).stem().string());
        }
        return reads;
    }

    TempDir root_;
    Manifest manifest_;
};

TEST_F(CorpusLoading, FloorReadsExactlyTheFilesTheLibraryReadsInEveryProfile) {
    const TempDir variedRoot;
    const Manifest varied = generateCorpus(variedRoot.path(), smallCorpus(7, Profile::Varied));
    const std::pair<const fs::path*, const Manifest*> corpora[] = {{&root_.path(), &manifest_},
                                                                   {&variedRoot.path(), &varied}};
    for (const auto& [root, manifest] : corpora) {
        for (const std::string language : {"en", "ja", "ko"}) {
            EXPECT_EQ(announcedReads(*root, *manifest, language), manifestReads(*manifest, language))
                << manifest->profile << " " << language;
            const FloorResult floor = readAndParse(*root, manifest->lookupReads.at(language));
            EXPECT_EQ(floor.files, manifest->lookupReads.at(language).size()) << language;
            std::size_t bytes = 0;
            for (const auto& read : manifest->lookupReads.at(language)) {
                bytes += read.bytes;
            }
            EXPECT_EQ(floor.bytes, bytes) << manifest->profile << " " << language;
        }
    }
}

TEST_F(CorpusLoading, FloorFailsRatherThanDoLessWork) {
    auto reads = manifest_.lookupReads.at("en");
    reads.push_back({std::string(kLookupFolder) + "/missing.json", ""});
    EXPECT_THROW(readAndParse(root_.path(), reads), std::runtime_error);

    const auto zipped = std::find_if(reads.begin(), reads.end(), [](const FileRead& r) { return !r.entry.empty(); });
    ASSERT_NE(zipped, reads.end());
    const std::vector<FileRead> missingEntry{{zipped->file, "missing.json"}};
    EXPECT_THROW(readAndParse(root_.path(), missingEntry), std::runtime_error);
}

TEST_F(CorpusLoading, EveryEntryLoadsInEveryLanguageWithItsTranslation) {
    for (const std::string language : {"en", "ja", "ko"}) {
        configureHost(root_.path(), manifest_, language);
        const auto results = DocResourceParser::getResourceLookupFiles();
        if (language == "en") { // the straightforward reader must do the library's whole work
            std::size_t libraryEntries = 0;
            for (const auto* map : {&results.installedResources, &results.uninstalledResources}) {
                for (const auto& [key, resource] : *map) {
                    for (const auto& [name, list] : resource.getItems()) {
                        libraryEntries += list.size();
                    }
                }
            }
            EXPECT_EQ(peer::recordCount(peer::loadLookup(root_.path(), manifest_.lookupReads.at("en"))),
                      libraryEntries);
        }
        for (const auto& product : manifest_.products) {
            const auto& map = product.installed ? results.installedResources : results.uninstalledResources;
            const auto found = map.find(widen(product.name));
            ASSERT_NE(found, map.end()) << product.name << " " << language;
            // Translations lack a few entries; the English ones fill in, so every load holds
            // every English entry exactly once.
            std::size_t entries = 0;
            std::size_t translated = 0;
            for (const auto& [name, list] : found->second.getItems()) {
                entries += list.size();
                for (const auto& item : list) {
                    translated += hasNonAscii(item.getPurpose()) ? 1 : 0;
                }
            }
            EXPECT_EQ(entries, product.items) << product.name << " " << language;
            const bool isTranslated =
                std::find(product.languages.begin(), product.languages.end(), language) != product.languages.end();
            if (language == "en" || !isTranslated) {
                EXPECT_EQ(translated, 0u) << product.name << " " << language;
            } else {
                EXPECT_GT(translated, entries / 2) << product.name << " " << language;
            }
            for (const auto& package : product.supportPackages) {
                const auto& packageMap = package.installed ? results.installedResources : results.uninstalledResources;
                const auto packageFound = packageMap.find(widen(package.baseCode));
                ASSERT_NE(packageFound, packageMap.end()) << package.baseCode << " " << language;
            }
        }
    }
}

TEST_F(CorpusLoading, PagesOfTheLargestProductLoadWithTheirTranslation) {
    const std::u16string largest = widen(manifest_.largestProduct);
    configureHost(root_.path(), manifest_, "en");
    const auto english = DocResourceParser::getResourceFile(largest);
    setCurrentLanguage("ja");
    const auto japanese = DocResourceParser::getResourceFile(largest);

    const auto product = std::find_if(manifest_.products.begin(), manifest_.products.end(),
                                      [&](const ProductInfo& p) { return p.name == manifest_.largestProduct; });
    ASSERT_NE(product, manifest_.products.end());
    ASSERT_TRUE(english.contains(largest));
    EXPECT_EQ(english.at(largest).getItems().size(), product->items); // one page per entry, links unique
    EXPECT_EQ(english.size(), 1 + product->supportPackages.size());
    // The translation lacks a few pages; the English ones fill in, under the same documents.
    ASSERT_EQ(japanese.size(), english.size());
    for (const auto& [key, resource] : english) {
        ASSERT_TRUE(japanese.contains(key));
        EXPECT_EQ(japanese.at(key).getItems().size(), resource.getItems().size());
        EXPECT_TRUE(hasNonAscii(japanese.at(key).getItems().begin()->second.front().getDescription()));
    }
}

} // namespace
