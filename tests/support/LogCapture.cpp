#include "support/LogCapture.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>

#include <boost/smart_ptr/make_shared_object.hpp>

namespace refdoc::test {
namespace {

constexpr const char* kChannel = "referenceApi::docparser";

class CollectingBackend : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding> {
public:
    void consume(const boost::log::record_view& rec) {
        if (boost::log::extract<std::string>("Channel", rec) == kChannel) {
            const auto severity = boost::log::extract<std::uint32_t>("Severity", rec);
            const auto message = boost::log::extract<std::string>("Message", rec);
            records.push_back({kChannel, severity ? *severity : 0u, message ? *message : std::string()});
        }
    }

    std::vector<CapturedRecord> records;
};

} // namespace

// The frontend serialises consume() and the tests' reads alike through its backend lock.
struct LogCapture::Sink : boost::log::sinks::synchronous_sink<CollectingBackend> {};

LogCapture::LogCapture(std::uint32_t enabledSeverities)
    : sink_(boost::make_shared<Sink>()), previousMask_(reference::docparser::diagnosticLogger().enabledSeverities()) {
    boost::log::core::get()->add_sink(sink_);
    reference::docparser::diagnosticLogger().setEnabledSeverities(enabledSeverities);
}

LogCapture::~LogCapture() {
    reference::docparser::diagnosticLogger().setEnabledSeverities(previousMask_);
    boost::log::core::get()->remove_sink(sink_);
}

std::vector<CapturedRecord> LogCapture::records() const { return sink_->locked_backend()->records; }

std::vector<std::string> LogCapture::messages() const {
    std::vector<std::string> out;
    for (auto& record : records()) {
        out.push_back(record.message);
    }
    return out;
}

void LogCapture::clear() { sink_->locked_backend()->records.clear(); }

void PrintTo(const CapturedRecord& record, std::ostream* out) {
    *out << "{" << record.channel << ", " << record.severity << ", \"" << record.message << "\"}";
}

} // namespace refdoc::test
