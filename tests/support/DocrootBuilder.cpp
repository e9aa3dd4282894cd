#include "support/DocrootBuilder.hpp"

#include "support/JsonFixtures.hpp"

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

} // namespace refdoc::test
