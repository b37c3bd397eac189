#include "tests/Fixtures/ManualClock.h"

#include <asio/redirect_error.hpp>
#include <asio/use_awaitable.hpp>
#include <utility>

namespace orvane::test {

ManualClock::ManualClock(asio::any_io_executor executor) : executor_(std::move(executor)) {}

Task<void> ManualClock::sleep(std::chrono::nanoseconds duration) {
    asio::steady_timer timer(executor_, asio::steady_timer::time_point::max());
    const auto sleeper = sleepers_.emplace(now_ + duration, &timer);
    asio::error_code cancelled;
    co_await timer.async_wait(asio::redirect_error(asio::use_awaitable, cancelled));
    sleepers_.erase(sleeper);
}

void ManualClock::advance(std::chrono::nanoseconds duration) {
    now_ += duration;
    for (auto sleeper = sleepers_.begin(); sleeper != sleepers_.upper_bound(now_); ++sleeper) {
        sleeper->second->cancel();
    }
}

}  // namespace orvane::test
