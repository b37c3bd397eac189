#include "Views/Keyboard/AltKey.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QWindow>
#include <utility>

namespace orvane {

AltKey::AltKey(QObject* parent) : KeyFilter(parent) {
    // Whoever switches to another window with it lets it go there.
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this] { setDown(false); });
}

bool AltKey::keeps(const QKeyEvent& press) {
    if (press.key() == Qt::Key_Alt) setDown(true);
    return false;
}

void AltKey::cameUp(const QKeyEvent& release) {
    if (release.key() == Qt::Key_Alt) setDown(false);
}

void AltKey::setDown(bool isDown) {
    if (std::exchange(isDown_, isDown) != isDown) emit isDownChanged();
}

}  // namespace orvane
