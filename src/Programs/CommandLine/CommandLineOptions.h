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

/// The Mac disks of this machine; takes no volume.
struct DisksOptions {
    bool json = false;
};

/// What a shell asks to complete a name with; it takes no options.
struct CompleteOptions {};

using Command = std::variant<ListOptions, PlanOptions, RemoveOptions, CompleteOptions, DisksOptions>;

/// What one command line asks for.
struct Options {
    MachineOptions machine;
    Command command;
};

std::variant<Options, Answer> parseOptions(int argc, const char* const* argv);

}  // namespace orvane::commandline
