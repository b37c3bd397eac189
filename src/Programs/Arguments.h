#pragma once

#include <optional>
#include <string>

#include "Platform/Machine.h"

namespace CLI {
class App;
}

namespace orvane {

/// A command line that is answered at once: help or the version (status 0), or one line about a mistake
/// (status 2).
struct Answer {
    int status = 0;
    std::string text;
};

/// The options that say which Mac volume it is about. They are read into `machine`, which outlives the
/// parser.
void addMachineOptions(CLI::App& app, MachineOptions& machine);

/// Reads the arguments into what the parser was told of; an answer where there is nothing more to do.
std::optional<Answer> parse(CLI::App& app, int argc, const char* const* argv);

}  // namespace orvane
