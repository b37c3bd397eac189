#include "Programs/CommandLine/CommandLineProgram.h"

#include <asio/co_spawn.hpp>
#include <exception>
#include <utility>

namespace orvane::commandline {

CommandLineProgram::CommandLineProgram(Machine machine)
    : graph_(std::move(machine)),
      planner_(graph_.makePlanner()),
      removalService_(graph_.makeRemovalService()) {}

int CommandLineProgram::run(Task<int> command) {
    int status = 1;
    auto& main = graph_.main();
    asio::co_spawn(main, std::move(command), [&](const std::exception_ptr& error, int result) {
        if (error) std::rethrow_exception(error);
        status = result;
        main.stop();
    });
    main.run();
    return status;
}

}  // namespace orvane::commandline
