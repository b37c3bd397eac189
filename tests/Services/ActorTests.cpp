#include "Services/Actor.h"

#include <gtest/gtest.h>

#include <asio/bind_cancellation_slot.hpp>
#include <asio/cancellation_signal.hpp>
#include <asio/io_context.hpp>
#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/this_coro.hpp>
#include <asio/thread_pool.hpp>
#include <asio/use_future.hpp>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace orvane {
namespace {

/// An actor that notices when two of its calls run at the same time.
class Watchman : private Actor {
  public:
    explicit Watchman(const asio::any_io_executor& pool) : Actor(pool), gate_(pool) {
        gate_.expires_at(asio::steady_timer::time_point::max());
    }

    Task<int> count() {
        return perform([this] {
            if (isInside_.exchange(true)) overlapped_ = true;
            std::this_thread::yield();
            const int value = ++count_;
            isInside_ = false;
            return value;
        });
    }

    Task<std::thread::id> thread() {
        return perform([] { return std::this_thread::get_id(); });
    }

    Task<void> fail() {
        return perform([] { throw std::runtime_error("failed"); });
    }

    Task<std::unique_ptr<int>> take(std::unique_ptr<int> value) {
        return perform([value = std::move(value)]() mutable { return std::move(value); });
    }

    Task<int> waitForGate() { return performTask(waiting()); }

    Task<void> openGate() {
        return perform([this] { gate_.expires_at(asio::steady_timer::time_point::min()); });
    }

    bool overlapped() const { return overlapped_; }

  private:
    Task<int> waiting() {
        asio::error_code ignored;
        auto token = asio::redirect_error(asio::use_awaitable, ignored);
        co_await gate_.async_wait(token);
        co_return ++count_;
    }

    std::atomic<bool> isInside_ = false;
    std::atomic<bool> overlapped_ = false;
    int count_ = 0;
    asio::steady_timer gate_;
};

class ActorTest : public testing::Test {
  protected:
    template <typename T>
    T run(Task<T> task) {
        auto result = asio::co_spawn(main_, std::move(task), asio::use_future);
        main_.restart();
        main_.run();
        return result.get();
    }

    asio::io_context main_;
    asio::thread_pool pool_{4};
    Watchman watchman_{pool_.get_executor()};
};

Task<bool> staysOnItsExecutor(Watchman& watchman, int calls) {
    const auto own = co_await asio::this_coro::executor;
    const auto thread = std::this_thread::get_id();
    for (int i = 0; i < calls; ++i) {
        co_await watchman.count();
        if (co_await asio::this_coro::executor != own) co_return false;
        if (std::this_thread::get_id() != thread) co_return false;
    }
    co_return true;
}

TEST_F(ActorTest, ResumesTheCallerOnTheCallersExecutor) {
    EXPECT_TRUE(run(staysOnItsExecutor(watchman_, 1000)));
}

Task<bool> staysOnItsStrand(Watchman& watchman, asio::strand<asio::any_io_executor> strand) {
    for (int i = 0; i < 1000; ++i) {
        co_await watchman.count();
        if (!strand.running_in_this_thread()) co_return false;
    }
    co_return true;
}

TEST_F(ActorTest, ResumesOneActorOnItsOwnStrandAfterCallingAnother) {
    const asio::any_io_executor pool = pool_.get_executor();
    const auto strand = asio::make_strand(pool);
    EXPECT_TRUE(asio::co_spawn(strand, staysOnItsStrand(watchman_, strand), asio::use_future).get());
}

TEST_F(ActorTest, RunsOffTheCallersThread) {
    EXPECT_NE(run(watchman_.thread()), std::this_thread::get_id());
}

Task<int> countOften(Watchman& watchman, int calls) {
    int last = 0;
    for (int i = 0; i < calls; ++i) last = co_await watchman.count();
    co_return last;
}

TEST_F(ActorTest, CallsFromManyExecutorsNeverOverlap) {
    std::vector<std::future<int>> results;
    for (int caller = 0; caller < 8; ++caller) {
        results.push_back(asio::co_spawn(pool_, countOften(watchman_, 500), asio::use_future));
    }
    int last = 0;
    for (auto& result : results) last = std::max(last, result.get());
    EXPECT_EQ(last, 8 * 500);
    EXPECT_FALSE(watchman_.overlapped());
}

TEST_F(ActorTest, CallsOfOneExecutorRunInTheOrderInWhichTheyWereMade) {
    std::vector<std::future<int>> results;
    for (int call = 0; call < 100; ++call) {
        results.push_back(asio::co_spawn(main_, watchman_.count(), asio::use_future));
    }
    main_.run();
    for (int call = 0; call < 100; ++call) EXPECT_EQ(results[static_cast<std::size_t>(call)].get(), call + 1);
}

TEST_F(ActorTest, AnExceptionReachesTheCaller) {
    EXPECT_THROW(run(watchman_.fail()), std::runtime_error);
    EXPECT_EQ(run(watchman_.count()), 1);
}

TEST_F(ActorTest, CarriesWhatCanOnlyBeMoved) {
    EXPECT_EQ(*run(watchman_.take(std::make_unique<int>(7))), 7);
}

TEST_F(ActorTest, IsFreeForOtherCallsWhileACoroutineOfItsWaits) {
    auto waiting = asio::co_spawn(main_, watchman_.waitForGate(), asio::use_future);
    auto counting = asio::co_spawn(main_, watchman_.count(), asio::use_future);
    auto opening = asio::co_spawn(main_, watchman_.openGate(), asio::use_future);
    main_.run();
    opening.get();
    EXPECT_EQ(counting.get(), 1);
    EXPECT_EQ(waiting.get(), 2);
}

TEST_F(ActorTest, ACallThatNobodyAwaitsNeverRuns) {
    { const auto dropped = watchman_.count(); }
    EXPECT_EQ(run(watchman_.count()), 1);
}

}  // namespace
}  // namespace orvane
