#pragma once

#include <QtQml/qqmlregistration.h>

#include "Views/Keyboard/KeyFilter.h"

namespace orvane {

/// Keeps the keys that press something from the whole program while it is shut, and tells of each.
class KeyGate : public KeyFilter {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(bool isShut MEMBER isShut_)

  public:
    using KeyFilter::KeyFilter;

  signals:
    /// A key was kept, or has come up again while the gate is shut.
    void knocked();

  private:
    bool keeps(const QKeyEvent& press) override;
    void cameUp(const QKeyEvent& release) override;

    bool isShut_ = false;
};

}  // namespace orvane
