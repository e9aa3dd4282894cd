// Hostile files and zip packages beside a sound product: each must count as absent (or, where the
// format allows it, load exactly), leave the other product untouched and stay within a memory bound.

#include "HostileRoot.hpp"

#include "ZipWriter.hpp"
#include "support/ZipPatch.hpp"

#include "docparser/loading/FileAccess.hpp"
#include "docparser/loading/ZipPackage.hpp"

#include <doclanguage/DocLanguage.hpp>

#include <zlib.h>

#include <functional>
#include <optional>
#include <set>

#include <sys/stat.h>

namespace refdoc::test {
namespace {

namespace fs = std::filesystem;
using Make = std::function<void(const fs::path&)>;

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr std::string_view kItem = R"({"name":"probe","refpurpose":"A probe","href":"hostile/probe.html"})";

// One document that both formats accept: the lookup format reads an item's name, purpose and
// link, the page format its link and purpose. A case breaks one thing in it.
std::string document(std::string_view items = kItem, std::string_view extraMembers = "") {
    return std::string(
               R"({"productName":"Hostile","baseCode":"HOS","helpFolder":"hostile","helpLocation":"help/hostile",)")
        .append(R"("refItems":[)")
        .append(items)
        .append("]")
        .append(extraMembers)
        .append("}");
}

std::string itemWithPurpose(std::string_view purposeJson) {
    return std::string(R"({"name":"probe","refpurpose":)").append(purposeJson).append(R"(,"href":"hostile/probe.html"})");
}

Make bytes(std::string text) {
    return [text = std::move(text)](const fs::path& path) { writeBytes(path, text); };
}

struct HostileCase {
    const char* name;
    Make make; // makes hostile.json and hostile.zip in the lookup folder and hostile.json for pages
};

void PrintTo(const HostileCase& hostileCase, std::ostream* out) { *out << hostileCase.name; }

const HostileCase kFileCases[] = {
    // Text that is not strict JSON, or not UTF-8.
    {"nesting_far_deeper_than_allowed",
     bytes(document(kItem, R"(,"x":)" + std::string(100000, '[') + std::string(100000, ']')))},
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
    {"raw_nul_inside_a_key",
     bytes(document(R"({"name":"probe","refpurpose":"A probe","href":"hostile/probe.html","x)" + std::string(1, '\0') +
                    R"(":1})"))},
    {"nul_after_the_document", bytes(document() + std::string(1, '\0'))},
    // Strict JSON that breaks the format.
    {"nul_inside_a_required_key",
     bytes(document(R"({"name":"probe","refpurpose":"A probe","href\u0000":"hostile/probe.html"})"))},
    {"number_where_an_enumeration_belongs",
     bytes(document(R"({"name":"probe","refpurpose":"p","href":"h","type":3,"deprecationstatus":3})"))},
    // Entries of the file system that are no readable regular file.
    {"a_folder",
     [](const fs::path& path) {
         fs::create_directories(path / "inside");
         writeBytes(path / "inside" / "hostile.json", document());
     }},
    {"a_symbolic_link_loop",
     [](const fs::path& path) {
         const fs::path other = path.string() + ".loop";
         fs::create_symlink(other.filename(), path);
         fs::create_symlink(path.filename(), other);
     }},
    {"a_dangling_symbolic_link", [](const fs::path& path) { fs::create_symlink(path.string() + ".missing", path); }},
    {"a_link_to_an_endless_device", [](const fs::path& path) { fs::create_symlink("/dev/zero", path); }},
    // Opening a FIFO without a writer blocks; it must never be opened.
    {"a_fifo", [](const fs::path& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0) << path; }},
    {"a_sparse_file_past_the_size_bound",
     [](const fs::path& path) {
         writeBytes(path, document());
         fs::resize_file(path, reference::docparser::kMaxDataFileSize + 1);
     }},
};

class HostileInput : public HostileRoot {};
class HostileFile : public HostileRoot, public ::testing::WithParamInterface<HostileCase> {};

TEST_P(HostileFile, CountsAsAbsentWithinBoundedMemory) {
    for (const fs::path& path :
         {lookupFolder() / "hostile.json", lookupFolder() / "hostile.zip", referenceFolder() / "hostile.json"}) {
        GetParam().make(path);
    }
    const Loaded loaded = load(u"hostile");
    expectOnlyControl(loaded);
    EXPECT_LT(loaded.memory.peakGrowth, 4 * kMiB);
}

INSTANTIATE_TEST_SUITE_P(Cases, HostileFile, ::testing::ValuesIn(kFileCases),
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
    writeBytes(lookupFolder() / "hostile.json", text);
    writeBytes(referenceFolder() / "hostile.json", text);

    const Loaded loaded = load(u"hostile");

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

// Packages: a package or entry that is damaged, forged or a bomb counts as absent, the sound
// entries still load (unless the package as a whole is refused), and nothing is inflated beyond
// the entry size bound.

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
            patchZipEntryUncompressedSize(package, "bomb.json", *declaredSize);
        }
    };
}

void putLe(std::string& out, std::uint32_t value, int width) {
    for (int i = 0; i < width; ++i) {
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFFu));
    }
}

// Stored entries e00.json, e01.json, ... whose data all run to the end of one payload: each
// holds the local headers of the entries after it and then the payload, so a reader that trusts
// the directory inflates the payload once per entry. The last entry alone is the payload.
std::string entriesSharingTheirData(int entryCount, const std::string& payload) {
    const auto nameOf = [](int i) { return "e" + std::to_string(100 + i).substr(1) + ".json"; };
    const std::uint32_t localHeaderSize = 30 + 8; // every name has 8 characters
    std::vector<std::string> fields(static_cast<std::size_t>(entryCount)); // shared by both headers
    std::string data = payload;
    for (int i = entryCount - 1; i >= 0; --i) {
        std::string& common = fields[static_cast<std::size_t>(i)];
        const auto size = static_cast<std::uint32_t>(data.size());
        putLe(common, 20, 2); // version needed
        common.append(8, '\0'); // flags, method "stored", time and date
        putLe(common, static_cast<std::uint32_t>(::crc32(0, reinterpret_cast<const Bytef*>(data.data()), size)), 4);
        putLe(common, size, 4);
        putLe(common, size, 4);
        putLe(common, 8, 2);
        putLe(common, 0, 2);
        std::string local;
        putLe(local, 0x04034b50, 4);
        data = local + common + nameOf(i) + data;
    }
    std::string central;
    for (int i = 0; i < entryCount; ++i) {
        putLe(central, 0x02014b50, 4);
        putLe(central, 20, 2); // made by
        central += fields[static_cast<std::size_t>(i)];
        central.append(10, '\0'); // comment length, disk, attributes
        putLe(central, localHeaderSize * static_cast<std::uint32_t>(i), 4);
        central += nameOf(i);
    }
    std::string end;
    putLe(end, 0x06054b50, 4);
    end.append(4, '\0');
    putLe(end, static_cast<std::uint32_t>(entryCount), 2);
    putLe(end, static_cast<std::uint32_t>(entryCount), 2);
    putLe(end, static_cast<std::uint32_t>(central.size()), 4);
    putLe(end, static_cast<std::uint32_t>(data.size()), 4);
    end.append(2, '\0');
    return data + central + end;
}

// A sound package of three entries cut short inside its central directory, with or without the
// end record put back after the cut.
Make cutCentralDirectory(bool keepEndRecord) {
    return [=](const fs::path& package) {
        ZipWriter()
            .add("a.json", hostileLookup("a"))
            .add("b.json", hostileLookup("b"))
            .add("c.json", hostileLookup("c"))
            .write(package);
        const std::string bytes = readBytes(package);
        const auto centralOffset = locateZipEntry(package, "a.json").centralHeaderOffset;
        const std::string cut = bytes.substr(0, centralOffset + (bytes.size() - 22 - centralOffset) / 2);
        writeBytes(package, keepEndRecord ? cut + bytes.substr(bytes.size() - 22) : cut);
    };
}

struct ZipCase {
    const char* name;
    Make build;                        // writes hostile.zip
    std::set<std::string> loadedItems; // item names that reach the product "hostile"
};

void PrintTo(const ZipCase& zipCase, std::ostream* out) { *out << zipCase.name; }

const ZipCase kZipCases[] = {
    {"declared_size_far_beyond_the_bound", bomb(0, 0xFFFFFFF0u), {"kept"}},
    {"honest_bomb_beyond_the_bound", bomb(reference::docparser::kMaxZipEntrySize + kMiB), {"kept"}},
    // A reader that trusted the declared size would claim 200 MiB for 100 bytes of data.
    {"declared_size_within_the_bound_far_beyond_the_data", bomb(0, 200 * kMiB), {"kept"}},
    {"data_far_longer_than_declared", bomb(64 * kMiB, 100), {"kept"}},
    {"encrypted_entry",
     [](const fs::path& package) {
         ZipWriter()
             .addEncrypted("secret.json", hostileLookup("secret"), "password")
             .add("kept.json", hostileLookup("kept"))
             .write(package);
     },
     {"kept"}},
    {"entries_sharing_their_data",
     [](const fs::path& package) {
         writeBytes(package, entriesSharingTheirData(96, hostileLookup("shared") + std::string(kMiB / 2, ' ')));
     },
     {}},
    {"duplicate_entry_names",
     [](const fs::path& package) {
         ZipWriter().add("dup.json", hostileLookup("first")).add("dux.json", hostileLookup("second")).write(package);
         std::string bytes = readBytes(package);
         for (auto at = bytes.find("dux.json"); at != std::string::npos; at = bytes.find("dux.json", at)) {
             bytes.replace(at, 8, "dup.json");
         }
         writeBytes(package, bytes);
     },
     {}},
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
     {"abs", "up", "win"}},
    {"central_directory_cut_short", cutCentralDirectory(false), {}},
    {"central_directory_cut_under_an_intact_end_record", cutCentralDirectory(true), {}},
};

class HostileZip : public HostileRoot, public ::testing::WithParamInterface<ZipCase> {};

TEST_P(HostileZip, ReadsOnlyItsSoundEntriesWithinTheBound) {
    ZipWriter()
        .add("sound.json", fileText(lookupDocument({"Sound", "SND", "sound"}, {{"s", "sound"}})))
        .write(lookupFolder() / "sound.zip");
    // Files of the same names outside the package must not be what is read.
    root_.write("docCatalog/up.json", fileText(lookupDocument({"Outside", "OUT", "hostile"}, {{"outside", "x"}})));
    root_.write("abs/abs.json", fileText(lookupDocument({"Outside", "OUT", "hostile"}, {{"outside", "x"}})));
    GetParam().build(lookupFolder() / "hostile.zip");

    const Loaded loaded = load(u"hostile");

    LookupSummary installed = summarize(controlOnly_.lookups.installedResources);
    if (!GetParam().loadedItems.empty()) {
        auto& [productName, items] = installed["hostile"];
        productName = "Hostile";
        for (const auto& item : GetParam().loadedItems) {
            items[item] = {"from the package"};
        }
    }
    EXPECT_EQ(summarize(loaded.lookups.installedResources), installed);
    EXPECT_EQ(summarize(loaded.lookups.uninstalledResources), (LookupSummary{{"sound", {"Sound", {{"s", {"sound"}}}}}}));
    EXPECT_EQ(loaded.controlPages, controlOnly_.controlPages);
    // Sound entries here are small: what a load allocates stays far below any bomb's size.
    EXPECT_LT(loaded.memory.peakGrowth, 4 * kMiB);
    EXPECT_LT(loaded.memory.totalBytes, 8 * kMiB);
}

INSTANTIATE_TEST_SUITE_P(Cases, HostileZip, ::testing::ValuesIn(kZipCases),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace refdoc::test
