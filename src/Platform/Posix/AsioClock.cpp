#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/this_coro.hpp>
#include <asio/use_awaitable.hpp>

#include "Platform/Clock.h"

namespace orvane {

namespace {

class AsioClock : public Clock {
  public:
    Task<void> sleep(std::chrono::nanoseconds duration) override {
        // A signal that came before the wait began would not end it.
        const auto cancellation = co_await asio::this_coro::cancellation_state;
        if (cancellation.cancelled() != asio::cancellation_type::none) co_return;

        asio::steady_timer timer(co_await asio::this_coro::executor);
        timer.expires_after(duration);
        // A cancelled wait ends like one that was long enough; the caller knows whether he cancelled it.
        asio::error_code cancelled;
        co_await timer.async_wait(asio::redirect_error(asio::use_awaitable, cancelled));
    }
};

}  // namespace

std::unique_ptr<Clock> makeClock() {
    return std::make_unique<AsioClock>();
}

}  // namespace orvane
