#pragma once

#include <string>
#include <variant>

#include "Platform/Machine.h"

namespace orvane::app {

struct Options {
    MachineOptions machine;
    /// "light", "dark" or "system".
    std::string appearance = "system";
};

/// What is said instead of opening a window: help, the version, or what is wrong with the command line.
struct Answer {
    int status = 0;
    std::string text;
};

/// Reads the command line. Needs no display and says nothing itself.
std::variant<Options, Answer> parseOptions(int argc, const char* const* argv);

}  // namespace orvane::app
