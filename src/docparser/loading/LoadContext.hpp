#pragma once

// What one loading call hands down the pipeline to every file it reads: memory reused from file
// to file, and, while a diagnostics scope records the call, where the records go.

#include "docparser/diagnostics/Recorder.hpp"
#include "docparser/parsing/ScratchMemory.hpp"

#include <cstddef>
#include <optional>
#include <string>

namespace reference::docparser::detail {

struct LoadContext {
    // Made when the call starts: the scope recording it is the one active on the calling thread.
    LoadContext() noexcept : recorder(diagnostics::activeRecorder()) {}

    ScratchMemory scratch;
    diagnostics::Recorder* recorder; // null: nothing is recorded
    std::u16string packagePath;      // the zip package whose entries are being read
    FileDiagnostic* file = nullptr;  // the record of the file being read, for its reader

    // The record of the file being read, made by `describe()` only when something is recorded;
    // null otherwise. Valid until the next record is added.
    template <class Describe>
    FileDiagnostic* begin(Describe&& describe) {
        if (recorder == nullptr) {
            return nullptr;
        }
        return &recorder->files[recorder->add(describe())];
    }
};

} // namespace reference::docparser::detail
