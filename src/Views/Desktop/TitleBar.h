#pragma once

#include <QtGui/QWindow>

namespace orvane {

// Where the platform's windows can do without a title bar, the main one does: its content reaches the top.
// The implementation is the platform's. Main thread.

/// Points that stay free above the sidebar, because the system's buttons lie there; 0 where there are none.
double titleBarAir();

/// Takes the title bar from a window that has been made.
void hideTitleBar(QWindow& window);

}  // namespace orvane
