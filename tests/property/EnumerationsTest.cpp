#include <reference/property/DeprecationStatus.hpp>
#include <reference/property/FunctionType.hpp>
#include <reference/property/RefEntityType.hpp>
#include <reference/property/SyntaxType.hpp>

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

namespace {

using namespace reference::property;

// Every spelled value must survive text -> value -> text, spellings must be unique, and the
// numbers stored in records must stay as documented.
template <class E>
void expectRoundTrips(int firstSpelled, int last) {
    std::set<std::string> seen;
    for (int n = firstSpelled; n <= last; ++n) {
        const auto value = static_cast<typename E::Value>(n);
        const std::string_view text = E::toString(value);
        ASSERT_FALSE(text.empty()) << "value " << n << " has no spelling";
        EXPECT_TRUE(seen.insert(std::string(text)).second) << "duplicate spelling " << text;
        EXPECT_EQ(E::stringToEnum(text), value) << text;
        auto found = E::getDefaultValue();
        EXPECT_TRUE(E::tryStringToEnum(text, found)) << text;
        EXPECT_EQ(found, value) << text;
    }
    EXPECT_TRUE(E::toString(static_cast<typename E::Value>(last + 1)).empty());
}

TEST(Enumerations, EveryValueRoundTripsThroughItsText) {
    expectRoundTrips<RefEntityType>(1, RefEntityType::DataType);
    expectRoundTrips<FunctionType>(1, FunctionType::Conversion);
    expectRoundTrips<SyntaxType>(1, SyntaxType::Output);
    expectRoundTrips<DeprecationStatus>(0, DeprecationStatus::Removed);
}

// Unknown text: stringToEnum throws; tryStringToEnum says no and leaves the value alone.
template <class E>
void expectUnknown(std::string_view text) {
    EXPECT_THROW(E::stringToEnum(text), std::invalid_argument);
    auto value = static_cast<typename E::Value>(3);
    EXPECT_FALSE(E::tryStringToEnum(text, value));
    EXPECT_EQ(value, static_cast<typename E::Value>(3));
}

TEST(Enumerations, UnknownTextThrows) {
    for (const char* text :
         {"", "Function", "FUNCTION", " function", "function ", "func", "functions", "unknown", "\xE6\x97\xA5"}) {
        SCOPED_TRACE(text);
        expectUnknown<RefEntityType>(text);
        expectUnknown<FunctionType>(text);
        expectUnknown<SyntaxType>(text);
        expectUnknown<DeprecationStatus>(text);
    }
    // Embedded NUL: the comparison covers the whole view, not a C string prefix.
    expectUnknown<RefEntityType>(std::string_view("class\0x", 7));
}

} // namespace
