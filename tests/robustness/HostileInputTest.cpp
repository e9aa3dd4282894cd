// Hostile files beside a sound product: each must count as absent (or, where the format allows
// it, load exactly), leave the other product untouched and stay within a memory bound.

#include "HostileRoot.hpp"

#include "docparser/loading/FileAccess.hpp"

#include <doclanguage/DocLanguage.hpp>

#include <functional>

#include <sys/stat.h>

namespace refdoc::test {
namespace {

namespace fs = std::filesystem;

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
    return std::string(R"({"name":"probe","refpurpose":)")
        .append(purposeJson)
        .append(R"(,"href":"hostile/probe.html"})");
}

struct HostileCase {
    const char* name;
    // Makes the hostile entry at the given path: hostile.json and hostile.zip in the lookup folder
    // and hostile.json in the reference folder.
    std::function<void(const fs::path&)> make;
};

std::function<void(const fs::path&)> bytes(std::string text) {
    return [text = std::move(text)](const fs::path& path) { writeBytes(path, text); };
}

void PrintTo(const HostileCase& hostileCase, std::ostream* out) { *out << hostileCase.name; }

const HostileCase kCases[] = {
    // Text that is not strict JSON, or not UTF-8.
    {"nesting_far_deeper_than_allowed",
     bytes(document(kItem, R"(,"x":)" + std::string(100000, '[') + std::string(100000, ']')))},
    {"invalid_utf8", bytes(document(itemWithPurpose("\"\xC3\x28\"")))},
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
    {"raw_nul_inside_a_value", bytes(document(itemWithPurpose(std::string("\"a\0b\"", 5))))},
    {"raw_nul_inside_a_key",
     bytes(document(R"({"name":"probe","refpurpose":"A probe","href":"hostile/probe.html","x)" + std::string(1, '\0') +
                    R"(":1})"))},
    {"nul_after_the_document", bytes(document() + std::string(1, '\0'))},
    {"truncated_document", bytes(document().substr(0, document().size() - 1))},
    {"two_documents", bytes(document() + document())},
    {"empty_file", bytes("")},
    {"whitespace_only", bytes(" \t\r\n ")},
    // Strict JSON that breaks the format.
    {"nul_inside_a_required_key",
     bytes(document(R"({"name":"probe","refpurpose":"A probe","href\u0000":"hostile/probe.html"})"))},
    {"number_where_a_string_belongs", bytes(document(R"({"name":"probe","refpurpose":"A probe","href":42})"))},
    {"number_where_an_enumeration_belongs",
     bytes(document(R"({"name":"probe","refpurpose":"p","href":"h","type":3,"deprecationstatus":3})"))},
    {"number_where_the_item_list_belongs", bytes(R"({"productName":"H","baseCode":"H","helpFolder":"hostile",)"
                                                 R"("helpLocation":"h","refItems":7})")},
    {"string_where_an_item_belongs", bytes(document(R"("probe")"))},
    {"root_is_an_array", bytes("[" + document() + "]")},
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

TEST_F(HostileInput, TheUnbrokenDocumentLoadsInBothFormats) {
    writeBytes(lookupFolder() / "hostile.json", document());
    writeBytes(referenceFolder() / "hostile.json", document());
    const Loaded loaded = load(u"hostile");
    EXPECT_EQ(summarize(loaded.lookups.installedResources),
              (LookupSummary{{"control", {"Control", {{"probe", {"Always here"}}}}},
                             {"hostile", {"Hostile", {{"probe", {"A probe"}}}}}}));
    EXPECT_EQ(summarize(loaded.pages), (PageSummary{{"hostile", {"Hostile", {{"hostile/probe.html", {"A probe"}}}}}}));
}

TEST_P(HostileFile, CountsAsAbsentWithinBoundedMemory) {
    for (const fs::path& path :
         {lookupFolder() / "hostile.json", lookupFolder() / "hostile.zip", referenceFolder() / "hostile.json"}) {
        GetParam().make(path);
    }
    const Loaded loaded = load(u"hostile");
    expectOnlyControl(loaded);
    EXPECT_LT(loaded.memory.peakGrowth, 4 * kMiB);
}

INSTANTIATE_TEST_SUITE_P(Cases, HostileFile, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(HostileInput, MegabyteStringsLoadWholeInMemoryProportionalToTheFile) {
    const std::string ascii(4 * kMiB, 'a');
    std::string accented;
    for (std::size_t i = 0; i < kMiB; ++i) {
        accented += "\xC3\xA9"; // é
    }
    const std::string text =
        document(R"({"name":")" + accented + R"(","refpurpose":")" + ascii + R"(","href":"hostile/probe.html"})",
                 R"(,"ignored":")" + ascii + "\"");
    writeBytes(lookupFolder() / "hostile.json", text);
    writeBytes(referenceFolder() / "hostile.json", text);

    const Loaded loaded = load(u"hostile");

    const auto& lookupItems = loaded.lookups.installedResources.at(u"hostile").getItems();
    ASSERT_EQ(lookupItems.size(), 1u);
    EXPECT_EQ(lookupItems.begin()->first, std::u16string(kMiB, u'\u00E9'));
    EXPECT_EQ(lookupItems.begin()->second.at(0).getPurpose(), std::u16string(4 * kMiB, u'a'));
    const auto& pages = loaded.pages.at(u"hostile").getItems().at(u"hostile/probe.html");
    EXPECT_EQ(pages.at(0).getPurpose(), std::u16string(4 * kMiB, u'a'));
    // The file's bytes, its JSON tree and the UTF-16 texts of two formats: a few times the file,
    // never a copy per character or per item. At least the file itself is held, or the counter
    // does not see the library's allocations and every bound of this suite holds vacuously.
    EXPECT_LT(loaded.memory.peakGrowth, 8 * text.size());
    EXPECT_GT(loaded.memory.peakGrowth, text.size());
    EXPECT_GE(loaded.memory.largestRequest, text.size());
}

TEST_F(HostileInput, EscapedNulsAreKeptInValuesAndNameKeysOfTheirOwn) {
    const std::string text =
        document(R"({"name":"nul\u0000name","refpurpose":"a\u0000b","href":"hostile/probe.html","x\u0000":1})");
    writeBytes(lookupFolder() / "hostile.json", text);
    writeBytes(referenceFolder() / "hostile.json", text);

    const Loaded loaded = load(u"hostile");

    const auto& lookupItems = loaded.lookups.installedResources.at(u"hostile").getItems();
    const auto& entry = lookupItems.at(std::u16string(u"nul\0name", 8));
    EXPECT_EQ(entry.at(0).getPurpose(), std::u16string(u"a\0b", 3));
    EXPECT_EQ(loaded.pages.at(u"hostile").getItems().at(u"hostile/probe.html").at(0).getPurpose(),
              std::u16string(u"a\0b", 3));
}

// Work that grows faster than the input lets a file of a few MiB stall a load for minutes. The
// number and size of allocations follow the work done, so they stand in for it here.
TEST_F(HostileInput, ManyNameValueHoldersTakeLinearWork) {
    constexpr int kHolders = 2000;
    std::string holders;
    for (int i = 0; i < kHolders; ++i) {
        holders += (i == 0 ? "" : ",");
        holders += R"({"namevaluepairs":[{"title":"a","inputs":[]},{"title":"b","inputs":[]}]})";
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

} // namespace
} // namespace refdoc::test
