#pragma once

#include <reference/docparser/Export.hpp>

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <cstdint>

namespace reference::docparser {

/// Severity of the file-access progress records ("Reading file: ", "Error reading file: ").
inline constexpr std::uint32_t kFileAccessSeverity = 16;
/// Severity of a failure while reading an opened file from disk ("Problem reading JSON file: ").
inline constexpr std::uint32_t kFileReadErrorSeverity = 512;

/// The library's process-wide logger, channel "referenceApi::docparser". Its enabled-severity
/// mask starts as 512 only; hosts and tests change it with setEnabledSeverities.
REFDOC_API foundation::log::basic_diagnostic_logger<char>& diagnosticLogger() noexcept;

} // namespace reference::docparser
