#include "Models/FileSizeFormatter.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {
namespace {

std::string text(std::int64_t bytes) {
    return FileSizeFormatter::shared().string(bytes);
}

TEST(FileSizeFormatter, ShowsLessThanAKilobyteInKilobytes) {
    EXPECT_EQ(text(0), "Zero KB");
    EXPECT_EQ(text(1), "0 KB");
    EXPECT_EQ(text(499), "0 KB");
    EXPECT_EQ(text(501), "1 KB");
}

TEST(FileSizeFormatter, ThreeDigitsHaveNoSeparator) {
    EXPECT_EQ(text(999), "1 KB");
    EXPECT_EQ(text(500'000), "500 KB");
    EXPECT_EQ(text(123'456'789), "123.5 MB");
}

TEST(FileSizeFormatter, HalvesGoToTheEvenNeighbour) {
    EXPECT_EQ(text(500), "0 KB");
    EXPECT_EQ(text(1'500), "2 KB");
    EXPECT_EQ(text(2'500), "2 KB");
    EXPECT_EQ(text(1'150'000), "1.2 MB");
    EXPECT_EQ(text(1'250'000), "1.2 MB");
    EXPECT_EQ(text(1'015'000'000), "1.02 GB");
    EXPECT_EQ(text(1'025'000'000), "1.02 GB");
}

TEST(FileSizeFormatter, OneByteAboveAHalfRoundsUpHoweverLargeTheNumber) {
    EXPECT_EQ(text(9'000'000'005'000'000'000), "9,000,000 TB");
    EXPECT_EQ(text(9'000'000'005'000'000'001), "9,000,000.01 TB");
    EXPECT_EQ(text(9'000'000'015'000'000'000), "9,000,000.02 TB");
    EXPECT_EQ(text(9'000'000'014'999'999'999), "9,000,000.01 TB");
}

TEST(FileSizeFormatter, RoundingNeverChangesTheUnit) {
    EXPECT_EQ(text(999'999), "1,000 KB");
    EXPECT_EQ(text(999'999'999), "1,000 MB");
    EXPECT_EQ(text(999'999'999'999), "1,000 GB");
    EXPECT_EQ(text(1'000'000'000'000), "1 TB");
}

TEST(FileSizeFormatter, KeepsZerosWithinTheFraction) {
    EXPECT_EQ(text(1'050'000'000), "1.05 GB");
    EXPECT_EQ(text(1'500'000'000), "1.5 GB");
}

TEST(FileSizeFormatter, HoldsForNegativeCountsToo) {
    EXPECT_EQ(text(-1), "0 KB");
    EXPECT_EQ(text(-1'500), "-2 KB");
    EXPECT_EQ(text(-12'345'678), "-12.3 MB");
    EXPECT_EQ(text(std::numeric_limits<std::int64_t>::max()), "9,223,372.04 TB");
    EXPECT_EQ(text(std::numeric_limits<std::int64_t>::min()), "-9,223,372.04 TB");
}

}  // namespace
}  // namespace orvane
