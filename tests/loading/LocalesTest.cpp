#include "support/HostSettingsFixture.hpp"

#include <reference/docparser/DocResourceParser.hpp>

#include <doclanguage/DocLanguage.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using ParsingTools = reference::docparser::DocResourceParser::ParsingTools;
using Strings = std::vector<std::u16string>;

class LocalesTest : public refdoc::test::HostSettingsFixture {};

TEST_F(LocalesTest, SupportedLocalesBecomeSuffixesWithoutEnglish) {
    const struct {
        Strings languages;
        Strings suffixes;
    } cases[] = {
        {{u"en", u"ja", u"ko", u"zh_CN"}, {u"_ja", u"_ko", u"_zh_CN"}},
        {{u"en"}, {}},
        {{}, {}},
        {{u"ja", u"en", u"ja"}, {u"_ja", u"_ja"}},
        {{u"en", u"ko", u"en", u"ja", u"en"}, {u"_ko", u"_ja"}},
        {{u"ja"}, {u"_ja"}},
        {{u"EN", u"en_US", u"en "}, {u"_EN", u"_en_US", u"_en "}},
        {{u"", u"en"}, {u"_"}},
    };
    for (const auto& c : cases) {
        doclanguage::DocLanguage::getInstance().setSupportedDocLanguages(c.languages);
        EXPECT_EQ(ParsingTools::getSupportedDocLocales(), c.suffixes);
    }
}

} // namespace
