#pragma once

#include <asio/any_io_executor.hpp>

#include "Platform/Task.h"

namespace orvane {

/// Starts a coroutine that nobody awaits. It begins on a later turn of the executor, never inside the call;
/// an exception that leaves it ends the program.
void spawn(const asio::any_io_executor& executor, Task<void> task);

}  // namespace orvane
