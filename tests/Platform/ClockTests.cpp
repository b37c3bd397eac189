#include "Platform/Clock.h"

#include <gtest/gtest.h>

#include <asio/bind_cancellation_slot.hpp>
#include <asio/cancellation_signal.hpp>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/this_coro.hpp>
#include <string>

namespace orvane {
namespace {

using namespace std::chrono_literals;

class ClockTest : public testing::Test {
  protected:
    /// Sleeps, then writes a letter down.
    static Task<void> sleepThenWrite(Clock& clock, std::chrono::nanoseconds duration, std::string& text,
                                     char letter) {
        co_await clock.sleep(duration);
        text += letter;
    }

    /// Starts a sleep that a signal can end; any exception in it is thrown out of `context_.run()`.
    void spawnCancellable(Task<void> task, asio::cancellation_signal& signal) {
        asio::co_spawn(context_, std::move(task),
                       asio::bind_cancellation_slot(signal.slot(), [](const std::exception_ptr& error) {
                           if (error) std::rethrow_exception(error);
                       }));
    }

    asio::io_context context_;
    std::unique_ptr<Clock> clock_ = makeClock();
};

TEST_F(ClockTest, LetsAtLeastTheTimePass) {
    const auto start = std::chrono::steady_clock::now();
    asio::co_spawn(context_, clock_->sleep(2ms), asio::detached);
    context_.run();
    EXPECT_GE(std::chrono::steady_clock::now() - start, 2ms);
}

TEST_F(ClockTest, TheShorterSleepEndsFirst) {
    std::string text;
    asio::cancellation_signal signal;
    // So much longer that it does not matter when each is begun.
    spawnCancellable(sleepThenWrite(*clock_, 1h, text, 'b'), signal);
    asio::co_spawn(context_, sleepThenWrite(*clock_, 1ms, text, 'a'), asio::detached);
    while (text.empty()) context_.run_one();
    EXPECT_EQ(text, "a");
    signal.emit(asio::cancellation_type::terminal);
    context_.run();
    EXPECT_EQ(text, "ab");
}

TEST_F(ClockTest, NoTimeAndLessAreNoSleep) {
    std::string text;
    asio::co_spawn(context_, sleepThenWrite(*clock_, 0ns, text, 'a'), asio::detached);
    asio::co_spawn(context_, sleepThenWrite(*clock_, -1h, text, 'b'), asio::detached);
    context_.run();
    EXPECT_EQ(text.size(), 2u);
}

TEST_F(ClockTest, ASignalEndsTheLongestSleepWithoutAnError) {
    std::string text;
    asio::cancellation_signal signal;
    spawnCancellable(sleepThenWrite(*clock_, std::chrono::nanoseconds::max(), text, 'a'), signal);
    context_.poll();
    EXPECT_EQ(text, "");

    asio::post(context_, [&] { signal.emit(asio::cancellation_type::terminal); });
    context_.run();
    EXPECT_EQ(text, "a");
}

/// Goes to sleep only once it has been cancelled.
Task<void> sleepAfterCancellation(Clock& clock, asio::cancellation_signal& signal, std::string& text) {
    co_await asio::this_coro::throw_if_cancelled(false);
    signal.emit(asio::cancellation_type::terminal);
    co_await clock.sleep(1h);
    text += 'a';
}

TEST_F(ClockTest, ASignalBeforeTheSleepLeavesNothingToSleep) {
    std::string text;
    asio::cancellation_signal signal;
    spawnCancellable(sleepAfterCancellation(*clock_, signal, text), signal);
    context_.run();
    EXPECT_EQ(text, "a");
}

}  // namespace
}  // namespace orvane
