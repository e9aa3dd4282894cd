#include <reference/docparser/DocParserException.hpp>

#include <gtest/gtest.h>

#include <memory>

namespace {

using reference::docparser::DocParserException;

// Boost carries an exception across threads as its clone: the clone must rethrow this type.
TEST(DocParserException, CloneRethrowsItsOwnTypeWithItsText) {
    const DocParserException original;
    std::unique_ptr<const boost::exception_detail::clone_base> clone(original.clone());
    ASSERT_NE(clone, nullptr);
    try {
        clone->rethrow();
        FAIL() << "the clone did not throw";
    } catch (const DocParserException& rethrown) {
        EXPECT_STREQ(rethrown.what(), "resource::docparser::DocParserException");
    }
}

} // namespace
