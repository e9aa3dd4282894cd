#pragma once

#include <refdoc/platform/Export.hpp>

#include <boost/log/core/record.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

namespace foundation::log {

template <class CharT>
class basic_diagnostic_logger;

// A named, severity-filtered logger on Boost.Log. Severities are single bits; the logger keeps
// a cached mask of the enabled ones so that a disabled statement costs one load and one test.
// Records carry the attributes "Channel" (std::string) and "Severity" (std::uint32_t).
template <>
class REFDOC_PLATFORM_API basic_diagnostic_logger<char> {
public:
    using severity_type = std::uint32_t;
    static constexpr severity_type kDefaultEnabledSeverities = 512;

    class Record;

    explicit basic_diagnostic_logger(std::string channel, severity_type enabledSeverities = kDefaultEnabledSeverities);
    basic_diagnostic_logger(const basic_diagnostic_logger&) = delete;
    basic_diagnostic_logger& operator=(const basic_diagnostic_logger&) = delete;

    const std::string& channel() const noexcept { return channel_; }

    bool isEnabled(severity_type severity) const noexcept {
        return (mask_.load(std::memory_order_relaxed) & severity) != 0;
    }
    void setEnabledSeverities(severity_type mask) noexcept { mask_.store(mask, std::memory_order_relaxed); }
    severity_type enabledSeverities() const noexcept { return mask_.load(std::memory_order_relaxed); }

    // Opens a record at `severity` (an invalid one if the core or its sinks reject it).
    Record openRecord(severity_type severity);

private:
    friend class Record;
    using source_type = boost::log::sources::severity_channel_logger_mt<severity_type, std::string>;

    std::string channel_;
    std::atomic<severity_type> mask_;
    source_type source_;
};

// One record being written. Text goes in with <<; UTF-16 pieces are converted to UTF-8 as they
// are written, which only happens once the record is open. push() hands the record to the core;
// a record that is destroyed without push() (a statement left by an exception) is discarded.
class REFDOC_PLATFORM_API basic_diagnostic_logger<char>::Record {
public:
    Record(basic_diagnostic_logger& logger, severity_type severity);
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    ~Record();

    explicit operator bool() const noexcept { return static_cast<bool>(record_); }

    Record& operator<<(std::string_view text);
    Record& operator<<(const char* text) { return *this << std::string_view(text); }
    Record& operator<<(std::u16string_view text);
    Record& operator<<(const std::u16string& text) { return *this << std::u16string_view(text); }

    void push();

private:
    basic_diagnostic_logger& logger_;
    boost::log::record record_;
    boost::log::record_ostream stream_;
};

inline basic_diagnostic_logger<char>::Record basic_diagnostic_logger<char>::openRecord(severity_type severity) {
    return Record(*this, severity);
}

} // namespace foundation::log

// Writes one statement to a diagnostic logger:
//   FOUNDATION_DIAG_LOG(logger, 16) << "Reading file: " << path;
// The pieces are evaluated only when the severity is enabled and a record is open.
#define FOUNDATION_DIAG_LOG(logger, severity)                                                                          \
    if (!(logger).isEnabled(severity)) {                                                                               \
    } else                                                                                                             \
        for (::foundation::log::basic_diagnostic_logger<char>::Record diagRecord_((logger), (severity)); diagRecord_;  \
             diagRecord_.push())                                                                                       \
        diagRecord_
