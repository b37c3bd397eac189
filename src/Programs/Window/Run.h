#pragma once

namespace orvane::window {

/// The program: reads the command line, opens the window, and runs until it is closed. Gives the exit status:
/// 0 done, 1 there is no display, 2 a mistake in the command line, told in one line on standard error.
int run(int argc, char** argv);

}  // namespace orvane::window
