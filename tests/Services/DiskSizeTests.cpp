#include "Services/DiskSize.h"

#include <gtest/gtest.h>

#include <limits>

#include "Models/FileSize.h"

namespace orvane {
namespace {

constexpr auto largest = std::numeric_limits<std::int64_t>::max();

TEST(DiskSize, AddsUpToTheLargestCount) {
    EXPECT_EQ(sumOfSizes(2, 3), 5);
    EXPECT_EQ(sumOfSizes(largest - 1, 1), largest);
}

RelatedItem itemOf(std::int64_t size) {
    RelatedItem item;
    item.size = size;
    return item;
}

TEST(DiskSize, OfAllItemsIsTheirSum) {
    EXPECT_EQ(totalSize({}), 0);
    EXPECT_EQ(totalSize({itemOf(largest - 3), itemOf(1), itemOf(2)}), largest);
}

TEST(DiskSizeDeathTest, EndsTheProgramWhenASumDoesNotFit) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(totalSize({itemOf(largest), itemOf(1)}), "Fatal error: a sum of file sizes exceeds 64 bits");
    EXPECT_DEATH(sumOfSizes(largest, 1), "Fatal error: a sum of file sizes exceeds 64 bits");
}

}  // namespace
}  // namespace orvane
