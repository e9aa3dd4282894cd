#include <reference/docparser/DiagnosticLogger.hpp>

namespace reference::docparser {
namespace {

// Built while the library loads, before any of its operations can run.
foundation::log::basic_diagnostic_logger<char> theLogger("referenceApi::docparser");

} // namespace

foundation::log::basic_diagnostic_logger<char>& diagnosticLogger() noexcept { return theLogger; }

} // namespace reference::docparser
