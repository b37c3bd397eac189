#include "Programs/Window/WindowOptions.h"

#include <CLI/CLI.hpp>
#include <utility>

#include "Platform/MacDisks.h"

namespace orvane::window {
namespace {

const char* const statuses = "Exit status: 0 done, 1 there is no display, 2 a mistake in the command line.";

std::string footer() {
    const std::string rootless =
        looksAtMacDisks() ? "Without a root the window offers the Mac disks that are mounted here. "
                          : "Without a root the window shows this machine itself. ";
    return rootless + statuses;
}

}  // namespace

std::variant<Options, Answer> parseOptions(int argc, const char* const* argv) {
    Options options;
    CLI::App app("Finds the applications of a Mac volume, shows what belongs to each, and removes it.",
                 "orvane");
    app.footer(footer());
    app.set_version_flag("--version", "orvane " ORVANE_VERSION);
    addMachineOptions(app, options.machine);
    app.add_option("--appearance", options.appearance, "light, dark, or system: as the desktop is")
        ->type_name("NAME")
        ->check(CLI::IsMember({"light", "dark", "system"}));

    if (auto answer = parse(app, argc, argv)) return *std::move(answer);
    return options;
}

}  // namespace orvane::window
