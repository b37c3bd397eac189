#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// The desktop's own symbol of a name, fitted into the middle of so many device pixels: of each of them, row
/// by row from the top, how opaque it is, from 0 to 255. Absent where the desktop has no such symbol. The
/// implementation is the platform's. Main thread.
std::optional<std::string> systemSymbol(std::string_view name, int width, int height);

}  // namespace orvane
