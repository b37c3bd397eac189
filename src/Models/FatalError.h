#pragma once

#include <string_view>

namespace orvane {

/// Ends the program with one line on standard error: for what cannot happen unless the program is wrong.
[[noreturn]] void fatalError(std::string_view message);

/// From now on an error that nothing catches (no more memory, threads or descriptors) ends the program with
/// one line on standard error and exit status 1. For the first lines of a program.
void endClearlyOnUncaughtErrors();

}  // namespace orvane
