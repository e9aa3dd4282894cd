#include "docparser/parsing/FieldAccess.hpp"

#include <gtest/gtest.h>

#include <boost/json/object.hpp>

#include <array>
#include <string>

namespace {

using reference::docparser::detail::MemberLookup;

// The one-pass lookup must find exactly the keys object::find finds. Keys are compared in
// overlapping words, so a key that differs from a wanted one in any single byte, at any length,
// must not match.
TEST(MemberLookup, FindsExactKeysAndNoNearMissAtAnyLengthOrPosition) {
    static const std::array<std::string, 10> wanted = {"x",
                                                       "abc",
                                                       "name",
                                                       "href",
                                                       "seven77",
                                                       "eight888",
                                                       "refpurpose",
                                                       "deprecated",
                                                       "classpropertygroup",
                                                       "a-key-of-thirty-one-bytes-long!"};
    const MemberLookup<10> lookup(
        {wanted[0], wanted[1], wanted[2], wanted[3], wanted[4], wanted[5], wanted[6], wanted[7], wanted[8], wanted[9]});

    boost::json::object exact;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        exact[wanted[i]] = static_cast<std::int64_t>(i);
    }
    exact["unrelated"] = "ignored";
    const auto found = lookup.find(exact);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        ASSERT_NE(found[i], nullptr) << wanted[i];
        EXPECT_EQ(found[i].value->as_int64(), static_cast<std::int64_t>(i)) << wanted[i];
        EXPECT_EQ(found[i].owner, &exact);
    }

    for (const auto& key : wanted) {
        for (std::size_t at = 0; at < key.size(); ++at) {
            std::string nearMiss = key;
            nearMiss[at] = static_cast<char>(nearMiss[at] ^ 0x20);
            boost::json::object object;
            object[nearMiss] = 1;
            object[key + "s"] = 2;     // one byte longer
            object[key.substr(1)] = 3; // one byte shorter
            const auto none = lookup.find(object);
            for (std::size_t i = 0; i < wanted.size(); ++i) {
                EXPECT_EQ(none[i], nullptr) << "'" << nearMiss << "' matched '" << wanted[i] << "'";
            }
        }
    }
    EXPECT_EQ(lookup.find(boost::json::object{})[2], nullptr);
}

} // namespace
