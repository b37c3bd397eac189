#pragma once

#include <QtCore/QUrl>

namespace orvane {

/// The view that puts the menus of the window's own bar, its property `mirrored`, into the desktop's; empty
/// where windows have their own. The implementation is the platform's.
QUrl nativeMenuBar();

}  // namespace orvane
