#pragma once

#include <optional>
#include <string>

#include "Platform/Machine.h"
#include "Programs/Window/WindowOptions.h"

namespace orvane::window {

/// How a window has ended.
struct WindowEnd {
    /// The program's exit status, if the program is to end with it.
    int status = 0;
    /// The user wants another disk to be opened in its place.
    bool isForAnotherDisk = false;
};

/// Opens the window and runs until it is closed. Needs a QGuiApplication.
WindowEnd runWindow(Machine machine, const Options& options);

/// Has the user choose a Mac's disk, or opens the only one; absent where the user wants none. `message` is
/// shown with it. `isReturn` says that a disk was open before, to which the user may go back: then that is
/// opened again, `options.machine`.
std::optional<MachineOptions> askForDisk(const Options& options, bool isReturn, const std::string& message);

}  // namespace orvane::window
