#include <reference/docparser/DocParserException.hpp>

#include <boost/exception/get_error_info.hpp>
#include <boost/exception/info.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using reference::docparser::DocParserException;

TEST(DocParserException, WhatIsTheFixedText) {
    const DocParserException e;
    EXPECT_STREQ(e.what(), "resource::docparser::DocParserException");
    // Also through the framework base and after a copy.
    const foundation::core::except::IException& base = e;
    EXPECT_STREQ(base.what(), "resource::docparser::DocParserException");
    const DocParserException copy(e);
    EXPECT_STREQ(copy.what(), "resource::docparser::DocParserException");
}

TEST(DocParserException, ThrownAndCaughtCarriesNoBoostExceptionState) {
    try {
        throw DocParserException();
    } catch (const boost::exception& e) {
        EXPECT_EQ(boost::get_error_info<boost::throw_line>(e), nullptr);
        EXPECT_EQ(boost::get_error_info<boost::throw_function>(e), nullptr);
        EXPECT_EQ(boost::get_error_info<boost::throw_file>(e), nullptr);
        EXPECT_NE(dynamic_cast<const DocParserException*>(&e), nullptr);
        return;
    }
    FAIL() << "not caught as boost::exception";
}

TEST(DocParserException, IsNotAStandardException) {
    // The per-file handlers catch everything; nothing may rely on std::exception.
    EXPECT_FALSE((std::is_base_of_v<std::exception, DocParserException>));
    EXPECT_TRUE((std::is_base_of_v<foundation::core::except::IInternalException, DocParserException>));
}

TEST(DocParserException, CloneRethrowsADocParserException) {
    const DocParserException original;
    std::unique_ptr<const boost::exception_detail::clone_base> clone(original.clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(dynamic_cast<const DocParserException*>(clone.get()), nullptr);
    EXPECT_THROW(clone->rethrow(), DocParserException);
    EXPECT_THROW(original.rethrow(), DocParserException);
}

TEST(DocParserException, CloneSharesAttachedErrorInformation) {
    // The library never attaches information, but a host may; a clone must keep it.
    using Detail = boost::error_info<struct DetailTag, std::string>;
    DocParserException e;
    e << Detail("context");
    std::unique_ptr<const boost::exception_detail::clone_base> clone(e.clone());
    const auto* cloned = dynamic_cast<const boost::exception*>(clone.get());
    ASSERT_NE(cloned, nullptr);
    const std::string* info = boost::get_error_info<Detail>(*cloned);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(*info, "context");
}

TEST(DocParserException, FrameworkConversionsDescribeTheException) {
    const DocParserException e;
    EXPECT_EQ(e.ToUstringImpl(), u"resource::docparser::DocParserException");
    EXPECT_EQ(e.convert_str(std::string("gr\xC3\xBC\xC3\x9F")), u"gr\u00FC\u00DF");
    EXPECT_EQ(e.convert_str(std::u16string(u"\u65E5\u672C")), u"\u65E5\u672C");
}

} // namespace
