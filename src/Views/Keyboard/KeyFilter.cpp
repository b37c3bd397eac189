#include "Views/Keyboard/KeyFilter.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>

namespace orvane {

bool isPressingKey(int key) {
    switch (key) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Select:
        case Qt::Key_Space:
        case Qt::Key_Escape:
            return true;
        default:
            return false;
    }
}

KeyFilter::KeyFilter(QObject* parent) : QObject(parent) {
    qGuiApp->installEventFilter(this);
}

bool KeyFilter::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        if (!keepsFromCommands(*static_cast<QKeyEvent*>(event))) return false;
        event->accept();
        return true;
    }
    // A window hands its keys on to its items, which is seen here, too.
    if (!receiver->isWindowType()) return false;
    if (event->type() == QEvent::KeyPress) return keeps(*static_cast<QKeyEvent*>(event));
    if (event->type() != QEvent::KeyRelease) return false;
    const auto& release = *static_cast<QKeyEvent*>(event);
    // Where a repetition is told as up and down, the key has not come up.
    if (release.isAutoRepeat()) return keeps(release);
    cameUp(release);
    return false;
}

}  // namespace orvane
