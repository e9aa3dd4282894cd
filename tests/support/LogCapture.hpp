#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
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

// A Boost.Log sink that collects the records of one channel while it lives. It also sets the
// library logger's enabled-severity mask and restores the previous mask on destruction.
class LogCapture {
public:
    explicit LogCapture(std::uint32_t enabledSeverities, std::string channel = "referenceApi::docparser");
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<CapturedRecord> records() const;
    std::vector<std::string> messages() const;
    void clear();

    struct State;

private:
    std::shared_ptr<State> state_;
    std::shared_ptr<void> sink_;
    std::uint32_t previousMask_;
};

} // namespace refdoc::test
