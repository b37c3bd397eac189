#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Platform/Machine.h"
#include "Programs/Arguments.h"

namespace orvane::commandline {

struct ListOptions {
    bool rescan = false;
    std::string search;
    bool json = false;
};

struct PlanOptions {
    std::string application;
    /// With each item the reason why it is in the plan.
    bool why = false;
    bool json = false;
};

struct RemoveOptions {
    std::string application;
    bool permanently = false;
    /// Items of the plan that stay, each by its path or its URL.
    std::vector<std::string> keep;
    bool dryRun = false;
    bool yes = false;
    bool json = false;
};

/// What one command line asks for.
struct Options {
    MachineOptions machine;
    std::variant<ListOptions, PlanOptions, RemoveOptions> command;
};

std::variant<Options, Answer> parseOptions(int argc, const char* const* argv);

}  // namespace orvane::commandline
