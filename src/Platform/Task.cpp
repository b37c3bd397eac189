#include "Platform/Task.h"

#include <asio/co_spawn.hpp>
#include <exception>
#include <utility>

namespace orvane {

void spawn(const asio::any_io_executor& executor, Task<void> task) {
    asio::co_spawn(executor, std::move(task), [](const std::exception_ptr& error) {
        if (error) std::rethrow_exception(error);
    });
}

}  // namespace orvane
