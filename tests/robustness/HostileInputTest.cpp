// Hostile input beside a sound product: files, zip packages and the documents of a JSON parsing
// conformance corpus. Each must count as absent (or, where the format allows it, load exactly),
// leave the sound product untouched and stay within a memory bound.

#include "AllocationCounter.hpp"
#include "ZipWriter.hpp"

#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"
#include "support/ZipPatch.hpp"

#include "docparser/loading/FileAccess.hpp"
#include "docparser/loading/ZipPackage.hpp"
#include "docparser/parsing/LookupParser.hpp"
#include "docparser/parsing/RefItemParser.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/TextConversion.hpp>

#include <doclanguage/DocLanguage.hpp>

#include <boost/json/parse.hpp>
#include <boost/system/system_error.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace refdoc::test {
namespace {

namespace fs = std::filesystem;
using reference::docparser::DocParserException;
using reference::docparser::DocResourceParser;
using Make = std::function<void(const fs::path&)>;

constexpr std::size_t kMiB = std::size_t{1} << 20;

// A documentation root with the sound product "control" as a lookup file and a page file, and the
// sound package "sound.zip" of an uninstalled product. Files named like the entries of a package
// with parent or absolute paths lie outside the lookup folder.
class HostileRoot : public HostSettingsFixture {
protected:
    using PageMap = DocResourceParser::RefItemFileMap;

    struct Loaded {
        DocResourceParser::ParsingResults<DocResourceParser::LookupResourceMap> lookups;
        PageMap pages;          // the pages of the product named by the load
        PageMap controlPages;   // the control product's pages
        AllocationStats memory; // what the three loads allocated
    };

    void SetUp() override {
        HostSettingsFixture::SetUp();
        root_.write(lookupFolder() / "control.json",
                    fileText(lookupDocument({"Control", "CTL", "control"}, {{"probe", "Always here"}})));
        root_.write(referenceFolder() / "control.json",
                    fileText(pageDocument({"Control", "CTL", "control"}, {{"control/probe.html", "Always here"}})));
        ZipWriter()
            .add("sound.json", fileText(lookupDocument({"Sound", "SND", "sound"}, {{"s", "sound"}})))
            .write(lookupFolder() / "sound.zip");
        for (const char* outside : {"docCatalog/up.json", "abs/abs.json"}) {
            root_.write(outside, fileText(lookupDocument({"Outside", "OUT", "hostile"}, {{"outside", "x"}})));
        }
        DocResourceParser::setReferenceRoot(root_.u16());
        DocResourceParser::setTestProducts({u"control", u"hostile"}, {});
        controlOnly_ = load(u"control");
        ASSERT_EQ(summarize(controlOnly_.lookups.installedResources),
                  (LookupSummary{{"control", {"Control", {{"probe", {"Always here"}}}}}}));
        ASSERT_EQ(summarize(controlOnly_.lookups.uninstalledResources),
                  (LookupSummary{{"sound", {"Sound", {{"s", {"sound"}}}}}}));
        ASSERT_EQ(controlOnly_.controlPages.size(), 1u);
    }

    std::filesystem::path lookupFolder() const { return root_.path() / "docCatalog/referenceapi_lookup"; }
    std::filesystem::path referenceFolder() const { return root_.path() / "docCatalog/referenceapi"; }

    static Loaded load(const std::u16string& pageName) {
        AllocationWatch watch;
        Loaded loaded{DocResourceParser::getResourceLookupFiles(),
                      DocResourceParser::getResourceFile(pageName),
                      DocResourceParser::getResourceFile(u"control"),
                      {}};
        loaded.memory = watch.stats();
        return loaded;
    }

    // `text` as the lookup file and the page file of the product "hostile", beside the control.
    Loaded loadAsFiles(const std::string& text) const {
        root_.write(lookupFolder() / "hostile.json", text);
        root_.write(referenceFolder() / "hostile.json", text);
        return load(u"hostile");
    }

    // The hostile files count as absent: the results are those without them.
    void expectOnlyControl(const Loaded& loaded) const {
        EXPECT_EQ(loaded.lookups, controlOnly_.lookups);
        EXPECT_TRUE(loaded.pages.empty());
        EXPECT_EQ(loaded.controlPages, controlOnly_.controlPages);
    }

    TempDir root_;
    Loaded controlOnly_;
};

// One document that both formats accept: the lookup format reads an item's name, purpose and
// link, the page format its link and purpose. A case breaks one thing in it.
std::string itemWithPurpose(std::string_view purposeJson, std::string_view extraMembers = "") {
    return std::string(R"({"name":"probe","href":"hostile/probe.html")")
        .append(extraMembers)
        .append(R"(,"refpurpose":)")
        .append(purposeJson)
        .append("}");
}

std::string document(const std::string& items = itemWithPurpose(R"("A probe")"), std::string_view extraMembers = "") {
    return std::string(
               R"({"productName":"Hostile","baseCode":"HOS","helpFolder":"hostile","helpLocation":"help/hostile",)")
        .append(R"("refItems":[)")
        .append(items)
        .append("]")
        .append(extraMembers)
        .append("}");
}

Make bytes(std::string text) {
    return [text = std::move(text)](const fs::path& path) { writeBytes(path, text); };
}

// A lookup document of the product "hostile" whose one item shows which entry it came from.
std::string hostileLookup(const std::string& itemName) {
    return fileText(lookupDocument({"Hostile", "HOS", "hostile"}, {{itemName, "from the package"}}));
}

// "bomb.json", a sound document padded with `padding` spaces and declaring `declaredSize` if
// given, beside the sound "kept.json". Built when the case runs: some are hundreds of MiB.
Make bomb(std::size_t padding, std::optional<std::uint32_t> declaredSize = {}) {
    return [=](const fs::path& package) {
        ZipWriter()
            .add("bomb.json", hostileLookup("bomb") + std::string(padding, ' '))
            .add("kept.json", hostileLookup("kept"))
            .write(package);
        if (declaredSize) {
            patchZipEntry(package, "bomb.json", ZipField::UncompressedSize, *declaredSize);
        }
    };
}

// `count` directory entries e00.json, e01.json, ... all pointing at the data of the one stored
// entry there is, so a reader that trusts the directory inflates that data once per entry.
Make entriesSharingTheirData(int count) {
    return [=](const fs::path& package) {
        ZipWriter()
            .add("e00.json", hostileLookup("shared") + std::string(kMiB / 2, ' '), ZipWriter::Compression::Store)
            .write(package);
        std::string bytes = readBytes(package);
        const auto at = locateZipEntry(package, "e00.json").centralHeaderOffset;
        std::string end = bytes.substr(bytes.size() - 22);
        const std::string header = bytes.substr(at, bytes.size() - 22 - at);
        std::string central;
        for (int i = 0; i < count; ++i) {
            central += header;
            central.replace(central.size() - header.size() + 47, 2, std::to_string(100 + i).substr(1));
        }
        // The end record's entry counts (on this disk and in all) and the directory's size.
        putLittleEndian(end, 8, static_cast<std::uint32_t>(count), 2);
        putLittleEndian(end, 10, static_cast<std::uint32_t>(count), 2);
        putLittleEndian(end, 12, static_cast<std::uint32_t>(central.size()), 4);
        writeBytes(package, bytes.substr(0, at) + central + end);
    };
}

struct HostileCase {
    const char* name;
    Make make; // makes hostile.zip and hostile.json in the lookup folder and hostile.json for pages
    std::set<std::string> loadedItems = {}; // item names a package still gives the product "hostile"
    bool packageOnly = false;               // made as hostile.zip alone
};

void PrintTo(const HostileCase& hostileCase, std::ostream* out) { *out << hostileCase.name; }

const HostileCase kCases[] = {
    // Text that is not strict JSON, or not UTF-8.
    {"nesting_far_deeper_than_allowed",
     bytes(
         document(itemWithPurpose(R"("A probe")"), R"(,"x":)" + std::string(100000, '[') + std::string(100000, ']')))},
    {"overlong_utf8", bytes(document(itemWithPurpose("\"\xC0\xAF\"")))},
    {"utf8_encoded_surrogate", bytes(document(itemWithPurpose("\"\xED\xA0\x80\"")))},
    {"escaped_lone_high_surrogate", bytes(document(itemWithPurpose(R"("\ud800")")))},
    {"escaped_lone_low_surrogate", bytes(document(itemWithPurpose(R"("x\udc00y")")))},
    {"utf8_byte_order_mark", bytes("\xEF\xBB\xBF" + document())},
    {"utf16_text", bytes([] {
         std::string wide;
         for (const char c : document()) {
             wide.append({c, '\0'});
         }
         return wide;
     }())},
    {"raw_nul_inside_a_key", bytes(document(R"({"name":"probe","refpurpose":"A probe","href":"hostile/probe.html","x)" +
                                            std::string(1, '\0') + R"(":1})"))},
    {"nul_after_the_document", bytes(document() + std::string(1, '\0'))},
    // Strict JSON that breaks the format.
    {"nul_inside_a_required_key",
     bytes(document(R"({"name":"probe","refpurpose":"A probe","href\u0000":"hostile/probe.html"})"))},
    {"number_where_an_enumeration_belongs",
     bytes(document(R"({"name":"probe","refpurpose":"p","href":"h","type":3,"deprecationstatus":3})"))},
    // Entries of the file system that never end or never lead to a file (the plainer ones are
    // file access's).
    {"a_symbolic_link_loop",
     [](const fs::path& path) {
         const fs::path other = path.string() + ".loop";
         fs::create_symlink(other.filename(), path);
         fs::create_symlink(path.filename(), other);
     }},
    {"a_link_to_an_endless_device", [](const fs::path& path) { fs::create_symlink("/dev/zero", path); }},
    // Packages: damaged, forged or bombs. Sound entries still load unless the whole package is
    // refused, and nothing is inflated beyond the entry size bound.
    {"declared_size_far_beyond_the_bound", bomb(0, 0xFFFFFFF0u), {"kept"}, true},
    {"honest_bomb_beyond_the_bound", bomb(reference::docparser::kMaxZipEntrySize + kMiB), {"kept"}, true},
    // A reader that trusted the declared size would claim 200 MiB for 100 bytes of data.
    {"declared_size_within_the_bound_far_beyond_the_data", bomb(0, 200 * kMiB), {"kept"}, true},
    {"data_far_longer_than_declared", bomb(64 * kMiB, 100), {"kept"}, true},
    {"encrypted_entry",
     [](const fs::path& package) {
         ZipWriter()
             .addEncrypted("secret.json", hostileLookup("secret"), "password")
             .add("kept.json", hostileLookup("kept"))
             .write(package);
     },
     {"kept"},
     true},
    {"entries_sharing_their_data", entriesSharingTheirData(96), {}, true},
    {"duplicate_entry_names",
     [](const fs::path& package) {
         ZipWriter().add("dup.json", hostileLookup("first")).add("dux.json", hostileLookup("second")).write(package);
         std::string bytes = readBytes(package);
         for (auto at = bytes.find("dux.json"); at != std::string::npos; at = bytes.find("dux.json", at)) {
             bytes.replace(at, 8, "dup.json");
         }
         writeBytes(package, bytes);
     },
     {},
     true},
    // Nothing is ever extracted: folder parts of a name, however they point, only lead to the base
    // name, and the entry's own data is read.
    {"absolute_and_parent_paths",
     [](const fs::path& package) {
         ZipWriter()
             .add("/abs/abs.json", hostileLookup("abs"))
             .add("../up.json", hostileLookup("up"))
             .add("..\\..\\win.json", hostileLookup("win"))
             .write(package);
     },
     {"abs", "up", "win"},
     true},
};

class HostileInput : public HostileRoot {};
class HostileFile : public HostileRoot, public ::testing::WithParamInterface<HostileCase> {};

TEST_P(HostileFile, OnlyItsSoundEntriesLoadWithinBoundedMemory) {
    const HostileCase& hostile = GetParam();
    for (const fs::path& path :
         {lookupFolder() / "hostile.zip", lookupFolder() / "hostile.json", referenceFolder() / "hostile.json"}) {
        if (!hostile.packageOnly || path.extension() == ".zip") {
            hostile.make(path);
        }
    }
    const Loaded loaded = load(u"hostile");
    if (hostile.loadedItems.empty()) {
        expectOnlyControl(loaded);
    } else {
        LookupSummary installed = summarize(controlOnly_.lookups.installedResources);
        auto& [productName, items] = installed["hostile"];
        productName = "Hostile";
        for (const auto& item : hostile.loadedItems) {
            items[item] = {"from the package"};
        }
        EXPECT_EQ(summarize(loaded.lookups.installedResources), installed);
        EXPECT_EQ(loaded.lookups.uninstalledResources, controlOnly_.lookups.uninstalledResources);
        EXPECT_EQ(loaded.controlPages, controlOnly_.controlPages);
    }
    // Hostile input here is small or never read whole: what a load allocates stays far below it.
    EXPECT_LT(loaded.memory.peakGrowth, 4 * kMiB);
    EXPECT_LT(loaded.memory.totalBytes, 8 * kMiB);
}

INSTANTIATE_TEST_SUITE_P(Cases, HostileFile, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Also the proof that the cases above are hostile for what they break, not for the document.
TEST_F(HostileInput, TheUnbrokenDocumentLoadsWholeInBothFormatsInMemoryProportionalToIt) {
    const std::string ascii(4 * kMiB, 'a');
    std::string accented;
    for (std::size_t i = 0; i < kMiB; ++i) {
        accented += "\xC3\xA9"; // é
    }
    // Escaped NULs stay in the texts, and a member name with one is a member of its own.
    const std::string text = document(R"({"name":")" + accented + R"(\u0000","refpurpose":")" + ascii +
                                          R"(\u0000","href":"hostile/probe.html","x\u0000":1})",
                                      R"(,"ignored":")" + ascii + "\"");
    const Loaded loaded = loadAsFiles(text);

    const std::u16string name = std::u16string(kMiB, u'\u00E9') + u'\0';
    const std::u16string purpose = std::u16string(4 * kMiB, u'a') + u'\0';
    const auto& lookups = loaded.lookups.installedResources;
    ASSERT_EQ(lookups.size(), 2u);
    EXPECT_EQ(lookups.at(u"control"), controlOnly_.lookups.installedResources.at(u"control"));
    const auto& lookupItems = lookups.at(u"hostile").getItems();
    ASSERT_EQ(lookupItems.size(), 1u);
    EXPECT_EQ(lookupItems.begin()->first, name);
    EXPECT_EQ(lookupItems.begin()->second.at(0).getPurpose(), purpose);
    const auto& pages = loaded.pages.at(u"hostile").getItems();
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(pages.at(u"hostile/probe.html").at(0).getPurpose(), purpose);
    // The file's bytes, its JSON tree and the UTF-16 texts of two formats: a few times the file,
    // never a copy per character or per item. At least the file itself is held, or the counter
    // does not see the library's allocations and every bound of this suite holds vacuously.
    EXPECT_LT(loaded.memory.peakGrowth, 8 * text.size());
    EXPECT_GT(loaded.memory.peakGrowth, text.size());
    EXPECT_GE(loaded.memory.largestRequest, text.size());
}

// Work that grows faster than the input lets a file of a few MiB stall a load for minutes. The
// number and size of allocations follow the work done, so they stand in for it here.
TEST_F(HostileInput, ManyNameValueHoldersTakeLinearWork) {
    constexpr int kHolders = 2000;
    std::string holders = R"({"namevaluepairs":[{"title":"a","inputs":[]},{"title":"b","inputs":[]}]})";
    for (int i = 1; i < kHolders; ++i) {
        holders += R"(,{"namevaluepairs":[{"title":"a","inputs":[]},{"title":"b","inputs":[]}]})";
    }
    const std::string text =
        document(R"({"href":"hostile/probe.html","refpurpose":"p","inputgroup":[)" + holders + "]}");
    writeBytes(referenceFolder() / "hostile.json", text);

    const Loaded loaded = load(u"hostile");

    const auto& page = loaded.pages.at(u"hostile").getItems().at(u"hostile/probe.html").at(0);
    EXPECT_EQ(page.getInputGroups().size(), 2u * kHolders);
    EXPECT_LT(loaded.memory.totalBytes, 32 * text.size());
}

TEST_F(HostileInput, ALongFallbackListMergesInLinearWork) {
    constexpr int kItems = 5000;
    std::string items;
    for (int i = 0; i < kItems; ++i) {
        items += (i == 0 ? "" : ",");
        items += R"({"name":"a","refpurpose":"p","href":"hostile/ref/item)" + std::to_string(i) + R"(.html"})";
    }
    writeBytes(lookupFolder() / "hostile.json", document(items));
    writeBytes(lookupFolder() / "hostile_ja.json",
               document(R"({"name":"a","refpurpose":"ja","href":"hostile/ref/item0.html"})"));
    doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});
    doclanguage::DocLanguage::getInstance().setDocLanguage(u"ja");

    const Loaded loaded = load(u"hostile");

    // The translation's single item wins its link; the English items fill in the other links.
    const auto& merged = loaded.lookups.installedResources.at(u"hostile").getItems().at(u"a");
    ASSERT_EQ(merged.size(), std::size_t{kItems});
    EXPECT_EQ(merged.front().getPurpose(), u"ja");
    EXPECT_EQ(merged.back().getHref(), u"hostile/ref/item4999.html");
    EXPECT_LT(loaded.memory.count, 10u * kItems);
}

const fs::path kCorpus = fs::path(REFDOC_JSON_CONFORMANCE_DIR) / "test_parsing";

// How a format takes a text: "parsed", "format" (refused by the format), "syntax" (refused as
// JSON) or "other".
std::string outcomeOf(const std::function<void()>& parse) {
    try {
        parse();
        return "parsed";
    } catch (const DocParserException&) {
        return "format";
    } catch (const boost::system::system_error&) {
        return "syntax";
    } catch (...) {
        return "other";
    }
}

class JsonConformance : public HostileRoot {
protected:
    void SetUp() override {
        if (!fs::is_directory(kCorpus)) {
            GTEST_SKIP() << "JSON conformance corpus not found: no folder " << kCorpus
                         << " (point the CMake option REFDOC_JSON_CONFORMANCE_DIR at the corpus)";
        }
        HostileRoot::SetUp();
    }
};

// No document of the corpus is a resource document, so accepted ones (y_, and some i_) fail
// through the formats' own rules; both formats decide alike, and each document counts as absent.
// Every document the JSON parser takes changes nothing as the value of members neither format
// reads; one that holds a single string, used as an item's purpose, reaches the records of both
// formats as exactly the text the JSON parser read.
TEST_F(JsonConformance, EachDocumentCountsAsAbsentAndTakenOnesArriveIntact) {
    const std::map<char, std::set<std::string>> allowed = {
        {'n', {"syntax"}}, {'y', {"format"}}, {'i', {"syntax", "format"}}};
    const Loaded plain = loadAsFiles(document(itemWithPurpose(R"("p")")));
    ASSERT_EQ(plain.pages.count(u"hostile"), 1u);
    std::size_t documents = 0;
    std::size_t embedded = 0;
    std::size_t strings = 0;
    for (const auto& file : fs::directory_iterator(kCorpus)) {
        const std::string name = file.path().filename().string();
        if (file.path().extension() != ".json" || !allowed.contains(name[0])) {
            continue;
        }
        SCOPED_TRACE(name);
        ++documents;
        const std::string text = readBytes(file.path());
        const std::string lookup = outcomeOf([&] { reference::docparser::lookupFileParser(text); });
        EXPECT_TRUE(allowed.at(name[0]).contains(lookup)) << lookup;
        EXPECT_EQ(outcomeOf([&] { reference::docparser::parseRefItemFile(text, nullptr, nullptr); }), lookup);
        expectOnlyControl(loadAsFiles(text));
        if (lookup == "syntax") {
            continue;
        }

        ++embedded;
        const Loaded unread =
            loadAsFiles(document(itemWithPurpose(R"("p")", ",\"unread\":" + text), ",\"unread\":" + text));
        EXPECT_EQ(unread.lookups, plain.lookups);
        EXPECT_EQ(unread.pages, plain.pages);
        const boost::json::value value = boost::json::parse(text);
        const auto* array = value.if_array();
        if (array == nullptr || array->size() != 1 || !array->front().is_string()) {
            continue;
        }
        ++strings;
        const auto open = text.find('[');
        const Loaded loaded = loadAsFiles(document(itemWithPurpose(text.substr(open + 1, text.rfind(']') - open - 1))));
        const auto expected = reference::docparser::utf8ToUtf16(array->front().get_string());
        EXPECT_EQ(loaded.lookups.installedResources.at(u"hostile").getItems().at(u"probe").at(0).getPurpose(),
                  expected);
        EXPECT_EQ(loaded.pages.at(u"hostile").getItems().at(u"hostile/probe.html").at(0).getPurpose(), expected);
    }
    EXPECT_GT(documents, 300u);
    EXPECT_GT(embedded, 90u);
    EXPECT_GT(strings, 30u);
}

} // namespace
} // namespace refdoc::test
