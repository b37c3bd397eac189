#pragma once

#include <chrono>
#include <memory>

#include "Platform/Task.h"

namespace orvane {

/// Time that only goes forward.
class Clock {
  public:
    virtual ~Clock() = default;

    /// Resumes the caller after `duration`, on the caller's executor; at once, and without an error, when the
    /// caller's cancellation slot is signalled.
    virtual Task<void> sleep(std::chrono::nanoseconds duration) = 0;
};

/// The machine's own monotonic clock.
std::unique_ptr<Clock> makeClock();

}  // namespace orvane
