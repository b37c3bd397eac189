#include <gtest/gtest.h>
#include <pthread.h>

#include <nlohmann/json.hpp>
#include <string>

#include "Formats/PropertyList.h"
#include "tests/Fixtures/PropertyListTree.h"

namespace orvane::test {
namespace {

using nlohmann::json;
using namespace std::string_literals;

/// The value of a text in quotes; "refused" for what is none.
std::string quoted(const std::string& contents) {
    const auto list = propertyListTree("{a=\"" + contents + "\";}");
    return list ? list->at("a").get<std::string>() : "refused";
}

/// ASCII in UTF-16, with its mark.
std::string utf16(std::string_view text, bool isBigEndian) {
    std::string bytes = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char letter : text) bytes += isBigEndian ? ""s + '\0' + letter : ""s + letter + '\0';
    return bytes;
}

TEST(OldStylePropertyList, ReadsDictionariesArraysDataAndTexts) {
    const auto list = propertyListTree(R"({
        bare = com.example.foo-bar_1:$x/y;  "in quotes" = "a b";  'and others' = 'c "d" e';
        array = ( one, "two", (three), {}, () );
        data = <0fbd 77
                1c>;  none = <>;
        dict = { inner = 1; };
    })");
    ASSERT_TRUE(list);
    const json expected = {{"bare", "com.example.foo-bar_1:$x/y"},
                           {"in quotes", "a b"},
                           {"and others", "c \"d\" e"},
                           {"array", {"one", "two", {"three"}, json::object(), json::array()}},
                           {"data", nullptr},
                           {"none", nullptr},
                           {"dict", {{"inner", "1"}}}};
    EXPECT_EQ(*list, expected);
}

TEST(OldStylePropertyList, NeedsNoBracesAroundTheWholeList) {
    EXPECT_EQ(*propertyListTree("Label = com.example; \"b\" = (c);\n"),
              json({{"Label", "com.example"}, {"b", {"c"}}}));
    EXPECT_EQ(propertyListText("Label = com.example;", "Label"), "com.example");
}

TEST(OldStylePropertyList, AKeyWithoutAValueIsItsOwn) {
    EXPECT_EQ(*propertyListTree("a; \"b\\n\" ; c = d;"), json({{"a", "a"}, {"b\n", "b\n"}, {"c", "d"}}));
    EXPECT_EQ(*propertyListTree("{a;}"), json({{"a", "a"}}));
}

TEST(OldStylePropertyList, MayBeOneTextOneArrayOrData) {
    EXPECT_EQ(*propertyListTree(" /* c */ bare // end"), "bare");
    EXPECT_EQ(*propertyListTree("'in quotes'"), "in quotes");
    EXPECT_EQ(*propertyListTree("(a)"), json({"a"}));
    EXPECT_EQ(*propertyListTree("<ab CD>"), nullptr);
    EXPECT_EQ(*propertyListTree("<>"), nullptr);
}

TEST(OldStylePropertyList, NothingButBlanksIsAnEmptyDictionary) {
    for (const auto* text : {" ", "\n", "/* c */", "// c", "/* c", "\u2028\u2029", "\xEF\xBB\xBF\n"}) {
        const auto list = propertyListTree(text);
        EXPECT_TRUE(list && *list == json::object()) << text;
    }
    EXPECT_FALSE(isPropertyList(""));
    EXPECT_FALSE(isPropertyList("\xEF\xBB\xBF"));
    EXPECT_FALSE(isPropertyList("\xFF\xFE"));
}

TEST(OldStylePropertyList, SkipsBlanksAndComments) {
    const json expected = {{"a", "b"}};
    for (const auto* text :
         {"{a=b;}", "\t{\v\f\r\n a = b ; } ", "/* { */{/**/a /***/=//x\nb /*/;*/;//}\r}// no line end",
          "{\u2028a\u2029=b;// c\u2028}", "// é\u2029a=b;", "/*/ */a=b;", "a = b; /* no end"}) {
        const auto list = propertyListTree(text);
        EXPECT_TRUE(list && *list == expected) << text;
    }
}

TEST(OldStylePropertyList, ATextThatStandsBareHoldsNoComment) {
    EXPECT_EQ(*propertyListTree("{a = http://example.org;}"), json({{"a", "http://example.org"}}));
    EXPECT_EQ(*propertyListTree("(/usr/bin, /)"), json({"/usr/bin", "/"}));
    EXPECT_FALSE(isPropertyList("{a = b/* c */;}"));
}

TEST(OldStylePropertyList, ReadsEscapes) {
    EXPECT_EQ(quoted(R"(\a\b\f\n\r\t\v)"), "\a\b\f\n\r\t\v");
    EXPECT_EQ(quoted(R"(\"\'\\\?\x\é)"), "\"'\\?xé");
    EXPECT_EQ(quoted("a\\\nb\nc"), "a\nb\nc");
    EXPECT_EQ(quoted(R"(\U00e9\U20ac\U41z\Uffff)"), "é€Az\uFFFF");
    EXPECT_EQ(quoted(R"(\u00e9)"), "u00e9") << "only the capital one is a number's";
    EXPECT_EQ(quoted("a 'b'"), "a 'b'");
}

TEST(OldStylePropertyList, TwoEscapesMakeALetterAboveTheFirstPlane) {
    EXPECT_EQ(quoted(R"(\Ud83e\Uddf9)"), "🧹");
    EXPECT_EQ(quoted(R"(\Ud83e)"), "\uFFFD");
    EXPECT_EQ(quoted(R"(\Uddf9\Ud83e)"), "\uFFFD\uFFFD");
    EXPECT_EQ(quoted(R"(\Ud83ex\Uddf9)"), "\uFFFDx\uFFFD");
    EXPECT_EQ(quoted(R"(\Ud83e\Ud83e\Uddf9)"), "\uFFFD🧹");
}

TEST(OldStylePropertyList, OctalEscapesAreLettersOfNeXTSTEP) {
    EXPECT_EQ(quoted(R"(\101\12\60\1018)"), "A\n0A8");
    EXPECT_EQ(quoted(R"(\200\201\247\256\305\341\375)"), "\u00A0À§ﬁ¯Æÿ");
    EXPECT_EQ(quoted(R"(\376\377)"), "\uFFFD\uFFFD");
    EXPECT_EQ(quoted(R"(\501)"), "A") << "of nine bits eight count";
    EXPECT_EQ(quoted(R"(\0)"), "\0"s);
}

TEST(OldStylePropertyList, TheLastOfTwoValuesOfAKeyCounts) {
    EXPECT_EQ(*propertyListTree("a = 1; a = 2;"), json({{"a", "2"}}));
    EXPECT_EQ(propertyListText("a = 1; a = 2;", "a"), "2");
    EXPECT_EQ(propertyListText("a = 1; a = (2);", "a"), std::nullopt);
}

TEST(OldStylePropertyList, AnArrayMayEndInAComma) {
    EXPECT_EQ(*propertyListTree("(a, b, )"), json({"a", "b"}));
    EXPECT_FALSE(isPropertyList("(a,, b)"));
    EXPECT_FALSE(isPropertyList("(, a)"));
}

TEST(OldStylePropertyList, RefusesWhatIsNone) {
    for (const auto* text : {"hello world",
                             "{\"Label\": \"x\"}",
                             "{",
                             "}",
                             "(",
                             ")",
                             "{a}",
                             "{a=}",
                             "{a=;}",
                             "{a=b}",
                             "{a=b",
                             "{a=b;",
                             "{=b;}",
                             "{a=b,}",
                             "{(a)=b;}",
                             "(a b)",
                             "(a;b)",
                             "(a",
                             "(a,",
                             "a =",
                             "a = b",
                             "a = \"b",
                             "a = b c;",
                             "\"a",
                             "'a",
                             "\"a\\",
                             "\"a\\\"",
                             "{a=b;} x",
                             "(a) (b)",
                             "<ab> c",
                             "<a>",
                             "<abc>",
                             "<a b>",
                             "<ab",
                             "<0x>",
                             "{a=<0g>;}",
                             "{a=<ab/**/>;}",
                             "a = é;",
                             "#",
                             "a & b",
                             "{a=b;;}",
                             "@\"a\"",
                             "a = b \\;"}) {
        EXPECT_FALSE(isPropertyList(text)) << text;
    }
}

TEST(OldStylePropertyList, WhatFollowsTheLinesOfAListWithoutBracesIsNotLookedAt) {
    EXPECT_EQ(*propertyListTree("a = b; }"), json({{"a", "b"}}));
    EXPECT_EQ(*propertyListTree("a = b; ### generated"), json({{"a", "b"}}));
}

TEST(OldStylePropertyList, ReadsUTF8WithAndWithoutItsMark) {
    EXPECT_EQ(propertyListText("CFBundleName = \"Grün 🧹\";", "CFBundleName"), "Grün 🧹");
    EXPECT_EQ(propertyListText("\xEF\xBB\xBF"
                               "a = b;",
                               "a"),
              "b");
    for (const auto* bytes : {"a = \"\xFF\";", "a = b; // \xC0\xAF", "a = \"\xED\xA0\x80\";"}) {
        EXPECT_FALSE(isPropertyList(bytes)) << bytes;
    }
}

TEST(OldStylePropertyList, ReadsUTF16ByItsMarkOnly) {
    for (const bool isBigEndian : {false, true}) {
        const auto marked = utf16("/* c */ a = \"\\U00e9\"; b = c;", isBigEndian);
        EXPECT_EQ(propertyListText(marked, "a"), "é");
        EXPECT_EQ(propertyListText(marked, "b"), "c");
        EXPECT_FALSE(isPropertyList(marked.substr(2)));
        EXPECT_TRUE(isPropertyList(marked + "x")) << "half a unit at the end is none";
        EXPECT_EQ(*propertyListTree(utf16("<ab>", isBigEndian)), nullptr);
        EXPECT_EQ(*propertyListTree(utf16("<plist><true/></plist>", isBigEndian)), true);
    }
    EXPECT_EQ(propertyListText("\xFE\xFF\0a\0=\0\"\xD8\x3E\xDD\xF9\0\"\0;"s, "a"), "🧹");
    EXPECT_EQ(propertyListText("\xFE\xFF\0a\0=\0\"\xD8\x3E\0\"\0;"s, "a"), "\uFFFD");
}

TEST(OldStylePropertyList, AnAngleBeginsDataOrXML) {
    EXPECT_EQ(*propertyListTree("<dada>"), nullptr);
    EXPECT_EQ(*propertyListTree("\n<array/>"), json::array());
    EXPECT_FALSE(isPropertyList("/* c */ <array/>"));
    EXPECT_FALSE(isPropertyList("<array/> /* c */"));
}

TEST(OldStylePropertyListLimits, NestingIsAtMost512Deep) {
    for (const auto& [open, close] : {std::pair("(", ")"), std::pair("{a=", ";}")}) {
        EXPECT_TRUE(isPropertyList(repeated(open, 511) + "()" + repeated(close, 511)));
        EXPECT_FALSE(isPropertyList(repeated(open, 512) + "()" + repeated(close, 512)));
    }
    EXPECT_TRUE(isPropertyList("a=" + repeated("(", 511) + repeated(")", 511) + ";"));
    EXPECT_FALSE(isPropertyList("a=" + repeated("(", 512) + repeated(")", 512) + ";"));
    EXPECT_FALSE(isPropertyList(repeated("(", 1'000'000)));
    EXPECT_FALSE(isPropertyList(repeated("{a=", 1'000'000)));
}

TEST(OldStylePropertyListLimits, ThereAreAtMost150000Objects) {
    EXPECT_TRUE(isPropertyList("(" + repeated("a,", 149'999) + ")"));
    EXPECT_FALSE(isPropertyList("(" + repeated("a,", 150'000) + ")"));
    EXPECT_TRUE(isPropertyList(repeated("a;", 149'999)));
    EXPECT_FALSE(isPropertyList(repeated("a;", 150'000)));
}

/// What would take hours if any of it were looked at once more for each of its bytes.
TEST(OldStylePropertyListLimits, TakesTimeLinearInTheBytes) {
    constexpr std::size_t most = std::size_t{1} << 18U;
    for (const auto* piece : {"/*", "//", "/", "a", "\\", "\"", "<", "<a", "ab ", "\u2028", "/**/", "'\\",
                              "(", "a=", "a;", "//\n", "\"\"", "\\U", "*/"}) {
        const auto text = repeated(piece, most / std::string_view(piece).size());
        for (const auto* before : {"", "\"", "a = \"", "<", "{a = <", "(", "/*"}) {
            isPropertyList(before + text);
        }
    }
}

TEST(OldStylePropertyListLimits, TheDeepestListFitsASmallStack) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{512} << 10), 0);
    const auto readAll = [](void*) -> void* {
        EXPECT_TRUE(isPropertyList(repeated("(", 512) + repeated(")", 512)));
        return nullptr;
    };
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, readAll, nullptr), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

}  // namespace
}  // namespace orvane::test
