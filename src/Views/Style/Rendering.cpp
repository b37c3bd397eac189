#include "Views/Style/Rendering.h"

#include <QtCore/QSysInfo>
#include <QtGui/QFont>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickWindow>
#include <algorithm>
#include <array>

namespace orvane {
namespace {

bool isOnMac() {
    return QSysInfo::kernelType() == QLatin1String("darwin");
}

}  // namespace

bool hasDisplay() {
    constexpr std::array variables{"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
    // Not by the function's name alone, of which later versions of Qt may have several.
    const auto isSet = [](const char* variable) { return qEnvironmentVariableIsSet(variable); };
    return isOnMac() || std::ranges::any_of(variables, isSet);
}

void chooseRenderer() {
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

void chooseFont() {
    if (isOnMac()) return;
    QFont font;
    font.setFamilies({QStringLiteral("Inter"), QStringLiteral("DejaVu Sans")});
    font.setPixelSize(13);
    font.setHintingPreference(QFont::PreferNoHinting);
    QGuiApplication::setFont(font);
    // Pictures that are joined to one are one only where a single font draws all of them.
    QFont::insertSubstitution(QStringLiteral("Inter"), QStringLiteral("Noto Color Emoji"));
}

}  // namespace orvane
