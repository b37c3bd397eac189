#pragma once

#include "Platform/Machine.h"
#include "Programs/Window/WindowOptions.h"

namespace orvane::window {

/// Opens the window and runs until it is closed. Gives the program's exit status. Needs a QGuiApplication.
int runWindow(Machine machine, const Options& options);

}  // namespace orvane::window
