#include "support/DocrootBuilder.hpp"

#include "support/JsonFixtures.hpp"

#include "ZipWriter.hpp"

#include <boost/json/array.hpp>

namespace refdoc::test {
namespace {

boost::json::object headerObject(const Header& header) {
    boost::json::object document;
    document["productName"] = header.productName;
    document["baseCode"] = header.baseCode;
    document["helpFolder"] = header.helpFolder;
    document["helpLocation"] = "help/" + header.helpFolder;
    return document;
}

} // namespace

boost::json::object lookupDocument(const Header& header, const std::vector<Entry>& items) {
    boost::json::object document = headerObject(header);
    boost::json::array array;
    for (const auto& entry : items) {
        array.push_back(boost::json::object{{"name", entry.key},
                                            {"refpurpose", entry.purpose},
                                            {"href", entry.href.empty() ? entry.key + ".html" : entry.href},
                                            {"type", "function"}});
    }
    document["refItems"] = std::move(array);
    return document;
}

boost::json::object pageDocument(const Header& header, const std::vector<Entry>& pages) {
    boost::json::object document = headerObject(header);
    boost::json::array array;
    for (const auto& page : pages) {
        array.push_back(boost::json::object{
            {"href", page.key},
            {"refpurpose", page.purpose},
            {"refentity", boost::json::array{boost::json::object{{"type", "function"}, {"name", page.key}}}},
            {"inputgroup", boost::json::array{boost::json::object{
                               {"title", "Inputs"},
                               {"inputs", boost::json::array{boost::json::object{
                                              {"name", "x"}, {"purpose", "input"}, {"htmlid", "input_x"}}}}}}}});
    }
    document["refItems"] = std::move(array);
    return document;
}

std::string fileText(boost::json::object main, const std::vector<boost::json::object>& supportPackages) {
    if (!supportPackages.empty()) {
        main["supportPackages"] = boost::json::array(supportPackages.begin(), supportPackages.end());
    }
    return toText(main);
}

void writeSettingsProbeRoot(const TempDir& root, const std::string& tag) {
    const std::filesystem::path lookup = "docCatalog/referenceapi_lookup";
    const std::filesystem::path pages = "docCatalog/referenceapi";
    root.write(lookup / "one.json",
               fileText(lookupDocument({"One " + tag, "ONE", "one"}, {{"f", "f " + tag}, {"g", "g " + tag}}),
                        {lookupDocument({"Test package", "sp_test", "spt"}, {{"s", "s " + tag}}),
                         lookupDocument({"Installed package", "sp_installed", "spi"}, {{"t", "t " + tag}})}));
    root.write(lookup / "one_ja.json", fileText(lookupDocument({"ワン " + tag, "ONE", "one"}, {{"f", "エフ"}})));
    ZipWriter()
        .add("two.json", fileText(lookupDocument({"Two " + tag, "TWO", "two"}, {{"h", "h " + tag}})))
        .add("two_ja.json", fileText(lookupDocument({"ツー", "TWO", "two"}, {{"h", "エイチ"}})))
        .write(root.path() / lookup / "two.zip");
    root.write(pages / "one.json", fileText(pageDocument({"One " + tag, "ONE", "one"},
                                                         {{"one/p.html", "p " + tag}, {"one/r.html", "r " + tag}})));
    root.write(pages / "one_ja.json", fileText(pageDocument({"ワン", "ONE", "one"}, {{"one/p.html", "ピー " + tag}})));
}

} // namespace refdoc::test
