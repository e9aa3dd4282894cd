#pragma once

#include <reference/docparser/ParseDiagnostics.hpp>

#include <boost/json/fwd.hpp>

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace reference::docparser::diagnostics {

// Finds the JSON Pointers (RFC 6901) of the nodes reported while a parsed document is watched.
// The parsers pass nothing but a node's address; the pointers of all the nodes reported in one
// document are found together, when its watch ends, by one walk of the tree.
class PointerTracker {
public:
    void watch(const boost::json::value& root) noexcept {
        root_ = &root;
        pending_.clear();
    }
    bool watching() const noexcept { return root_ != nullptr; }

    // `node` is located when the watch ends; its pointer then goes to the failure of record
    // `file` (warning < 0) or to one of its warnings, with `missingKey` appended for an absent
    // member. `describeKind` adds the JSON kind found at the node to the failure's message.
    void locateLater(const void* node, std::size_t file, long warning, std::string missingKey, bool describeKind) {
        pending_.push_back(Pending{node, file, warning, std::move(missingKey), describeKind});
    }

    // Ends the watch and writes the pointers into `files`. Pointers that cannot be found (the
    // walk ran out of memory) stay empty; the failures themselves are recorded already.
    void unwatch(std::vector<FileDiagnostic>& files) noexcept;

private:
    struct Pending {
        const void* node;
        std::size_t file;
        long warning;
        std::string missingKey;
        bool describeKind;
    };
    using Wanted = std::unordered_map<const void*, std::vector<const Pending*>>;

    void walk(const boost::json::value& value, std::string& pointer, Wanted& wanted, std::size_t& remaining,
              std::vector<FileDiagnostic>& files);

    const boost::json::value* root_ = nullptr;
    std::vector<Pending> pending_;
};

} // namespace reference::docparser::diagnostics
