#include "Services/DiskSize.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {
namespace {

constexpr auto largest = std::numeric_limits<std::int64_t>::max();

TEST(DiskSize, AddsUpToTheLargestCount) {
    EXPECT_EQ(sumOfSizes(2, 3), 5);
    EXPECT_EQ(sumOfSizes(largest - 1, 1), largest);
}

TEST(DiskSizeDeathTest, EndsTheProgramWhenASumDoesNotFit) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(sumOfSizes(largest, 1), "Fatal error: a sum of file sizes exceeds 64 bits");
}

}  // namespace
}  // namespace orvane
