#include "Programs/Window/Run.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QIcon>
#include <cstdio>
#include <string_view>
#include <utility>

#include "Models/FatalError.h"
#include "Platform/MacDisks.h"
#include "Programs/Output.h"
#include "Programs/Window/Window.h"
#include "Programs/Window/WindowOptions.h"
#include "Views/Keyboard/KeyFilters.h"
#include "Views/Style/Rendering.h"

namespace orvane::window {
namespace {

int complain(int status, std::string_view text) {
    write(stderr, "orvane: " + printable(text) + "\n");
    return status;
}

}  // namespace

int run(int argc, char** argv) {
    endClearlyOnUncaughtErrors();
    const auto parsed = parseOptions(argc, argv);
    if (const auto* answer = std::get_if<Answer>(&parsed)) {
        if (answer->status != 0) return complain(answer->status, answer->text);
        if (!write(stdout, answer->text)) return complain(1, "the output could not be written");
        return 0;
    }
    auto options = std::get<Options>(parsed);
    // Where no disk is named, and this machine has none of its own to show, one is asked for.
    const bool asks = looksAtMacDisks() && !options.machine.root && !options.machine.home;
    auto machine = asks ? tl::unexpected(std::string()) : makeMachine(options.machine);
    if (!asks && !machine) return complain(2, machine.error());
    if (!hasDisplay()) return complain(1, "there is no display to open a window on");

    chooseRenderer();
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Orvane"));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.example.orvane"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/qt/qml/Orvane/Icons/orvane.svg")));
    chooseFont();
    const HeldKeys heldKeys;
    for (bool isReturn = false;; isReturn = true) {
        while (!machine) {
            auto disk = askForDisk(options, isReturn, machine.error());
            if (!disk) return 0;
            machine = makeMachine(*disk);
            if (machine) options.machine = *std::move(disk);
        }
        const auto end = runWindow(*std::move(machine), options);
        if (!end.isForAnotherDisk) return end.status;
        machine = tl::unexpected(std::string());
    }
}

}  // namespace orvane::window
