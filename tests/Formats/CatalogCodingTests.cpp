#include "Formats/CatalogCoding.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>
#include <string>

#include "Text/UTF8.h"

namespace orvane {
namespace {

using namespace std::string_literals;

InstalledApplication application() {
    return {FileURL::fromPath("/Applications/Foo.app", true),
            "Foo",
            "org.example.foo",
            "1.0",
            10,
            Date{5.5},
            false,
            true};
}

const std::string members =
    R"("url":"file:///A.app","name":"A","version":"1","isSystemApplication":false,"isInstalled":true)";

std::string recordWith(const std::string& member) {
    return "[{" + members + "," + member + "}]";
}

std::optional<std::int64_t> sizeRead(const std::string& number) {
    const auto records = decodeCatalog(recordWith("\"size\":" + number));
    if (!records) return std::nullopt;
    return records->at(0).size;
}

std::optional<double> dateRead(const std::string& number) {
    const auto records = decodeCatalog(recordWith("\"size\":0,\"modifiedAt\":" + number));
    if (!records || !records->at(0).modifiedAt) return std::nullopt;
    return records->at(0).modifiedAt->timeIntervalSinceReferenceDate;
}

std::string dateWritten(double date) {
    auto record = application();
    record.modifiedAt = Date{date};
    const auto text = encodeCatalog({record}).value_or("");
    const auto begin = text.find("\"modifiedAt\":") + 13;
    return text.substr(begin, text.find(',', begin) - begin);
}

TEST(CatalogCoding, ADateOfNegativeZeroKeepsItsSign) {
    EXPECT_EQ(dateWritten(-0.0), "-0");
    EXPECT_TRUE(std::signbit(dateRead("-0").value()));
    EXPECT_FALSE(std::signbit(dateRead("0").value()));
    EXPECT_EQ(sizeRead("-0"), 0);
}

TEST(CatalogCoding, AnEmptyListIsAnEmptyArray) {
    EXPECT_EQ(encodeCatalog({}), "[]");
    EXPECT_EQ(decodeCatalog("[]"), std::vector<InstalledApplication>());
}

TEST(CatalogCoding, WritesMembersInTheOrderOfTheFields) {
    EXPECT_EQ(
        encodeCatalog({application(), application()}),
        R"([{"url":"file:\/\/\/Applications\/Foo.app\/","name":"Foo","bundleIdentifier":"org.example.foo",)"
        R"("version":"1.0","size":10,"modifiedAt":5.5,"isSystemApplication":false,"isInstalled":true},)"
        R"({"url":"file:\/\/\/Applications\/Foo.app\/","name":"Foo","bundleIdentifier":"org.example.foo",)"
        R"("version":"1.0","size":10,"modifiedAt":5.5,"isSystemApplication":false,"isInstalled":true}])");
}

TEST(CatalogCoding, LeavesAbsentMembersOut) {
    auto record = application();
    record.bundleIdentifier = std::nullopt;
    record.modifiedAt = std::nullopt;
    const auto object = nlohmann::json::parse(encodeCatalog({record}).value()).at(0);
    EXPECT_EQ(object.size(), 6U);
    EXPECT_FALSE(object.contains("bundleIdentifier"));
    EXPECT_FALSE(object.contains("modifiedAt"));
    EXPECT_EQ(decodeCatalog(encodeCatalog({record}).value()), std::vector{record});
}

TEST(CatalogCoding, RefusesARecordWithoutAnyOtherMember) {
    const auto whole = nlohmann::json::parse(encodeCatalog({application()}).value());
    for (const auto& [key, value] : whole.at(0).items()) {
        auto list = whole;
        list[0].erase(key);
        const bool isOptional = key == "bundleIdentifier" || key == "modifiedAt";
        EXPECT_EQ(decodeCatalog(list.dump()).has_value(), isOptional) << key;
    }
}

TEST(CatalogCoding, OneBadElementRefusesTheWholeList) {
    auto list = nlohmann::json::parse(encodeCatalog({application(), application()}).value());
    list[1]["size"] = "10";
    EXPECT_FALSE(decodeCatalog(list.dump()));
}

TEST(CatalogCoding, NamesThatAreNoTextAreRepaired) {
    auto record = application();
    record.url = FileURL::fromPath("/Applications/\xFF.app", true);
    record.name = "\xFF";
    record.version = "1\xC3";
    record.bundleIdentifier = "\xED\xA0\x80";
    const auto written = encodeCatalog({record});
    ASSERT_TRUE(written);
    EXPECT_TRUE(isValidUTF8(*written));
    const auto read = decodeCatalog(*written);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->at(0).url, record.url);
    EXPECT_EQ(read->at(0).name, "\uFFFD");
    EXPECT_EQ(read->at(0).version, "1\uFFFD");
    EXPECT_EQ(read->at(0).bundleIdentifier, "\uFFFD\uFFFD\uFFFD");
}

TEST(CatalogCoding, EveryCharacterOfANameIsReadBack) {
    auto record = application();
    record.name = "\0/\\\"\b\f\n\r\t\x1F\x7F\u0080\u2028\uFEFF\uFFFF\U0010FFFF"s;
    EXPECT_EQ(decodeCatalog(encodeCatalog({record}).value()), std::vector{record});
}

TEST(CatalogCoding, ADateWithoutANumberIsNotWritten) {
    for (const double date :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        auto record = application();
        record.modifiedAt = Date{date};
        EXPECT_FALSE(encodeCatalog({record}));
    }
}

TEST(CatalogCoding, WritesDatesInTheShortestForm) {
    EXPECT_EQ(dateWritten(0), "0");
    EXPECT_EQ(dateWritten(700000000), "700000000");
    EXPECT_EQ(dateWritten(0.1), "0.1");
    EXPECT_EQ(dateWritten(0.0001), "0.0001");
    EXPECT_EQ(dateWritten(0.00001), "1e-05");
    EXPECT_EQ(dateWritten(-123456.789), "-123456.789");
    EXPECT_EQ(dateWritten(9007199254740992), "9007199254740992");
    EXPECT_EQ(dateWritten(1e16), "1e+16");
    EXPECT_EQ(dateWritten(-1.5e300), "-1.5e+300");
    EXPECT_EQ(dateWritten(5e-324), "5e-324");
}

TEST(CatalogCoding, EveryFiniteDateIsReadBack) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 5000; ++i) {
        const auto date = std::bit_cast<double>(random());
        if (!std::isfinite(date)) continue;
        EXPECT_EQ(dateRead(dateWritten(date)), date);
    }
}

TEST(CatalogCoding, ReadsIntegersInEveryNotation) {
    EXPECT_EQ(sizeRead("1.0"), 1);
    EXPECT_EQ(sizeRead("1e2"), 100);
    EXPECT_EQ(sizeRead("100e-2"), 1);
    EXPECT_EQ(sizeRead("1e18"), 1'000'000'000'000'000'000);
    EXPECT_EQ(sizeRead("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(sizeRead("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(sizeRead("1.5"), std::nullopt);
    EXPECT_EQ(sizeRead("1e-2"), std::nullopt);
    EXPECT_EQ(sizeRead("9223372036854775808"), std::nullopt);
    EXPECT_EQ(sizeRead("-9223372036854775809"), std::nullopt);
    EXPECT_EQ(sizeRead("9223372036854775807.0"), std::nullopt);
    EXPECT_EQ(sizeRead("1e19"), std::nullopt);
    EXPECT_EQ(sizeRead("1e400"), std::nullopt);
}

TEST(CatalogCoding, NeverReadsAnIntegerAsItsNeighbour) {
    // Between whole doubles from here on lie whole numbers.
    EXPECT_EQ(sizeRead("9007199254740993.0"), 9'007'199'254'740'993);
    EXPECT_EQ(sizeRead("-900719925474099300e-2"), -9'007'199'254'740'993);
    EXPECT_EQ(sizeRead("9.007199254740993E+15"), 9'007'199'254'740'993);
    EXPECT_EQ(sizeRead("0.00009007199254740993e20"), 9'007'199'254'740'993);
    EXPECT_EQ(sizeRead("9007199254740993.5"), std::nullopt);
}

TEST(CatalogCoding, ReadsNumbersAlikeInEveryLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) GTEST_SKIP() << "no German locale here";
    EXPECT_EQ(sizeRead("9007199254740993.0"), 9'007'199'254'740'993);
    EXPECT_EQ(sizeRead("1.5"), std::nullopt);
    EXPECT_EQ(dateRead("1.5"), 1.5);
    EXPECT_EQ(dateWritten(1.5), "1.5");
    std::setlocale(LC_ALL, before.c_str());
}

TEST(CatalogCoding, TheFirstOfTwoMembersWithOneNameCounts) {
    const auto records = decodeCatalog(recordWith(R"("size":1,"size":"x","name":[{}])"));
    ASSERT_TRUE(records);
    EXPECT_EQ(records->at(0).size, 1);
    EXPECT_EQ(records->at(0).name, "A");
}

TEST(CatalogCoding, ANumberTooLargeMattersOnlyWhereItIsWanted) {
    const std::string many(400, '9');
    for (const std::string& number :
         {"1e400"s, "-1e+999999999999999999999"s, many, "-" + many, many + ".5", "1.5E400"s, many + "e-10",
          "0.001e400"s, "1e9223372036854775807"s, "10e+9223372036854775806"s}) {
        SCOPED_TRACE(number);
        EXPECT_EQ(sizeRead("7,\"x\":" + number), 7);
        EXPECT_EQ(sizeRead("7,\"x\":[" + number + ",{\"y\":" + number + "}]"), 7);
        EXPECT_EQ(sizeRead("7,\"size\":" + number), 7);
        EXPECT_EQ(sizeRead(number), std::nullopt);
        for (const auto* wanted : {"modifiedAt", "bundleIdentifier"}) {
            EXPECT_EQ(sizeRead("7,\"" + std::string(wanted) + "\":" + number), std::nullopt) << wanted;
        }
        EXPECT_FALSE(decodeCatalog(number));
        EXPECT_FALSE(decodeCatalog("[" + number + "]"));
    }
}

TEST(CatalogCoding, ANumberTooLargeChangesNothingAroundIt) {
    // Strings and numbers too close to zero stay what they are.
    const auto records = decodeCatalog(recordWith(
        R"("size":1,"x":1e400,"modifiedAt":1e-999999999999999999999,"bundleIdentifier":"\\\"1e400")"));
    ASSERT_TRUE(records);
    EXPECT_EQ(records->at(0).modifiedAt, Date{0});
    EXPECT_EQ(records->at(0).bundleIdentifier, "\\\"1e400");
    for (const std::string number : {"0.001e-9223372036854775808", "1e-9223372036854775807"}) {
        const auto tiny = decodeCatalog(recordWith("\"size\":1,\"modifiedAt\":" + number));
        ASSERT_TRUE(tiny) << number;
        EXPECT_EQ(tiny->at(0).modifiedAt, Date{0}) << number;
    }
    EXPECT_FALSE(decodeCatalog(recordWith(R"("size":1,"x":1e400,"y":1e400e)")));
    EXPECT_FALSE(decodeCatalog(recordWith(R"("size":1,"x":1e400,"y":")")));
    EXPECT_FALSE(decodeCatalog(recordWith(R"("size":1,"x":1e400,"y":"\)")));
}

TEST(CatalogCoding, ARecordTakesNothingFromTheOneBefore) {
    const auto records =
        decodeCatalog("[{" + members + R"(,"size":1,"bundleIdentifier":"x","modifiedAt":1},{)" + members +
                      R"(,"size":2}])");
    ASSERT_TRUE(records);
    EXPECT_EQ(records->at(1).bundleIdentifier, std::nullopt);
    EXPECT_EQ(records->at(1).modifiedAt, std::nullopt);
}

TEST(CatalogCoding, ANULEndsNoText) {
    EXPECT_FALSE(decodeCatalog("[]\0"s));
    EXPECT_FALSE(decodeCatalog("[]\0[]"s));
    EXPECT_FALSE(decodeCatalog("\0[]"s));
}

TEST(CatalogCoding, DepthIsRefusedNotFollowed) {
    constexpr std::size_t depth = 10'000'000;
    EXPECT_FALSE(decodeCatalog(std::string(depth, '[')));
    EXPECT_FALSE(
        decodeCatalog(recordWith("\"size\":0,\"x\":" + std::string(depth, '[') + std::string(depth, ']'))));
    std::string objects;
    for (int i = 0; i < 1'000'000; ++i) objects += R"({"x":)";
    EXPECT_FALSE(decodeCatalog(recordWith("\"size\":0,\"x\":" + objects)));
}

TEST(CatalogCoding, WhatNobodyAsksForIsReadAsStrictly) {
    for (const std::string sound : {"0", "-0.5e+7 ", "null", "true", "\"\\u00e9\\ud83d\\ude00\"", "[]",
                                    "[1,[{}],\"\"]", "{\"a\":{\"a\":[null]},\"a\":2}"}) {
        EXPECT_EQ(sizeRead("7,\"x\":" + sound), 7) << sound;
        EXPECT_EQ(sizeRead("7,\"size\":" + sound), 7) << sound;
    }
    for (const std::string broken : {"01",
                                     "1.",
                                     ".5",
                                     "+1",
                                     "-",
                                     "1e",
                                     "0x1",
                                     "1a",
                                     "1 2",
                                     "NaN",
                                     "tru",
                                     "nulll",
                                     "True",
                                     "",
                                     "\"\\x\"",
                                     "\"\\u12\"",
                                     "\"\\ud800\"",
                                     "\"\\udc00\"",
                                     "\"\\ud800\\u0041\"",
                                     "\"\t\"",
                                     "\"\xFF\"",
                                     "\"\xED\xA0\x80\"",
                                     "'a'",
                                     "[1,]",
                                     "[,]",
                                     "[1 2]",
                                     "[1}",
                                     "[tru]",
                                     "{\"a\"}",
                                     "{\"a\":1,}",
                                     "{\"a\" 1}",
                                     "{1:2}",
                                     "{\"\\ud800\":1}",
                                     "{\"a\":1 \"b\":2}",
                                     "{\"a\":\"\\q\"}",
                                     "/**/1"}) {
        EXPECT_EQ(sizeRead("7,\"x\":" + broken), std::nullopt) << broken;
        EXPECT_EQ(sizeRead("7,\"size\":" + broken), std::nullopt) << broken;
    }
}

TEST(CatalogCoding, NothingButBlanksFollowsTheList) {
    const auto whole = encodeCatalog({application()}).value();
    EXPECT_TRUE(decodeCatalog(" \t\r\n" + whole + " \t\r\n"));
    for (const std::string rest : {"]", "[]", ",", "x", "\"\"", "1", "{}", "]]", "x]"}) {
        EXPECT_FALSE(decodeCatalog(whole + rest)) << rest;
        EXPECT_FALSE(decodeCatalog(whole + " " + rest)) << rest;
        EXPECT_FALSE(decodeCatalog(rest + whole)) << rest;
    }
}

TEST(CatalogCoding, AByteOrderMarkMayComeFirst) {
    EXPECT_TRUE(decodeCatalog("\xEF\xBB\xBF[]"));
    EXPECT_FALSE(decodeCatalog("\xEF\xBB\xBF\xEF\xBB\xBF[]"));
    EXPECT_FALSE(decodeCatalog("\xEF\xBB[]"));
    EXPECT_FALSE(decodeCatalog("\xEF\xBB\xBF"));
}

TEST(CatalogCoding, NestingIsAtMost512Deep) {
    // The list and the record are two of them.
    const auto nested = [](std::size_t depth, const std::string& open, const std::string& close) {
        std::string text;
        for (std::size_t i = 0; i < depth; ++i) text += open;
        text += "0";
        for (std::size_t i = 0; i < depth; ++i) text += close;
        return text;
    };
    EXPECT_EQ(sizeRead("7,\"x\":" + nested(510, "[", "]")), 7);
    EXPECT_EQ(sizeRead("7,\"x\":" + nested(511, "[", "]")), std::nullopt);
    EXPECT_EQ(sizeRead("7,\"x\":" + nested(510, "{\"y\":", "}")), 7);
    EXPECT_EQ(sizeRead("7,\"x\":" + nested(511, "{\"y\":", "}")), std::nullopt);
}

TEST(CatalogCoding, DamagedBytesNeverDoMoreThanBeRefused) {
    const auto whole = encodeCatalog({application(), application()}).value();
    std::mt19937 random(2);
    std::size_t refused = 0;
    for (int i = 0; i < 5000; ++i) {
        auto bytes = whole;
        for (auto edits = random() % 3 + 1; edits > 0; --edits) {
            const auto at = random() % bytes.size();
            if (random() % 2 == 0) {
                bytes[at] = static_cast<char>(random());
            } else {
                bytes.erase(at, random() % 8);
            }
            if (bytes.empty()) break;
        }
        const auto records = decodeCatalog(bytes);
        if (!records) {
            ++refused;
            continue;
        }
        // What is accepted is a catalog: it can be written, and is then read as the same.
        EXPECT_EQ(decodeCatalog(encodeCatalog(*records).value()), records) << bytes;
    }
    EXPECT_GT(refused, 2500U);
}

}  // namespace
}  // namespace orvane
