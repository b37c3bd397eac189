#pragma once

#include <string_view>

namespace orvane {

/// Ends the program with one line on standard error: for what cannot happen unless the program is wrong.
[[noreturn]] void fatalError(std::string_view message);

}  // namespace orvane
