#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <map>

#include "Platform/Clock.h"

namespace orvane::test {

/// Time that passes only when the test says so. Used from one thread, the one that runs `executor` and the
/// sleepers.
class ManualClock : public Clock {
  public:
    explicit ManualClock(asio::any_io_executor executor);

    Task<void> sleep(std::chrono::nanoseconds duration) override;

    /// Lets time pass: every sleep that ends by then is posted to its executor, in the order of its end.
    void advance(std::chrono::nanoseconds duration);
    std::size_t sleeperCount() const { return sleepers_.size(); }

  private:
    asio::any_io_executor executor_;
    std::chrono::nanoseconds now_{0};
    /// By their end. A timer that never expires stands for each; ending the sleep cancels it.
    std::multimap<std::chrono::nanoseconds, asio::steady_timer*> sleepers_;
};

}  // namespace orvane::test
