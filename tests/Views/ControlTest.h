#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtQuick/QQuickItem>
#include <QtTest/QSignalSpy>

#include "tests/Views/ViewTest.h"

namespace orvane::test {

/// Shared controls on a stage of their own.
class ControlTest : public ViewTest {
  protected:
    /// Shows what is written in QML, in a window that has the keyboard.
    QQuickItem& stage(const QString& qml, QSize size = {600, 500});
    QObject& theme();

    void hover(const QQuickItem& item);
    /// What a screen reader does to press something. False when it cannot.
    static bool pressForScreenReader(QObject& object);
    bool isActive(const QString& objectName) { return item(objectName).hasActiveFocus(); }
};

}  // namespace orvane::test
