#include "Services/ParallelFor.h"

#include <gtest/gtest.h>

#include <array>
#include <asio/post.hpp>
#include <asio/thread_pool.hpp>
#include <atomic>
#include <barrier>
#include <future>
#include <memory>
#include <mutex>
#include <numeric>
#include <set>
#include <thread>
#include <vector>

namespace orvane {
namespace {

/// A pool whose only thread does something else for as long as this lives.
class BusyPool {
  public:
    BusyPool() {
        asio::post(pool_, [released = release_.get_future().share()] { released.wait(); });
    }
    ~BusyPool() { release_.set_value(); }
    BusyPool(const BusyPool&) = delete;
    BusyPool& operator=(const BusyPool&) = delete;

    asio::any_io_executor executor() { return pool_.get_executor(); }

  private:
    asio::thread_pool pool_{1};
    std::promise<void> release_;
};

TEST(ParallelFor, CallsTheBodyOnceForEachIndex) {
    asio::thread_pool pool(4);
    std::vector<int> calls(10'000);
    parallelFor(pool.get_executor(), calls.size(), [&](std::size_t index) { ++calls[index]; });
    EXPECT_EQ(calls, std::vector<int>(10'000, 1));
}

TEST(ParallelFor, CallsNothingForNoIndex) {
    asio::thread_pool pool(1);
    parallelFor(pool.get_executor(), 0, [](std::size_t) { FAIL(); });
}

TEST(ParallelFor, DoesASingleIndexOnTheCallingThread) {
    asio::thread_pool pool(2);
    std::thread::id thread;
    parallelFor(pool.get_executor(), 1, [&](std::size_t) { thread = std::this_thread::get_id(); });
    EXPECT_EQ(thread, std::this_thread::get_id());
}

// Three indexes that end only together: two idle threads have to come to the caller's help.
TEST(ParallelFor, IsHelpedByEveryIdleThread) {
    asio::thread_pool pool(2);
    std::atomic<int> present = 0;
    std::mutex mutex;
    std::set<std::thread::id> threads;
    parallelFor(pool.get_executor(), 3, [&](std::size_t) {
        {
            const std::scoped_lock lock(mutex);
            threads.insert(std::this_thread::get_id());
        }
        ++present;
        present.notify_all();
        for (int count = present; count < 3; count = present) present.wait(count);
    });
    EXPECT_EQ(threads.size(), 3U);
}

TEST(ParallelFor, IsHelpedWithTwoIndexes) {
    asio::thread_pool pool(1);
    std::barrier together(2);
    parallelFor(pool.get_executor(), 2, [&](std::size_t) { together.arrive_and_wait(); });
}

// The caller has nothing left to do long before its helper has.
TEST(ParallelFor, EndsOnlyAfterItsHelpers) {
    std::barrier together(2);
    std::atomic<bool> isDone = false;
    const auto caller = std::this_thread::get_id();
    const auto body = [&](std::size_t) {
        together.arrive_and_wait();
        if (std::this_thread::get_id() == caller) return;
        for (int turn = 0; turn < 1'000; ++turn) std::this_thread::yield();
        isDone = true;
    };
    asio::thread_pool pool(1);
    for (int round = 0; round < 20; ++round) {
        isDone = false;
        parallelFor(pool.get_executor(), 2, body);
        ASSERT_TRUE(isDone);
    }
}

TEST(ParallelFor, NeedsNoHelpFromABusyPool) {
    BusyPool pool;
    std::vector<int> calls(100);
    parallelFor(pool.executor(), calls.size(), [&](std::size_t index) { ++calls[index]; });
    EXPECT_EQ(calls, std::vector<int>(100, 1));
}

TEST(ParallelFor, NeedsNoHelpFromAStoppedPool) {
    asio::thread_pool pool(1);
    pool.stop();
    std::vector<int> calls(100);
    parallelFor(pool.get_executor(), calls.size(), [&](std::size_t index) { ++calls[index]; });
    EXPECT_EQ(calls, std::vector<int>(100, 1));
}

// The helper starts when the pool gets free, after the call has returned and its body is gone.
TEST(ParallelFor, LeavesNothingToDoForLateHelpers) {
    BusyPool pool;
    const auto calls = std::make_unique<std::vector<int>>(100);
    {
        const auto body = std::make_unique<std::vector<int>*>(calls.get());
        parallelFor(pool.executor(), 100, [&](std::size_t index) { ++(**body)[index]; });
    }
    EXPECT_EQ(*calls, std::vector<int>(100, 1));
}

TEST(ParallelFor, MayBeNested) {
    asio::thread_pool pool(3);
    const auto executor = pool.get_executor();
    std::array<std::array<std::atomic<int>, 8>, 8> calls{};
    parallelFor(executor, 8, [&](std::size_t outer) {
        parallelFor(executor, 8, [&](std::size_t middle) {
            parallelFor(executor, 8, [&](std::size_t) { ++calls[outer][middle]; });
        });
    });
    for (const auto& row : calls) {
        for (const auto& count : row) EXPECT_EQ(count, 8);
    }
}

TEST(ParallelFor, IsNeverStuckWhenEveryThreadOfThePoolIsInsideIt) {
    asio::thread_pool pool(2);
    const asio::any_io_executor executor = pool.get_executor();
    std::atomic<std::size_t> sum = 0;
    for (int job = 0; job < 50; ++job) {
        asio::post(pool, [&] {
            parallelFor(executor, 20, [&](std::size_t) {
                parallelFor(executor, 20, [&](std::size_t index) { sum += index; });
            });
        });
    }
    pool.join();
    EXPECT_EQ(sum, 50U * 20U * 190U);
}

TEST(ParallelFor, GivesTheCallerEverythingTheHelpersWrote) {
    asio::thread_pool pool(4);
    for (int round = 0; round < 500; ++round) {
        std::vector<std::size_t> squares(64);
        parallelFor(pool.get_executor(), squares.size(),
                    [&](std::size_t index) { squares[index] = index * index; });
        ASSERT_EQ(std::accumulate(squares.begin(), squares.end(), std::size_t{0}), 85'344U);
    }
}

}  // namespace
}  // namespace orvane
