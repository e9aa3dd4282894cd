#include "docparser/diagnostics/PointerTracker.hpp"

#include <boost/json/value.hpp>

#include <string_view>

namespace reference::docparser::diagnostics {
namespace {

std::string_view kindName(const boost::json::value& value) noexcept {
    switch (value.kind()) {
    case boost::json::kind::null:
        return "null";
    case boost::json::kind::bool_:
        return "a boolean";
    case boost::json::kind::int64:
    case boost::json::kind::uint64:
    case boost::json::kind::double_:
        return "a number";
    case boost::json::kind::string:
        return "a string";
    case boost::json::kind::array:
        return "an array";
    case boost::json::kind::object:
        return "an object";
    }
    return "a value";
}

// One reference token of a JSON Pointer: '~' and '/' are escaped.
void appendToken(std::string& pointer, std::string_view token) {
    pointer += '/';
    for (const char c : token) {
        if (c == '~') {
            pointer += "~0";
        } else if (c == '/') {
            pointer += "~1";
        } else {
            pointer += c;
        }
    }
}

template <class Pending>
void resolve(const Pending& pending, const std::string& pointer, const boost::json::value& node,
             std::vector<FileDiagnostic>& files) {
    FileDiagnostic& record = files[pending.file];
    std::string path = pointer;
    if (!pending.missingKey.empty()) {
        appendToken(path, pending.missingKey);
    }
    if (pending.warning >= 0) {
        record.warnings[static_cast<std::size_t>(pending.warning)].jsonPath = std::move(path);
        return;
    }
    record.jsonPath = std::move(path);
    if (pending.describeKind) {
        record.message += ", found ";
        record.message += kindName(node);
        if (record.jsonPath.empty()) {
            // The empty pointer is the whole document, which a reader would not recognise.
            record.message += " at the top level";
        }
    }
}

} // namespace

void PointerTracker::walk(const boost::json::value& value, std::string& pointer, Wanted& wanted, std::size_t& remaining,
                          std::vector<FileDiagnostic>& files) {
    if (remaining == 0) {
        return;
    }
    // A missing key is reported with the object, which lies at its value's address.
    for (const void* address : {static_cast<const void*>(&value), static_cast<const void*>(value.if_object()),
                                static_cast<const void*>(value.if_array())}) {
        if (address == nullptr) {
            continue;
        }
        const auto found = wanted.find(address);
        if (found != wanted.end()) {
            for (const Pending* pending : found->second) {
                resolve(*pending, pointer, value, files);
            }
            remaining -= found->second.size();
            wanted.erase(found);
        }
    }
    const std::size_t length = pointer.size();
    if (const auto* object = value.if_object()) {
        for (const auto& member : *object) {
            appendToken(pointer, member.key());
            walk(member.value(), pointer, wanted, remaining, files);
            pointer.resize(length);
        }
    } else if (const auto* array = value.if_array()) {
        std::size_t index = 0;
        for (const auto& element : *array) {
            appendToken(pointer, std::to_string(index++));
            walk(element, pointer, wanted, remaining, files);
            pointer.resize(length);
        }
    }
}

void PointerTracker::unwatch(std::vector<FileDiagnostic>& files) noexcept {
    if (root_ == nullptr) {
        return;
    }
    try {
        if (!pending_.empty()) {
            Wanted wanted;
            for (const auto& pending : pending_) {
                wanted[pending.node].push_back(&pending);
            }
            std::size_t remaining = pending_.size();
            std::string pointer;
            walk(*root_, pointer, wanted, remaining, files);
        }
    } catch (...) {
    }
    root_ = nullptr;
    pending_.clear();
}

} // namespace reference::docparser::diagnostics
