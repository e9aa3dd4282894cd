// The documents of a public JSON parsing conformance corpus, each placed as a lookup file and as a
// page file beside a sound product. Documents named y_ must be accepted as JSON, n_ ones refused,
// and i_ ones may go either way.
//
// What happens to i_ documents: resource files are parsed as strict JSON with the parser's default
// options, so text that is not well-formed UTF-8 (invalid or overlong sequences, lone or inverted
// surrogates, escaped or encoded, UTF-16 text, a byte-order mark), nesting deeper than 32 levels
// and an exponent too long to hold are refused as syntax errors; other numbers beyond a double's
// range or precision are accepted (rounded), which is harmless as the formats read no numbers.
// Either way no i_ document is a resource document, so each counts as absent, and an accepted
// one, used as the value of a member the formats do not read, changes nothing.

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
#include <vector>

namespace refdoc::test {
namespace {

namespace fs = std::filesystem;
using reference::docparser::DocParserException;
using reference::docparser::DocResourceParser;
const fs::path kCorpus = fs::path(REFDOC_JSON_CONFORMANCE_DIR) / "test_parsing";

struct Document {
    std::string name;
    std::string text;
};

// The corpus's documents whose names start with `prefix`, in name order.
std::vector<Document> documents(const std::string& prefix) {
    std::vector<Document> found;
    for (const auto& entry : fs::directory_iterator(kCorpus)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(prefix) && entry.path().extension() == ".json") {
            found.push_back({name, readBytes(entry.path())});
        }
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return found;
}

enum class Outcome { Parsed, FormatError, SyntaxError, OtherError };

const char* describe(Outcome outcome) {
    switch (outcome) {
    case Outcome::Parsed:
        return "parsed";
    case Outcome::FormatError:
        return "refused by the format";
    case Outcome::SyntaxError:
        return "refused as JSON";
    case Outcome::OtherError:
        return "failed otherwise";
    }
    return "?";
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

// A document of the product `folder` that both formats accept, its item's purpose given as JSON
// text and `extra` spliced in as further members of the document and of its item.
std::string resourceDocument(const std::string& folder, std::string_view purposeJson, std::string_view extra = "") {
    return std::string(R"({"productName":"A product","baseCode":"BC","helpFolder":")" + folder +
                       R"(","helpLocation":"h",)")
        .append(extra)
        .append(R"("refItems":[{"name":"probe","href":")" + folder + R"(/probe.html",)")
        .append(extra)
        .append(R"("refpurpose":)")
        .append(purposeJson)
        .append("}]}");
}

// The corpus's documents in the control-product root of the hostile-input tests.
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

    void expectAbsent(const Document& document) const {
        SCOPED_TRACE(document.name);
        expectOnlyControl(loadAsFiles(document.text));
    }
};

TEST_F(JsonConformance, RefusedDocumentsFailAsJsonAndCountAsAbsent) {
    const auto refused = documents("n_");
    ASSERT_FALSE(refused.empty()) << kCorpus;
    for (const auto& document : refused) {
        EXPECT_EQ(lookupOutcome(document.text), Outcome::SyntaxError) << document.name;
        EXPECT_EQ(pageOutcome(document.text), Outcome::SyntaxError) << document.name;
        expectAbsent(document);
    }
}

// None of them is a resource document, so each fails, but only through the formats' own rules.
TEST_F(JsonConformance, AcceptedDocumentsFailOnlyThroughTheFormatsRules) {
    const auto accepted = documents("y_");
    ASSERT_FALSE(accepted.empty()) << kCorpus;
    for (const auto& document : accepted) {
        EXPECT_STREQ(describe(lookupOutcome(document.text)), describe(Outcome::FormatError)) << document.name;
        EXPECT_STREQ(describe(pageOutcome(document.text)), describe(Outcome::FormatError)) << document.name;
        expectAbsent(document);
    }
}

TEST_F(JsonConformance, UndecidedDocumentsAreTakenOrRefusedAlikeByBothFormats) {
    const auto undecided = documents("i_");
    ASSERT_FALSE(undecided.empty()) << kCorpus;
    for (const auto& document : undecided) {
        const Outcome lookup = lookupOutcome(document.text);
        EXPECT_TRUE(lookup == Outcome::SyntaxError || lookup == Outcome::FormatError)
            << document.name << ": " << describe(lookup);
        EXPECT_EQ(pageOutcome(document.text), lookup) << document.name;
        expectAbsent(document);
    }
}

// Every document the JSON parser takes, as the value of members that neither format reads (in
// the document and in its item), leaves the resource as it is without them.
TEST_F(JsonConformance, AcceptedValuesInMembersNobodyReadsChangeNothing) {
    const Loaded plain = loadAsFiles(resourceDocument("hostile", R"("p")"));
    ASSERT_EQ(plain.lookups.installedResources.count(u"hostile"), 1u);
    ASSERT_EQ(plain.pages.count(u"hostile"), 1u);
    std::size_t embedded = 0;
    for (const auto& prefix : {"y_", "i_"}) {
        for (const auto& document : documents(prefix)) {
            if (lookupOutcome(document.text) == Outcome::SyntaxError) {
                continue;
            }
            ++embedded;
            const Loaded loaded =
                loadAsFiles(resourceDocument("hostile", R"("p")", R"("unread":)" + document.text + ","));
            EXPECT_EQ(loaded.lookups, plain.lookups) << document.name;
            EXPECT_EQ(loaded.pages, plain.pages) << document.name;
        }
    }
    EXPECT_GT(embedded, 90u);
}

// The documents that hold a single string: that string, as an item's purpose, reaches the
// records of both formats as exactly the text the JSON parser read.
TEST_F(JsonConformance, AcceptedStringsReachTheRecordsIntact) {
    std::size_t strings = 0;
    for (const auto& prefix : {"y_", "i_"}) {
        for (const auto& document : documents(prefix)) {
            boost::json::error_code error;
            const boost::json::value value = boost::json::parse(document.text, error);
            const auto* array = value.if_array();
            if (error || array == nullptr || array->size() != 1 || !array->front().is_string()) {
                continue;
            }
            ++strings;
            const std::string_view bytes = array->front().get_string();
            const auto open = document.text.find('[');
            const auto close = document.text.rfind(']');
            const Loaded loaded =
                loadAsFiles(resourceDocument("hostile", document.text.substr(open + 1, close - open - 1)));
            const auto expected = reference::docparser::utf8ToUtf16(bytes);
            const auto& lookup = loaded.lookups.installedResources.at(u"hostile").getItems().at(u"probe");
            EXPECT_EQ(lookup.at(0).getPurpose(), expected) << document.name;
            const auto& page = loaded.pages.at(u"hostile").getItems().at(u"hostile/probe.html");
            EXPECT_EQ(page.at(0).getPurpose(), expected) << document.name;
        }
    }
    EXPECT_GT(strings, 30u);
}

} // namespace
} // namespace refdoc::test
