#include "App/Support/Run.h"

#include <QtGui/QGuiApplication>
#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "App/Support/Options.h"
#include "App/Support/Window.h"
#include "Models/UTF8.h"
#include "Services/FatalError.h"
#include "Views/Support/Rendering.h"

namespace orvane::app {
namespace {

/// One line on standard error, in which nothing can command the terminal.
int complain(int status, const std::string& text) {
    std::string line = "orvane: " + repairedUTF8(text);
    std::ranges::replace_if(
        line, [](unsigned char byte) { return byte < ' ' || byte == 0x7f; }, '?');
    std::fputs((line + "\n").c_str(), stderr);
    return status;
}

}  // namespace

int run(int argc, char** argv) {
    endClearlyOnUncaughtErrors();
    const auto parsed = parseOptions(argc, argv);
    if (const auto* answer = std::get_if<Answer>(&parsed)) {
        if (answer->status != 0) return complain(answer->status, answer->text);
        return std::fputs(answer->text.c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
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
