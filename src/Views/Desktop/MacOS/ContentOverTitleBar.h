#pragma once

#include <cstdint>

namespace orvane {

/// Has the content of a window reach its top, below the buttons, which stay. `view` is the address of the
/// NSView that fills it. Nothing happens where that is in no window yet. Main thread.
void extendContentOverTitleBar(std::uintptr_t view);

}  // namespace orvane
