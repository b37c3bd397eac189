#include "Views/Keyboard/KeyGate.h"

#include <QtGui/QKeyEvent>

namespace orvane {

bool KeyGate::keeps(const QKeyEvent& press) {
    if (!isShut_ || !isPressingKey(press.key())) return false;
    emit knocked();
    return true;
}

void KeyGate::cameUp(const QKeyEvent& release) {
    if (isShut_ && isPressingKey(release.key())) emit knocked();
}

}  // namespace orvane
