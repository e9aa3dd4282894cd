// refdoc serve over HTTP: the answers to hostile requests and hostile data, files edited between
// and during requests, and a clean stop. The views of the sample root are walked through in a
// browser by tests/browser.

#include "serve/ServerProcess.hpp"
#include "support/TempDir.hpp"
#include "tool/ToolRunner.hpp" // contains(), and the suite is skipped when the tool is not built

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

namespace {

using namespace refdoc::test;
using namespace std::chrono_literals;

// A lookup or page document: the two share their header.
std::string resourceFile(const std::string& product, const std::string& folder, const std::string& items) {
    return R"({"productName": ")" + product + R"(", "baseCode": "X", "helpFolder": ")" + folder +
           R"(", "helpLocation": "help/x", "refItems": [)" + items + "]}";
}

std::string pageFile(const std::string& folder, const std::string& items) { return resourceFile("P", folder, items); }

std::string page(const std::string& href, const std::string& purpose, const std::string& seeAlso = "") {
    return R"({"href": ")" + href + R"(", "refpurpose": ")" + purpose +
           R"(", "refentity": [{"type": "function", "name": "f"}], "seealso": [)" + seeAlso + "]}";
}

TEST(Serve, AnswersHostileRequestsWithClientErrorsAndKeepsServing) {
    ServerProcess server({});
    const struct Case {
        std::string method;
        std::string path;
        int status;
    } cases[] = {
        {"GET", "/ref/../../etc/passwd", 400},
        {"GET", "/ref/%2e%2e/%2e%2e/etc/passwd", 400},
        {"GET", "/ref/signal/..%2F..%2Fetc%2Fpasswd", 400},
        {"GET", "/ref/javascript:alert(1)", 400},
        {"GET", "/ref/signal/ref/x%00.html", 400},
        {"GET", "/%00", 400},
        {"GET", "/ref/signal/ref/none.html", 404},
        {"GET", "/product/none", 404},
        {"GET", "/?lang=../ja", 400},
        {"GET", "/search?q=%00", 400},
        {"GET", "/search?q=" + std::string(300, 'a'), 400},
        {"GET", "/api/search?q=%00", 400},
        {"GET", "/api/search?q=x&limit=0", 400},
        {"GET", "/api/search?q=x&limit=101", 400},
        {"GET", "/api/search?q=x&limit=1e3", 400},
        {"GET", "/api/search?q=x&lang=xx", 400},
        {"GET", "/assets/../../etc/passwd", 404},
        {"GET", "/" + std::string(9000, 'a'), 414},
        {"POST", "/", 405},
        {"DELETE", "/", 405},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.method + " " + c.path.substr(0, 80));
        // A raw request line: the client must not normalise the hostile path.
        httplib::Request request;
        request.method = c.method;
        request.path = c.path;
        auto client = server.client();
        const auto response = client.send(request);
        ASSERT_TRUE(response);
        EXPECT_EQ(response->status, c.status);
        EXPECT_FALSE(contains(response->body, "root:x:0:0")) << "a file outside the root was served";
    }
    const auto head = server.client().Head("/");
    ASSERT_TRUE(head);
    EXPECT_EQ(head->status, 200);
    const auto index = server.client().Get("/");
    ASSERT_TRUE(index);
    EXPECT_EQ(index->status, 200);
    for (const char* link :
         {"<a class=\"brand\" href=\"/?lang=en\">", "<a href=\"/?lang=ja\" hreflang=\"ja\">",
          "<a href=\"/product/signal?lang=en\">", "<a id=\"problems-link\" href=\"/problems?lang=en\">"}) {
        EXPECT_TRUE(contains(index->body, link)) << link;
    }
    EXPECT_EQ(server.stop(), 0);
}

// The search box's requests: the best hits as JSON with the fields of `find --json`, the view
// to open and the matched runs; errors as JSON too.
TEST(Serve, SearchApiAnswersTheBestHitsAsJson) {
    ServerProcess server({});
    auto client = server.client();
    const auto hits = [&](const std::string& path) {
        const auto response = client.Get(path);
        EXPECT_TRUE(response && response->status == 200 &&
                    response->get_header_value("Content-Type") == "application/json")
            << path;
        return response ? boost::json::parse(response->body) : boost::json::value();
    };
    EXPECT_EQ(hits("/api/search?q=acquisition&limit=1"), boost::json::parse(R"json([{
        "name": "usbacquire", "purpose": "Read samples from a USB acquisition device at up to 500 kS/s (±10 V)",
        "href": "usbdaq/ref/usbacquire.html", "productKey": "usbdaq",
        "productName": "Signal Toolkit Support Package for USB Data Acquisition", "installed": true,
        "match": "purpose", "score": 950, "deprecated": false, "type": "function",
        "url": "/ref/usbdaq/ref/usbacquire.html?lang=en", "ranges": []}])json"));
    // The matched runs count UTF-16 code units, as the page's script does; the language follows lang.
    const boost::json::value japanese = hits("/api/search?q=USBA&lang=ja&limit=1");
    ASSERT_EQ(japanese.as_array().size(), 1u) << japanese;
    EXPECT_EQ(japanese.at(0).at("ranges"), boost::json::parse("[[0, 4]]"));
    EXPECT_EQ(japanese.at(0).at("purpose"), "USB 収録デバイスからサンプルを読み取る (最大 500 kS/s、±10 V)");
    EXPECT_EQ(japanese.at(0).at("url"), "/ref/usbdaq/ref/usbacquire.html?lang=ja");
    EXPECT_EQ(hits("/api/search?q=%20"), boost::json::array());
    EXPECT_EQ(hits("/api/search?q=f&limit=2").as_array().size(), 2u);

    const auto refused = client.Get("/api/search?q=x&limit=0");
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 400);
    EXPECT_EQ(boost::json::parse(refused->body),
              boost::json::parse(R"({"error": "The limit is a number from 1 to 100."})"));
    EXPECT_EQ(server.stop(), 0);
}

TEST(Serve, APortInUseIsRefusedAndTheFirstServerKeepsIt) {
    ServerProcess first({});
    const std::string port = std::to_string(first.port());
    const ToolRun second = runTool({"serve", "--port", port});
    EXPECT_EQ(second.status, 2) << ::testing::PrintToString(second);
    EXPECT_TRUE(contains(second.err, "refdoc: cannot listen on 127.0.0.1 port " + port + ": the port is in use"))
        << second.err;
    EXPECT_FALSE(contains(second.out, "Open http://")) << second.out;
    // Every request still reaches the first server.
    for (int i = 0; i < 10; ++i) {
        const auto response = first.client().Get("/");
        ASSERT_TRUE(response);
        EXPECT_EQ(response->status, 200);
    }
    EXPECT_EQ(first.stop(), 0);
}

TEST(Serve, EscapesHostileTextsAndLinksOnlyPagesOfTheRoot) {
    const TempDir root;
    const std::string hostile = R"(<script>alert(1)</script> \"q\" 'a' & <img src=x onerror=alert(2)>)";
    root.write(
        "docCatalog/referenceapi_lookup/evil.json",
        resourceFile(hostile, "evil",
                     R"({"name": "evil\"><b>x", "type": "function", "refpurpose": ")" + hostile +
                         R"(", "href": "javascript:alert(3);"},)"
                         R"({"name": "good", "type": "function", "refpurpose": "ok", "href": "evil/good.html"})"));
    root.write("docCatalog/referenceapi/evil.json",
               pageFile("evil", page("evil/good.html", hostile,
                                     R"({"url": "javascript:alert(4);", "name": "js"},)"
                                     R"({"url": "//attacker.example/x.html", "name": "remote"},)"
                                     R"({"url": "../../../etc/passwd", "name": "up"},)"
                                     R"({"url": "evil/good.html\" onclick=\"alert(5);", "name": "quote"},)"
                                     R"({"url": "evil/good.html#purpose", "name": "self"})")));
    ServerProcess server({"--root", root.path().string()});
    auto client = server.client();
    for (const std::string path :
         {"/", "/product/evil", "/search?q=evil", "/search?q=%3Cscript%3E", "/ref/evil/good.html", "/problems"}) {
        SCOPED_TRACE(path);
        const auto response = client.Get(path);
        ASSERT_TRUE(response);
        EXPECT_EQ(response->status, 200);
        EXPECT_EQ(response->get_header_value("Content-Security-Policy").find("default-src 'none'"), 0u);
        for (const char* unsafe : {"<script>alert", "<img src=x", "<b>x", "href=\"javascript:", "onclick=\"alert",
                                   "href=\"//", "attacker.example/x.html\">"}) {
            EXPECT_FALSE(contains(response->body, unsafe)) << unsafe << " in\n" << response->body;
        }
    }
    // The search box opens only pages of the root.
    for (const auto& [query, url] : {std::pair{"evil", boost::json::value(nullptr)},
                                     std::pair{"good", boost::json::value("/ref/evil/good.html?lang=en")}}) {
        const auto api = client.Get(std::string("/api/search?q=") + query);
        ASSERT_TRUE(api);
        const boost::json::value found = boost::json::parse(api->body);
        ASSERT_EQ(found.as_array().size(), 1u) << found;
        EXPECT_EQ(found.at(0).at("url"), url) << found;
    }
    const auto page = client.Get("/ref/evil/good.html");
    ASSERT_TRUE(page);
    EXPECT_TRUE(contains(page->body, "&lt;script&gt;alert(1)&lt;/script&gt; &quot;q&quot; &#39;a&#39; &amp;"));
    // Only the reference to a page of the root is a link; the others show as text.
    EXPECT_TRUE(contains(page->body, "href=\"/ref/evil/good.html?lang=en#purpose\">self</a>"));
    for (const char* text : {"js", "remote", "up", "quote"}) {
        EXPECT_TRUE(contains(page->body, std::string("<span class=\"unlinked\">") + text + "</span>")) << text;
    }
    const auto product = client.Get("/product/evil");
    ASSERT_TRUE(product);
    EXPECT_TRUE(contains(product->body, "<td>evil&quot;&gt;&lt;b&gt;x<span class=\"tag no-page\"")) << product->body;
    EXPECT_TRUE(contains(product->body, "href=\"/ref/evil/good.html?lang=en\">good</a>"));
}

// Files that break or go away between requests (ParallelRequestsInTwoLanguagesDuringEdits shows
// edits being read on the next request): the answers say so, and the server keeps serving.
TEST(Serve, FilesBrokenOrGoneBetweenRequestsAreReported) {
    const TempDir root;
    root.write("docCatalog/referenceapi/p.json", pageFile("p", page("p/f.html", "first text")));
    ServerProcess server({"--root", root.path().string()});
    auto client = server.client();
    const auto before = client.Get("/ref/p/f.html");
    ASSERT_TRUE(before);
    EXPECT_TRUE(contains(before->body, "first text"));

    // A broken file: the page is gone, and the problems view says why.
    root.write("docCatalog/referenceapi/p.json", R"({"productName": "P", "refItems": [)");
    const auto broken = client.Get("/ref/p/f.html");
    ASSERT_TRUE(broken);
    EXPECT_EQ(broken->status, 404);
    EXPECT_TRUE(contains(broken->body, "1 dropped")) << broken->body;
    const auto problems = client.Get("/problems");
    ASSERT_TRUE(problems);
    EXPECT_TRUE(contains(problems->body, "docCatalog/referenceapi/p.json"));
    EXPECT_TRUE(contains(problems->body, "JSON syntax error at line 1")) << problems->body;

    // A root that goes away: a page that says so, not a crash.
    std::filesystem::rename(root.path() / "docCatalog", root.path() / "moved");
    const auto gone = client.Get("/");
    ASSERT_TRUE(gone);
    EXPECT_EQ(gone->status, 503);
    EXPECT_TRUE(contains(gone->body, "has no docCatalog folder any more"));
    EXPECT_EQ(server.stop(), 0);
}

// Many files with the same warning: the problems view counts them, shows the first few and pages
// through the rest; only views whose data lost a file carry the note about dropped files.
TEST(Serve, ProblemsAreGroupedAndLongListsPaged) {
    const TempDir root;
    for (int i = 0; i < 130; ++i) {
        const std::string key = "k" + std::to_string(1000 + i);
        root.write("docCatalog/referenceapi_lookup/" + key + ".json",
                   resourceFile("P", key, R"({"name": "a", "type": "odd", "refpurpose": "p", "href": "k/a.html"})"));
    }
    root.write("docCatalog/referenceapi_lookup/broken.json", "{");
    root.write("docCatalog/referenceapi/k.json", pageFile("k", page("k/a.html", "text")));
    ServerProcess server({"--root", root.path().string()});
    auto client = server.client();
    const std::string list = "/problems?show=unknown%20enumeration%20text&page=";
    const struct Case {
        std::string path;
        int status;
        std::vector<std::string> shown;
        std::vector<std::string> notShown;
        std::size_t rows;
    } cases[] = {
        {"/problems",
         200,
         {"130 warnings in 130 files", "docCatalog/referenceapi_lookup/k1019.json",
          "href=\"/problems?lang=en&amp;show=unknown%20enumeration%20text&amp;page=1\">All 130, 100 to a page</a>",
          "docCatalog/referenceapi_lookup/broken.json"},
         {"k1020.json", "id=\"problem-count\""},
         20 + 20 + 1}, // the first 20 of each group: unknown texts, and entries that link to no page
        {list + "1",
         200,
         {"rows 1–100 of 130 · page 1 of 2", "rel=\"next\"", "k1099.json"},
         {"k1100.json", "rel=\"prev\""},
         100},
        {list + "2",
         200,
         {"rows 101–130 of 130 · page 2 of 2", "rel=\"prev\"", "k1129.json",
          "<li><a href=\"/problems?lang=en\">Problems</a></li><li aria-current=\"page\">unknown enumeration "
          "text</li></ol></nav>\n<h1>"},
         {"k1099.json", "rel=\"next\""},
         30},
        {list + "3", 404, {"This list has 2 pages."}, {}, 0},
        {list + "0", 404, {}, {}, 0},
        {list + "x", 400, {}, {}, 0},
        {"/problems?show=nothing", 404, {}, {}, 0},
        // The index and a product are made from the lookup files, one of which was dropped; the
        // page's file was read whole.
        {"/", 200, {"id=\"problem-count\"", "1 dropped"}, {}, 0},
        {"/product/k1000", 200, {"id=\"problem-count\""}, {}, 0},
        {"/ref/k/a.html", 200, {}, {"id=\"problem-count\""}, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        const auto response = client.Get(c.path);
        ASSERT_TRUE(response);
        EXPECT_EQ(response->status, c.status);
        for (const auto& text : c.shown) {
            EXPECT_TRUE(contains(response->body, text)) << text << " not in\n" << response->body;
        }
        for (const auto& text : c.notShown) {
            EXPECT_FALSE(contains(response->body, text)) << text << " in\n" << response->body;
        }
        if (c.rows != 0) {
            std::size_t rows = 0;
            const std::string row = "<tr class=\"problem\">";
            for (std::size_t at = response->body.find(row); at != std::string::npos;
                 at = response->body.find(row, at + 1)) {
                ++rows;
            }
            EXPECT_EQ(rows, c.rows);
        }
    }
    EXPECT_EQ(server.stop(), 0);
}

// The views people read: breadcrumbs back to the product, contents on a long page, the name of an
// argument without its anchor beside it, entries without a page marked as such, and a translated
// page that lacks sections pointing to the English one.
TEST(Serve, PagesCarryBreadcrumbsContentsAndWhatATranslationLacks) {
    const TempDir root;
    const std::string lookupItems = R"({"name": "f", "type": "function", "refpurpose": "p", "href": "p/f.html"},
                                       {"name": "g", "type": "function", "refpurpose": "p", "href": "p/g.html"},
                                       {"name": "gone", "type": "function", "refpurpose": "p", "href": "p/gone.html"})";
    root.write("docCatalog/referenceapi_lookup/p.json", resourceFile("Prod", "p", lookupItems));
    root.write("docCatalog/referenceapi_lookup/p_ja.json", resourceFile("製品", "p", lookupItems));
    const auto longPage = [](const std::string& purpose, bool examples) {
        return R"({"href": "p/f.html", "refpurpose": ")" + purpose +
               R"json(", "refentity": [{"type": "function", "name": "f"}],
                  "syntaxgroup": [{"title": "Basic", "syntax": ["f(x)"]}],
                  "inputgroup": [{"title": "Required", "inputs": [{"name": "x", "htmlid": "in_x", "purpose": "x"}]}],
                  "outputs": [{"name": "y", "htmlid": "out_y", "purpose": "y"}])json" +
               (examples ? R"(, "examples": [{"url": "p/g.html", "title": "Example"}],
                           "seealso": [{"url": "p/g.html", "name": "g"}])"
                         : "") +
               "}";
    };
    root.write("docCatalog/referenceapi/p.json",
               pageFile("p", longPage("English", true) + "," + page("p/g.html", "short")));
    root.write("docCatalog/referenceapi/p_ja.json", pageFile("p", longPage("日本語", false)));
    ServerProcess server({"--root", root.path().string(), "--languages", "en,ja"});
    auto client = server.client();
    const struct Case {
        std::string path;
        std::vector<std::string> shown;
        std::vector<std::string> notShown;
    } cases[] = {
        {"/product/p",
         {"<nav class=\"crumbs\" aria-label=\"Breadcrumbs\"><ol><li><a href=\"/?lang=en\">Products</a></li>"
          "<li aria-current=\"page\">Prod</li></ol></nav>",
          "<a href=\"/ref/p/f.html?lang=en\">f</a>",
          "gone<span class=\"tag no-page\" title=\"p/gone.html\">no page</span>"},
         {"href=\"/ref/p/gone.html"}},
        {"/ref/p/f.html",
         {"<li><a href=\"/product/p?lang=en\">Prod</a></li><li aria-current=\"page\">f</li>",
          "<nav class=\"toc\" aria-label=\"On this page\">", "<li><a href=\"#seealso\">See also</a></li>",
          "<dt id=\"in_x\"><a class=\"self\" href=\"#in_x\"><code>x</code></a></dt>"},
         {">#in_x<", "id=\"lacking\""}},
        {"/ref/p/g.html", {"<li aria-current=\"page\">f</li>"}, {"class=\"toc\""}},
        {"/ref/p/f.html?lang=ja",
         {"<li><a href=\"/product/p?lang=ja\">製品</a></li>", "日本語",
          "lacks sections the English page has: Examples, See also. <a href=\"/ref/p/f.html?lang=en\" "
          "hreflang=\"en\">Read the English page</a>"},
         {}},
        {"/search?q=f", {"<li aria-current=\"page\">Search</li>"}, {}},
        {"/", {}, {"class=\"crumbs\""}},
    };
    for (const auto& c : cases) {
        server.expectView(c.path, c.shown, c.notShown);
    }
    EXPECT_EQ(server.stop(), 0);
}

// What a request loaded is kept while every data file keeps its name, size and modification
// time, and loaded again as soon as one of them changes.
TEST(Serve, LoadedDataIsKeptUntilADataFileChanges) {
    const TempDir root;
    const auto pagePath = root.path() / "docCatalog/referenceapi/p.json";
    const auto lookupFile = root.path() / "docCatalog/referenceapi_lookup/q.json";
    const auto past = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    const auto writeAt = [&](const std::filesystem::path& file, const std::string& text, auto time) {
        root.write(std::filesystem::relative(file, root.path()), text);
        std::filesystem::last_write_time(file, time);
    };
    writeAt(pagePath, pageFile("p", page("p/f.html", "text A")), past);
    ServerProcess server({"--root", root.path().string()});
    auto client = server.client();
    const auto shows = [&](const std::string& path, const std::string& text) {
        const auto response = client.Get(path);
        return response && response->status == 200 && contains(response->body, text);
    };
    const struct Step {
        std::string what;
        std::function<void()> edit;
        std::string path;
        std::string text;
    } steps[] = {
        {"first load", [] {}, "/ref/p/f.html", "text A"},
        {"same size, later time", [&] { writeAt(pagePath, pageFile("p", page("p/f.html", "text B")), past + 1s); },
         "/ref/p/f.html", "text B"},
        // Nothing the key sees has changed, so the kept data answers.
        {"same size and time", [&] { writeAt(pagePath, pageFile("p", page("p/f.html", "text C")), past + 1s); },
         "/ref/p/f.html", "text B"},
        {"same time, other size", [&] { writeAt(pagePath, pageFile("p", page("p/f.html", "text DD")), past + 1s); },
         "/ref/p/f.html", "text DD"},
        {"a file added", [&] { writeAt(lookupFile, resourceFile("Added", "q", ""), past); }, "/", "Added"},
        {"a file removed", [&] { std::filesystem::remove(lookupFile); }, "/", "No lookup data found."},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.what);
        step.edit();
        EXPECT_TRUE(shows(step.path, step.text));
    }
    EXPECT_EQ(server.stop(), 0);
}

TEST(Serve, ParallelRequestsInTwoLanguagesDuringEdits) {
    const TempDir root;
    root.write("refdoc-host.json", R"({"supportedLanguages": ["en", "ja"]})");
    // Enough entries that a load takes a while, so requests of the two languages overlap.
    std::string items = R"({"name": "f", "type": "function", "refpurpose": "a", "href": "p/f.html"})";
    for (int i = 0; i < 3000; ++i) {
        items +=
            R"(, {"name": "g)" + std::to_string(i) + R"(", "type": "function", "refpurpose": "b", "href": "p/g.html"})";
    }
    root.write("docCatalog/referenceapi_lookup/p.json", resourceFile("English Name", "p", items));
    root.write("docCatalog/referenceapi_lookup/p_ja.json", resourceFile("Japanese Name", "p", items));
    root.write("docCatalog/referenceapi/p.json", pageFile("p", page("p/f.html", "version 0")));
    ServerProcess server({"--root", root.path().string()});

    std::atomic<bool> editing{true};
    std::atomic<int> failures{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 4; ++t) {
        readers.emplace_back([&, t] {
            auto client = server.client();
            for (int i = 0; i < 30; ++i) {
                const bool japanese = (t + i) % 2 == 0;
                const auto index = client.Get(japanese ? "/search?q=f&lang=ja" : "/search?q=f&lang=en");
                // Each answer is the merged result of the language it asked for.
                const bool indexRight = index && index->status == 200 &&
                                        contains(index->body, japanese ? "Japanese Name" : "English Name") &&
                                        !contains(index->body, japanese ? "English Name" : "Japanese Name");
                // Mid-write the file may be cut short and dropped: 404, never anything worse.
                const auto pageAnswer = client.Get("/ref/p/f.html");
                const bool pageRight = pageAnswer && (pageAnswer->status == 200 || pageAnswer->status == 404);
                const bool problemsRight = i % 5 != 0 || [&] {
                    const auto problems = client.Get("/problems");
                    return problems && problems->status == 200;
                }();
                failures += !indexRight || !pageRight || !problemsRight;
            }
        });
    }
    // The page file is rewritten for as long as the readers run.
    int version = 0;
    std::thread editor([&] {
        while (editing) {
            ++version;
            root.write("docCatalog/referenceapi/p.json",
                       pageFile("p", page("p/f.html", "version " + std::to_string(version))));
        }
    });
    for (auto& reader : readers) {
        reader.join();
    }
    editing = false;
    editor.join();
    EXPECT_EQ(failures.load(), 0);
    const auto last = server.client().Get("/ref/p/f.html");
    ASSERT_TRUE(last);
    EXPECT_TRUE(contains(last->body, "version " + std::to_string(version) + "<"));
    EXPECT_EQ(server.stop(), 0);
}

} // namespace
