// Packages as everyday zip writers make them, written at test time by the real tools: each must
// load like the loose file it holds. A writer that is not installed skips its case.

#include "support/DocrootBuilder.hpp"
#include "support/HostSettingsFixture.hpp"
#include "support/TempDir.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using reference::docparser::DocResourceParser;
using namespace refdoc::test;
namespace fs = std::filesystem;

struct Writer {
    const char* name;
    const char* tool;    // skipped when this is not on the PATH
    const char* command; // run in a folder holding optics.json and data/optics_ja.json; writes pkg.zip
};

// Python's zipfile writing to a stream that cannot seek puts data descriptors after the entries.
const char* const kPythonStreamed =
    "python3 -c \"import io, zipfile\n"
    "class Pipe(io.RawIOBase):\n"
    "    def __init__(self, f): self.f = f\n"
    "    def writable(self): return True\n"
    "    def write(self, b): return self.f.write(b)\n"
    "with open('pkg.zip', 'wb') as f, zipfile.ZipFile(Pipe(f), 'w', zipfile.ZIP_DEFLATED) as z:\n"
    "    z.write('optics.json'); z.write('data/optics_ja.json')\"";

const Writer kWriters[] = {
    {"zip", "zip", "zip -q -r pkg.zip optics.json data"},
    {"zip_data_descriptors", "zip", "zip -q -fd -r pkg.zip optics.json data"},
    {"zip_to_a_pipe", "zip", "zip -q -r - optics.json data | cat > pkg.zip"},
    {"zip_stored", "zip", "zip -q -0 -r pkg.zip optics.json data"},
    {"python_seekable", "python3",
     "python3 -c \"import zipfile\nwith zipfile.ZipFile('pkg.zip', 'w', zipfile.ZIP_DEFLATED) as z:\n"
     "    z.write('optics.json'); z.write('data/optics_ja.json')\""},
    {"python_streamed", "python3", kPythonStreamed},
    {"jar", "jar", "jar cfM pkg.zip optics.json data"},
    // A self-extracting package: a program in front of the archive, its offsets left as they were
    // and adjusted to the program ("zip -A").
    {"self_extracting", "unzipsfx",
     "zip -q -r plain.zip optics.json data && cat \"$(command -v unzipsfx)\" plain.zip > pkg.zip"},
    {"self_extracting_adjusted", "unzipsfx",
     "zip -q -r plain.zip optics.json data && cat \"$(command -v unzipsfx)\" plain.zip > pkg.zip && zip -q -A pkg.zip"},
};

void PrintTo(const Writer& writer, std::ostream* out) { *out << writer.name; }

bool onPath(const std::string& tool) { return std::system(("command -v " + tool + " >/dev/null 2>&1").c_str()) == 0; }

class ZipWriters : public HostSettingsFixture, public ::testing::WithParamInterface<Writer> {
protected:
    fs::path lookupFolder() const { return root_.path() / "docCatalog" / "referenceapi_lookup"; }

    // Runs `command` in a fresh folder holding `files`, and moves the pkg.zip it writes into the
    // lookup folder as `packageName`.
    void writePackage(const std::string& command, const std::vector<std::pair<std::string, std::string>>& files,
                      const std::string& packageName) {
        TempDir work;
        for (const auto& [name, text] : files) {
            work.write(name, text);
        }
        const std::string shell = "cd '" + work.path().string() + "' && (" + command + ")";
        ASSERT_EQ(std::system(shell.c_str()), 0) << shell;
        fs::create_directories(lookupFolder());
        fs::copy_file(work.path() / "pkg.zip", lookupFolder() / packageName);
    }

    TempDir root_;
};

TEST_P(ZipWriters, PackageLoadsLikeItsLooseFiles) {
    if (!onPath(GetParam().tool)) {
        GTEST_SKIP() << GetParam().tool << " is not installed";
    }
    const std::string english = fileText(lookupDocument({"Optics", "OP", "optics"}, {{"lens", "Focal length"}}));
    const std::string japanese = fileText(lookupDocument({"光学", "OP", "optics"}, {{"lens", "焦点距離"}}));
    writePackage(GetParam().command, {{"optics.json", english}, {"data/optics_ja.json", japanese}}, "optics.zip");
    DocResourceParser::setReferenceRoot(root_.u16());
    DocResourceParser::setTestProducts({u"optics"}, {});
    doclanguage::DocLanguage::getInstance().setSupportedDocLanguages({u"en", u"ja"});

    for (const auto& [language, name, purpose] :
         {std::tuple{u"en", "Optics", "Focal length"}, std::tuple{u"ja", "光学", "焦点距離"}}) {
        doclanguage::DocLanguage::getInstance().setDocLanguage(language);
        const auto loaded = DocResourceParser::getResourceLookupFiles();
        EXPECT_EQ(summarize(loaded.installedResources), (LookupSummary{{"optics", {name, {{"lens", {purpose}}}}}}))
            << name;
        EXPECT_TRUE(loaded.uninstalledResources.empty());
    }
}

INSTANTIATE_TEST_SUITE_P(Writers, ZipWriters, ::testing::ValuesIn(kWriters),
                         [](const auto& info) { return std::string(info.param.name); });

// A name that is not valid UTF-8 names no product, whether it is a loose file's or a package
// entry's (Info-ZIP stores the bytes it finds on disk as they are): both are left out, and their
// valid neighbours are read.
TEST_F(ZipWriters, NamesThatAreNotUtf8AreLeftOutLooseAndPacked) {
    if (!onPath("zip")) {
        GTEST_SKIP() << "zip is not installed";
    }
    const std::string bad = "caf\xe9.json";
    const auto product = [](const std::string& key) { return fileText(lookupDocument({key, key, key}, {{"f", key}})); };
    root_.write("docCatalog/referenceapi_lookup/" + bad, product("loose"));
    root_.write("docCatalog/referenceapi_lookup/loose_ok.json", product("loose_ok"));
    writePackage("zip -q pkg.zip *.json", {{bad, product("zipped")}, {"zipped_ok.json", product("zipped_ok")}},
                 "zipped.zip");
    DocResourceParser::setReferenceRoot(root_.u16());
    DocResourceParser::setTestProducts({}, {});

    std::set<std::u16string> keys;
    for (const auto& [key, resource] : DocResourceParser::getResourceLookupFiles().uninstalledResources) {
        keys.insert(key);
    }
    EXPECT_EQ(keys, (std::set<std::u16string>{u"loose_ok", u"zipped_ok"}));
}

} // namespace
