#include "Views/Desktop/NativeMenuBar.h"
#include "Views/Desktop/TitleBar.h"

namespace orvane {

// Here the desktop draws the title bar, and the window its menus.

double titleBarAir() {
    return 0;
}

void hideTitleBar(QWindow& /*window*/) {}

QUrl nativeMenuBar() {
    return {};
}

}  // namespace orvane
