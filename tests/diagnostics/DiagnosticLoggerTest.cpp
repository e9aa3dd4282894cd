#include <reference/docparser/DiagnosticLogger.hpp>

#include "support/LogCapture.hpp"

#include <boost/log/core.hpp>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using refdoc::test::CapturedRecord;
using refdoc::test::LogCapture;
using reference::docparser::diagnosticLogger;

// A piece whose conversion to text can be observed: it counts how often it is written, or throws.
struct CountingPiece {
    int* writes;
    bool throws = false;
};

template <class Stream>
Stream& operator<<(Stream& out, const CountingPiece& piece) {
    if (piece.throws) {
        throw std::runtime_error("interrupted");
    }
    ++*piece.writes;
    return out << std::u16string_view(u"piece");
}

// An enabled record carries its channel, severity and text in UTF-8. A record that is not written
// costs nothing: its pieces are never converted.
TEST(DiagnosticLogger, EnabledRecordsAreWrittenInUtf8AndOthersConvertNothing) {
    LogCapture capture(16 | 512);
    int writes = 0;
    FOUNDATION_DIAG_LOG(diagnosticLogger(), 16) << "Reading file: " << std::u16string(u"/docs/\u65E5/a\U0001F600.json");
    boost::log::core::get()->set_logging_enabled(false);
    FOUNDATION_DIAG_LOG(diagnosticLogger(), 512) << CountingPiece{&writes};
    boost::log::core::get()->set_logging_enabled(true);
    diagnosticLogger().setEnabledSeverities(16);
    FOUNDATION_DIAG_LOG(diagnosticLogger(), 512) << "Problem reading JSON file: " << CountingPiece{&writes};
    EXPECT_EQ(writes, 0);
    FOUNDATION_DIAG_LOG(diagnosticLogger(), 16) << "Reading file: " << CountingPiece{&writes};
    EXPECT_EQ(writes, 1);
    const std::vector<CapturedRecord> expected = {
        {"referenceApi::docparser", 16, "Reading file: /docs/\xE6\x97\xA5/a\xF0\x9F\x98\x80.json"},
        {"referenceApi::docparser", 16, "Reading file: piece"},
    };
    EXPECT_EQ(capture.records(), expected);
}

// The statement is one statement: an exception leaves no partial record, and an else binds to the
// if around it.
TEST(DiagnosticLogger, StatementIsWholeAndSingle) {
    LogCapture capture(16 | 512);
    int writes = 0;
    EXPECT_THROW(FOUNDATION_DIAG_LOG(diagnosticLogger(), 16)
                     << "Reading file: " << (CountingPiece{&writes, true}) << "never",
                 std::runtime_error);
    bool elseTaken = false;
    if (capture.records().size() == 1)
        FOUNDATION_DIAG_LOG(diagnosticLogger(), 16) << "then";
    else
        elseTaken = true;
    FOUNDATION_DIAG_LOG(diagnosticLogger(), 16) << "after";
    EXPECT_TRUE(elseTaken);
    EXPECT_EQ(capture.messages(), std::vector<std::string>{"after"});
}

} // namespace
