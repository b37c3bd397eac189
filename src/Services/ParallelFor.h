#pragma once

#include <asio/any_io_executor.hpp>
#include <cstddef>

#include "Text/FunctionRef.h"

namespace orvane {

/// Calls `body(index)` once for each index below `count` and returns when all calls have. The calling thread
/// takes part, and idle threads of the pool help: a pool that is busy, or whose threads are all inside this
/// function, makes it slower, never stuck. `body` is called from several threads at once and must not throw.
void parallelFor(const asio::any_io_executor& pool, std::size_t count, FunctionRef<void(std::size_t)> body);

/// Calls `work`, which returns when there is nothing left to do, on the calling thread and on each idle
/// thread of the pool, and returns when all calls have. Otherwise as `parallelFor`; `work` may be called in
/// vain.
void workTogether(const asio::any_io_executor& pool, FunctionRef<void()> work);

}  // namespace orvane
