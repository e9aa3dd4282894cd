#include "docparser/parsing/EventReader.hpp"

#include "docparser/parsing/TextConversion.hpp"

#include <boost/json/array.hpp>
#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/error.hpp>
#include <boost/json/object.hpp>
#include <boost/json/parse_options.hpp>
#include <boost/json/string.hpp>
#include <boost/system/system_error.hpp>

#include <array>
#include <atomic>
#include <cstdlib>
#include <string>

namespace reference::docparser::events {

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

void Reader::discardCurrent() noexcept { discardRequested_ = true; }

namespace {

// The handler of boost::json::basic_parser. Every callback returns true unless the reader is
// unsure, so that the parser meets exactly the syntax errors that boost::json::parse meets.
class Handler : public Reader {
public:
    // The limits of boost::json's own tree-building handler, so that the same texts fail.
    static constexpr std::size_t max_object_size = boost::json::object::max_size();
    static constexpr std::size_t max_array_size = boost::json::array::max_size();
    static constexpr std::size_t max_key_size = boost::json::string::max_size();
    static constexpr std::size_t max_string_size = boost::json::string::max_size();

    Handler(const ObjectFormat& root, void* result) noexcept : root_(root), result_(result) {}

    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;

    ~Handler() {
        for (std::uint32_t slot = 0; slot < kMaxFormats; ++slot) {
            if (const ObjectFormat* format = constructed_[slot]) {
                format->destroy(&drafts_[slot]);
            }
        }
    }

    bool sure() const noexcept { return !unsure_; }

    bool on_document_begin(boost::json::error_code&) { return true; }
    bool on_document_end(boost::json::error_code&) { return true; }

    bool on_object_begin(boost::json::error_code& ec) {
        if (skipDepth_ != 0) {
            ++skipDepth_;
            return true;
        }
        if (top_ < 0) {
            return pushObject(root_, result_, true, ec);
        }
        const Level& level = levels_[top_];
        const MemberRule* member = level.member;
        if (level.isArray) {
            if (member->shape != Shape::ObjectArray) {
                return stop(ec);
            }
            return pushObject(*member->nested, level.draft, level.build, ec);
        }
        if (member == nullptr || member->shape == Shape::Any) {
            skipDepth_ = 1;
            return true;
        }
        if (member->shape != Shape::Object) {
            return stop(ec);
        }
        return pushObject(*member->nested, level.draft, level.build, ec);
    }

    bool on_object_end(std::size_t, boost::json::error_code& ec) {
        if (skipDepth_ != 0) {
            --skipDepth_;
            return true;
        }
        Level& level = levels_[top_];
        const ObjectFormat& format = *level.format;
        const std::uint32_t required =
            format.requiredGiven != nullptr ? format.requiredGiven(level.seen) : format.requiredMembers;
        if ((required & ~level.seen) != 0) {
            return stop(ec);
        }
        // An array level keeps the draft of the object that holds it.
        void* parent = top_ == 0 ? result_ : levels_[top_ - 1].draft;
        if (level.build) {
            format.close(level.draft, parent, level.seen, *this);
        }
        --top_;
        return unsure_ ? stop(ec) : true;
    }

    bool on_array_begin(boost::json::error_code& ec) {
        if (skipDepth_ != 0) {
            ++skipDepth_;
            return true;
        }
        if (top_ < 0) {
            return stop(ec); // the root must be an object
        }
        const Level& level = levels_[top_];
        const MemberRule* member = level.member;
        if (level.isArray) {
            return stop(ec); // arrays hold strings or objects, never arrays
        }
        if (member == nullptr || member->shape == Shape::Any) {
            skipDepth_ = 1;
            return true;
        }
        if (member->shape != Shape::ObjectArray && member->shape != Shape::StringArray) {
            return stop(ec);
        }
        if (top_ + 1 >= kMaxLevels) {
            return stop(ec);
        }
        Level& array = levels_[++top_];
        array.format = level.format;
        array.member = member;
        array.draft = level.draft;
        array.seen = 0;
        array.isArray = true;
        array.build = level.build;
        return true;
    }

    bool on_array_end(std::size_t, boost::json::error_code&) {
        if (skipDepth_ != 0) {
            --skipDepth_;
            return true;
        }
        --top_;
        return true;
    }

    bool on_key_part(boost::json::string_view part, std::size_t, boost::json::error_code&) {
        if (skipDepth_ == 0) {
            pieces_.append(part.data(), part.size());
        }
        return true;
    }

    bool on_key(boost::json::string_view part, std::size_t, boost::json::error_code& ec) {
        if (skipDepth_ != 0) {
            return true;
        }
        Level& level = levels_[top_];
        const int row = level.format->keys.find(whole(part));
        pieces_.clear();
        if (row < 0) {
            level.member = nullptr;
            return true;
        }
        const std::uint32_t bit = std::uint32_t{1} << row;
        if ((level.seen & bit) != 0) {
            return stop(ec); // the tree keeps the last of repeated members
        }
        level.seen |= bit;
        level.member = &level.format->members[static_cast<std::size_t>(row)];
        if (level.member->present != nullptr && level.build) {
            level.member->present(level.draft);
        }
        return true;
    }

    bool on_string_part(boost::json::string_view part, std::size_t, boost::json::error_code&) {
        // A string at the top (no level open) is refused when it ends; nothing to keep.
        if (skipDepth_ == 0 && top_ >= 0 && levels_[top_].member != nullptr) {
            pieces_.append(part.data(), part.size());
        }
        return true;
    }

    bool on_string(boost::json::string_view part, std::size_t, boost::json::error_code& ec) {
        if (skipDepth_ != 0) {
            return true;
        }
        if (top_ < 0) {
            return stop(ec);
        }
        Level& level = levels_[top_];
        const MemberRule* member = level.member;
        if (member == nullptr || member->shape == Shape::Any) {
            pieces_.clear();
            return true;
        }
        const Shape wanted = level.isArray ? Shape::StringArray : Shape::String;
        if (member->shape != wanted) {
            return stop(ec);
        }
        if (level.build) {
            member->text(level.draft, whole(part), *this);
            if (discardRequested_) [[unlikely]] {
                discardRequested_ = false;
                level.build = false;
            }
        }
        pieces_.clear();
        return unsure_ ? stop(ec) : true;
    }

    bool on_number_part(boost::json::string_view, boost::json::error_code&) { return true; }
    bool on_int64(std::int64_t, boost::json::string_view, boost::json::error_code& ec) { return scalar(ec); }
    bool on_uint64(std::uint64_t, boost::json::string_view, boost::json::error_code& ec) { return scalar(ec); }
    bool on_double(double, boost::json::string_view, boost::json::error_code& ec) { return scalar(ec); }
    bool on_bool(bool, boost::json::error_code& ec) { return scalar(ec); }
    bool on_null(boost::json::error_code& ec) { return scalar(ec); }
    bool on_comment_part(boost::json::string_view, boost::json::error_code&) { return true; }
    bool on_comment(boost::json::string_view, boost::json::error_code&) { return true; }

private:
    // Deeper than any table nests: the page format's deepest string is 11 levels down.
    static constexpr int kMaxLevels = 16;

    // One open object, or one open array of a member of the object below it.
    struct Level {
        const ObjectFormat* format;
        const MemberRule* member; // object: the member being read (null: one nobody reads)
        void* draft;              // object: its draft; array: the draft of the object below
        std::uint32_t seen;       // object: one bit per row met
        bool isArray;
        bool build; // false inside a discarded object: check only
    };

    bool pushObject(const ObjectFormat& format, void* parent, bool build, boost::json::error_code& ec) {
        if (top_ + 1 >= kMaxLevels) {
            return stop(ec);
        }
        // Each kind of object has one draft, made when the first object of the kind opens and
        // reset for every later one.
        void* draft = &drafts_[format.slot];
        if (constructed_[format.slot] == &format) {
            format.reset(draft, parent);
        } else {
            format.open(draft, parent);
            constructed_[format.slot] = &format;
        }
        Level& level = levels_[++top_];
        level.format = &format;
        level.member = nullptr;
        level.draft = draft;
        level.seen = 0;
        level.isArray = false;
        level.build = build;
        return true;
    }

    // A number, boolean or null: fine for a member nobody reads or one that only counts.
    bool scalar(boost::json::error_code& ec) {
        if (skipDepth_ != 0) {
            return true;
        }
        if (top_ < 0) {
            return stop(ec);
        }
        const Level& level = levels_[top_];
        if (!level.isArray && (level.member == nullptr || level.member->shape == Shape::Any)) {
            return true;
        }
        return stop(ec);
    }

    bool stop(boost::json::error_code& ec) noexcept {
        unsure_ = true;
        ec = boost::json::error::exception;
        return false;
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
    std::array<Level, kMaxLevels> levels_;
    std::array<DraftStorage, kMaxFormats> drafts_;
    std::array<const ObjectFormat*, kMaxFormats> constructed_{};
    int top_ = -1;
    std::size_t skipDepth_ = 0; // inside a member that nobody reads
    std::string pieces_;
};

} // namespace

Outcome readDocument(std::string_view text, const ObjectFormat& root, void* result) {
    // Exactly what boost::json::parse does with the default options: a complete text, and
    // nothing but white space after the value.
    boost::json::basic_parser<Handler> parser(boost::json::parse_options(), root, result);
    boost::json::error_code error;
    const std::size_t consumed = parser.write_some(false, text.data(), text.size(), error);
    if (!parser.handler().sure()) {
        return Outcome::Unsure;
    }
    if (!error && consumed < text.size()) {
        error = boost::json::error::extra_data;
    }
    if (error) {
        throw boost::system::system_error(error);
    }
    return Outcome::Read;
}

} // namespace reference::docparser::events
