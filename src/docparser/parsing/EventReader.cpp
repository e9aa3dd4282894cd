#include "docparser/parsing/EventReader.hpp"

#include "docparser/diagnostics/ReadFailure.hpp"
#include "docparser/parsing/TextConversion.hpp"

#include <reference/docparser/DocParserException.hpp>
#include <reference/docparser/TextConversion.hpp>

#include <boost/json/array.hpp>
#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/error.hpp>
#include <boost/json/object.hpp>
#include <boost/json/parse_options.hpp>
#include <boost/json/string.hpp>
#include <boost/json/value.hpp>
#include <boost/system/system_error.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdlib>
#include <limits>
#include <string>

namespace reference::docparser::events {

using diagnostics::JsonKind;
using diagnostics::ReadFailure;

KeyIndex::KeyIndex(std::span<const MemberRule> members) noexcept : members_(members) {
    for (std::size_t row = 0; row < members.size() && row < kMaxKeys; ++row) {
        if (members[row].key.empty()) {
            continue;
        }
        std::size_t slot = slotOf(members[row].key);
        while (rowPlusOne_[slot] != 0) {
            slot = (slot + 1) & (kSlots - 1);
        }
        rowPlusOne_[slot] = static_cast<std::uint8_t>(row + 1);
    }
}

int KeyIndex::find(std::string_view key) const noexcept {
    if (key.empty()) {
        return -1;
    }
    for (std::size_t slot = slotOf(key); rowPlusOne_[slot] != 0; slot = (slot + 1) & (kSlots - 1)) {
        const int row = rowPlusOne_[slot] - 1;
        if (text::sameBytes(members_[static_cast<std::size_t>(row)].key, key)) {
            return row;
        }
    }
    return -1;
}

namespace detail {

std::uint32_t nextFormatSlot() {
    static std::atomic<std::uint32_t> next{0};
    const std::uint32_t slot = next++;
    if (slot >= Reader::kMaxFormats) {
        std::abort(); // a table too many: raise kMaxFormats
    }
    return slot;
}

std::uint32_t requiredBits(std::span<const MemberRule> members) noexcept {
    std::uint32_t bits = 0;
    for (std::size_t row = 0; row < members.size(); ++row) {
        if (members[row].required) {
            bits |= std::uint32_t{1} << row;
        }
    }
    return bits;
}

} // namespace detail

namespace {

// A failure found while reading; the first in the tables' order is the one reported.
struct Failure {
    ReadFailure kind;
    JsonKind found;
    std::string_view key; // MissingKey: the member
    std::string pointer;
    std::string position; // the failure's place in the tables' order (see Handler::position)
};

struct Warning {
    WarningKind kind;
    std::string pointer;
    std::string text;
    std::string position;
};

constexpr std::uint32_t kNoFailure = std::numeric_limits<std::uint32_t>::max();

// The handler of boost::json::basic_parser, and the reader the tables' functions see. Every
// callback returns true: the reader never stops the parser, so that the parser meets exactly the
// syntax errors that boost::json::parse meets.
class Handler final : public Reader {
public:
    // The limits of boost::json's own tree-building handler, so that the same texts fail.
    static constexpr std::size_t max_object_size = boost::json::object::max_size();
    static constexpr std::size_t max_array_size = boost::json::array::max_size();
    static constexpr std::size_t max_key_size = boost::json::string::max_size();
    static constexpr std::size_t max_string_size = boost::json::string::max_size();

    Handler(const ObjectFormat& root, void* result, FileDiagnostic* record) noexcept
        : root_(root), result_(result), record_(record) {}

    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;

    ~Handler() {
        for (std::uint32_t slot = 0; slot < kMaxFormats; ++slot) {
            if (const ObjectFormat* format = constructed_[slot]) {
                format->destroy(&drafts_[slot]);
            }
        }
    }

    bool on_document_begin(boost::json::error_code&) { return true; }
    bool on_document_end(boost::json::error_code&) { return true; }
    [[gnu::always_inline]] bool on_object_begin(boost::json::error_code&) {
        beginObject();
        return true;
    }
    [[gnu::always_inline]] bool on_object_end(std::size_t, boost::json::error_code&) {
        endObject();
        return true;
    }
    [[gnu::always_inline]] bool on_array_begin(boost::json::error_code&) {
        beginArray();
        return true;
    }
    [[gnu::always_inline]] bool on_array_end(std::size_t, boost::json::error_code&) {
        endArray();
        return true;
    }
    bool on_key_part(boost::json::string_view part, std::size_t, boost::json::error_code&) {
        piece(part);
        return true;
    }
    [[gnu::always_inline]] bool on_key(boost::json::string_view part, std::size_t, boost::json::error_code&) {
        key(whole(part));
        return true;
    }
    bool on_string_part(boost::json::string_view part, std::size_t, boost::json::error_code&) {
        piece(part);
        return true;
    }
    [[gnu::always_inline]] bool on_string(boost::json::string_view part, std::size_t, boost::json::error_code&) {
        string(whole(part));
        return true;
    }
    bool on_number_part(boost::json::string_view, boost::json::error_code&) { return true; }
    bool on_int64(std::int64_t, boost::json::string_view, boost::json::error_code&) {
        scalar(JsonKind::Number);
        return true;
    }
    bool on_uint64(std::uint64_t, boost::json::string_view, boost::json::error_code&) {
        scalar(JsonKind::Number);
        return true;
    }
    bool on_double(double, boost::json::string_view, boost::json::error_code&) {
        scalar(JsonKind::Number);
        return true;
    }
    bool on_bool(bool, boost::json::error_code&) {
        scalar(JsonKind::Boolean);
        return true;
    }
    bool on_null(boost::json::error_code&) {
        scalar(JsonKind::Null);
        return true;
    }
    bool on_comment_part(boost::json::string_view, boost::json::error_code&) { return true; }
    bool on_comment(boost::json::string_view, boost::json::error_code&) { return true; }

    // Hands the reader the events of a parsed value, as the parser would for its text.
    void feed(const boost::json::value& value) {
        switch (value.kind()) {
        case boost::json::kind::object:
            feed(value.get_object());
            break;
        case boost::json::kind::array:
            beginArray();
            if (skipDepth_ == 0) {
                for (const auto& element : value.get_array()) {
                    feed(element);
                }
            }
            endArray();
            break;
        case boost::json::kind::string:
            string(value.get_string());
            break;
        case boost::json::kind::bool_:
            scalar(JsonKind::Boolean);
            break;
        case boost::json::kind::null:
            scalar(JsonKind::Null);
            break;
        default:
            scalar(JsonKind::Number);
            break;
        }
    }

    void feed(const boost::json::object& object) {
        beginObject();
        if (skipDepth_ == 0) { // a value nobody reads is not walked
            for (const auto& member : object) {
                key(member.key());
                feed(member.value());
            }
        }
        endObject();
    }

    // After the last event: throws for a failure, or hands the warnings to the record.
    void finish() {
        if (rootFailure_ != kNoFailure) {
            if (record_ != nullptr) {
                Failure& failure = failures_[rootFailure_];
                diagnostics::describeReadFailure(*record_, failure.kind, failure.key, failure.found,
                                                 std::move(failure.pointer));
                // What a reading that stops at the failure would have met before it.
                std::erase_if(warnings_, [&failure](const Warning& w) { return w.position > failure.position; });
                moveWarnings();
            }
            throw DocParserException();
        }
        if (record_ != nullptr) {
            moveWarnings();
        }
    }

    // -- what the tables ask

    void discardInnerObjects() {
        levels_[top_].buildInner = false;
        if (!warnings_.empty()) {
            // Only checked from now on, and so from the start: what was found in it goes.
            const std::string prefix = positionThrough(top_ - 1);
            std::erase_if(warnings_, [&prefix](const Warning& w) { return w.position.starts_with(prefix); });
        }
    }

    // Forgets the warnings found inside element `index` of the array member `key` of the object
    // that is closing.
    void forgetElementWarnings(std::string_view key, std::size_t index) {
        if (warnings_.empty()) {
            return;
        }
        std::string prefix = positionThrough(top_ - 1);
        appendComponent(prefix, static_cast<std::uint32_t>(std::countr_zero(levels_[top_].format->bitOf(key))));
        appendComponent(prefix, static_cast<std::uint32_t>(index));
        std::erase_if(warnings_, [&prefix](const Warning& w) { return w.position.starts_with(prefix); });
    }

    void warn(WarningKind kind, std::string text, std::string pointer, std::string position) {
        if (record_ != nullptr) {
            warnings_.push_back(Warning{kind, std::move(pointer), std::move(text), std::move(position)});
        }
    }

    bool recording() const noexcept { return record_ != nullptr; }
    std::size_t elementIndex() const noexcept { return top_ > 0 ? levels_[top_ - 1].index - 1 : 0; }

    // A warning about the member being read.
    void memberWarning(WarningKind kind, std::string text) {
        // A discarded object's own members still reach its draft, but it is only checked.
        if (record_ != nullptr && levels_[top_].buildInner) {
            warn(kind, std::move(text), pointerThrough(top_), positionThrough(top_));
        }
    }

    // A warning about element `index` of the array member `key` of the object that is closing;
    // it comes after whatever was found inside that element.
    void elementWarning(WarningKind kind, std::string_view key, std::size_t index, std::string text,
                        bool reportInside) {
        if (record_ == nullptr) {
            return;
        }
        std::string pointer = pointerThrough(top_ - 1);
        diagnostics::appendPointerToken(pointer, key);
        diagnostics::appendPointerToken(pointer, std::to_string(index));
        std::string position = positionThrough(top_ - 1);
        appendComponent(position, static_cast<std::uint32_t>(std::countr_zero(levels_[top_].format->bitOf(key))));
        appendComponent(position, static_cast<std::uint32_t>(index));
        if (!reportInside) {
            std::erase_if(warnings_, [&position](const Warning& w) { return w.position.starts_with(position); });
        }
        appendComponent(position, std::numeric_limits<std::uint32_t>::max());
        warn(kind, std::move(text), std::move(pointer), std::move(position));
    }

private:
    // Deeper than any table nests: the page format's deepest string is 11 levels down.
    static constexpr int kMaxLevels = 16;

    // One open object, or one open array of a member of the object below it.
    struct Level {
        const ObjectFormat* format; // array: the table of the object holding it
        const MemberRule* member;   // object: the member being read (null: one nobody reads); array: its member
        void* draft;                // object: its draft; array: the draft of the object holding it
        std::uint32_t seen;         // object: one bit per row met
        std::uint32_t failedRows;   // object: one bit per row with a failure inside
        std::uint32_t index;        // array: elements begun so far
        bool isArray;
        bool build;                                            // false inside a discarded object: check only
        bool buildInner;                                       // object: whether the objects inside it are built
        std::array<std::uint32_t, KeyIndex::kMaxKeys> failure; // object: per failed row, its Failure
    };

    std::uint32_t rowOf(const Level& level) const noexcept {
        return static_cast<std::uint32_t>(level.member - level.format->members.data());
    }

    // -- the events (inlined into the parser's loop: they run for every token)

    [[gnu::always_inline]] void beginObject() {
        if (skipDepth_ != 0) {
            ++skipDepth_;
            return;
        }
        if (top_ < 0) {
            pushObject(root_, result_, true);
            return;
        }
        Level& level = levels_[top_];
        if (const MemberRule* member = wanted(level, JsonKind::Object)) {
            pushObject(*member->nested, level.draft, level.isArray ? level.build : level.buildInner);
        }
    }

    [[gnu::always_inline]] void endObject() {
        if (skipDepth_ != 0) {
            --skipDepth_;
            return;
        }
        Level& level = levels_[top_];
        const ObjectFormat& format = *level.format;
        const std::uint32_t required =
            format.requiredGiven != nullptr ? format.requiredGiven(level.seen) : format.requiredMembers;
        const std::uint32_t ignored = format.ignoredGiven != nullptr ? format.ignoredGiven(level.seen) : 0;
        const std::uint32_t missing = required & ~level.seen;
        if (const std::uint32_t unread = ignored & level.seen; unread != 0 && !warnings_.empty()) [[unlikely]] {
            forgetWarningsIn(unread);
        }
        const std::uint32_t failed = (level.failedRows & ~ignored) | missing;
        if (failed == 0) [[likely]] {
            // An array level keeps the draft of the object that holds it.
            void* parent = top_ == 0 ? result_ : levels_[top_ - 1].draft;
            if (level.build) {
                format.close(level.draft, parent, level.seen, *this);
            }
            --top_;
            return;
        }
        closeFailed(level, failed, missing);
    }

    // The object closing failed, in the row first in the tables' order among `failed`.
    [[gnu::noinline, gnu::cold]] void closeFailed(Level& level, std::uint32_t failed, std::uint32_t missing) {
        const ObjectFormat& format = *level.format;
        if (level.build && format.abandon != nullptr) {
            format.abandon(level.draft, *this);
        }
        const auto row = static_cast<std::uint32_t>(std::countr_zero(failed));
        std::uint32_t failure = kNoFailure;
        if ((missing >> row & 1u) != 0) {
            if (!matters()) {
                --top_;
                return;
            }
            const std::string_view key = format.members[row].key;
            std::string pointer = pointerThrough(top_ - 1);
            diagnostics::appendPointerToken(pointer, key);
            std::string position = positionThrough(top_ - 1);
            appendComponent(position, row);
            failure =
                addFailure(ReadFailure::MissingKey, JsonKind::Object, key, std::move(pointer), std::move(position));
        } else {
            failure = level.failure[row];
        }
        --top_;
        fail(failure);
    }

    [[gnu::always_inline]] void beginArray() {
        if (skipDepth_ != 0) {
            ++skipDepth_;
            return;
        }
        if (top_ < 0) {
            rootIsNot(JsonKind::Array);
            skipDepth_ = 1;
            return;
        }
        Level& level = levels_[top_];
        const MemberRule* member = wanted(level, JsonKind::Array);
        if (member == nullptr) {
            return;
        }
        if (top_ + 1 >= kMaxLevels) {
            skipDepth_ = 1; // no table nests this deep
            return;
        }
        Level& array = levels_[++top_];
        array.format = level.format;
        array.member = member;
        array.draft = level.draft;
        array.index = 0;
        array.isArray = true;
        array.build = level.buildInner;
        array.buildInner = array.build;
    }

    [[gnu::always_inline]] void endArray() {
        if (skipDepth_ != 0) {
            --skipDepth_;
            return;
        }
        --top_;
    }

    [[gnu::always_inline]] void key(std::string_view key) {
        if (skipDepth_ != 0) {
            return;
        }
        Level& level = levels_[top_];
        const int row = level.format->keys.find(key);
        pieces_.clear();
        if (row < 0) {
            level.member = nullptr;
            return;
        }
        const std::uint32_t bit = std::uint32_t{1} << row;
        level.member = &level.format->members[static_cast<std::size_t>(row)];
        if ((level.seen & bit) != 0) [[unlikely]] {
            forgetMember(level, bit);
        }
        level.seen |= bit;
        if (level.member->present != nullptr && level.build) {
            level.member->present(level.draft);
        }
    }

    // A repeated key: the last one counts, so nothing the earlier value gave does.
    [[gnu::noinline, gnu::cold]] void forgetMember(Level& level, std::uint32_t bit) {
        if (level.member->forget != nullptr) {
            level.member->forget(level.draft);
        }
        level.failedRows &= ~bit;
        if (!warnings_.empty()) {
            forgetWarningsIn(bit);
        }
    }

    [[gnu::always_inline]] void string(std::string_view bytes) {
        if (skipDepth_ != 0) {
            return;
        }
        if (top_ < 0) {
            rootIsNot(JsonKind::String);
        } else {
            Level& level = levels_[top_];
            const MemberRule* member = wanted(level, JsonKind::String);
            if (member != nullptr && level.build && (level.buildInner || member->evenDiscarded)) {
                member->text(level.draft, bytes, *this);
            }
        }
        pieces_.clear();
    }

    [[gnu::always_inline]] void scalar(JsonKind kind) {
        if (skipDepth_ != 0) {
            return;
        }
        if (top_ < 0) {
            rootIsNot(kind);
            return;
        }
        wanted(levels_[top_], kind);
    }

    // The rule that reads a value of `kind` starting now in `level`: null when nobody reads it
    // (then a container is skipped) or when it has the wrong kind (then that is a failure too).
    [[gnu::always_inline]] const MemberRule* wanted(Level& level, JsonKind kind) {
        const MemberRule* member = level.member;
        if (level.isArray) {
            ++level.index;
            const JsonKind element = member->shape == Shape::ObjectArray ? JsonKind::Object : JsonKind::String;
            if (kind == element) [[likely]] {
                return member;
            }
            wrongElement(element, kind);
        } else if (member == nullptr || member->shape == Shape::Any) {
            skipContainer(kind);
        } else {
            const JsonKind expected = member->shape == Shape::String   ? JsonKind::String
                                      : member->shape == Shape::Object ? JsonKind::Object
                                                                       : JsonKind::Array;
            if (kind == expected) [[likely]] {
                return member;
            }
            wrongMember(level, expected, kind);
        }
        return nullptr;
    }

    // The element of the innermost array has the wrong kind: a failure of the array's member in
    // the object holding it.
    [[gnu::noinline, gnu::cold]] void wrongElement(JsonKind expected, JsonKind found) {
        if (matters()) {
            failIn(levels_[top_ - 1], rowOf(levels_[top_ - 1]),
                   addFailure(expected == JsonKind::Object ? ReadFailure::NotAnObject : ReadFailure::NotAString, found,
                              {}, pointerThrough(top_), positionThrough(top_)));
        }
        skipContainer(found);
    }

    [[gnu::noinline, gnu::cold]] void wrongMember(Level& level, JsonKind expected, JsonKind found) {
        const ReadFailure failure = expected == JsonKind::String   ? ReadFailure::NotAString
                                    : expected == JsonKind::Object ? ReadFailure::NotAnObject
                                                                   : ReadFailure::NotAnArray;
        if ((level.failedRows >> rowOf(level) & 1u) == 0 && matters()) {
            failIn(level, rowOf(level), addFailure(failure, found, {}, pointerThrough(top_), positionThrough(top_)));
        }
        skipContainer(found);
    }

    void skipContainer(JsonKind kind) noexcept {
        if (kind == JsonKind::Object || kind == JsonKind::Array) {
            skipDepth_ = 1;
        }
    }

    void rootIsNot(JsonKind kind) {
        fail(addFailure(ReadFailure::NotAnObject, kind, {}, {}, {}));
        skipContainer(kind);
    }

    [[gnu::always_inline]] void pushObject(const ObjectFormat& format, void* parent, bool build) {
        if (top_ + 1 >= kMaxLevels) {
            skipDepth_ = 1; // no table nests this deep
            return;
        }
        // Each kind of object has one draft, made when the first object of the kind opens and
        // reset for every later one.
        void* draft = &drafts_[format.slot];
        if (constructed_[format.slot] == &format) {
            format.reset(draft, parent);
        } else {
            if (constructed_[format.slot] != nullptr) {
                constructed_[format.slot]->destroy(draft);
                constructed_[format.slot] = nullptr;
            }
            format.open(draft, parent);
            constructed_[format.slot] = &format;
        }
        Level& level = levels_[++top_];
        level.format = &format;
        level.member = nullptr;
        level.draft = draft;
        level.seen = 0;
        level.failedRows = 0;
        level.isArray = false;
        level.build = build;
        level.buildInner = build;
    }

    // -- failures and where they are

    // The JSON Pointer of the value that level `last`'s current member (or element) holds.
    std::string pointerThrough(int last) const {
        std::string pointer;
        for (int i = 0; i <= last; ++i) {
            const Level& level = levels_[i];
            if (level.isArray) {
                diagnostics::appendPointerToken(pointer, std::to_string(level.index - 1));
            } else if (level.member != nullptr) {
                diagnostics::appendPointerToken(pointer, level.member->key);
            }
        }
        return pointer;
    }

    // The same place in the tables' order: per level the member's row or the element's index,
    // as big-endian numbers, so that comparing two positions as strings orders them.
    static void appendComponent(std::string& position, std::uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            position += static_cast<char>((value >> shift) & 0xFF);
        }
    }

    std::string positionThrough(int last) const {
        std::string position;
        for (int i = 0; i <= last; ++i) {
            const Level& level = levels_[i];
            if (level.isArray) {
                appendComponent(position, level.index - 1);
            } else if (level.member != nullptr) {
                appendComponent(position, rowOf(level));
            }
        }
        return position;
    }

    // Whether a failure found in the innermost level can still be the one reported: not when an
    // object around it already failed in the member that holds it (an earlier element came
    // first). Keeps a file of many failing elements from collecting a failure for each.
    bool matters() const noexcept {
        for (int i = top_ - 1; i >= 0; --i) {
            const Level& level = levels_[i];
            if (!level.isArray && (level.failedRows >> rowOf(level) & 1u) != 0) {
                return false;
            }
        }
        return true;
    }

    // Warnings found inside the given rows of the innermost object no longer count.
    void forgetWarningsIn(std::uint32_t rows) {
        const std::string objectPosition = positionThrough(top_ - 1);
        for (; rows != 0; rows &= rows - 1) {
            std::string prefix = objectPosition;
            appendComponent(prefix, static_cast<std::uint32_t>(std::countr_zero(rows)));
            std::erase_if(warnings_, [&prefix](const Warning& w) { return w.position.starts_with(prefix); });
        }
    }

    std::uint32_t addFailure(ReadFailure kind, JsonKind found, std::string_view key, std::string pointer,
                             std::string position) {
        failures_.push_back(Failure{kind, found, key, std::move(pointer), std::move(position)});
        return static_cast<std::uint32_t>(failures_.size() - 1);
    }

    // A failure in row `row` of the object `level`; an earlier one there, being earlier in the
    // tables' order, stays.
    static void failIn(Level& level, std::uint32_t row, std::uint32_t failure) noexcept {
        const std::uint32_t bit = std::uint32_t{1} << row;
        if ((level.failedRows & bit) == 0) {
            level.failedRows |= bit;
            level.failure[row] = failure;
        }
    }

    // The object just closed (or the root value) failed: so does the member of the object
    // around it that held it.
    void fail(std::uint32_t failure) {
        if (top_ < 0) {
            rootFailure_ = failure;
            return;
        }
        const int owner = levels_[top_].isArray ? top_ - 1 : top_;
        failIn(levels_[owner], rowOf(levels_[owner]), failure);
    }

    void moveWarnings() {
        std::stable_sort(warnings_.begin(), warnings_.end(),
                         [](const Warning& a, const Warning& b) { return a.position < b.position; });
        for (auto& warning : warnings_) {
            record_->warnings.push_back(
                ParseWarning{warning.kind, std::move(warning.pointer), std::move(warning.text)});
        }
        warnings_.clear();
    }

    // A piece of a string or key that the parser delivers before its last.
    void piece(boost::json::string_view part) {
        if (skipDepth_ == 0) {
            pieces_.append(part.data(), part.size());
        }
    }

    // A string or key the parser delivered in pieces (escapes, or more than its buffer) is
    // assembled first; most arrive whole.
    std::string_view whole(boost::json::string_view last) {
        if (pieces_.empty()) {
            return {last.data(), last.size()};
        }
        pieces_.append(last.data(), last.size());
        return pieces_;
    }

    struct alignas(std::max_align_t) DraftStorage {
        std::byte bytes[kDraftBytes];
    };

    const ObjectFormat& root_;
    void* result_;
    FileDiagnostic* record_;
    std::array<Level, kMaxLevels> levels_;
    std::array<DraftStorage, kMaxFormats> drafts_;
    std::array<const ObjectFormat*, kMaxFormats> constructed_{};
    int top_ = -1;
    std::size_t skipDepth_ = 0; // inside a value that nobody reads
    std::string pieces_;
    std::vector<Failure> failures_;
    std::uint32_t rootFailure_ = kNoFailure;
    std::vector<Warning> warnings_;
};

Handler& handlerOf(Reader& reader) noexcept { return static_cast<Handler&>(reader); }

} // namespace

void Reader::discardInner() { handlerOf(*this).discardInnerObjects(); }

void Reader::forgetElementWarnings(std::string_view key, std::size_t index) {
    handlerOf(*this).forgetElementWarnings(key, index);
}

void Reader::unknownText(std::string_view text) {
    handlerOf(*this).memberWarning(WarningKind::UnknownEnumText, std::string(text));
}

void Reader::documentKeyTaken(std::string_view key, std::size_t index, const std::u16string& documentKey,
                              bool reportInside) {
    handlerOf(*this).elementWarning(WarningKind::DocumentKeyTaken, key, index, utf16ToUtf8(documentKey), reportInside);
}

bool Reader::recording() const noexcept { return handlerOf(const_cast<Reader&>(*this)).recording(); }

std::size_t Reader::elementIndex() const noexcept { return handlerOf(const_cast<Reader&>(*this)).elementIndex(); }

void readText(std::string_view text, const ObjectFormat& root, void* result, FileDiagnostic* record) {
    // Exactly what boost::json::parse does with the default options: a complete text, and
    // nothing but white space after the value.
    boost::json::basic_parser<Handler> parser(boost::json::parse_options(), root, result, record);
    boost::json::error_code error;
    const std::size_t consumed = parser.write_some(false, text.data(), text.size(), error);
    if (!error && consumed < text.size()) {
        error = boost::json::error::extra_data;
    }
    if (error) {
        if (record != nullptr) {
            diagnostics::describeSyntaxError(*record, text, consumed, error);
        }
        throw boost::system::system_error(error);
    }
    parser.handler().finish();
}

void readValue(const boost::json::value& value, const ObjectFormat& root, void* result, FileDiagnostic* record) {
    Handler handler(root, result, record);
    handler.feed(value);
    handler.finish();
}

void readValue(const boost::json::object& object, const ObjectFormat& root, void* result, FileDiagnostic* record) {
    Handler handler(root, result, record);
    handler.feed(object);
    handler.finish();
}

} // namespace reference::docparser::events
