#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtQuick/QQuickWindow>
#include <functional>
#include <vector>

namespace orvane {

/// Looks at a program of Qt Quick's from within, without a change to it: says on the standard output, a line
/// each, how many milliseconds after `ORVANE_STARTED` (seconds of the monotonic clock) its first frame was
/// painted, and what else it is told to find out. On the main thread.
class Probe : public QObject {
  public:
    explicit Probe(QObject* parent);

  protected:
    /// After each frame of the first window.
    virtual void painted(QQuickWindow& window) = 0;
    static void say(const char* what, double value);
    static double sinceStart();
    /// In MB: what of the process is in memory, and what it alone holds of that and has written.
    static double residentMemory() { return memory("Rss:"); }
    static double ownMemory() { return memory("Private_Dirty:"); }

  private:
    static double memory(const char* kind);
    bool eventFilter(QObject* object, QEvent* event) override;

    QQuickWindow* window_ = nullptr;
};

}  // namespace orvane
