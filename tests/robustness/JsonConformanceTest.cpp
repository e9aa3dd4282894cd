// The documents of a public JSON parsing conformance corpus, each placed as a lookup file and as a
// page file beside a sound product. Documents named y_ must be accepted as JSON, n_ ones refused,
// and i_ ones may go either way. Resource files are strict JSON under the parser's default options:
// malformed UTF-8, nesting deeper than 32 levels and too long an exponent are refused; other
// numbers are rounded, harmlessly, as the formats read none.

#include "docparser/parsing/LookupParser.hpp"
#include "docparser/parsing/RefItemParser.hpp"

#include "HostileRoot.hpp"

#include <reference/docparser/DocResourceParser.hpp>
#include <reference/docparser/TextConversion.hpp>

#include <boost/json/parse.hpp>
#include <boost/system/system_error.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <vector>

namespace refdoc::test {
namespace {

namespace fs = std::filesystem;
using reference::docparser::DocParserException;
const fs::path kCorpus = fs::path(REFDOC_JSON_CONFORMANCE_DIR) / "test_parsing";

struct Document {
    std::string name;
    std::string text;
};

// The corpus's documents whose names start with one of `prefixes`, in name order.
std::vector<Document> documents(std::initializer_list<std::string_view> prefixes) {
    std::vector<Document> found;
    for (const auto& entry : fs::directory_iterator(kCorpus)) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() == ".json" &&
            std::any_of(prefixes.begin(), prefixes.end(), [&](auto prefix) { return name.starts_with(prefix); })) {
            found.push_back({name, readBytes(entry.path())});
        }
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return found;
}

enum class Outcome { Parsed, FormatError, SyntaxError, OtherError };

std::ostream& operator<<(std::ostream& out, Outcome outcome) {
    static const char* const kNames[] = {"parsed", "refused by the format", "refused as JSON", "failed otherwise"};
    return out << kNames[static_cast<int>(outcome)];
}

Outcome outcomeOf(const std::function<void()>& parse) {
    try {
        parse();
        return Outcome::Parsed;
    } catch (const DocParserException&) {
        return Outcome::FormatError;
    } catch (const boost::system::system_error&) {
        return Outcome::SyntaxError;
    } catch (...) {
        return Outcome::OtherError;
    }
}

Outcome lookupOutcome(const std::string& text) {
    return outcomeOf([&] { reference::docparser::lookupFileParser(text); });
}

Outcome pageOutcome(const std::string& text) {
    return outcomeOf([&] { reference::docparser::parseRefItemFile(text, nullptr, nullptr); });
}

// A document of the product "hostile" that both formats accept, its item's purpose given as JSON
// text and `extra` spliced in as further members of the document and of its item.
std::string resourceDocument(std::string_view purposeJson, std::string_view extra = "") {
    return std::string(R"({"productName":"A product","baseCode":"BC","helpFolder":"hostile","helpLocation":"h",)")
        .append(extra)
        .append(R"("refItems":[{"name":"probe","href":"hostile/probe.html",)")
        .append(extra)
        .append(R"("refpurpose":)")
        .append(purposeJson)
        .append("}]}");
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

    // `text` as the lookup file and the page file of the product "hostile", beside the control.
    Loaded loadAsFiles(const std::string& text) const {
        root_.write(lookupFolder() / "hostile.json", text);
        root_.write(referenceFolder() / "hostile.json", text);
        Loaded loaded = load(u"hostile");
        fs::remove(lookupFolder() / "hostile.json");
        fs::remove(referenceFolder() / "hostile.json");
        return loaded;
    }
};

// No document of the corpus is a resource document, so accepted ones fail through the formats'
// own rules; both formats decide alike, and each document counts as absent.
TEST_F(JsonConformance, EachDocumentFailsAsItsClassSaysAndCountsAsAbsent) {
    const struct {
        std::string_view prefix;
        std::set<Outcome> allowed;
    } classes[] = {
        {"n_", {Outcome::SyntaxError}},
        {"y_", {Outcome::FormatError}},
        {"i_", {Outcome::SyntaxError, Outcome::FormatError}},
    };
    for (const auto& documentClass : classes) {
        const auto found = documents({documentClass.prefix});
        ASSERT_FALSE(found.empty()) << kCorpus << " " << documentClass.prefix;
        for (const auto& document : found) {
            SCOPED_TRACE(document.name);
            const Outcome lookup = lookupOutcome(document.text);
            EXPECT_TRUE(documentClass.allowed.contains(lookup)) << lookup;
            EXPECT_EQ(pageOutcome(document.text), lookup);
            expectOnlyControl(loadAsFiles(document.text));
        }
    }
}

// Every document the JSON parser takes changes nothing as the value of members neither format
// reads; one that holds a single string, used as an item's purpose, reaches the records of both
// formats as exactly the text the JSON parser read.
TEST_F(JsonConformance, AcceptedDocumentsChangeNothingUnreadAndArriveIntactAsPurposes) {
    const Loaded plain = loadAsFiles(resourceDocument(R"("p")"));
    ASSERT_EQ(plain.lookups.installedResources.count(u"hostile"), 1u);
    ASSERT_EQ(plain.pages.count(u"hostile"), 1u);
    std::size_t embedded = 0;
    std::size_t strings = 0;
    for (const auto& document : documents({"y_", "i_"})) {
        if (lookupOutcome(document.text) == Outcome::SyntaxError) {
            continue;
        }
        SCOPED_TRACE(document.name);
        ++embedded;
        const Loaded unread = loadAsFiles(resourceDocument(R"("p")", R"("unread":)" + document.text + ","));
        EXPECT_EQ(unread.lookups, plain.lookups);
        EXPECT_EQ(unread.pages, plain.pages);

        const boost::json::value value = boost::json::parse(document.text);
        const auto* array = value.if_array();
        if (array == nullptr || array->size() != 1 || !array->front().is_string()) {
            continue;
        }
        ++strings;
        const auto open = document.text.find('[');
        const Loaded loaded = loadAsFiles(resourceDocument(document.text.substr(open + 1, document.text.rfind(']') - open - 1)));
        const auto expected = reference::docparser::utf8ToUtf16(array->front().get_string());
        EXPECT_EQ(loaded.lookups.installedResources.at(u"hostile").getItems().at(u"probe").at(0).getPurpose(), expected);
        EXPECT_EQ(loaded.pages.at(u"hostile").getItems().at(u"hostile/probe.html").at(0).getPurpose(), expected);
    }
    EXPECT_GT(embedded, 90u);
    EXPECT_GT(strings, 30u);
}

} // namespace
} // namespace refdoc::test
