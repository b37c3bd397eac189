#include "tests/Views/ViewTest.h"

#include <QtGui/QAccessible>
#include <QtGui/QWheelEvent>
#include <QtQml/QQmlComponent>
#include <QtTest/QTest>
#include <algorithm>
#include <asio/post.hpp>
#include <stdexcept>
#include <utility>

#include "Views/Icons/IconProvider.h"

namespace orvane::test {
namespace {

constexpr int poolThreads = 2;
/// A line that is made of several texts.
const QString tabularText = QStringLiteral("TabularText");

QObject* findBelow(QObject* root, const QString& name) {
    if (root->objectName() == name) return root;
    for (QObject* child : root->children())
        if (QObject* const found = findBelow(child, name)) return found;
    const auto* item = qobject_cast<QQuickItem*>(root);
    if (!item) return nullptr;
    for (QQuickItem* child : item->childItems()) {
        // Most are children of both kinds, and have been searched.
        if (child->parent() == root) continue;
        if (QObject* const found = findBelow(child, name)) return found;
    }
    return nullptr;
}

template <typename Visit>
void visitSeen(const QQuickItem& item, Visit visit) {
    for (QQuickItem* child : item.childItems()) {
        if (!child->isVisible() || child->opacity() == 0) continue;
        visit(*child);
        visitSeen(*child, visit);
    }
}

QString typeOf(const QObject& object) {
    return QString::fromLatin1(object.metaObject()->className()).section(QStringLiteral("_QML"), 0, 0);
}

QString accessibleText(QObject& object, QAccessible::Text kind) {
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&object);
    return interface ? interface->text(kind) : QString();
}

}  // namespace

ViewTest::ViewTest() {
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("icons"),
                            new IconProvider(pool.get_executor(), *bundleLoader, mac.files()));
    makeWindow();
}

ViewTest::~ViewTest() = default;

void ViewTest::TearDown() {
    releasePool();
    window.reset();
}

void ViewTest::makeWindow() {
    QQmlComponent component(&engine);
    component.setData("import QtQuick.Templates as T; T.ApplicationWindow {}", {});
    if (!component.isReady()) throw std::runtime_error(component.errorString().toStdString());
    window.reset(qobject_cast<QQuickWindow*>(component.create()));
}

QQuickItem& ViewTest::show(const QString& type, const QVariantMap& properties, QSize size) {
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/qt/qml/Orvane/%1.qml").arg(type)));
    if (!component.isReady()) throw std::runtime_error(component.errorString().toStdString());
    auto* const view = qobject_cast<QQuickItem*>(component.createWithInitialProperties(properties));
    if (!view) throw std::runtime_error(component.errorString().toStdString());
    auto* const content = window->property("contentItem").value<QQuickItem*>();
    view->QObject::setParent(content);
    view->setParentItem(content);
    view->setSize(size);
    window->resize(size);
    window->show();
    window->requestActivate();
    if (!QTest::qWaitForWindowActive(window.get())) throw std::runtime_error("no keyboard for the window");
    return *view;
}

bool ViewTest::isThere(const QString& objectName) {
    return findBelow(window->contentItem(), objectName) != nullptr;
}

QObject& ViewTest::named(const QString& objectName) {
    QObject* const found = findBelow(window->contentItem(), objectName);
    if (!found) throw std::runtime_error("there is no " + objectName.toStdString());
    return *found;
}

QQuickItem& ViewTest::item(const QString& objectName) {
    return dynamic_cast<QQuickItem&>(named(objectName));
}

void ViewTest::layOut() {
    static_cast<void>(window->grabWindow());
}

void ViewTest::click(const QQuickItem& item, Qt::MouseButton button) {
    const QPointF centre = item.mapToScene(QPointF(item.width() / 2, item.height() / 2));
    QTest::mouseClick(window.get(), button, Qt::NoModifier, centre.toPoint());
}

void ViewTest::turnWheel(QPoint where, int degrees) {
    constexpr int unitsPerDegree = 8;
    QWheelEvent event(where, window->mapToGlobal(where), {}, {0, degrees * unitsPerDegree}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(window.get(), &event);
}

void ViewTest::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window.get(), key, modifiers);
}

void ViewTest::type(std::string_view text) {
    for (const char letter : text) QTest::keyClick(window.get(), letter);
}

void ViewTest::pressDown(Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& text) {
    constexpr ulong longAfterwards = 1000;
    down_ = {key, modifiers, text, down_.time + longAfterwards};
    send(QEvent::KeyPress, false);
}

void ViewTest::repeat(Repetition how, int times) {
    constexpr ulong pace = 30;
    for (int i = 0; i < times; ++i) {
        down_.time += pace;
        if (how != Repetition::press) send(QEvent::KeyRelease, how != Repetition::silent);
        send(QEvent::KeyPress, how != Repetition::silent);
    }
}

void ViewTest::letGo() {
    constexpr ulong pace = 30;
    down_.time += pace;
    send(QEvent::KeyRelease, false);
}

void ViewTest::hold(Qt::Key key, Repetition how, Qt::KeyboardModifiers modifiers, const QString& text) {
    pressDown(key, modifiers, text);
    repeat(how);
    letGo();
}

// As a display's events reach a window: keys of commands first.
void ViewTest::send(QEvent::Type type, bool isRepetition) {
    if (type == QEvent::KeyPress && qt_sendShortcutOverrideEvent(window->focusObject(), down_.time, down_.key,
                                                                 down_.modifiers, down_.text, isRepetition))
        return;
    QKeyEvent event(type, down_.key, down_.modifiers, down_.text, isRepetition);
    event.setTimestamp(down_.time);
    QCoreApplication::sendEvent(window.get(), &event);
}

void ViewTest::holdPool() {
    for (; held_ < poolThreads; ++held_) asio::post(pool, [this] { released_.acquire(); });
}

void ViewTest::releasePool() {
    released_.release(std::exchange(held_, 0));
}

QRectF frameIn(const QQuickItem& ancestor, const QQuickItem& item) {
    return item.mapRectToItem(&ancestor, QRectF(0, 0, item.width(), item.height()));
}

std::vector<QQuickItem*> itemsOfType(const QQuickItem& ancestor, const QString& type) {
    std::vector<QQuickItem*> items;
    visitSeen(ancestor, [&](QQuickItem& item) {
        if (typeOf(item) == type) items.push_back(&item);
    });
    return items;
}

QQuickItem& textItem(const QQuickItem& ancestor, const QString& text) {
    QQuickItem* found = nullptr;
    visitSeen(ancestor, [&](QQuickItem& item) {
        if (!found && item.inherits("QQuickText") && item.property("text").toString() == text) found = &item;
    });
    if (!found) throw std::runtime_error("nowhere to be read: " + text.toStdString());
    return *found;
}

QStringList textsIn(const QQuickItem& ancestor) {
    struct Line {
        int y;
        qreal x;
        QString text;
    };
    std::vector<Line> lines;
    visitSeen(ancestor, [&](const QQuickItem& item) {
        const bool isLine = item.inherits("QQuickText") && typeOf(*item.parentItem()) != tabularText;
        if (!isLine && typeOf(item) != tabularText) return;
        const QPointF position = item.mapToItem(&ancestor, QPointF());
        lines.push_back({qRound(position.y()), position.x(), item.property("text").toString()});
    });
    std::ranges::stable_sort(lines, {}, [](const Line& line) { return std::pair(line.y, line.x); });
    QStringList texts;
    for (const Line& line : lines) texts.append(line.text);
    return texts;
}

QString accessibleName(QObject& object) {
    return accessibleText(object, QAccessible::Name);
}

QString accessibleDescription(QObject& object) {
    return accessibleText(object, QAccessible::Description);
}

}  // namespace orvane::test
