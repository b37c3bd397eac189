#pragma once

#include <functional>
#include <memory>

#include "Views/Desktop/DesktopWishes.h"

namespace orvane {

/// What the Mac's settings of accessibility wish. Of light and dark, and of larger text, they say nothing:
/// that is in Qt's palette, or nowhere. Main thread.
DesktopWishes accessibilityWishes();

/// Calls `changed` whenever one of these settings has changed, for as long as the result is there. Main
/// thread.
std::shared_ptr<void> followAccessibilityWishes(std::function<void()> changed);

}  // namespace orvane
