#pragma once

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <memory>
#include <semaphore>
#include <string_view>
#include <vector>

#include "tests/Views/ViewModelTest.h"

namespace orvane::test {

/// A view in a window of the program's kind, over the program's own objects. Whatever QML warns of fails the
/// test.
class ViewTest : public ViewModelTest {
  protected:
    ViewTest();
    ~ViewTest() override;
    /// Takes the view away, so that what it showed may go.
    void TearDown() override;

    /// Shows a type of the module in a window of that size, which has the keyboard.
    QQuickItem& show(const QString& type, const QVariantMap& properties, QSize size);

    /// What has that name, seen or not: an item, or a sheet or an alert, which are none. The test ends when
    /// there is none.
    QObject& named(const QString& objectName);
    QQuickItem& item(const QString& objectName);
    bool isThere(const QString& objectName);
    /// Lays everything out as the next picture will show it.
    void layOut();

    void click(const QQuickItem& item, Qt::MouseButton button = Qt::LeftButton);
    void turnWheel(QPoint where, int degrees);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(std::string_view text);
    /// How a display tells that a key is still down.
    enum class Repetition {
        press,            ///< it goes down again, as a repetition
        releaseAndPress,  ///< it comes up and goes down, both as repetitions
        silent,           ///< it comes up and goes down in the same moment, and nothing says what that is
    };
    /// A key goes down. It stays down, and says so, with each `repeat`, until `letGo`.
    void pressDown(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {});
    void repeat(Repetition how, int times = 5);
    void letGo();
    /// All of it: down, some repetitions, up.
    void hold(Qt::Key key, Repetition how, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
              const QString& text = {});

    /// Until the next call of the other one nothing is done on the pool, so that no plan arrives and no
    /// removal gets on.
    void holdPool();
    void releasePool();

    QQmlEngine engine;
    // Goes before the engine, whose objects are in it.
    std::unique_ptr<QQuickWindow> window;

  private:
    struct Stroke {
        Qt::Key key = Qt::Key_unknown;
        Qt::KeyboardModifiers modifiers;
        QString text;
        ulong time = 0;
    };
    void makeWindow();
    void send(QEvent::Type type, bool isRepetition);

    Stroke down_;

    std::counting_semaphore<> released_{0};
    int held_ = 0;
};

/// Where an item is, seen from another one that holds it.
QRectF frameIn(const QQuickItem& ancestor, const QQuickItem& item);

/// The items below one that are seen and are of that type of QML ("PushButton") or C++ ("orvane::Symbol").
std::vector<QQuickItem*> itemsOfType(const QQuickItem& ancestor, const QString& type);

/// The item that shows a text, seen and below another one. The test ends when there is none.
QQuickItem& textItem(const QQuickItem& ancestor, const QString& text);

/// What can be read in an item, from top to bottom and in each line from left to right.
QStringList textsIn(const QQuickItem& ancestor);

/// What a screen reader says of something.
QString accessibleName(QObject& object);
QString accessibleDescription(QObject& object);

}  // namespace orvane::test
