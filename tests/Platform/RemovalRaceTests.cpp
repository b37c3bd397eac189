#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "Platform/FileManager.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

class RemovalRace {
  protected:
    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(RemovalRace, AFolderThatKeepsFillingUpDoesNotHoldTheRemoval) {
    mac_.makeFile("/tree/busy/file");
    const auto busy = mac_.machinePath("/tree/busy/");
    std::atomic<bool> isOver = false;
    std::atomic<int> made = 0;
    std::thread filler([&] {
        while (!isOver) {
            std::ofstream(busy + std::to_string(made)) << "x";
            ++made;
        }
    });
    while (made < 100) std::this_thread::yield();
    const auto removed = removeItem(mac_.files(), url("/tree"));
    isOver = true;
    filler.join();
    if (!removed) {
        EXPECT_EQ(removed.error(), std::errc::directory_not_empty);
    } else {
        EXPECT_FALSE(mac_.contains("/tree"));
    }
}

PRIVATE_MOUNTS_TEST(RemovalRace, TwoRemovalsOfOneTreeDoNotDisturbEachOther) {
    for (int round = 0; round < 50; ++round) {
        for (int i = 0; i < 100; ++i) {
            mac_.makeFile("/tree/" + std::to_string(i % 10) + "/" + std::to_string(i));
        }
        Result<void> other;
        std::thread second([&] { other = removeItem(mac_.files(), url("/tree")); });
        const auto removed = removeItem(mac_.files(), url("/tree"));
        second.join();
        for (const auto& result : {removed, other}) {
            EXPECT_TRUE(result || result.error() == std::errc::no_such_file_or_directory);
        }
        EXPECT_TRUE(removed || other);
        ASSERT_FALSE(mac_.contains("/tree"));
    }
}

}  // namespace
}  // namespace orvane::test
