#pragma once

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

}  // namespace orvane
