#include "CommandLine/Support/Program.h"

#include <asio/co_spawn.hpp>
#include <exception>

namespace orvane::commandline {

Program::Program(Machine machine)
    : machine_(std::move(machine)),
      scanner_(pool_.get_executor(), *machine_.fileManager, *machine_.bundleLoader, *machine_.localizedText),
      catalog_(pool_.get_executor(), *machine_.fileManager, *machine_.localizedText),
      planner_(pool_.get_executor(), *machine_.fileManager, *machine_.workspace, *machine_.localizedText),
      removalService_(pool_.get_executor(), *machine_.fileManager, *machine_.workspace,
                      *machine_.scriptRunner),
      library_(AppLibrary::make(main_.get_executor(), scanner_, catalog_, *machine_.localizedText,
                                *machine_.clock)) {}

Program::~Program() {
    pool_.join();
}

int Program::run(Task<int> command) {
    int status = 1;
    asio::co_spawn(main_, std::move(command), [&](const std::exception_ptr& error, int result) {
        if (error) std::rethrow_exception(error);
        status = result;
        main_.stop();
    });
    main_.run();
    return status;
}

}  // namespace orvane::commandline
