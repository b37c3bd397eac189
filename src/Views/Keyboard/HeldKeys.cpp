#include "Views/Keyboard/HeldKeys.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QInputMethodQueryEvent>
#include <QtGui/QKeyEvent>

namespace orvane {
namespace {

constexpr Qt::KeyboardModifiers commandModifiers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

bool moves(int key) {
    switch (key) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
        case Qt::Key_Home:
        case Qt::Key_End:
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return true;
        default:
            return false;
    }
}

bool isInTextField() {
    QObject* const focus = QGuiApplication::focusObject();
    if (!focus) return false;
    QInputMethodQueryEvent query(Qt::ImEnabled);
    QCoreApplication::sendEvent(focus, &query);
    return query.value(Qt::ImEnabled).toBool();
}

bool writes(const QKeyEvent& stroke) {
    if (stroke.modifiers() & (Qt::AltModifier | Qt::MetaModifier)) return false;
    return (!isPressingKey(stroke.key()) || stroke.key() == Qt::Key_Space) && isInTextField();
}

}  // namespace

bool HeldKeys::keeps(const QKeyEvent& press) {
    return isRepetition(press) && !moves(press.key()) && !writes(press);
}

bool HeldKeys::keepsFromCommands(const QKeyEvent& stroke) {
    return isRepetition(stroke);
}

void HeldKeys::cameUp(const QKeyEvent& release) {
    lastReleased_ = release.key();
    lastReleasedAt_ = release.timestamp();
}

bool HeldKeys::isRepetition(const QKeyEvent& stroke) const {
    if (stroke.isAutoRepeat()) return true;
    // Some displays tell a repetition as the key's coming up and going down, and do not say more. No finger
    // is as quick as that. Letters are left alone: whoever types quickly may hit one twice.
    constexpr quint64 quickest = 10;
    const bool asks = isPressingKey(stroke.key()) || (stroke.modifiers() & commandModifiers);
    return asks && stroke.key() == lastReleased_ && stroke.timestamp() - lastReleasedAt_ < quickest;
}

}  // namespace orvane
