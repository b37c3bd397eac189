#include "Formats/PropertyList.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdint>
#include <limits>
#include <string>

namespace orvane::test {
namespace {

constexpr std::string_view doctype =
    R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">)";

std::string document(std::string_view contents) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>)" + std::string(doctype) + R"(<plist version="1.0">)" +
           std::string(contents) + "</plist>";
}

std::optional<PropertyList> read(std::string_view contents) {
    return PropertyList::parse(document(contents));
}

bool isRefused(std::string_view contents) {
    return !read(contents);
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += piece;
    return text;
}

TEST(XMLPropertyList, ReadsEveryType) {
    const auto list = read(R"(<dict>
        <key>text</key><string>é &amp; 🧹</string> <key>yes</key><true/> <key>no</key><false></false>
        <key>integer</key><integer>-7</integer> <key>real</key><real>1.5</real>
        <key>date</key><date>2020-01-02T03:04:05Z</date> <key>data</key><data> AA EC </data>
        <key>array</key><array><string>one</string></array> <key>dict</key><dict/></dict>)");
    ASSERT_TRUE(list);
    const auto& entries = *list->dictionary();
    EXPECT_EQ(entries.size(), 9U);
    EXPECT_EQ(*list->string("text"), "é & 🧹");
    EXPECT_EQ(entries.at("yes").boolean(), true);
    EXPECT_EQ(entries.at("no").boolean(), false);
    EXPECT_EQ(entries.at("integer").integer(), -7);
    EXPECT_EQ(entries.at("real").real(), 1.5);
    ASSERT_EQ(entries.at("array").array()->size(), 1U);
    EXPECT_EQ(*entries.at("array").array()->front().string(), "one");
    EXPECT_TRUE(entries.at("dict").dictionary()->empty());
}

TEST(XMLPropertyList, AValueOfAnotherTypeIsNoText) {
    const auto list = read("<dict><key>Label</key><integer>5</integer></dict>");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->string("Label"), nullptr);
    EXPECT_EQ(list->string("missing"), nullptr);
    EXPECT_EQ(read("<string>Label</string>")->string("Label"), nullptr);
    EXPECT_EQ(list->array(), nullptr);
}

TEST(XMLPropertyList, TheLastOfTwoValuesOfAKeyCounts) {
    EXPECT_EQ(*read("<dict><key>a</key><string>1</string><key>a</key><string>2</string></dict>")->string("a"),
              "2");
}

TEST(XMLPropertyList, ReadsIntegersOf64BitsAndNoLarger) {
    const auto integer = [](const std::string& text) { return read("<integer>" + text + "</integer>"); };
    EXPECT_EQ(integer("9223372036854775807")->integer(), INT64_MAX);
    EXPECT_EQ(integer("-9223372036854775808")->integer(), INT64_MIN);
    EXPECT_EQ(integer("0x1f")->integer(), 31);
    EXPECT_EQ(integer("-0X1F")->integer(), -31);
    EXPECT_EQ(integer(" +5")->integer(), 5);
    EXPECT_TRUE(integer("18446744073709551615"));
    EXPECT_EQ(integer("18446744073709551615")->integer(), std::nullopt);
    for (const auto* text : {"", " ", "-", "+", "0x", "abc", "5x", "1.5", "--5", "+-5",
                             "18446744073709551616", "-9223372036854775809", "0x10000000000000000"}) {
        EXPECT_FALSE(integer(text)) << text;
    }
}

TEST(XMLPropertyList, ReadsReals) {
    const auto real = [](const std::string& text) { return read("<real>" + text + "</real>"); };
    EXPECT_EQ(real("-1.5e3")->real(), -1500);
    EXPECT_EQ(real("+2")->real(), 2);
    EXPECT_EQ(real("-infinity")->real(), -std::numeric_limits<double>::infinity());
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
    EXPECT_FALSE(PropertyList::parse(""));
    EXPECT_FALSE(PropertyList::parse("<plist/>"));
    EXPECT_FALSE(PropertyList::parse("<foo/>"));
    EXPECT_FALSE(PropertyList::parse("{\"Label\": \"x\"}"));
}

TEST(XMLPropertyList, BelievesNoDocumentTypeOfItsOwn) {
    const auto withDoctype = [](const std::string& declaration, const std::string& contents) {
        return PropertyList::parse(declaration + "<plist>" + contents + "</plist>");
    };
    EXPECT_TRUE(withDoctype(R"(<!DOCTYPE plist SYSTEM "file:///dev/zero">)", "<dict/>"));
    EXPECT_FALSE(withDoctype("<!DOCTYPE plist []>", "<dict/>"));
    EXPECT_FALSE(withDoctype(R"(<!DOCTYPE plist [<!ENTITY a "b">]>)", "<string>&a;</string>"));
    EXPECT_FALSE(withDoctype(R"(<!DOCTYPE plist [<!ENTITY % a SYSTEM "file:///dev/zero"> %a;]>)", "<dict/>"));
    EXPECT_FALSE(withDoctype(R"(<!DOCTYPE plist SYSTEM "x" [<!ENTITY a "b">]>)", "<dict/>"));
}

TEST(XMLPropertyList, KnowsFiveEntitiesOnly) {
    EXPECT_EQ(*read("<string>&lt;&gt;&amp;&quot;&apos;&#x41;</string>")->string(), "<>&\"'A");
    EXPECT_TRUE(isRefused("<string>&nbsp;</string>"));
    EXPECT_TRUE(isRefused("<string>&#xD800;</string>"));
    EXPECT_FALSE(PropertyList::parse("<plist><string>&nbsp;</string></plist>"));
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
    const auto list = PropertyList::parse("\xFE\xFF" + utf16);
    ASSERT_TRUE(list);
    EXPECT_EQ(*list->string(), "x");
    EXPECT_FALSE(PropertyList::parse(utf16));
    EXPECT_FALSE(PropertyList::parse(utf16.substr(1)));
}

TEST(PropertyListLimits, NestingIsAtMost512Deep) {
    const auto nested = [](std::size_t depth) {
        return repeated("<array>", depth) + repeated("</array>", depth);
    };
    EXPECT_TRUE(read(nested(512)));
    EXPECT_TRUE(isRefused(nested(513)));
    EXPECT_TRUE(isRefused(repeated("<array>", 500'000)));
}

TEST(PropertyListLimits, ThereAreAtMost200000Objects) {
    EXPECT_TRUE(read("<array>" + repeated("<true/>", 199'999) + "</array>"));
    EXPECT_TRUE(isRefused("<array>" + repeated("<true/>", 200'000) + "</array>"));
}

TEST(PropertyListLimits, TheBytesAreAtMost16MiB) {
    const auto empty = document("<dict/>");
    EXPECT_TRUE(PropertyList::parse(empty + std::string(PropertyList::maximumBytes - empty.size(), ' ')));
    EXPECT_FALSE(
        PropertyList::parse(empty + std::string(PropertyList::maximumBytes - empty.size() + 1, ' ')));
}

/// The Mac gives a thread that is not the main one no more than this.
TEST(PropertyListLimits, TheDeepestListFitsASmallStack) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{512} << 10), 0);
    const auto readAndDestroy = [](void*) -> void* {
        const auto list = read(repeated("<array>", 512) + repeated("</array>", 512));
        EXPECT_TRUE(list);
        return nullptr;
    };
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, readAndDestroy, nullptr), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

}  // namespace
}  // namespace orvane::test
