#pragma once

// The state of one ParseDiagnosticsScope: the records of the files read while it is active. A
// loading call takes the active scope's recorder once, when it starts, and hands it down with
// the rest of its context; the readers write into the record of the file they read.

#include <reference/docparser/ParseDiagnostics.hpp>

#include <cstddef>
#include <utility>
#include <vector>

namespace reference::docparser::diagnostics {

class Recorder {
public:
    std::vector<FileDiagnostic> files;

    // Starts the record of a file; its index stays valid while more records are added.
    std::size_t add(FileDiagnostic record) {
        files.push_back(std::move(record));
        return files.size() - 1;
    }
};

// The recorder of the scope active on this thread; null when there is none.
extern constinit thread_local Recorder* tActiveRecorder;

inline Recorder* activeRecorder() noexcept { return tActiveRecorder; }

} // namespace reference::docparser::diagnostics
