#pragma once

#include <string>
#include <variant>

#include "Platform/Machine.h"
#include "Programs/Arguments.h"

namespace orvane::window {

struct Options {
    MachineOptions machine;
    /// "light", "dark" or "system".
    std::string appearance = "system";
};

/// Reads the command line. Needs no display and says nothing itself.
std::variant<Options, Answer> parseOptions(int argc, const char* const* argv);

}  // namespace orvane::window
