#pragma once

#include <string>
#include <variant>

#include "CommandLine/Support/Arguments.h"
#include "Platform/Machine.h"

namespace orvane::app {

struct Options {
    MachineOptions machine;
    /// "light", "dark" or "system".
    std::string appearance = "system";
};

using commandline::Answer;

/// Reads the command line. Needs no display and says nothing itself.
std::variant<Options, Answer> parseOptions(int argc, const char* const* argv);

}  // namespace orvane::app
