#include "Views/Keyboard/KeyFilters.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QInputMethodQueryEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QWindow>
#include <utility>

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

bool KeyGate::keeps(const QKeyEvent& press) {
    if (!isShut_ || !isPressingKey(press.key())) return false;
    emit knocked();
    return true;
}

void KeyGate::cameUp(const QKeyEvent& release) {
    if (isShut_ && isPressingKey(release.key())) emit knocked();
}

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
