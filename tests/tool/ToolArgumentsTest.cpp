// The tool's command line: help, a clear message with exit status 2 for every command line it
// cannot act on, never a crash, and status 1 when there is nothing to show.

#include "support/TempDir.hpp"
#include "tool/ToolRunner.hpp"

#include <gtest/gtest.h>

namespace {

using namespace refdoc::test;

TEST(ToolArguments, UsageErrorsAndNothingFoundExitWithTheirStatusAndAMessage) {
    const TempDir notARoot;
    const TempDir root;
    root.write("docCatalog/referenceapi_lookup/a.json", "{}");
    const TempDir badHostFile;
    badHostFile.write("docCatalog/referenceapi/a.json", "{}");
    badHostFile.write("refdoc-host.json", R"({"language": "ja", "installed": ["a"]})");
    const TempDir hostFileNotJson;
    hostFileNotJson.write("docCatalog/referenceapi/a.json", "{}");
    hostFileNotJson.write("refdoc-host.json", "language = ja");
    const std::string missing = (notARoot.path() / "missing").string();

    const struct Case {
        std::vector<std::string> args;
        std::string message;
        int status = 2;
    } cases[] = {
        {{"lookup", "--bogus"}, "refdoc: unknown option --bogus for 'lookup'\nTry 'refdoc lookup --help'.\n"},
        {{"lookup", "--root"}, "refdoc: option --root needs a value\n"},
        {{"lookup", "--root", missing}, "refdoc: no such folder: " + missing + "\n"},
        {{"check", "--root", notARoot.path().string()},
         "refdoc: " + notARoot.path().string() + " is not a documentation root: it has no docCatalog folder\n"},
        {{"lookup", "--root", root.path().string(), "--root", root.path().string()},
         "refdoc: option --root given more than once\n"},
        {{"lookup", "--lang", "../ja"}, "refdoc: --lang: invalid language code '../ja'\nTry 'refdoc lookup --help'.\n"},
        {{"check", "--languages", "en,j a"}, "refdoc: --languages: invalid language code 'j a'\n"},
        {{"lookup", "--json=yes"}, "refdoc: option --json takes no value\n"},
        {{"lookup", "extra"}, "refdoc: unexpected argument 'extra' for 'lookup'\n"},
        {{"page"},
         "refdoc: 'page' needs a NAME: page file, product key, entry name or page link\nTry 'refdoc page --help'.\n"},
        {{"page", ""}, "refdoc: NAME must not be empty"},
        {{"find"}, "refdoc: 'find' needs the TEXT to search for\n"},
        {{"find", "x", "--limit", "0"}, "refdoc: --limit: needs a positive number, not '0'\n"},
        {{"find", "x", "--limit", "-3"}, "refdoc: --limit: needs a positive number, not '-3'\n"},
        {{"serve", "--port", "65536"}, "refdoc: --port: needs a number from 0 to 65535, not '65536'\n"},
        {{"serve", "--port=http"}, "refdoc: --port: needs a number from 0 to 65535, not 'http'\n"},
        {{"check", "--quiet", "--json", "--lang", "en", "--lang", "ja"},
         "refdoc: option --lang given more than once\n"},
        {{"help", "frob"}, "refdoc: unknown command 'frob'\n"},
        {{"serve", "--bind="}, "refdoc: option --bind needs a value\n"},
        {{"frob"}, "refdoc: unknown command 'frob'\nTry 'refdoc --help' for the list of commands.\n"},
        {{}, "Usage: refdoc COMMAND [options]\n"},
        {{"lookup", "--root", badHostFile.path().string()},
         "refdoc: " + (badHostFile.path() / "refdoc-host.json").string() + ": unknown setting \"installed\"\n"},
        {{"lookup", "--root", hostFileNotJson.path().string()}, "refdoc-host.json: not a JSON object"},
        // Nothing to show in the bundled sample root; after "--" an option is search text.
        {{"page", "nosuchproduct"}, "'nosuchproduct' is no page file, product key, lookup entry or page link", 1},
        {{"page", "docs/a.html#x"}, "no page file has the page 'docs/a.html'", 1},
        {{"find", "zzz"}, "no lookup entry matches zzz", 1},
        {{"find", "--", "--json"}, "no lookup entry matches --json", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.args));
        const ToolRun result = runTool(c.args);
        EXPECT_EQ(result.status, c.status) << ::testing::PrintToString(result);
        EXPECT_TRUE(result.out.empty()) << result.out;
        EXPECT_TRUE(contains(result.err, c.message)) << result.err;
    }
}

TEST(ToolArguments, EveryCommandHasHelpAndHelpWinsOverWrongArguments) {
    const ToolRun overview = runTool({"--help"});
    EXPECT_EQ(overview.status, 0);
    for (const char* command : {"lookup", "page", "find", "check", "serve"}) {
        SCOPED_TRACE(command);
        EXPECT_TRUE(contains(overview.out, std::string("\n  ") + command + " ")) << overview.out;
        for (const std::vector<std::string>& args :
             {std::vector<std::string>{command, "--help"}, {"help", command}, {command, "--bogus", "-h"}}) {
            const ToolRun help = runTool(args);
            EXPECT_EQ(help.status, 0);
            EXPECT_TRUE(help.out.starts_with(std::string("Usage: refdoc ") + command)) << help.out;
            EXPECT_TRUE(contains(help.out, "--root DIR")) << help.out;
            EXPECT_TRUE(help.err.empty());
        }
    }
    EXPECT_TRUE(runTool({"--version"}).out.starts_with("refdoc "));
}

} // namespace
