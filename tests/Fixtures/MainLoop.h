#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/co_spawn.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/use_future.hpp>
#include <chrono>
#include <future>
#include <utility>

#include "Platform/Task.h"
#include "Text/FunctionRef.h"

namespace orvane::test {

/// The main executor of a test. It runs only inside these calls, on the test's own thread.
class MainLoop {
  public:
    asio::any_io_executor executor() { return context_.get_executor(); }

    /// Starts a coroutine, which gets as far as it can without waiting.
    template <typename T>
    std::future<T> start(Task<T> task) {
        auto result = asio::co_spawn(context_, std::move(task), asio::use_future);
        drain();
        return result;
    }

    /// Runs until the result is there. Throws when it does not come.
    template <typename T>
    T wait(std::future<T> result) {
        runUntil([&] { return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
        return result.get();
    }

    /// Runs a coroutine to its end.
    template <typename T>
    T run(Task<T> task) {
        return wait(start(std::move(task)));
    }

    /// Runs until the condition holds. Throws when it does not within a deadline far beyond any real wait.
    void runUntil(FunctionRef<bool()> condition);
    /// Runs everything that is ready.
    void drain();

  private:
    asio::io_context context_;
    asio::executor_work_guard<asio::io_context::executor_type> work_{context_.get_executor()};
};

}  // namespace orvane::test
