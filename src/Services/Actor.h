#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/co_spawn.hpp>
#include <asio/strand.hpp>
#include <asio/use_awaitable.hpp>
#include <type_traits>
#include <utility>

#include "Platform/Task.h"

namespace orvane {

/// A service whose calls run one at a time on an executor of its own, off the caller's thread.
class Actor {
  public:
    Actor(const Actor&) = delete;
    Actor& operator=(const Actor&) = delete;

  protected:
    /// `pool` is the process's thread pool and outlives the actor.
    explicit Actor(const asio::any_io_executor& pool) : strand_(asio::make_strand(pool)) {}
    ~Actor() = default;

    /// Runs a function on the actor; the caller is resumed on its own executor with the result.
    template <typename F>
    Task<std::invoke_result_t<F&>> perform(F function) {
        co_return co_await asio::co_spawn(strand_, run(std::move(function)), asio::use_awaitable);
    }

    /// Runs a coroutine on the actor, which is free for other calls while that one waits.
    template <typename T>
    Task<T> performTask(Task<T> task) {
        co_return co_await asio::co_spawn(strand_, std::move(task), asio::use_awaitable);
    }

  private:
    template <typename F>
    static Task<std::invoke_result_t<F&>> run(F function) {
        if constexpr (std::is_void_v<std::invoke_result_t<F&>>) {
            function();
            co_return;
        } else {
            // Named, because clang's analyzer takes what is returned directly for evaluated twice.
            auto result = function();
            co_return result;
        }
    }

    asio::strand<asio::any_io_executor> strand_;
};

}  // namespace orvane
