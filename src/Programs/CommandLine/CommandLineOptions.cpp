#include "Programs/CommandLine/CommandLineOptions.h"

#include <CLI/CLI.hpp>
#include <utility>

#include "Platform/MacDisks.h"

namespace orvane::commandline {
namespace {

const char* const footer =
    "APP is the path of an application's bundle, its file URL, or a name that only one application has.\n"
    "Exit status: 0 done, 1 an item could not be removed, 2 a mistake in the command line.";

}  // namespace

std::variant<Options, Answer> parseOptions(int argc, const char* const* argv) {
    Options options;
    ListOptions list;
    PlanOptions plan;
    RemoveOptions remove;
    DisksOptions disks;

    CLI::App app(
        "Lists the applications of a Mac volume, finds everything that belongs to one, and removes it.",
        "orvane-cli");
    app.footer(footer);
    app.set_version_flag("--version", "orvane-cli " ORVANE_VERSION);
    addMachineOptions(app, options.machine);
    app.require_subcommand(1);

    auto* listCommand = app.add_subcommand("list", "List the applications");
    listCommand->add_flag("--rescan", list.rescan, "Look through the application folders again");
    listCommand->add_option("--search", list.search, "Only those whose name or identifier contains TEXT")
        ->type_name("TEXT");
    listCommand->add_flag("--json", list.json, "Write one JSON document");

    auto* planCommand = app.add_subcommand("plan", "Show everything that belongs to an application");
    planCommand->add_option("APP", plan.application, "The application")->required()->type_name("");
    planCommand->add_flag("--why", plan.why, "Say of each item why it is there");
    planCommand->add_flag("--json", plan.json, "Write one JSON document");

    auto* removeCommand =
        app.add_subcommand("remove", "Remove an application with everything that belongs to it");
    removeCommand->add_option("APP", remove.application, "The application")->required()->type_name("");
    removeCommand->add_flag("--permanently", remove.permanently,
                            "Delete for good instead of moving to the Trash");
    removeCommand->add_option("--keep", remove.keep, "An item that stays; may be given several times")
        ->type_name("PATH")
        // One value each, so that what follows it is still read as APP.
        ->allow_extra_args(false);
    removeCommand->add_flag("--dry-run", remove.dryRun, "Show what would be removed and change nothing");
    removeCommand->add_flag("--yes", remove.yes, "Do not ask");
    removeCommand->add_flag("--json", remove.json, "Write one JSON document");

    CLI::App* disksCommand = nullptr;
    if (looksAtMacDisks()) {
        disksCommand = app.add_subcommand("disks", "List the Mac disks that are mounted on this machine");
        disksCommand->add_flag("--json", disks.json, "Write one JSON document");
    }

    // For the completions of the shells; not in the help.
    auto* completeCommand = app.add_subcommand("complete")->group("");

    if (auto answer = parse(app, argc, argv)) return *std::move(answer);

    if (*listCommand) options.command = std::move(list);
    if (*planCommand) options.command = std::move(plan);
    if (*removeCommand) options.command = std::move(remove);
    if (disksCommand != nullptr && *disksCommand) {
        if (options.machine.root || options.machine.home)
            return Answer{2, "disks looks at all of this machine: it takes neither --root nor --home"};
        options.command = disks;
    }
    if (*completeCommand) options.command = CompleteOptions();
    return options;
}

}  // namespace orvane::commandline
