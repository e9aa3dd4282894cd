#include "FuzzTargets.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>
#include <reference/docparser/DocResourceParser.hpp>

#include <doclanguage/DocLanguage.hpp>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>

#include <system_error>

namespace refdoc::fuzz {
namespace {

using reference::docparser::DocResourceParser;
namespace logging = boost::log;

constexpr std::string_view kControlLookup =
    R"({"productName":"Control","baseCode":"CTL","helpFolder":"control","helpLocation":"help/control",)"
    R"("refItems":[{"name":"probe","refpurpose":"Always here","href":"control/probe.html"}]})";

// Takes every record and drops it, so that the file-access records, which carry names taken from
// package entries, are really formed.
class DroppingBackend : public logging::sinks::basic_sink_backend<logging::sinks::concurrent_feeding> {
public:
    void consume(const logging::record_view& record) {
        const auto message = logging::extract<std::string>("Message", record);
        require(message && !message->empty(), "a file-access record carries its text");
    }
};

} // namespace

struct ZipPackageTarget::LogSink {
    boost::shared_ptr<logging::sinks::synchronous_sink<DroppingBackend>> sink =
        boost::make_shared<logging::sinks::synchronous_sink<DroppingBackend>>();
};

ZipPackageTarget::ZipPackageTarget()
    : previousSeverities_(reference::docparser::diagnosticLogger().enabledSeverities()),
      sink_(std::make_shared<LogSink>()) {
    DocResourceParser::setReferenceRoot(root_.path().u16string());
    DocResourceParser::setTestProducts({u"control"}, {});
    auto& language = doclanguage::DocLanguage::getInstance();
    language.setSupportedDocLanguages({u"en", u"ja"});
    language.setDocLanguage(u"ja");
    ScratchRoot::write(root_.lookupFolder() / "control.json", kControlLookup);

    logging::core::get()->add_sink(sink_->sink);
    reference::docparser::diagnosticLogger().setEnabledSeverities(reference::docparser::kFileAccessSeverity |
                                                                  reference::docparser::kFileReadErrorSeverity);
}

ZipPackageTarget::~ZipPackageTarget() {
    reference::docparser::diagnosticLogger().setEnabledSeverities(previousSeverities_);
    logging::core::get()->remove_sink(sink_->sink);
}

void ZipPackageTarget::run(std::string_view input) const {
    const bool variantName = input.size() % 2 == 1;
    std::error_code ignored;
    std::filesystem::remove(root_.lookupFolder() / (variantName ? "pkg.zip" : "pkg_ja.zip"), ignored);
    ScratchRoot::write(root_.lookupFolder() / (variantName ? "pkg_ja.zip" : "pkg.zip"), input);

    const auto results = DocResourceParser::getResourceLookupFiles();

    require(results.installedResources.contains(u"control"), "a package never hides another product");
    for (const auto& entry : results.uninstalledResources) {
        require(!results.installedResources.contains(entry.first), "a key is installed or not, never both");
    }
}

} // namespace refdoc::fuzz
