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

/// Needs no program: it is about this machine, not about a volume. Gives the exit status.
int listDisks(DisksOptions options);

/// Whatever the command is, but the list of disks.
Task<int> perform(CommandLineProgram& program, Command command);

}  // namespace orvane::commandline
