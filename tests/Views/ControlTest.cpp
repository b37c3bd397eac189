#include "tests/Views/ControlTest.h"

#include <QtGui/QAccessible>
#include <QtQml/QQmlComponent>
#include <QtTest/QTest>
#include <stdexcept>

namespace orvane::test {

QQuickItem& ControlTest::stage(const QString& qml, QSize size) {
    QQmlComponent component(&engine);
    component.setData(QStringLiteral("import QtQuick\nimport Orvane\n%1").arg(qml).toUtf8(), {});
    auto* const item = qobject_cast<QQuickItem*>(component.create());
    if (!item) throw std::runtime_error(component.errorString().toStdString());
    auto* const content = window->property("contentItem").value<QQuickItem*>();
    item->QObject::setParent(content);
    item->setParentItem(content);
    window->resize(size);
    window->show();
    window->requestActivate();
    if (!QTest::qWaitForWindowActive(window.get())) throw std::runtime_error("no keyboard for the window");
    return *item;
}

QObject& ControlTest::theme() {
    QQmlComponent component(&engine);
    component.setData("import QtQml\nimport Orvane\nQtObject { property QtObject theme: Theme }", {});
    const std::unique_ptr<QObject> holder(component.create());
    return *holder->property("theme").value<QObject*>();
}

void ControlTest::hover(const QQuickItem& item) {
    const QPoint centre = item.mapToScene(QPointF(item.width() / 2, item.height() / 2)).toPoint();
    QTest::mouseMove(window.get(), centre - QPoint(1, 1));
    QTest::mouseMove(window.get(), centre);
}

bool ControlTest::pressForScreenReader(QObject& object) {
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&object);
    if (!interface || !interface->actionInterface()) return false;
    if (!interface->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()))
        return false;
    interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    return true;
}

}  // namespace orvane::test
