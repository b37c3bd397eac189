#pragma once

#include <variant>

#include "CommandLine/Support/Options.h"
#include "CommandLine/Support/Program.h"

namespace orvane::commandline {

/// Each command runs on the program's main executor and gives the exit status. `program` outlives it.
Task<int> list(Program& program, ListOptions options);
Task<int> plan(Program& program, PlanOptions options);
Task<int> remove(Program& program, RemoveOptions options);

Task<int> perform(Program& program, std::variant<ListOptions, PlanOptions, RemoveOptions> command);

}  // namespace orvane::commandline
