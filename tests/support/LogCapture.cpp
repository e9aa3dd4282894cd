#include "support/LogCapture.hpp"

#include <reference/docparser/DiagnosticLogger.hpp>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>

namespace refdoc::test {

struct LogCapture::State {
    mutable std::mutex mutex;
    std::vector<CapturedRecord> records;
};

namespace {

class CollectingBackend : public boost::log::sinks::basic_sink_backend<boost::log::sinks::concurrent_feeding> {
public:
    CollectingBackend(std::shared_ptr<LogCapture::State> state, std::string channel)
        : state_(std::move(state)), channel_(std::move(channel)) {}

    void consume(const boost::log::record_view& rec) {
        auto channel = boost::log::extract<std::string>("Channel", rec);
        if (!channel || *channel != channel_) {
            return;
        }
        auto severity = boost::log::extract<std::uint32_t>("Severity", rec);
        auto message = boost::log::extract<std::string>("Message", rec);
        std::lock_guard lock(state_->mutex);
        state_->records.push_back({*channel, severity ? *severity : 0u, message ? *message : std::string()});
    }

private:
    std::shared_ptr<LogCapture::State> state_;
    std::string channel_;
};

using Sink = boost::log::sinks::synchronous_sink<CollectingBackend>;

} // namespace

LogCapture::LogCapture(std::uint32_t enabledSeverities, std::string channel)
    : state_(std::make_shared<State>()), previousMask_(reference::docparser::diagnosticLogger().enabledSeverities()) {
    auto sink = boost::make_shared<Sink>(boost::make_shared<CollectingBackend>(state_, std::move(channel)));
    boost::log::core::get()->add_sink(sink);
    sink_ = std::shared_ptr<void>(nullptr, [sink](void*) mutable {
        boost::log::core::get()->remove_sink(sink);
        sink.reset();
    });
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
    for (auto& r : records()) {
        out.push_back(r.message);
    }
    return out;
}

void PrintTo(const CapturedRecord& record, std::ostream* out) {
    *out << "{" << record.channel << ", " << record.severity << ", \"" << record.message << "\"}";
}

void LogCapture::clear() {
    std::lock_guard lock(state_->mutex);
    state_->records.clear();
}

} // namespace refdoc::test
