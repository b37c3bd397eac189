#include "Programs/Arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

namespace orvane {

void addMachineOptions(CLI::App& app, MachineOptions& machine) {
    app.add_option("--root", machine.root, "The Mac volume: a folder laid out like a Mac's disk")
        ->type_name("DIR");
    app.add_option("--home", machine.home, "The user's home, a path on the volume")->type_name("PATH");
}

std::optional<Answer> parse(CLI::App& app, int argc, const char* const* argv) {
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
    return std::nullopt;
}

}  // namespace orvane
