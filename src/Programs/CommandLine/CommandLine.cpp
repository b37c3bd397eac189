#include "Programs/CommandLine/CommandLine.h"

#include "Models/FatalError.h"
#include "Programs/CommandLine/CommandLineProgram.h"
#include "Programs/CommandLine/Commands.h"
#include "Programs/CommandLine/Console.h"

namespace orvane::commandline {

int run(int argc, const char* const* argv) {
    endClearlyOnUncaughtErrors();
    auto parsed = parseOptions(argc, argv);
    if (const auto* answer = std::get_if<Answer>(&parsed)) {
        if (answer->status != 0) {
            complain(answer->text);
            return answer->status;
        }
        return print(answer->text) ? 0 : 1;
    }
    const auto& options = std::get<Options>(parsed);

    if (const auto* disks = std::get_if<DisksOptions>(&options.command)) return listDisks(*disks);
    auto machine = makeMachine(options.machine);
    if (!machine) {
        complain(machine.error());
        return 2;
    }
    CommandLineProgram program(std::move(*machine));
    return program.run(perform(program, options.command));
}

}  // namespace orvane::commandline
