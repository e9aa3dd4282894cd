#pragma once

// Records built straight from the JSON parser's events, without a tree in between.
//
// A format describes each kind of object it holds once, as a table of members: the key, the
// JSON shape the value must have, whether the member is required, and what becomes of the value
// (a text converted into a field of the object's draft, an enumeration, a list of texts, nested
// objects of another table). One reader, driven by boost::json::basic_parser, serves every table:
// it matches keys as they stream past, converts each string once, straight into the draft, and
// when an object closes hands its draft to the table's `close`, which builds the record and
// moves it into the draft of the object around it.
//
// The reader covers the shape that data has in practice. Whenever the outcome of the
// tree-walking reading (LookupParser.hpp, RefItemParser.hpp), which defines what a file yields,
// could differ from a record built on the fly, it stops and reports Outcome::Unsure, and the
// caller reads that file through the tree instead: a member missing or of the wrong kind, a
// member repeated in one object (the tree keeps the last), and the few members that depend on
// others read later (see the page format). So every file is accepted or refused, and yields
// records, exactly as the tree reading does; a syntax error anywhere is a syntax error, whatever
// came before it.

#include <cstddef>
#include <cstdint>
#include <new>
#include <span>
#include <string_view>
#include <vector>

namespace reference::docparser::events {

class Reader;
struct ObjectFormat;

// The JSON shape a member's value must have.
enum class Shape : std::uint8_t {
    String,      // a string
    StringArray, // an array of strings
    Object,      // an object of `nested`'s table
    ObjectArray, // an array of objects of `nested`'s table
    Any,         // anything: only the member's presence counts
};

// One member of an object's table. Functions take the object's draft as void*; the helpers
// below make them from typed pointers to the draft's fields.
struct MemberRule {
    std::string_view key;
    Shape shape = Shape::Any;
    bool required = false;
    // String: stores the member's text; StringArray: appends one element's text.
    void (*text)(void* draft, std::string_view bytes, Reader& reader) = nullptr;
    // Called when the key is met, before its value (optional).
    void (*present)(void* draft) = nullptr;
    // Object, ObjectArray: the table of the nested objects.
    const ObjectFormat* nested = nullptr;
};

// Finds a key's row in a table of at most 32 members: a small open-addressing hash table over
// the key's length and first and last bytes, so that a key costs one comparison.
class KeyIndex {
public:
    static constexpr std::size_t kMaxKeys = 32;

    explicit KeyIndex(std::span<const MemberRule> members) noexcept;
    // The row of `key`; -1 when the table has no such member.
    int find(std::string_view key) const noexcept;

private:
    static constexpr std::size_t kSlots = 64; // a power of two, at least twice kMaxKeys
    static std::size_t slotOf(std::string_view key) noexcept {
        const auto first = static_cast<unsigned char>(key.front());
        const auto last = static_cast<unsigned char>(key.back());
        return (key.size() * 7 + first * 3 + last) & (kSlots - 1);
    }

    std::span<const MemberRule> members_;
    std::uint8_t rowPlusOne_[kSlots] = {}; // 0: empty slot
};

// The table of one kind of object, with what the reader does with its draft.
struct ObjectFormat {
    std::span<const MemberRule> members;
    KeyIndex keys;
    std::uint32_t requiredMembers = 0; // one bit per row
    // Constructs the object's draft in `storage` (at most Reader::kDraftBytes); `parent` is the
    // draft of the object around it, or the reader's result for the root.
    void (*open)(void* storage, void* parent) = nullptr;
    // Makes a draft that built a record ready for the next object of the kind; the memory of
    // its lists is kept, so lists are collected without growing anew for every object.
    void (*reset)(void* draft, void* parent) = nullptr;
    // Every member has been read and every required one is present: builds the record and
    // hands it to `parent`. `seen` has the bit of each row met. May call Reader::unsure.
    void (*close)(void* draft, void* parent, std::uint32_t seen, Reader& reader) = nullptr;
    void (*destroy)(void* draft) noexcept = nullptr;
    // For objects whose required members depend on which others are present: the bits required
    // given `seen`. Null: requiredMembers. Checked also where records are discarded.
    std::uint32_t (*requiredGiven)(std::uint32_t seen) = nullptr;
    // Which of the reader's draft slots the kind uses. A format never holds objects of its own
    // kind, so at most one object of each kind is open at a time and one draft per kind serves.
    std::uint32_t slot = 0;

    // The bit of the row with `key` (0 when there is none); for close functions.
    std::uint32_t bitOf(std::string_view key) const noexcept {
        const int row = keys.find(key);
        return row < 0 ? 0 : std::uint32_t{1} << row;
    }
};

enum class Outcome {
    Read,   // the records are in the result
    Unsure, // the file must be read through the tree; the result is to be discarded
};

// Reads `text` as one document of the `root` table into `result` (the root's `parent`). Throws
// boost::system::system_error, as boost::json::parse does, for text that is not strict JSON
// under the default parse options; what the handlers throw (memory) passes through.
Outcome readDocument(std::string_view text, const ObjectFormat& root, void* result);

// What the tables' functions may ask of the reader while it runs.
class Reader {
public:
    // Room for the draft of one open object.
    static constexpr std::size_t kDraftBytes = 640;
    // Kinds of object (tables) the library may define.
    static constexpr std::uint32_t kMaxFormats = 32;

    // The file's records could differ from the tree reading's: stop, the caller reads the tree.
    void unsure() noexcept { unsure_ = true; }
    // Records inside the innermost open object are not wanted (a page that another file
    // replaces): its members and those of the objects in it are still checked as they stream
    // past, but nothing is converted and its close is not called.
    void discardCurrent() noexcept;

protected:
    bool unsure_ = false;
    bool discardRequested_ = false;
};

// ---- building tables -----------------------------------------------------------------------

namespace detail {

template <class>
struct FieldOf;
template <class Draft, class Type>
struct FieldOf<Type Draft::*> {
    using DraftType = Draft;
    using ValueType = Type;
};

template <class>
struct StoreOf;
template <class Draft>
struct StoreOf<void (*)(Draft&, std::string_view, Reader&)> {
    using DraftType = Draft;
};

template <class>
struct CloseOf;
template <class Draft, class Parent>
struct CloseOf<void (*)(Draft&, Parent&, std::uint32_t, Reader&)> {
    using DraftType = Draft;
    using ParentType = Parent;
};

std::uint32_t requiredBits(std::span<const MemberRule> members) noexcept;

} // namespace detail

// A string member whose text `convert(bytes)` turns into the field's value.
template <auto Field, auto Convert>
MemberRule text(std::string_view key, bool required) {
    using Draft = typename detail::FieldOf<decltype(Field)>::DraftType;
    return {key, Shape::String, required,
            [](void* draft, std::string_view bytes, Reader&) { static_cast<Draft*>(draft)->*Field = Convert(bytes); }};
}

// A string member handed to `Store(draft, bytes, reader)`, for texts whose reading depends on
// what else the draft holds.
template <auto Store>
MemberRule storedText(std::string_view key, bool required) {
    using Draft = typename detail::StoreOf<decltype(Store)>::DraftType;
    return {key, Shape::String, required, [](void* draft, std::string_view bytes, Reader& reader) {
                Store(*static_cast<Draft*>(draft), bytes, reader);
            }};
}

// An enumeration member: its raw bytes matched against E's spellings; an unknown text keeps the
// field's value (the draft starts it at E::getDefaultValue()).
template <class E, auto Field>
MemberRule enumeration(std::string_view key) {
    using Draft = typename detail::FieldOf<decltype(Field)>::DraftType;
    return {key, Shape::String, false, [](void* draft, std::string_view bytes, Reader&) {
                E::tryStringToEnum(bytes, static_cast<Draft*>(draft)->*Field);
            }};
}

// An array of strings, each converted by `Convert` and appended to the field (a vector).
template <auto Field, auto Convert>
MemberRule textList(std::string_view key, bool required) {
    using Draft = typename detail::FieldOf<decltype(Field)>::DraftType;
    return {key, Shape::StringArray, required, [](void* draft, std::string_view bytes, Reader&) {
                (static_cast<Draft*>(draft)->*Field).push_back(Convert(bytes));
            }};
}

// A member that counts by its presence alone: the bool field becomes true, whatever the value.
template <auto Field>
MemberRule presence(std::string_view key) {
    using Draft = typename detail::FieldOf<decltype(Field)>::DraftType;
    return {key, Shape::Any, false, nullptr, [](void* draft) { static_cast<Draft*>(draft)->*Field = true; }};
}

// Nested objects: one, or an array of them, each read by `format`'s table.
inline MemberRule object(std::string_view key, bool required, const ObjectFormat& format,
                         void (*present)(void*) = nullptr) {
    return {key, Shape::Object, required, nullptr, present, &format};
}
inline MemberRule objects(std::string_view key, bool required, const ObjectFormat& format,
                          void (*present)(void*) = nullptr) {
    return {key, Shape::ObjectArray, required, nullptr, present, &format};
}

namespace detail {
// A slot for each table made; the reader has room for Reader::kMaxFormats.
std::uint32_t nextFormatSlot();
} // namespace detail

// The table of an object whose record `Close` builds:
//   void close(Draft&, Parent&, std::uint32_t seen, Reader&)
// Draft has a constructor from a pointer to its parent's draft (or to the result, for the root).
// A draft with lists also has `void reset(Parent*)`, which readies it for the next object while
// keeping its lists' memory (others are simply made anew); its close moves the lists' elements
// out (takeList) rather than the lists themselves.
template <auto Close>
ObjectFormat objectFormat(std::span<const MemberRule> members) {
    using Traits = detail::CloseOf<decltype(Close)>;
    using Draft = typename Traits::DraftType;
    using Parent = typename Traits::ParentType;
    static_assert(sizeof(Draft) <= Reader::kDraftBytes && alignof(Draft) <= alignof(std::max_align_t));
    return {members,
            KeyIndex(members),
            detail::requiredBits(members),
            [](void* storage, void* parent) { new (storage) Draft(static_cast<Parent*>(parent)); },
            [](void* draft, void* parent) {
                if constexpr (requires(Draft & d, Parent * p) { d.reset(p); }) {
                    static_cast<Draft*>(draft)->reset(static_cast<Parent*>(parent));
                } else {
                    *static_cast<Draft*>(draft) = Draft(static_cast<Parent*>(parent));
                }
            },
            [](void* draft, void* parent, std::uint32_t seen, Reader& reader) {
                Close(*static_cast<Draft*>(draft), *static_cast<Parent*>(parent), seen, reader);
            },
            [](void* draft) noexcept { static_cast<Draft*>(draft)->~Draft(); },
            nullptr,
            detail::nextFormatSlot()};
}

// The elements of a draft's list as a list of their own, allocated once at its final size; the
// draft's list keeps its memory for the next object.
template <class T>
std::vector<T> takeList(std::vector<T>& collected) {
    std::vector<T> list;
    list.reserve(collected.size());
    for (auto& element : collected) {
        list.push_back(std::move(element));
    }
    collected.clear();
    return list;
}

} // namespace reference::docparser::events
