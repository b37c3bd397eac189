#pragma once

namespace orvane::commandline {

/// The whole program: parses, builds the object graph, runs one command, and gives the exit status: 0 done, 1
/// an item could not be removed (or the output could not be written), 2 a mistake in the command line.
int run(int argc, const char* const* argv);

}  // namespace orvane::commandline
