#include <reference/docparser/DocParserException.hpp>

#include <boost/exception/get_error_info.hpp>
#include <boost/exception/info.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using reference::docparser::DocParserException;

TEST(DocParserException, DescribesItselfWithTheFixedTextEverywhere) {
    const DocParserException e;
    const foundation::core::except::IException& base = e;
    for (const char* what : {e.what(), base.what(), DocParserException(e).what()}) {
        EXPECT_STREQ(what, "resource::docparser::DocParserException");
    }
    EXPECT_EQ(e.ToUstringImpl(), u"resource::docparser::DocParserException");
    EXPECT_EQ(e.convert_str(std::string("gr\xC3\xBC\xC3\x9F")), u"gr\u00FC\u00DF");
    EXPECT_EQ(e.convert_str(std::u16string(u"\u65E5\u672C")), u"\u65E5\u672C");
}

// A host may attach information and pass the exception across threads as a clone; the clone
// keeps the information and rethrows the library's type.
TEST(DocParserException, CloneKeepsAttachedInformationAndRethrowsTheType) {
    using Detail = boost::error_info<struct DetailTag, std::string>;
    DocParserException e;
    e << Detail("context");
    std::unique_ptr<const boost::exception_detail::clone_base> clone(e.clone());
    const auto* cloned = dynamic_cast<const boost::exception*>(clone.get());
    ASSERT_NE(cloned, nullptr);
    const std::string* info = boost::get_error_info<Detail>(*cloned);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(*info, "context");
    EXPECT_THROW(clone->rethrow(), DocParserException);
    EXPECT_THROW(e.rethrow(), DocParserException);
}

} // namespace
