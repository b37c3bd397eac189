#include "Services/RemovalMessage.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

RemovalResult resultOf(std::size_t removed, std::size_t failed) {
    RemovalResult result;
    result.removed.resize(removed);
    result.failed.resize(failed);
    return result;
}

TEST(RemovalMessage, CountsWhatWentToTheTrash) {
    EXPECT_EQ(removalMessage(resultOf(3, 0), RemovalMode::trash), "Moved 3 item(s) to Trash.");
}

TEST(RemovalMessage, CountsWhatWasDeletedForGood) {
    EXPECT_EQ(removalMessage(resultOf(2, 0), RemovalMode::permanent), "Deleted 2 item(s) permanently.");
}

TEST(RemovalMessage, SaysHowManyItemsCouldNotBeRemoved) {
    EXPECT_EQ(removalMessage(resultOf(1, 1), RemovalMode::permanent),
              "Deleted 1 item(s) permanently. 1 item(s) could not be removed. Locked items may require "
              "administrator access.");
}

TEST(RemovalMessage, WritesPlainDecimalNumbers) {
    EXPECT_EQ(removalMessage(resultOf(12345, 0), RemovalMode::trash), "Moved 12345 item(s) to Trash.");
}

}  // namespace
}  // namespace orvane
