#include "Text/UTF8.h"

#include <gtest/gtest.h>

#include <string>

namespace orvane {
namespace {

using namespace std::string_literals;

TEST(UTF8, AcceptsEveryCharacterThatThereIs) {
    for (const auto* text : {"", "a", "\x7F", "\u0080", "\u07FF", "\u0800", "\uD7FF", "\uE000", "\uFFFF",
                             "\U00010000", "\U0010FFFF", "Émile 中文 🧹"}) {
        EXPECT_TRUE(isValidUTF8(text)) << text;
        EXPECT_EQ(repairedUTF8(text), text);
    }
    EXPECT_TRUE(isValidUTF8("a\0b"s));
}

TEST(UTF8, RefusesOverlongFormsSurrogatesAndWhatLiesBeyond) {
    for (const auto* text :
         {"\x80", "\xBF", "\xC0\xAF", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
          "\xF4\x90\x80\x80", "\xF5", "\xFF", "\xC3", "\xE4\xB8", "\xF0\x9F\xA7", "a\xC3z"}) {
        EXPECT_FALSE(isValidUTF8(text)) << repairedUTF8(text);
        EXPECT_TRUE(isValidUTF8(repairedUTF8(text)));
    }
}

TEST(UTF8, RepairsEachMaximalSubpartByOneMark) {
    EXPECT_EQ(repairedUTF8("a\xFF\xFEz"), "a\uFFFD\uFFFDz");
    EXPECT_EQ(repairedUTF8("\xF0\x9F\xA7x"), "\uFFFDx");
    EXPECT_EQ(repairedUTF8("\xE0\x80\x80"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(repairedUTF8("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(repairedUTF8("\xC3\xC3\xA9"), "\uFFFD\u00E9");
    EXPECT_EQ(repairedUTF8("\xF1\x80\x80\xE1\x80\xC2\x62"), "\uFFFD\uFFFD\uFFFD\x62");
}

}  // namespace
}  // namespace orvane
