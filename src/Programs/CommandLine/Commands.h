#pragma once

#include <variant>

#include "Programs/CommandLine/CommandLineOptions.h"
#include "Programs/CommandLine/CommandLineProgram.h"

namespace orvane::commandline {

/// Each command runs on the program's main executor and gives the exit status. `program` outlives it.
Task<int> list(CommandLineProgram& program, ListOptions options);
Task<int> plan(CommandLineProgram& program, PlanOptions options);
Task<int> remove(CommandLineProgram& program, RemoveOptions options);

Task<int> perform(CommandLineProgram& program, std::variant<ListOptions, PlanOptions, RemoveOptions> command);

}  // namespace orvane::commandline
