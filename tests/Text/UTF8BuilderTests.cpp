#include "Text/UTF8Builder.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

std::string built(std::u16string_view units) {
    UTF8Builder builder;
    for (const char16_t unit : units) builder.append(unit);
    return builder.take();
}

TEST(UTF8Builder, MakesEveryLengthOfUTF8) {
    EXPECT_EQ(built(u"a\u007F\u0080é\u07FF\u0800€\uFFFF"), "a\u007F\u0080é\u07FF\u0800€\uFFFF");
    EXPECT_EQ(built(u"\U00010000🧹\U0010FFFF"), "\U00010000🧹\U0010FFFF");
}

TEST(UTF8Builder, ReplacesHalfAPair) {
    const std::u16string high(1, u'\xD83E');
    const std::u16string low(1, u'\xDDF9');
    EXPECT_EQ(built(high + low), "🧹");
    EXPECT_EQ(built(high), "\uFFFD");
    EXPECT_EQ(built(low), "\uFFFD");
    EXPECT_EQ(built(high + high + low), "\uFFFD🧹");
    EXPECT_EQ(built(low + high), "\uFFFD\uFFFD");
    EXPECT_EQ(built(high + u"a" + low), "\uFFFDa\uFFFD");
}

TEST(UTF8Builder, SaysWhetherAHalfWasAlone) {
    UTF8Builder builder;
    builder.append(u'\xD83E');
    builder.append(u'\xDDF9');
    builder.take();
    EXPECT_FALSE(builder.hadLoneSurrogate());
    builder.append(u'\xD83E');
    builder.append("");
    builder.append("a");
    EXPECT_EQ(builder.take(), "\uFFFDa");
    EXPECT_TRUE(builder.hadLoneSurrogate());
}

}  // namespace
}  // namespace orvane
