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

struct Numbers : SharedWork<Number> {
    explicit Numbers(int count) {
        for (int i = 0; i < count; ++i) add(std::make_unique<int>(i));
    }
};

TEST(SharedWork, HasNothingToDoWithoutAFirstPiece) {
    Numbers work(0);
    work.takePart([](const Number&) { ADD_FAILURE(); });
}

TEST(SharedWork, DoesEveryPieceOnceThoseThatAreFoundToo) {
    Numbers work(100);
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
    Numbers work(1);
    // The piece is done when all that it has found are begun, which takes a thread for each.
    std::latch begun(threadCount);
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < threadCount; ++i) {
            threads.emplace_back([&] {
                work.takePart([&](const Number& piece) {
                    for (int found = 1; *piece == 0 && found < threadCount; ++found) {
                        auto left = std::make_unique<int>(found);
                        // The others are on their way.
                        while (!work.leave(left)) std::this_thread::yield();
                    }
                    begun.arrive_and_wait();
                });
            });
        }
    }
    EXPECT_TRUE(begun.try_wait());
}

TEST(SharedWork, LetsFewPiecesWaitAndLeavesTheOthersToTheirFinder) {
    constexpr int finds = 1;
    Numbers work(2);
    std::latch begun(2);
    std::latch found(1);
    std::size_t left = 0;
    std::atomic<std::size_t> done = 0;
    const auto takePart = [&] {
        work.takePart([&](const Number& piece) {
            ++done;
            if (*piece > finds) return;
            begun.arrive_and_wait();
            // Meanwhile the other thread takes none.
            if (*piece != finds) return found.wait();
            auto next = std::make_unique<int>(2);
            for (; work.leave(next); next = std::make_unique<int>(2)) ++left;
            EXPECT_EQ(*next, 2) << "still its finder's";
            found.count_down();
        });
    };
    const auto other = std::make_unique<std::jthread>(takePart);
    takePart();
    other->join();
    EXPECT_EQ(left, Numbers::maximumWaiting);
    EXPECT_EQ(done, 2 + left);
}

TEST(SharedWork, IsItsFindersWhereNobodyElseTakesPart) {
    Numbers work(1);
    work.takePart([&](Number piece) { EXPECT_FALSE(work.leave(piece)); });
}

TEST(SharedWork, KeepsAllOfItsFirstPiecesHoweverMany) {
    constexpr auto count = static_cast<int>(3 * Numbers::maximumWaiting);
    Numbers work(count);
    int sum = 0;
    work.takePart([&](const Number& piece) { sum += *piece; });
    EXPECT_EQ(sum, count * (count - 1) / 2);
}

TEST(SharedWork, IsOverForWhoComesLate) {
    Numbers work(1);
    int done = 0;
    work.takePart([&](const Number&) { ++done; });
    work.takePart([&](const Number&) { ++done; });
    EXPECT_EQ(done, 1);
}

}  // namespace
}  // namespace orvane
