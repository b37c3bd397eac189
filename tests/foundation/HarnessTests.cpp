#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/Fixtures/FoundationData.h"

namespace orvane::test {
namespace {

using nlohmann::json;

const auto agree = [](const json&) -> Disagreement { return std::nullopt; };

TEST(FoundationHarness, CountsEveryRowThatAgrees) {
    const auto result = tally(json::parse(R"([{"a": 1}, {"a": 2}])"), agree);
    EXPECT_EQ(result.rows, 2U);
    EXPECT_EQ(result.agreed, 2U);
    EXPECT_TRUE(result.disagreements.empty());
}

TEST(FoundationHarness, CountsRowsThatDoNotBindApart) {
    const auto result = tally(json::parse(R"([{"a": 1}, {"a": 2, "binding": false}])"), agree);
    EXPECT_EQ(result.notBinding, 1U);
    EXPECT_EQ(result.agreed, 1U);
}

TEST(FoundationHarness, AWrongAnswerDisagrees) {
    const auto result = tally(json::parse(R"([{"a": 1}, {"a": 2}])"), [](const json& row) {
        return differences({{"a", row.at("a"), 1}});
    });
    EXPECT_EQ(result.agreed, 1U);
    ASSERT_EQ(result.disagreements.size(), 1U);
    EXPECT_TRUE(result.disagreements[0].starts_with("a: expected 2, got 1"));
}

TEST(FoundationHarness, ACheckThatThrowsDisagrees) {
    const auto result = tally(json::parse(R"([{"a": 1}])"),
                              [](const json&) -> Disagreement { throw std::runtime_error("lost"); });
    EXPECT_EQ(result.agreed, 0U);
    EXPECT_EQ(result.disagreements.size(), 1U);
}

TEST(FoundationHarness, ReadsBase64) {
    EXPECT_EQ(bytesFromBase64(""), "");
    EXPECT_EQ(bytesFromBase64("Zg=="), "f");
    EXPECT_EQ(bytesFromBase64("Zm8="), "fo");
    EXPECT_EQ(bytesFromBase64("Zm9v"), "foo");
    EXPECT_EQ(bytesFromBase64("/wD+"), std::string("\xFF\0\xFE", 3));
    EXPECT_THROW(bytesFromBase64("Zm 9v"), std::invalid_argument);
}

}  // namespace
}  // namespace orvane::test
