#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace refdoc::test {

struct CapturedRecord {
    std::string channel;
    std::uint32_t severity;
    std::string message;

    bool operator==(const CapturedRecord&) const = default;
};

// Readable failure messages for record comparisons.
void PrintTo(const CapturedRecord& record, std::ostream* out);

// Collects the library channel's records while it lives, with the library logger's severity mask
// set to `enabledSeverities`; the previous mask comes back on destruction.
class LogCapture {
public:
    explicit LogCapture(std::uint32_t enabledSeverities);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<CapturedRecord> records() const;
    std::vector<std::string> messages() const;
    void clear();

private:
    struct Sink;
    boost::shared_ptr<Sink> sink_; // registered with the logging core while the capture lives
    std::uint32_t previousMask_;
};

} // namespace refdoc::test
