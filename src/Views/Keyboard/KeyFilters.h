#pragma once

#include <QtQml/qqmlregistration.h>

#include <QtCore/QObject>

class QKeyEvent;

namespace orvane {

/// Whether a key presses what has the keyboard: Return, Enter, Space, or Escape, which presses what cancels.
bool isPressingKey(int key);

/// Sees every key of the program before any window does, and keeps some from all of them. On the main thread;
/// there is a QGuiApplication for as long as it lives.
class KeyFilter : public QObject {
  public:
    explicit KeyFilter(QObject* parent = nullptr);

    bool eventFilter(QObject* receiver, QEvent* event) final;

  protected:
    /// A key goes down, or repeats because it is held.
    virtual bool keeps(const QKeyEvent& press) = 0;
    /// The same stroke is about to be tried as the keys of a command. What is kept here is no command, and
    /// goes on to `keeps` all the same.
    virtual bool keepsFromCommands(const QKeyEvent&) { return false; }
    /// A key has come up.
    virtual void cameUp(const QKeyEvent&) {}
};

/// Sees to it that a key that is held presses nothing in any window of the program: no button, no entry of a
/// menu, no command. Its repetitions move, and write in a text field, and that is all.
class HeldKeys : public KeyFilter {
  public:
    using KeyFilter::KeyFilter;

  private:
    bool keeps(const QKeyEvent& press) override;
    bool keepsFromCommands(const QKeyEvent& stroke) override;
    void cameUp(const QKeyEvent& release) override;
    bool isRepetition(const QKeyEvent& stroke) const;

    int lastReleased_ = 0;
    quint64 lastReleasedAt_ = 0;
};

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

/// Whether the Alt key is down, which has menus show the letters that open them.
class AltKey : public KeyFilter {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(bool isDown READ isDown NOTIFY isDownChanged)

  public:
    explicit AltKey(QObject* parent = nullptr);

    bool isDown() const { return isDown_; }

  signals:
    void isDownChanged();

  private:
    bool keeps(const QKeyEvent& press) override;
    void cameUp(const QKeyEvent& release) override;
    void setDown(bool isDown);

    bool isDown_ = false;
};

}  // namespace orvane
