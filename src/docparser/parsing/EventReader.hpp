#pragma once

// The one reader of the library's JSON formats: records built straight from the JSON parser's
// events, without a tree in between.
//
// A format describes each kind of object it holds once, as a table of members: the key, the
// JSON shape the value must have, whether the member is required, and what becomes of the value
// (a text converted into a field of the object's draft, an enumeration, a list of texts, nested
// objects of another table). The reader, driven by boost::json::basic_parser, serves every table:
// it matches keys as they stream past, converts each string once, straight into the draft, and
// when an object closes hands its draft to the table's `close`, which builds the record and
// moves it into the draft of the object around it. An already parsed boost::json::value is read
// by walking it and handing the reader the same events, so a value and its text give the same
// records.
//
// What the reader decides, as a JSON object does:
// - A repeated key: the last one counts. The table's `forget` undoes what the earlier value
//   gave, and failures and warnings found inside it no longer count.
// - A failure (a required member missing, a member of the wrong kind) does not stop the parse:
//   a syntax error later in the text still wins, as it does for a parser that builds a tree
//   first. Of several failures, the one reported is the first in the tables' order: members in
//   the order of their rows, array elements in order. Rows are listed in that order.
// - The JSON Pointer of a failure or warning is taken from the reader's own levels.

#include <reference/docparser/ParseDiagnostics.hpp>

#include <boost/json/fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
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
    // Called when the key comes again in one object: the draft forgets the earlier value.
    void (*forget)(void* draft) = nullptr;
    // Object, ObjectArray: the table of the nested objects.
    const ObjectFormat* nested = nullptr;
    // String: read also in an object whose contents are discarded (Reader::discardInner).
    bool evenDiscarded = false;
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
    // Every member has been read, every required one is present and nothing inside failed:
    // builds the record and hands it to `parent`. `seen` has the bit of each row met.
    void (*close)(void* draft, void* parent, std::uint32_t seen, Reader& reader) = nullptr;
    void (*destroy)(void* draft) noexcept = nullptr;
    // Optional: the object failed, so close is not called. The draft undoes what it left outside
    // itself (a repeated key can still make the failure not count), and what it read may still be
    // reported (Reader::recording()).
    void (*abandon)(void* draft, Reader& reader) = nullptr;
    // For objects whose members depend on which others are present: the rows required given
    // `seen` (null: requiredMembers), and the rows whose value is not read at all given `seen`
    // (null: none), so that failures inside those do not count.
    std::uint32_t (*requiredGiven)(std::uint32_t seen) = nullptr;
    std::uint32_t (*ignoredGiven)(std::uint32_t seen) = nullptr;
    // Which of the reader's draft slots the kind uses. A format never holds objects of its own
    // kind, so at most one object of each kind is open at a time and one draft per kind serves.
    std::uint32_t slot = 0;

    // The bit of the row with `key` (0 when there is none).
    std::uint32_t bitOf(std::string_view key) const noexcept {
        const int row = keys.find(key);
        return row < 0 ? 0 : std::uint32_t{1} << row;
    }
};

// Reads `text` as one document of the `root` table into `result` (the root's `parent`).
// Throws boost::system::system_error, as boost::json::parse does, for text that is not strict
// JSON under the default parse options, and DocParserException for a document that breaks the
// tables; what the tables' functions throw (memory) passes through. `record`, when not null,
// receives the reason of a failure (with its position or JSON Pointer) and the warnings.
void readText(std::string_view text, const ObjectFormat& root, void* result, FileDiagnostic* record);
// The same for a parsed value; it cannot hold a syntax error.
void readValue(const boost::json::value& value, const ObjectFormat& root, void* result, FileDiagnostic* record);
void readValue(const boost::json::object& object, const ObjectFormat& root, void* result, FileDiagnostic* record);

// What the tables' functions may ask of the reader while it runs.
class Reader {
public:
    // Room for the draft of one open object.
    static constexpr std::size_t kDraftBytes = 640;
    // Kinds of object (tables) the library may define.
    static constexpr std::uint32_t kMaxFormats = 32;

    // The contents of the innermost open object are not wanted (a page that another file
    // replaces): they are still checked as they stream past, but nothing of them is converted
    // and the closes of the objects inside are not called. Only its members marked
    // evenDiscarded still reach its draft; what was found in it is not reported.
    void discardInner();
    // Of the object that is closing, element `index` of the array member `key` is dropped after
    // all: what was found in it is not reported.
    void forgetElementWarnings(std::string_view key, std::size_t index);
    // The text of the string member being read names no value of its enumeration.
    void unknownText(std::string_view text);
    // Of the object that is closing, element `index` of the array member `key` is a document
    // whose key `documentKey` an earlier document holds, and is dropped. `reportInside`: whether
    // the warnings found inside that document still count.
    void documentKeyTaken(std::string_view key, std::size_t index, const std::u16string& documentKey,
                          bool reportInside);
    // Whether anybody records warnings: work done only for them can be skipped.
    bool recording() const noexcept;
    // The index of the array element that the innermost open object is.
    std::size_t elementIndex() const noexcept;

protected:
    Reader() = default;
    ~Reader() = default;
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
struct DraftFunctionOf;
template <class Draft>
struct DraftFunctionOf<void (*)(Draft&)> {
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
// A slot for each table made; the reader has room for Reader::kMaxFormats.
std::uint32_t nextFormatSlot();

// Sets the field back to a fresh value of its type.
template <auto Field>
void clearField(void* draft) {
    using Draft = typename FieldOf<decltype(Field)>::DraftType;
    using Value = typename FieldOf<decltype(Field)>::ValueType;
    static_cast<Draft*>(draft)->*Field = Value();
}

template <auto Function>
void onDraft(void* draft) {
    Function(*static_cast<typename DraftFunctionOf<decltype(Function)>::DraftType*>(draft));
}

// What forgets a member: a function of the draft, or a field of it that is cleared.
template <auto Forget>
constexpr void (*forgetter())(void*) {
    if constexpr (std::is_member_object_pointer_v<decltype(Forget)>) {
        return clearField<Forget>;
    } else {
        return onDraft<Forget>;
    }
}

} // namespace detail

// A string member whose text `convert(bytes)` turns into the field's value.
template <auto Field, auto Convert>
MemberRule text(std::string_view key, bool required) {
    using Draft = typename detail::FieldOf<decltype(Field)>::DraftType;
    return {key, Shape::String, required,
            [](void* draft, std::string_view bytes, Reader&) { static_cast<Draft*>(draft)->*Field = Convert(bytes); }};
}

// A string member handed to `Store(draft, bytes, reader)`, for texts whose reading depends on
// what else the draft holds; `Forget(draft)`, if given, runs when the key comes again.
template <auto Store, auto Forget = nullptr>
MemberRule storedText(std::string_view key, bool required) {
    using Draft = typename detail::StoreOf<decltype(Store)>::DraftType;
    MemberRule rule{key, Shape::String, required, [](void* draft, std::string_view bytes, Reader& reader) {
                        Store(*static_cast<Draft*>(draft), bytes, reader);
                    }};
    if constexpr (Forget != nullptr) {
        rule.forget = detail::onDraft<Forget>;
    }
    return rule;
}

// An enumeration member: its raw bytes matched against E's spellings; an unknown text keeps the
// enumeration's default and is a warning.
template <class E, auto Field>
MemberRule enumeration(std::string_view key) {
    using Draft = typename detail::FieldOf<decltype(Field)>::DraftType;
    return {key,
            Shape::String,
            false,
            [](void* draft, std::string_view bytes, Reader& reader) {
                if (!E::tryStringToEnum(bytes, static_cast<Draft*>(draft)->*Field)) [[unlikely]] {
                    reader.unknownText(bytes);
                }
            },
            nullptr,
            [](void* draft) { static_cast<Draft*>(draft)->*Field = E::getDefaultValue(); }};
}

// An array of strings, each converted by `Convert` and appended to the field (a vector).
template <auto Field, auto Convert>
MemberRule textList(std::string_view key, bool required) {
    using Draft = typename detail::FieldOf<decltype(Field)>::DraftType;
    return {key,
            Shape::StringArray,
            required,
            [](void* draft, std::string_view bytes, Reader&) {
                (static_cast<Draft*>(draft)->*Field).push_back(Convert(bytes));
            },
            nullptr,
            [](void* draft) { (static_cast<Draft*>(draft)->*Field).clear(); }};
}

// A member that counts by its presence alone: the bool field becomes true, whatever the value.
template <auto Field>
MemberRule presence(std::string_view key) {
    using Draft = typename detail::FieldOf<decltype(Field)>::DraftType;
    return {key, Shape::Any, false, nullptr, [](void* draft) { static_cast<Draft*>(draft)->*Field = true; }};
}

// Nested objects: one, or an array of them, each read by `format`'s table. `Forget` (a function
// of the draft, or a field that is cleared) undoes what the objects gave the draft, for a key
// that comes again; `Present` runs when the key is met.
template <auto Forget, auto Present = nullptr>
MemberRule object(std::string_view key, bool required, const ObjectFormat& format) {
    MemberRule rule{key, Shape::Object, required, nullptr, nullptr, detail::forgetter<Forget>(), &format};
    if constexpr (Present != nullptr) {
        rule.present = detail::onDraft<Present>;
    }
    return rule;
}
template <auto Forget, auto Present = nullptr>
MemberRule objects(std::string_view key, bool required, const ObjectFormat& format) {
    MemberRule rule = object<Forget, Present>(key, required, format);
    rule.shape = Shape::ObjectArray;
    return rule;
}

// The table of an object whose record `Close` builds:
//   void close(Draft&, Parent&, std::uint32_t seen, Reader&)
// Draft has a constructor from a pointer to its parent's draft (or to the result, for the root).
// A draft with lists also has `void reset(Parent*)`, which readies it for the next object while
// keeping its lists' memory (others are simply made anew); its close moves the lists' elements
// out (takeList) rather than the lists themselves.
template <auto Close, auto Abandon = nullptr>
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
            [](void* draft, Reader& reader) {
                if constexpr (Abandon != nullptr) {
                    Abandon(*static_cast<Draft*>(draft), reader);
                }
            },
            nullptr,
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
