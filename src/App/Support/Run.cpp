#include "App/Support/Run.h"

#include <QtGui/QGuiApplication>
#include <cstdio>
#include <string_view>
#include <utility>

#include "App/Support/Options.h"
#include "App/Support/Window.h"
#include "CommandLine/Support/Console.h"
#include "Services/FatalError.h"
#include "Views/Support/Rendering.h"

namespace orvane::app {
namespace {

int complain(int status, std::string_view text) {
    commandline::write(stderr, "orvane: " + commandline::printable(text) + "\n");
    return status;
}

}  // namespace

int run(int argc, char** argv) {
    endClearlyOnUncaughtErrors();
    const auto parsed = parseOptions(argc, argv);
    if (const auto* answer = std::get_if<Answer>(&parsed)) {
        if (answer->status != 0) return complain(answer->status, answer->text);
        if (!commandline::write(stdout, answer->text)) return complain(1, "the output could not be written");
        return 0;
    }
    const auto& options = std::get<Options>(parsed);
    auto machine = makeMachine(options.machine);
    if (!machine) return complain(2, machine.error());
    if (!hasDisplay()) return complain(1, "there is no display to open a window on");

    chooseRenderer();
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Orvane"));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.example.orvane"));
    chooseFont();
    return runWindow(std::move(*machine), options);
}

}  // namespace orvane::app
