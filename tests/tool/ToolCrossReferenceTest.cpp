// refdoc check's cross-reference warnings: a root whose entries, pages and links agree, and the
// same root with one fault of each kind, each reported once, on the file it is about, with the
// fix that names what to change.

#include "ZipWriter.hpp"
#include "support/TempDir.hpp"
#include "tool/ToolRunner.hpp"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include <filesystem>
#include <functional>

namespace {

using namespace refdoc::test;
namespace json = boost::json;

const std::filesystem::path kLookup = "docCatalog/referenceapi_lookup";
const std::filesystem::path kPages = "docCatalog/referenceapi";

const char* const kCrossReferenceKinds[] = {"entry links to no page",       "page without entry",
                                            "broken see-also link",         "entry and page disagree",
                                            "product key in several files", "file name not UTF-8"};

json::object header(const std::string& key) {
    return {{"productName", "Product " + key}, {"baseCode", "P"}, {"helpFolder", key}, {"helpLocation", "h"}};
}

json::object entry(const std::string& name, const std::string& type, const std::string& href) {
    return {{"name", name}, {"type", type}, {"refpurpose", "p"}, {"href", href}};
}

json::object page(const std::string& name, const std::string& type, const std::string& href, json::array seeAlso = {}) {
    return {{"href", href},
            {"refpurpose", "p"},
            {"refentity", json::array{json::object{{"type", type}, {"name", name}}}},
            {"seealso", std::move(seeAlso)}};
}

// A root whose two entries, two pages and see-also links (one to a page, two outside) agree.
struct Root {
    json::object lookup = header("alpha");
    json::object pages = header("alpha");

    Root() {
        lookup["refItems"] =
            json::array{entry("one", "function", "alpha/one.html#syntax"), entry("Two", "class", "alpha/two.html")};
        pages["refItems"] =
            json::array{page("one", "function", "alpha/one.html",
                             json::array{json::object{{"url", "alpha/two.html"}, {"name", "Two"}},
                                         json::object{{"url", "https://example.org/one"}, {"name", "outside"}},
                                         json::object{{"url", "mailto:docs@example.org"}, {"name", "mail"}}}),
                        page("Two", "class", "alpha/two.html")};
    }
    json::array& entries() { return lookup["refItems"].as_array(); }
    json::array& pageList() { return pages["refItems"].as_array(); }

    void write(const TempDir& dir) const {
        dir.write(kLookup / "alpha.json", json::serialize(lookup));
        dir.write(kPages / "alpha.json", json::serialize(pages));
    }
};

ToolRun check(const TempDir& root, std::vector<std::string> args = {}) {
    args.insert(args.begin(), {"check", "--root", root.path().string(), "--languages", "en"});
    return runTool(args);
}

// The cross-reference kinds a --json report counts, with their counts.
json::object crossReferenceCounts(const json::value& report) {
    json::object counts;
    for (const auto& [kind, group] : report.at("summary").at("warningsByKind").as_object()) {
        for (const char* known : kCrossReferenceKinds) {
            if (kind == known) {
                counts[kind] = group.at("warnings");
            }
        }
    }
    return counts;
}

// The warning of `kind` that the --json report gives `file`, or null.
json::value warningOf(const json::value& report, const std::string& file, const std::string& kind) {
    for (const auto& record : report.at("files").as_array()) {
        std::string label(record.at("path").as_string());
        if (!record.at("entry").is_null()) {
            label += ": " + std::string(record.at("entry").as_string());
        }
        for (const auto& warning : record.at("warnings").as_array()) {
            if (label == file && warning.at("kind") == json::value(kind)) {
                return warning;
            }
        }
    }
    for (const auto& skipped : report.at("skipped").as_array()) {
        if (skipped.at("path") == json::value(file) && skipped.at("kind") == json::value(kind)) {
            return skipped;
        }
    }
    return nullptr;
}

TEST(ToolCrossReferences, AgreeingRootHasNone) {
    const TempDir dir;
    Root().write(dir);
    const ToolRun text = check(dir, {"--strict"});
    EXPECT_EQ(text.status, 0) << ::testing::PrintToString(text);
    EXPECT_TRUE(contains(text.out, "Summary: 2 files read, 0 dropped, 0 warnings, 0 not read\n")) << text.out;
    EXPECT_EQ(crossReferenceCounts(check(dir, {"--json"}).json()), json::object());
}

TEST(ToolCrossReferences, EachFaultIsReportedOnceWithItsFix) {
    const std::string lookupFile = "docCatalog/referenceapi_lookup/alpha.json";
    const std::string pageFile = "docCatalog/referenceapi/alpha.json";
    const struct Case {
        std::string name;
        std::function<void(Root&, const TempDir&)> fault;
        std::string kind;
        std::string file; // the file the warning is about
        std::string text;
        std::string fix;
    } cases[] = {
        {"entry without page",
         [](Root& root, const TempDir&) { root.entries().push_back(entry("three", "function", "alpha/three.html")); },
         "entry links to no page", lookupFile,
         "entry \"three\" of alpha links to alpha/three.html, which " + pageFile + " does not have",
         "add a page with href alpha/three.html to " + pageFile + " (product alpha) or correct the entry's href"},
        {"product without page file",
         [](Root& root, const TempDir& dir) {
             json::object beta = header("beta");
             beta["refItems"] = json::array{entry("b", "function", "beta/b.html")};
             dir.write(kLookup / "beta.json", json::serialize(beta));
             (void)root;
         },
         "entry links to no page", "docCatalog/referenceapi_lookup/beta.json",
         "entry \"b\" of beta links to beta/b.html, but no page file has the product beta",
         "add a page file with the product beta and a page with href beta/b.html, or correct the entry's href"},
        {"page without entry",
         [](Root& root, const TempDir&) { root.pageList().push_back(page("four", "function", "alpha/four.html")); },
         "page without entry", pageFile,
         "page alpha/four.html of alpha: no entry of alpha in " + lookupFile + " links to it",
         "add an entry with href alpha/four.html to " + lookupFile + " (product alpha) or remove the page"},
        {"broken see-also link",
         [](Root& root, const TempDir&) {
             root.pageList().at(1).as_object()["seealso"] =
                 json::array{json::object{{"url", "alpha/gone.html#top"}, {"name", "gone"}}};
         },
         "broken see-also link", pageFile,
         "page alpha/two.html: see-also \"gone\" links to alpha/gone.html#top, which no page file has",
         "link to the href of an existing page, add a page with href alpha/gone.html, or give the full URL "
         "(https:...) of an outside page"},
        {"entry named unlike its page",
         [](Root& root, const TempDir&) { root.entries().at(0).as_object()["name"] = "uno"; },
         "entry and page disagree", lookupFile,
         "entry \"uno\" of alpha and its page alpha/one.html disagree on the name: the page documents \"one\"",
         "rename the entry to \"one\" or correct the page's entity names"},
        {"entry typed unlike its page",
         [](Root& root, const TempDir&) { root.entries().at(1).as_object()["type"] = "function"; },
         "entry and page disagree", lookupFile,
         "entry \"Two\" of alpha is a function, its page alpha/two.html documents it as a class",
         "give the entry the type \"class\" or correct the page's entity type"},
        // Packages are read before loose files: the package's claim wins.
        {"lookup key in a package too",
         [](Root& root, const TempDir& dir) {
             json::object copy = header("alpha");
             copy["refItems"] = json::array{root.entries().at(0)};
             ZipWriter().add("copy.json", json::serialize(copy)).write(dir.path() / kLookup / "extra.zip");
         },
         "product key in several files", lookupFile,
         "product key \"alpha\" is also in docCatalog/referenceapi_lookup/extra.zip: copy.json, which the library "
         "reads first: its header and entries win, this file adds only the entries under names that one lacks",
         "keep the product alpha in one file: remove it here or in docCatalog/referenceapi_lookup/extra.zip: "
         "copy.json, or give one of them another key (helpFolder; baseCode for a support package)"},
        // The page file named for the folder of the product's links is the one refdoc shows.
        {"page key in a second page file",
         [](Root& root, const TempDir& dir) { dir.write(kPages / "aaa.json", json::serialize(root.pages)); },
         "product key in several files", "docCatalog/referenceapi/aaa.json",
         "product key \"alpha\" is also in " + pageFile +
             ", whose pages of alpha refdoc shows (the page file named for the folder of the product's links "
             "first, then the others by name); these are not",
         "keep the pages of alpha in one file: move them to " + pageFile +
             ", or give one of the documents another key (helpFolder; baseCode for a support package)"},
        {"file name not UTF-8", [](Root&, const TempDir& dir) { dir.write(kLookup / "caf\xE9.json", "{}"); },
         "file name not UTF-8", "docCatalog/referenceapi_lookup/caf\\xE9.json",
         "the library skips a data file whose name is not UTF-8",
         "rename the file with a UTF-8 name (its bytes here are shown as \\xHH)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TempDir dir;
        std::filesystem::create_directories(dir.path() / kLookup);
        Root root;
        c.fault(root, dir);
        root.write(dir);

        const ToolRun text = check(dir);
        EXPECT_EQ(text.status, 0) << ::testing::PrintToString(text);
        EXPECT_TRUE(contains(text.out, "\n  " + c.kind + ": 1 warning in 1 file\n    " + c.file + ": " + c.text +
                                           "\n      fix: " + c.fix + "\n"))
            << text.out;
        const std::string group = "\n  " + c.kind + ": ";
        EXPECT_EQ(text.out.find(group), text.out.rfind(group)) << "listed once";

        const json::value report = check(dir, {"--json"}).json();
        EXPECT_EQ(crossReferenceCounts(report), (json::object{{c.kind, 1}}));
        const json::value warning = warningOf(report, c.file, c.kind);
        ASSERT_FALSE(warning.is_null()) << json::serialize(report);
        EXPECT_EQ(warning.at("text"), json::value(c.text));
        EXPECT_EQ(warning.at("fix"), json::value(c.fix));
    }
}

// A dropped file is no cross-reference fault: its products' entries or pages are not counted as
// missing, and its fix says what to change.
TEST(ToolCrossReferences, DroppedFilesHideWhatTheyWouldHaveHeld) {
    const TempDir dir;
    Root root;
    root.write(dir);
    dir.write(kPages / "alpha.json", R"({"productName": "P", "baseCode": "P", "helpFolder": "alpha",
                                        "helpLocation": "h", "refItems": [{"refpurpose": "p"}]})");
    const ToolRun text = check(dir);
    EXPECT_EQ(text.status, 1);
    EXPECT_TRUE(contains(text.out, "  DROPPED  docCatalog/referenceapi/alpha.json\n"
                                   "           missing required member \"href\" at /refItems/0/href\n"
                                   "           fix: add the required member \"href\" at /refItems/0\n"))
        << text.out;
    const json::value report = check(dir, {"--json"}).json();
    EXPECT_EQ(crossReferenceCounts(report), json::object());
    for (const auto& file : report.at("files").as_array()) {
        EXPECT_EQ(file.as_object().contains("fix"), file.at("dropped").as_bool()) << json::serialize(file);
    }
}

} // namespace
