// The problems view of `refdoc serve` shows the cross-reference warnings of `refdoc check` as
// groups of their own, with what to change.

#include "serve/ServerProcess.hpp"
#include "support/TempDir.hpp"
#include "tool/ToolRunner.hpp" // contains(), and the suite is skipped when the tool is not built

#include <gtest/gtest.h>

namespace {

using namespace refdoc::test;

TEST(ServeProblems, ShowsCrossReferenceGroupsWithTheirFixes) {
    const TempDir root;
    root.write("docCatalog/referenceapi_lookup/k.json",
               R"({"productName": "K", "baseCode": "K", "helpFolder": "k", "helpLocation": "h", "refItems": [
                     {"name": "f", "type": "function", "refpurpose": "p", "href": "k/f.html"},
                     {"name": "g", "type": "function", "refpurpose": "p", "href": "k/g.html"}]})");
    root.write("docCatalog/referenceapi/k.json",
               R"({"productName": "K", "baseCode": "K", "helpFolder": "k", "helpLocation": "h", "refItems": [
                     {"href": "k/f.html", "refpurpose": "p", "refentity": [{"type": "function", "name": "f"}],
                      "seealso": [{"url": "k/gone.html", "name": "gone"}]}]})");
    ServerProcess server({"--root", root.path().string()});
    const auto problems = server.client().Get("/problems");
    ASSERT_TRUE(problems);
    EXPECT_EQ(problems->status, 200);
    for (const char* shown : {
             "<span class=\"warning\">entry links to no page</span>: 1 warning in 1 file",
             "fix: add the linked page to the product&#39;s page file, or correct the entry&#39;s href",
             "<div class=\"fix\">fix: add a page with href k/g.html to docCatalog/referenceapi/k.json (product k) "
             "or correct the entry&#39;s href</div>",
             "<span class=\"warning\">broken see-also link</span>: 1 warning in 1 file",
             "page k/f.html: see-also &quot;gone&quot; links to k/gone.html, which no page file has",
         }) {
        EXPECT_TRUE(contains(problems->body, shown)) << shown << " not in\n" << problems->body;
    }
    EXPECT_EQ(server.stop(), 0);
}

} // namespace
