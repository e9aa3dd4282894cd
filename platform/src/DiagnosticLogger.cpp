#include <foundation/log/basic_diagnostic_logger.hpp>

#include "TextCodec.hpp"

#include <boost/log/keywords/channel.hpp>
#include <boost/log/keywords/severity.hpp>

namespace foundation::log {

basic_diagnostic_logger<char>::basic_diagnostic_logger(std::string channel, severity_type enabledSeverities)
    : channel_(std::move(channel)), mask_(enabledSeverities), source_(boost::log::keywords::channel = channel_) {}

basic_diagnostic_logger<char>::Record::Record(basic_diagnostic_logger& logger, severity_type severity)
    : logger_(logger) {
    // The source takes its lock, sets the thread's severity and asks the core; an empty record
    // comes back when logging is disabled in the core or every sink filters the record out.
    record_ = logger_.source_.open_record(boost::log::keywords::severity = severity);
    if (record_) {
        stream_.attach_record(record_);
    }
}

basic_diagnostic_logger<char>::Record::~Record() = default;

basic_diagnostic_logger<char>::Record& basic_diagnostic_logger<char>::Record::operator<<(std::string_view text) {
    stream_ << text;
    return *this;
}

basic_diagnostic_logger<char>::Record& basic_diagnostic_logger<char>::Record::operator<<(std::u16string_view text) {
    stream_ << platform::detail::narrowFromUtf16(text);
    return *this;
}

void basic_diagnostic_logger<char>::Record::push() {
    stream_.flush();
    stream_.detach_from_record();
    logger_.source_.push_record(std::move(record_));
    record_.reset();
}

} // namespace foundation::log
