// Hostile zip packages beside a sound package and a sound loose file: a package or entry that is
// damaged, forged or a bomb must count as absent, its sound entries still load (unless the
// package as a whole is refused), and nothing is inflated beyond the entry size bound.

#include "HostileRoot.hpp"

#include "support/TempDir.hpp"
#include "support/ZipBuilder.hpp"

#include "docparser/loading/ZipPackage.hpp"

#include <zlib.h>

#include <functional>
#include <set>

namespace refdoc::test {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMiB = std::size_t{1} << 20;

// A lookup document of the product "hostile" with one item, so that what a package contributes
// shows as the set of item names under "hostile".
std::string hostileLookup(const std::string& itemName) {
    return fileText(lookupDocument({"Hostile", "HOS", "hostile"}, {{itemName, "from the package"}}));
}

void putLe(std::string& out, std::uint32_t value, int width) {
    for (int i = 0; i < width; ++i) {
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFFu));
    }
}

// A package of stored entries e00.json, e01.json, ... whose data all run to the end of the same
// payload: each entry holds the local headers of the entries after it and then the payload, so a
// reader that trusts the directory inflates the payload once per entry. The last entry alone is
// the payload, a sound lookup document.
std::string entriesSharingTheirData(int entryCount, const std::string& payload) {
    std::string tail = payload;
    std::vector<std::string> headers(static_cast<std::size_t>(entryCount));
    std::vector<std::uint32_t> crcs(headers.size());
    std::vector<std::uint32_t> sizes(headers.size());
    auto nameOf = [](int i) { return "e" + std::string(i < 10 ? "0" : "") + std::to_string(i) + ".json"; };
    for (int i = entryCount - 1; i >= 0; --i) {
        const auto index = static_cast<std::size_t>(i);
        crcs[index] = static_cast<std::uint32_t>(
            ::crc32(0, reinterpret_cast<const Bytef*>(tail.data()), static_cast<uInt>(tail.size())));
        sizes[index] = static_cast<std::uint32_t>(tail.size());
        std::string& header = headers[index];
        putLe(header, 0x04034b50, 4);
        putLe(header, 20, 2);
        putLe(header, 0, 2); // flags
        putLe(header, 0, 2); // stored
        putLe(header, 0, 4); // time and date
        putLe(header, crcs[index], 4);
        putLe(header, sizes[index], 4);
        putLe(header, sizes[index], 4);
        putLe(header, static_cast<std::uint32_t>(nameOf(i).size()), 2);
        putLe(header, 0, 2);
        header += nameOf(i);
        tail = header + tail;
    }
    std::string central;
    std::uint32_t offset = 0;
    for (int i = 0; i < entryCount; ++i) {
        const auto index = static_cast<std::size_t>(i);
        putLe(central, 0x02014b50, 4);
        putLe(central, 20, 2);
        putLe(central, 20, 2);
        putLe(central, 0, 2);
        putLe(central, 0, 2);
        putLe(central, 0, 4);
        putLe(central, crcs[index], 4);
        putLe(central, sizes[index], 4);
        putLe(central, sizes[index], 4);
        putLe(central, static_cast<std::uint32_t>(nameOf(i).size()), 2);
        putLe(central, 0, 2); // extra
        putLe(central, 0, 2); // comment
        putLe(central, 0, 2); // disk
        putLe(central, 0, 2); // internal attributes
        putLe(central, 0, 4); // external attributes
        putLe(central, offset, 4);
        central += nameOf(i);
        offset += static_cast<std::uint32_t>(headers[index].size());
    }
    std::string end;
    putLe(end, 0x06054b50, 4);
    putLe(end, 0, 4);
    putLe(end, static_cast<std::uint32_t>(entryCount), 2);
    putLe(end, static_cast<std::uint32_t>(entryCount), 2);
    putLe(end, static_cast<std::uint32_t>(central.size()), 4);
    putLe(end, static_cast<std::uint32_t>(tail.size()), 4);
    putLe(end, 0, 2);
    return tail + central + end;
}

// A sound package of three entries cut short inside its central directory, with or without the
// end record put back after the cut.
void truncatedCentralDirectory(const fs::path& package, bool keepEndRecord) {
    ZipBuilder()
        .add("a.json", hostileLookup("a"))
        .add("b.json", hostileLookup("b"))
        .add("c.json", hostileLookup("c"))
        .write(package);
    const std::string bytes = readBytes(package);
    const std::string endRecord = bytes.substr(bytes.size() - 22);
    const auto centralOffset = locateZipEntry(package, "a.json").centralHeaderOffset;
    const std::string cut = bytes.substr(0, centralOffset + (bytes.size() - 22 - centralOffset) / 2);
    writeBytes(package, keepEndRecord ? cut + endRecord : cut);
}

struct ZipCase {
    const char* name;
    std::function<void(const fs::path&)> build; // writes hostile.zip
    std::set<std::string> loadedItems;          // item names that reach the product "hostile"
};

void PrintTo(const ZipCase& zipCase, std::ostream* out) { *out << zipCase.name; }

const ZipCase kCases[] = {
    {"declared_size_far_beyond_the_bound",
     [](const fs::path& package) {
         ZipBuilder().add("bomb.json", hostileLookup("bomb")).add("kept.json", hostileLookup("kept")).write(package);
         patchZipEntryUncompressedSize(package, "bomb.json", 0xFFFFFFF0u);
     },
     {"kept"}},
    {"honest_bomb_beyond_the_bound",
     [](const fs::path& package) {
         ZipBuilder()
             .add("bomb.json", std::string(reference::docparser::kMaxZipEntrySize + kMiB, ' '))
             .add("kept.json", hostileLookup("kept"))
             .write(package);
     },
     {"kept"}},
    // A reader that trusted the declared size would claim 200 MiB for 100 bytes of data.
    {"declared_size_within_the_bound_far_beyond_the_data",
     [](const fs::path& package) {
         ZipBuilder().add("bomb.json", hostileLookup("bomb")).add("kept.json", hostileLookup("kept")).write(package);
         patchZipEntryUncompressedSize(package, "bomb.json", static_cast<std::uint32_t>(200 * kMiB));
     },
     {"kept"}},
    {"data_far_longer_than_declared",
     [](const fs::path& package) {
         ZipBuilder()
             .add("bomb.json", hostileLookup("bomb") + std::string(64 * kMiB, ' '))
             .add("kept.json", hostileLookup("kept"))
             .write(package);
         patchZipEntryUncompressedSize(package, "bomb.json", 100);
     },
     {"kept"}},
    {"encrypted_entry",
     [](const fs::path& package) {
         ZipBuilder()
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
         ZipBuilder().add("dup.json", hostileLookup("first")).add("dux.json", hostileLookup("second")).write(package);
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
         ZipBuilder()
             .add("/abs/abs.json", hostileLookup("abs"))
             .add("../up.json", hostileLookup("up"))
             .add("..\\..\\win.json", hostileLookup("win"))
             .write(package);
     },
     {"abs", "up", "win"}},
    {"central_directory_cut_short", [](const fs::path& package) { truncatedCentralDirectory(package, false); }, {}},
    {"central_directory_cut_under_an_intact_end_record",
     [](const fs::path& package) { truncatedCentralDirectory(package, true); },
     {}},
};

class HostileZip : public HostileRoot, public ::testing::WithParamInterface<ZipCase> {};

TEST_P(HostileZip, ReadsOnlyItsSoundEntriesWithinTheBound) {
    ZipBuilder()
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
    EXPECT_EQ(summarize(loaded.lookups.uninstalledResources),
              (LookupSummary{{"sound", {"Sound", {{"s", {"sound"}}}}}}));
    EXPECT_EQ(loaded.controlPages, controlOnly_.controlPages);
    // Sound entries here are small: what a load allocates stays far below any bomb's size.
    EXPECT_LT(loaded.memory.peakGrowth, 4 * kMiB);
    EXPECT_LT(loaded.memory.totalBytes, 8 * kMiB);
}

INSTANTIATE_TEST_SUITE_P(Cases, HostileZip, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace refdoc::test
