#pragma once

#include "App/Support/Options.h"
#include "Platform/Machine.h"

namespace orvane::app {

/// Opens the window and runs until it is closed. Gives the program's exit status. Needs a QGuiApplication.
int runWindow(Machine machine, const Options& options);

}  // namespace orvane::app
