#include "Formats/PropertyList.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/Fixtures/PropertyListTree.h"

namespace orvane::test {
namespace {

using nlohmann::json;

constexpr std::string_view doctype =
    R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">)";

std::string document(std::string_view contents) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>)" + std::string(doctype) + R"(<plist version="1.0">)" +
           std::string(contents) + "</plist>";
}

std::optional<json> read(std::string_view contents) {
    return propertyListTree(document(contents));
}

bool isRefused(std::string_view contents) {
    return !isPropertyList(document(contents));
}

std::optional<std::string> text(std::string_view contents, std::string_view key) {
    return propertyListText(document(contents), key);
}

TEST(XMLPropertyList, ReadsEveryType) {
    const auto list = read(R"(<dict>
        <key>text</key><string>é &amp; 🧹</string> <key>yes</key><true/> <key>no</key><false></false>
        <key>integer</key><integer>-7</integer> <key>real</key><real>1.5</real>
        <key>date</key><date>2020-01-02T03:04:05Z</date> <key>data</key><data> AA EC </data>
        <key>array</key><array><string>one</string></array> <key>dict</key><dict/></dict>)");
    ASSERT_TRUE(list);
    const json expected = {{"text", "é & 🧹"}, {"yes", true},      {"no", false},
                           {"integer", -7},       {"real", 1.5},      {"date", nullptr},
                           {"data", nullptr},     {"array", {"one"}}, {"dict", json::object()}};
    EXPECT_EQ(*list, expected);
    EXPECT_TRUE(list->at("real").is_number_float());
}

TEST(XMLPropertyList, AValueOfAnotherTypeIsNoText) {
    EXPECT_EQ(text("<dict><key>Label</key><string>5</string></dict>", "Label"), "5");
    EXPECT_EQ(text("<dict><key>Label</key><integer>5</integer></dict>", "Label"), std::nullopt);
    EXPECT_EQ(text("<dict><key>Label</key><array><string>5</string></array></dict>", "Label"), std::nullopt);
    EXPECT_EQ(text("<dict><key>Label</key><string>5</string></dict>", "missing"), std::nullopt);
    EXPECT_EQ(text("<string>Label</string>", "Label"), std::nullopt);
}

TEST(XMLPropertyList, OnlyTheOutermostDictionaryIsAsked) {
    constexpr auto* inner = "<dict><key>Label</key><string>inner</string></dict>";
    EXPECT_EQ(text("<array>" + std::string(inner) + "</array>", "Label"), std::nullopt);
    EXPECT_EQ(text("<dict><key>a</key>" + std::string(inner) + "</dict>", "Label"), std::nullopt);
    EXPECT_EQ(text("<dict><key>Label</key>" + std::string(inner) + "</dict>", "Label"), std::nullopt);
    EXPECT_EQ(text("<dict><key>a</key>" + std::string(inner) +
                       "<key>Label</key><string>outer</string><key>b</key>" + inner + "</dict>",
                   "Label"),
              "outer");
}

TEST(XMLPropertyList, WhatIsNotOneAsAWholeGivesNoText) {
    constexpr std::string_view entry = "<dict><key>Label</key><string>x</string>";
    EXPECT_EQ(text(std::string(entry) + "</dict>", "Label"), "x");
    EXPECT_EQ(text(std::string(entry) + "<key>late</key></dict>", "Label"), std::nullopt);
    std::optional<std::string> stale = "stale";
    readPropertyListTexts("", {{"Label", stale}});
    EXPECT_EQ(stale, std::nullopt);
}

TEST(XMLPropertyList, GivesEachTextToWhoAskedForIt) {
    std::optional<std::string> one;
    std::optional<std::string> other;
    readPropertyListTexts(
        document("<dict><key>b</key><string>2</string><key>a</key><string>1</string></dict>"),
        {{"a", one}, {"b", other}});
    EXPECT_EQ(one, "1");
    EXPECT_EQ(other, "2");
}

TEST(XMLPropertyList, TheLastOfTwoValuesOfAKeyCounts) {
    constexpr std::string_view texts =
        "<dict><key>a</key><string>1</string><key>a</key><string>2</string></dict>";
    EXPECT_EQ(*read(texts), json({{"a", "2"}}));
    EXPECT_EQ(text(texts, "a"), "2");
    EXPECT_EQ(text("<dict><key>a</key><string>1</string><key>a</key><true/></dict>", "a"), std::nullopt);
}

TEST(XMLPropertyList, ReadsIntegersOf64BitsAndNoLarger) {
    const auto integer = [](const std::string& text) { return read("<integer>" + text + "</integer>"); };
    EXPECT_EQ(*integer("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(*integer("-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(*integer("0x1f"), 31);
    EXPECT_EQ(*integer("-0X1F"), -31);
    EXPECT_EQ(*integer(" +5"), 5);
    EXPECT_EQ(*integer("18446744073709551615"), nullptr);
    for (const auto* text : {"", " ", "-", "+", "0x", "abc", "5x", "1.5", "--5", "+-5",
                             "18446744073709551616", "-9223372036854775809", "0x10000000000000000"}) {
        EXPECT_FALSE(integer(text)) << text;
    }
}

TEST(XMLPropertyList, ReadsReals) {
    const auto real = [](const std::string& text) { return read("<real>" + text + "</real>"); };
    EXPECT_EQ(*real("-1.5e3"), -1500);
    EXPECT_EQ(*real("+2"), 2);
    EXPECT_EQ(*real("-infinity"), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(real("nan"));
    for (const auto* text : {"", "one", "1,5", "1.5x", "+-1", "0x1p3"}) EXPECT_FALSE(real(text)) << text;
}

TEST(XMLPropertyList, RefusesDatesThatTheCalendarDoesNotHave) {
    const auto date = [](const std::string& text) { return read("<date>" + text + "</date>"); };
    EXPECT_TRUE(date("2024-02-29T23:59:60Z"));
    for (const auto* text :
         {"", "yesterday", "2023-02-29T00:00:00Z", "2020-13-01T00:00:00Z", "2020-01-01T24:00:00Z",
          "2020-01-01T00:60:00Z", "2020-01-01T00:00:00", "2020-01-01T00:00:00Zx", "2020-1-1T0:0:0Z",
          "2020-01-01", "-020-01-01T00:00:00Z"}) {
        EXPECT_FALSE(date(text)) << text;
    }
}

TEST(XMLPropertyList, RefusesAnythingInsideAText) {
    EXPECT_TRUE(isRefused("<string>a<!-- c -->b</string>"));
    EXPECT_TRUE(isRefused("<string>a<?pi?>b</string>"));
    EXPECT_TRUE(isRefused("<string>a<string>b</string></string>"));
    EXPECT_TRUE(isRefused("<dict><key>a<true/></key></dict>"));
    EXPECT_TRUE(isRefused("<true>x</true>"));
}

TEST(XMLPropertyList, RefusesWhatIsNoPropertyList) {
    for (const auto* contents :
         {"", "<foo/>", "<foo>x</foo>", "<dict><foo/></dict>", "<dict/><dict/>", "x<dict/>",
          "<dict>x<key>a</key><true/></dict>", "<array>x</array>", "<key>a</key>",
          "<array><key>a</key></array>", "<dict><key>a</key></dict>", "<dict><key>a</key><key>b</key></dict>",
          "<dict><true/></dict>", "<plist><dict/></plist>", "<dict><key>a</key><plist/></dict>", "<Dict/>",
          "<dict>"}) {
        EXPECT_TRUE(isRefused(contents)) << contents;
    }
    EXPECT_FALSE(isPropertyList(""));
    EXPECT_FALSE(isPropertyList("<plist/>"));
    EXPECT_FALSE(isPropertyList("<foo/>"));
    EXPECT_FALSE(isPropertyList("{\"Label\": \"x\"}"));
}

TEST(XMLPropertyList, BelievesNoDocumentTypeOfItsOwn) {
    const auto withDoctype = [](const std::string& declaration, const std::string& contents) {
        return isPropertyList(declaration + "<plist>" + contents + "</plist>");
    };
    EXPECT_TRUE(withDoctype(R"(<!DOCTYPE plist SYSTEM "file:///dev/zero">)", "<dict/>"));
    EXPECT_FALSE(withDoctype("<!DOCTYPE plist []>", "<dict/>"));
    EXPECT_FALSE(withDoctype(R"(<!DOCTYPE plist [<!ENTITY a "b">]>)", "<string>&a;</string>"));
    EXPECT_FALSE(withDoctype(R"(<!DOCTYPE plist [<!ENTITY % a SYSTEM "file:///dev/zero"> %a;]>)", "<dict/>"));
    EXPECT_FALSE(withDoctype(R"(<!DOCTYPE plist SYSTEM "x" [<!ENTITY a "b">]>)", "<dict/>"));
}

TEST(XMLPropertyList, KnowsFiveEntitiesOnly) {
    EXPECT_EQ(*read("<string>&lt;&gt;&amp;&quot;&apos;&#x41;</string>"), "<>&\"'A");
    EXPECT_TRUE(isRefused("<string>&nbsp;</string>"));
    EXPECT_TRUE(isRefused("<string>&#xD800;</string>"));
    EXPECT_FALSE(isPropertyList("<plist><string>&nbsp;</string></plist>"));
}

TEST(XMLPropertyList, RefusesTextThatIsNotUTF8) {
    EXPECT_TRUE(isRefused("<string>\xFF</string>"));
    EXPECT_TRUE(isRefused("<string>\xC0\xAF</string>"));
    EXPECT_TRUE(isRefused("<string>\xED\xA0\x80</string>"));
    EXPECT_TRUE(isRefused("<string>\xF4\x90\x80\x80</string>"));
}

TEST(XMLPropertyList, ReadsUTF16ByItsMarkOnly) {
    std::string utf16;
    for (const char letter : std::string_view("<plist><string>x</string></plist>")) {
        utf16 += {'\0', letter};
    }
    const auto list = propertyListTree("\xFE\xFF" + utf16);
    ASSERT_TRUE(list);
    EXPECT_EQ(*list, "x");
    EXPECT_FALSE(isPropertyList(utf16));
    EXPECT_FALSE(isPropertyList(utf16.substr(1)));
}

TEST(PropertyListLimits, NestingIsAtMost512Deep) {
    const auto nested = [](std::size_t depth) {
        return repeated("<array>", depth) + repeated("</array>", depth);
    };
    EXPECT_FALSE(isRefused(nested(512)));
    EXPECT_TRUE(isRefused(nested(513)));
    EXPECT_TRUE(isRefused(repeated("<array>", 500'000)));
}

TEST(PropertyListLimits, ThereAreAtMost150000Objects) {
    EXPECT_FALSE(isRefused("<array>" + repeated("<true/>", 149'999) + "</array>"));
    EXPECT_TRUE(isRefused("<array>" + repeated("<true/>", 150'000) + "</array>"));
    EXPECT_FALSE(isRefused("<dict>" + repeated("<key/><true/>", 74'999) + "</dict>"));
    EXPECT_TRUE(isRefused("<dict>" + repeated("<key/><true/>", 75'000) + "</dict>"));
}

TEST(PropertyListLimits, TheBytesAreAtMost16MiB) {
    const auto empty = document("<dict/>");
    EXPECT_TRUE(isPropertyList(empty + std::string(PropertyListLimits::bytes - empty.size(), ' ')));
    EXPECT_FALSE(isPropertyList(empty + std::string(PropertyListLimits::bytes - empty.size() + 1, ' ')));
}

TEST(PropertyListLimits, OtherEncodingsThanUnicodesTakeAtMost8MiB) {
    const auto list = [](const std::string& declaration, std::size_t size) {
        const auto begin = "<?xml version='1.0'" + declaration + "?><plist><true/>";
        const std::string end = "</plist>";
        return begin + std::string(size - begin.size() - end.size(), ' ') + end;
    };
    constexpr auto most = PropertyListLimits::otherEncodingBytes;
    EXPECT_TRUE(isPropertyList(list(" encoding='ISO-8859-1'", most)));
    EXPECT_FALSE(isPropertyList(list(" encoding='ISO-8859-1'", most + 1)));
    EXPECT_FALSE(isPropertyList(list(" encoding='us-ascii'", most + 1)));
    EXPECT_TRUE(isPropertyList(list(" encoding='Utf-8'", most + 1)));
    EXPECT_TRUE(isPropertyList(list(" encoding='UTF-8'", most + 1)));
    EXPECT_TRUE(isPropertyList(list("", most + 1)));
}

TEST(PropertyListLimits, XMLIsCutIntoAtMost800000Parts) {
    const auto comments = [](std::size_t count) { return "<true/>" + repeated("<!---->", count); };
    EXPECT_FALSE(isRefused(comments(PropertyListLimits::parts)));
    EXPECT_TRUE(isRefused(comments(PropertyListLimits::parts + 1)));
    EXPECT_TRUE(isRefused("<string>" + std::string(PropertyListLimits::parts + 1, '\n') + "</string>"));
    const auto sections = [](std::size_t count) {
        return "<string>" + repeated("<![CDATA[]]>", count) + "</string>";
    };
    EXPECT_FALSE(isRefused(sections(PropertyListLimits::parts / 2)));
    EXPECT_TRUE(isRefused(sections(PropertyListLimits::parts / 2 + 1)));
}

TEST(PropertyListLimits, XMLHasAtMost1000Attributes) {
    // The list's own has one.
    const auto attributed = [](std::size_t count) {
        return "<array>" + repeated("<true a='b'/>", count) + "</array>";
    };
    EXPECT_FALSE(isRefused(attributed(PropertyListLimits::attributes - 1)));
    EXPECT_TRUE(isRefused(attributed(PropertyListLimits::attributes)));
}

TEST(PropertyListLimits, NothingButTextIsLongerThanSomeHundredKiB) {
    const auto blanks = [](std::size_t kibibytes) { return std::string(kibibytes << 10U, ' '); };
    EXPECT_FALSE(isRefused("<true " + blanks(190) + "/>"));
    EXPECT_TRUE(isRefused("<true " + blanks(400) + "/>"));
    EXPECT_FALSE(isRefused("<!--" + blanks(190) + "--><true/>"));
    EXPECT_TRUE(isRefused("<!--" + blanks(400) + "--><true/>"));
    EXPECT_FALSE(isRefused("<string>" + blanks(1000) + "</string>"));
}

TEST(PropertyListLimits, ATextThatIsAskedForHasAtMostAMebibyte) {
    const auto list = [](std::size_t size) {
        return "<dict><key>a</key><string>" + std::string(size, 'x') + "</string></dict>";
    };
    EXPECT_EQ(text(list(PropertyListLimits::askedText), "a"),
              std::string(PropertyListLimits::askedText, 'x'));
    EXPECT_EQ(text(list(PropertyListLimits::askedText + 1), "a"), std::nullopt);
    EXPECT_FALSE(isRefused(list(PropertyListLimits::askedText + 1)));
    EXPECT_EQ(text(list(5 * PropertyListLimits::askedText), "a"), std::nullopt);
}

TEST(PropertyListLimits, NoNumberIsLongerThanATextThatIsAskedFor) {
    const auto five = [](std::size_t size) {
        return "<integer>" + std::string(size - 1, ' ') + "5</integer>";
    };
    EXPECT_EQ(read(five(PropertyListLimits::askedText)), json(5));
    EXPECT_TRUE(isRefused(five(PropertyListLimits::askedText + 1)));
    EXPECT_TRUE(isRefused(five(5 * PropertyListLimits::askedText)));
}

TEST(XMLPropertyList, ReadsLongOnesAsShortOnesWhereverTheyAreCut) {
    const std::string unit = "é🧹&amp;日<![CDATA[<]]>\n";
    for (std::size_t blanks = 0; blanks < unit.size() + 8; ++blanks) {
        const auto list =
            propertyListTree(std::string(blanks, ' ') + "<plist><array>" +
                             repeated("<string>" + unit + "</string>", 4'000) + "</array></plist>");
        ASSERT_TRUE(list) << blanks;
        ASSERT_EQ(list->size(), 4'000U);
        for (const auto& each : *list) ASSERT_EQ(each, "é🧹&日<\n") << blanks;
    }
}

TEST(PropertyListLimits, OldStyleTakesAtMostAMebibyte) {
    const auto list = [](std::size_t size) { return "'" + std::string(size - 2, 'x') + "'"; };
    EXPECT_TRUE(isPropertyList(list(PropertyListLimits::oldStyleBytes)));
    EXPECT_FALSE(isPropertyList(list(PropertyListLimits::oldStyleBytes + 1)));
}

/// The Mac gives a thread that is not the main one no more than this.
TEST(PropertyListLimits, TheDeepestListFitsASmallStack) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{512} << 10), 0);
    const auto readAll = [](void*) -> void* {
        EXPECT_TRUE(isPropertyList(document(repeated("<array>", 512) + repeated("</array>", 512))));
        return nullptr;
    };
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, readAll, nullptr), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

}  // namespace
}  // namespace orvane::test
