#include "Formats/DoubleText.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <random>
#include <string>

namespace orvane::test {
namespace {

/// Whether the stream says of a text what the library says, which reads all of it.
void expectTheSame(const std::string& text) {
    constexpr double before = 0.125;
    double expected = before;
    double found = before;
    const auto* const end = text.data() + text.size();
    const auto library = std::from_chars(text.data(), end, expected);
    const auto stream = doubleFromStream(text, found);
    const bool isWhole = library.ptr == end;
    EXPECT_EQ(stream.ec, isWhole ? library.ec : std::errc::invalid_argument) << text;
    EXPECT_EQ(stream.ptr, isWhole ? end : text.data()) << text;
    if (!isWhole) expected = before;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(found), std::bit_cast<std::uint64_t>(expected)) << text;
}

TEST(DoubleText, AStreamReadsWhatTheLibraryReads) {
    for (const std::string text : {"0",
                                   "-0",
                                   "1",
                                   "1.5",
                                   "-1.5e3",
                                   "1e308",
                                   "1e309",
                                   "-1e400",
                                   "1e-307",
                                   "5e-324",
                                   "1e-323",
                                   "2e-324",
                                   "1e-400",
                                   "-1e-400",
                                   "0e-400",
                                   "0.0e999",
                                   ".5",
                                   "1.",
                                   "1.e2",
                                   "inf",
                                   "-INF",
                                   "Infinity",
                                   "nan",
                                   "-nan",
                                   "9007199254740993",
                                   "0.1",
                                   "1.7976931348623157e308",
                                   "1.7976931348623159e308",
                                   "000001",
                                   "1e+5",
                                   "1e05"}) {
        expectTheSame(text);
    }
}

TEST(DoubleText, WhatIsNoNumberIsNoneToBoth) {
    for (const std::string text : {"", "-", "+1", " 1", "1 ", "1,5", "0x10", "1e", "1e+", ".", "-.", "--1",
                                   "e5", "1.2.3", "1-2", "infinit", "in", "1\n", "1'000"}) {
        expectTheSame(text);
    }
}

TEST(DoubleText, AnyNumberComesBack) {
    std::mt19937_64 random(20'261'122);
    std::array<char, 64> buffer{};
    for (int round = 0; round < 20'000; ++round) {
        const auto number = std::bit_cast<double>(random());
        for (const auto format : {std::chars_format::general, std::chars_format::scientific}) {
            const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, format);
            const std::string text(buffer.data(), written.ptr);
            if (text.find('(') == std::string::npos) expectTheSame(text);
        }
    }
}

}  // namespace
}  // namespace orvane::test
