#include "Platform/Posix/SharedWork.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

namespace orvane {
namespace {

using Number = std::unique_ptr<int>;

std::vector<Number> numbers(int count) {
    std::vector<Number> made;
    for (int i = 0; i < count; ++i) made.push_back(std::make_unique<int>(i));
    return made;
}

TEST(SharedWork, HasNothingToDoWithoutAFirstPiece) {
    SharedWork<Number> work({});
    work.takePart([](const Number&) { ADD_FAILURE(); });
}

TEST(SharedWork, DoesEveryPieceOnceThoseThatAreFoundToo) {
    SharedWork<Number> work(numbers(100));
    std::atomic<int> done = 0;
    // Each piece finds the two whose numbers follow from its own, down to a limit; who cannot leave one does
    // it.
    const auto perform = [&](const auto& self, const Number& piece) -> void {
        ++done;
        if (*piece >= 1000) return;
        for (int i = 0; i < 2; ++i) {
            auto found = std::make_unique<int>(*piece + 300);
            if (!work.leave(found)) self(self, found);
        }
    };
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back(
                [&] { work.takePart([&](const Number& piece) { perform(perform, piece); }); });
        }
    }
    EXPECT_EQ(done, 100 * (1 + 2 + 4 + 8 + 16));
}

TEST(SharedWork, IsSharedByAsManyThreadsAsThereAre) {
    constexpr int threadCount = 5;
    SharedWork<Number> work(numbers(1));
    // The piece is done when all that it has found are begun, which takes a thread for each.
    std::latch begun(threadCount);
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < threadCount; ++i) {
            threads.emplace_back([&] {
                work.takePart([&](const Number& piece) {
                    for (int found = 1; *piece == 0 && found < threadCount; ++found) {
                        auto left = std::make_unique<int>(found);
                        EXPECT_TRUE(work.leave(left));
                    }
                    begun.arrive_and_wait();
                });
            });
        }
    }
    EXPECT_TRUE(begun.try_wait());
}

TEST(SharedWork, LetsFewPiecesWaitAndLeavesTheOthersToTheirFinder) {
    SharedWork<Number> work(numbers(1));
    std::size_t left = 0;
    std::size_t done = 0;
    work.takePart([&](const Number& piece) {
        ++done;
        if (*piece != 0) return;
        auto found = std::make_unique<int>(1);
        for (; work.leave(found); found = std::make_unique<int>(1)) ++left;
        EXPECT_EQ(*found, 1) << "still its finder's";
    });
    EXPECT_EQ(left, SharedWork<Number>::maximumWaiting);
    EXPECT_EQ(done, 1 + left);
}

TEST(SharedWork, KeepsAllOfItsFirstPiecesHoweverMany) {
    constexpr auto count = static_cast<int>(3 * SharedWork<Number>::maximumWaiting);
    SharedWork<Number> work(numbers(count));
    int sum = 0;
    work.takePart([&](const Number& piece) { sum += *piece; });
    EXPECT_EQ(sum, count * (count - 1) / 2);
}

TEST(SharedWork, IsOverForWhoComesLate) {
    SharedWork<Number> work(numbers(1));
    int done = 0;
    work.takePart([&](const Number&) { ++done; });
    work.takePart([&](const Number&) { ++done; });
    EXPECT_EQ(done, 1);
}

}  // namespace
}  // namespace orvane
