#include "support/LogCapture.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>

namespace refdoc::test {
namespace {

constexpr const char* kChannel = "referenceApi::docparser";

class CollectingBackend : public boost::log::sinks::basic_sink_backend<boost::log::sinks::concurrent_feeding> {
public:
    explicit CollectingBackend(std::shared_ptr<LogCapture::State> state) : state_(std::move(state)) {}

    void consume(const boost::log::record_view& rec) {
        if (boost::log::extract<std::string>("Channel", rec) != kChannel) {
            return;
        }
        const auto severity = boost::log::extract<std::uint32_t>("Severity", rec);
        const auto message = boost::log::extract<std::string>("Message", rec);
        std::lock_guard lock(state_->mutex);
        state_->records.push_back({kChannel, severity ? *severity : 0u, message ? *message : std::string()});
    }

private:
    std::shared_ptr<LogCapture::State> state_;
};

} // namespace

LogCapture::LogCapture(std::uint32_t enabledSeverities)
    : previousMask_(reference::docparser::diagnosticLogger().enabledSeverities()) {
    auto sink = boost::make_shared<boost::log::sinks::synchronous_sink<CollectingBackend>>(
        boost::make_shared<CollectingBackend>(state_));
    boost::log::core::get()->add_sink(sink);
    sink_ = std::shared_ptr<void>(nullptr, [sink](void*) { boost::log::core::get()->remove_sink(sink); });
    reference::docparser::diagnosticLogger().setEnabledSeverities(enabledSeverities);
}

LogCapture::~LogCapture() {
    reference::docparser::diagnosticLogger().setEnabledSeverities(previousMask_);
    sink_.reset();
}

std::vector<CapturedRecord> LogCapture::records() const {
    std::lock_guard lock(state_->mutex);
    return state_->records;
}

std::vector<std::string> LogCapture::messages() const {
    std::vector<std::string> out;
    for (auto& record : records()) {
        out.push_back(record.message);
    }
    return out;
}

void LogCapture::clear() {
    std::lock_guard lock(state_->mutex);
    state_->records.clear();
}

void PrintTo(const CapturedRecord& record, std::ostream* out) {
    *out << "{" << record.channel << ", " << record.severity << ", \"" << record.message << "\"}";
}

} // namespace refdoc::test
