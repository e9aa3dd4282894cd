// The translation coverage view of refdoc serve: its tables, its links to the pages a translation
// leaves short, escaped data, and fresh figures after a translation is edited.

#include "serve/ServerProcess.hpp"
#include "support/TempDir.hpp"
#include "tool/ToolRunner.hpp"

#include <gtest/gtest.h>

namespace {

using namespace refdoc::test;

std::string resourceFile(const std::string& product, const std::string& folder, const std::string& items) {
    return R"({"productName": ")" + product + R"(", "baseCode": "X", "helpFolder": ")" + folder +
           R"(", "helpLocation": "help/x", "refItems": [)" + items + "]}";
}

std::string entry(const std::string& name, const std::string& purpose, const std::string& href) {
    return R"({"name": ")" + name + R"(", "type": "function", "refpurpose": ")" + purpose + R"(", "href": ")" + href +
           R"("})";
}

std::string page(const std::string& href, const std::string& purpose, bool seeAlso) {
    return R"({"href": ")" + href + R"(", "refpurpose": ")" + purpose +
           R"(", "refentity": [{"type": "function", "name": "f"}])" +
           (seeAlso ? R"(, "seealso": [{"url": "p/g.html", "name": "g"}])" : "") + "}";
}

TEST(ServeCoverage, TablesPerLanguageLinkThePagesThatLackSections) {
    const TempDir root;
    const std::string hostile = "<script>alert(1)</script>";
    root.write("docCatalog/referenceapi_lookup/p.json",
               resourceFile(hostile, "p", entry("f", "p", "p/f.html") + "," + entry("g", "p", "p/g.html")));
    root.write("docCatalog/referenceapi_lookup/p_ja.json", resourceFile("製品", "p", entry("f", "日本語", "p/f.html")));
    // Both pages lack their see-also links in Japanese; the second one's link is no page
    // reference of the root, so it is text.
    root.write("docCatalog/referenceapi/p.json",
               resourceFile("P", "p", page("p/f.html", "f", true) + "," + page("javascript:alert(2)", "x", true)));
    root.write(
        "docCatalog/referenceapi/p_ja.json",
        resourceFile("P", "p", page("p/f.html", "エフ", false) + "," + page("javascript:alert(2)", "エックス", false)));
    ServerProcess server({"--root", root.path().string(), "--languages", "en,ja"});
    auto client = server.client();

    const struct Case {
        std::string path;
        std::vector<std::string> shown;
    } cases[] = {
        {"/", {"<a id=\"coverage-link\" href=\"/coverage?lang=en\">Coverage</a>"}},
        {"/coverage",
         {"<li aria-current=\"page\">Translation coverage</li>", "<h2>ja</h2>",
          "Lookup entries 1 of 2 localized, 1 in English; pages 2 of 2 localized, 0 in English",
          "<tr><td><a href=\"/product/p?lang=ja\">p</a></td><td>&lt;script&gt;alert(1)&lt;/script&gt;</td>"
          "<td class=\"num\">2</td><td class=\"num\">1</td><td class=\"num\">1</td>"
          "<td class=\"num\">2</td><td class=\"num\">2</td><td class=\"num\">0</td><td class=\"num\">2</td></tr>",
          "<li><a href=\"/ref/p/f.html?lang=ja\" hreflang=\"ja\"><code>p/f.html</code></a>: See also</li>",
          "<li><code>javascript:alert(2)</code>: See also</li>"}},
        {"/coverage?lang=ja", {"<a id=\"coverage-link\" href=\"/coverage?lang=ja\">Coverage</a>", "<h2>ja</h2>"}},
        // The page the list links to says what it lacks.
        {"/ref/p/f.html?lang=ja", {"lacks sections the English page has: See also."}},
    };
    for (const auto& c : cases) {
        server.expectView(c.path, c.shown, {"<script>alert", "href=\"javascript:", "href=\"/ref/javascript"});
    }

    // A translation edited (its size changes): the next request counts afresh.
    root.write("docCatalog/referenceapi_lookup/p_ja.json",
               resourceFile("製品", "p", entry("f", "日本語", "p/f.html") + "," + entry("g", "ジー", "p/g.html")));
    const auto edited = client.Get("/coverage");
    ASSERT_TRUE(edited);
    EXPECT_TRUE(contains(edited->body, "Lookup entries 2 of 2 localized, 0 in English")) << edited->body;
    EXPECT_EQ(server.stop(), 0);
}

TEST(ServeCoverage, SaysSoWhenEnglishIsTheOnlyLanguage) {
    const TempDir root;
    root.write("docCatalog/referenceapi_lookup/p.json", resourceFile("P", "p", entry("f", "p", "p/f.html")));
    ServerProcess server({"--root", root.path().string()});
    const auto response = server.client().Get("/coverage");
    ASSERT_TRUE(response);
    EXPECT_EQ(response->status, 200);
    EXPECT_TRUE(contains(response->body, "<p>No supported language other than English.</p>")) << response->body;
    EXPECT_EQ(server.stop(), 0);
}

} // namespace
