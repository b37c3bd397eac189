#include "Views/Desktop/MacOS/ContentOverTitleBar.h"
#include "Views/Desktop/NativeMenuBar.h"
#include "Views/Desktop/TitleBar.h"

namespace orvane {

double titleBarAir() {
    return 28;
}

void hideTitleBar(QWindow& window) {
    extendContentOverTitleBar(static_cast<std::uintptr_t>(window.winId()));
}

QUrl nativeMenuBar() {
    return QUrl(QStringLiteral("qrc:/qt/qml/Orvane/NativeMenuBar.qml"));
}

}  // namespace orvane
