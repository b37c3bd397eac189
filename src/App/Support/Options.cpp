#include "App/Support/Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

namespace orvane::app {
namespace {

const char* const footer =
    "Without a root the window shows this machine itself. Exit status: 0 done, 1 there is no display, 2 a "
    "mistake in the command line.";

}  // namespace

std::variant<Options, Answer> parseOptions(int argc, const char* const* argv) {
    Options options;
    CLI::App app("Finds the applications of a Mac volume, shows what belongs to each, and removes it.",
                 "orvane");
    app.footer(footer);
    app.set_version_flag("--version", "orvane " ORVANE_VERSION);
    app.add_option("--root", options.machine.root, "The Mac volume: a folder laid out like a Mac's disk")
        ->type_name("DIR");
    app.add_option("--home", options.machine.home, "The user's home, a path on the volume")
        ->type_name("PATH");
    app.add_option("--appearance", options.appearance, "light, dark, or system: as the desktop is")
        ->type_name("NAME")
        ->check(CLI::IsMember({"light", "dark", "system"}));

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        std::ostringstream text;
        app.exit(success, text, text);
        return Answer{0, text.str()};
    } catch (const CLI::ParseError& error) {
        std::string line = error.what();
        std::replace(line.begin(), line.end(), '\n', ' ');
        return Answer{2, std::move(line)};
    }
    return options;
}

}  // namespace orvane::app
