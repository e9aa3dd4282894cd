#pragma once

#include "docparser/diagnostics/PointerTracker.hpp"

#include <reference/docparser/ParseDiagnostics.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace reference::docparser::diagnostics {

// The state of one scope. Events arrive in file order: a file begins, its text is parsed and
// watched, reads may fail or warn, and the file ends parsed or dropped.
class Recorder {
public:
    std::vector<FileDiagnostic> files;
    // The package whose entries are being read.
    std::u16string packagePath;

    void begin(FileDiagnostic record) {
        files.push_back(std::move(record));
        current_ = files.size() - 1;
        implicit_ = false;
        textWasEmpty_ = false;
    }

    void end() noexcept { current_.reset(); }

    // The file that parse events belong to. Events outside a loading operation (the public
    // field-access tools) get a Text record of their own, which ends with its watched document.
    FileDiagnostic& currentFile() {
        if (!current_) {
            begin(FileDiagnostic{});
            implicit_ = true;
        }
        return files[*current_];
    }

    // The last record of a file that began; null when there is none.
    template <class Matches>
    FileDiagnostic* lastRecord(Matches&& matches) noexcept {
        for (auto it = files.rbegin(); it != files.rend(); ++it) {
            if (matches(*it)) {
                return &*it;
            }
        }
        return nullptr;
    }

    void endImplicitFile() noexcept {
        if (implicit_) {
            implicit_ = false;
            end();
        }
    }

    void noteEmptyText(bool empty) noexcept { textWasEmpty_ = empty; }
    bool textWasEmpty() const noexcept { return textWasEmpty_; }

    // Watching a parsed document: nodes reported meanwhile are located when the watch ends.
    void watch(const boost::json::value& root) noexcept { pointers_.watch(root); }
    bool watching() const noexcept { return pointers_.watching(); }
    void locateLater(const void* node, long warning, std::string missingKey, bool describeKind) {
        pointers_.locateLater(node, *current_, warning, std::move(missingKey), describeKind);
    }
    void unwatch() noexcept {
        pointers_.unwatch(files);
        endImplicitFile();
    }

private:
    std::optional<std::size_t> current_;
    bool implicit_ = false;
    bool textWasEmpty_ = false;
    PointerTracker pointers_;
};

} // namespace reference::docparser::diagnostics
