#include "Views/Desktop/NativeMenuBar.h"
#include "Views/Desktop/SystemSymbol.h"
#include "Views/Desktop/TitleBar.h"

namespace orvane {

// Here the desktop draws the title bar, and the window its menus and its symbols.

double titleBarAir() {
    return 0;
}

void hideTitleBar(QWindow& /*window*/) {}

QUrl nativeMenuBar() {
    return {};
}

std::optional<std::string> systemSymbol(std::string_view /*name*/, int /*width*/, int /*height*/) {
    return std::nullopt;
}

}  // namespace orvane
