#pragma once

#include <cstddef>

#include "Text/FunctionRef.h"

namespace orvane {

/// Calls what it is given on the calling thread, on others at the same time if it likes, and returns when all
/// calls have.
using Together = FunctionRef<void(FunctionRef<void()> work)>;

/// On the calling thread only.
inline constexpr auto alone = [](FunctionRef<void()> work) { work(); };

/// On the calling thread and on as many helpers of its own, or fewer where the system grants no more threads.
void withHelpers(std::size_t count, FunctionRef<void()> work);

}  // namespace orvane
