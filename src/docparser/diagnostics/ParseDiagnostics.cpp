// The public diagnostics scope and the names of its enumerations.

#include <reference/docparser/ParseDiagnostics.hpp>

#include "docparser/diagnostics/Recorder.hpp"

namespace reference::docparser {

constinit thread_local diagnostics::Recorder* diagnostics::tActiveRecorder = nullptr;

ParseDiagnosticsScope::ParseDiagnosticsScope()
    : recorder_(std::make_unique<diagnostics::Recorder>()), previous_(diagnostics::tActiveRecorder) {
    diagnostics::tActiveRecorder = recorder_.get();
}

ParseDiagnosticsScope::~ParseDiagnosticsScope() {
    // Only the thread that made the scope has it installed.
    if (diagnostics::tActiveRecorder == recorder_.get()) {
        diagnostics::tActiveRecorder = previous_;
    }
}

const std::vector<FileDiagnostic>& ParseDiagnosticsScope::files() const noexcept { return recorder_->files; }

std::vector<FileDiagnostic> ParseDiagnosticsScope::takeFiles() noexcept {
    std::vector<FileDiagnostic> taken = std::move(recorder_->files);
    recorder_->files.clear();
    return taken;
}

std::string_view toString(DiagnosticSource source) noexcept {
    switch (source) {
    case DiagnosticSource::File:
        return "file";
    case DiagnosticSource::PackageEntry:
        return "package entry";
    case DiagnosticSource::Package:
        return "package";
    case DiagnosticSource::PageFile:
        return "page file";
    case DiagnosticSource::Text:
        return "text";
    }
    return "unknown";
}

std::string_view toString(DropReason reason) noexcept {
    switch (reason) {
    case DropReason::None:
        return "read";
    case DropReason::Missing:
        return "missing";
    case DropReason::NoData:
        return "no data";
    case DropReason::Unreadable:
        return "unreadable";
    case DropReason::SyntaxError:
        return "syntax error";
    case DropReason::MissingKey:
        return "missing key";
    case DropReason::WrongKind:
        return "wrong kind";
    case DropReason::Other:
        return "other failure";
    }
    return "unknown";
}

std::string_view toString(WarningKind kind) noexcept {
    switch (kind) {
    case WarningKind::DocumentKeyTaken:
        return "document key taken";
    case WarningKind::UnknownEnumText:
        return "unknown enumeration text";
    }
    return "unknown";
}

} // namespace reference::docparser
