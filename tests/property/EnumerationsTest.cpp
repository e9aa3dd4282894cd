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

// Every spelled value survives text -> value -> text under a spelling of its own. Any other text,
// even one differing only in case, spacing or past an embedded NUL, is unknown: stringToEnum
// throws and tryStringToEnum says no and leaves the value alone.
template <class E>
void expectSpellings(int firstSpelled, int last) {
    std::set<std::string> seen;
    for (int n = firstSpelled; n <= last; ++n) {
        const auto value = static_cast<typename E::Value>(n);
        const std::string_view text = E::toString(value);
        EXPECT_TRUE(!text.empty() && seen.insert(std::string(text)).second) << "value " << n << ": " << text;
        auto found = E::getDefaultValue();
        EXPECT_TRUE(E::tryStringToEnum(text, found) && found == value && E::stringToEnum(text) == value) << text;
    }
    EXPECT_TRUE(E::toString(static_cast<typename E::Value>(last + 1)).empty());
    for (const std::string_view text :
         {std::string_view(""), std::string_view("Function"), std::string_view("function "), std::string_view("func"),
          std::string_view("class\0x", 7)}) {
        EXPECT_THROW(E::stringToEnum(text), std::invalid_argument) << text;
        auto value = static_cast<typename E::Value>(last);
        EXPECT_FALSE(E::tryStringToEnum(text, value));
        EXPECT_EQ(value, static_cast<typename E::Value>(last));
    }
}

TEST(Enumerations, EachValueHasItsOwnSpellingAndNoOtherTextIsKnown) {
    expectSpellings<RefEntityType>(1, RefEntityType::DataType);
    expectSpellings<FunctionType>(1, FunctionType::Conversion);
    expectSpellings<SyntaxType>(1, SyntaxType::Output);
    expectSpellings<DeprecationStatus>(0, DeprecationStatus::Removed);
}

} // namespace
