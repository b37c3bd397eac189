#pragma once

#include "Programs/CommandLine/CommandLineOptions.h"
#include "Programs/CommandLine/CommandLineProgram.h"

namespace orvane::commandline {

/// Each command runs on the program's main executor and gives the exit status. `program` outlives it.
Task<int> list(CommandLineProgram& program, ListOptions options);
Task<int> plan(CommandLineProgram& program, PlanOptions options);
Task<int> remove(CommandLineProgram& program, RemoveOptions options);
/// Writes what each application can be called in a command, each word ended by a NUL. Reads the saved list,
/// or what the bundles say of themselves, measures nothing and saves nothing, so that it is quick.
Task<int> complete(CommandLineProgram& program);

Task<int> perform(CommandLineProgram& program, Command command);

}  // namespace orvane::commandline
