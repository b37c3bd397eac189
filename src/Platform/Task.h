#pragma once

#include <asio/awaitable.hpp>

namespace orvane {

/// An asynchronous operation: a coroutine that starts when it is awaited and resumes its caller on the
/// caller's executor.
template <typename T>
using Task = asio::awaitable<T>;

}  // namespace orvane
