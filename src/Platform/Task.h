#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/awaitable.hpp>

namespace orvane {

/// An asynchronous operation: a coroutine that starts when it is awaited and resumes its caller on the
/// caller's executor.
template <typename T>
using Task = asio::awaitable<T>;

/// Starts a coroutine that nobody awaits. It begins on a later turn of the executor, never inside the call;
/// an exception that leaves it ends the program.
void spawn(const asio::any_io_executor& executor, Task<void> task);

}  // namespace orvane
