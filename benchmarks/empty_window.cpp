// The least that a window of Qt Quick's can cost, with the renderer and the font that the program chooses.
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>

#include "Views/Style/Rendering.h"
#include "benchmarks/Probe.h"

namespace {

class EmptyProbe : public orvane::Probe {
  public:
    using Probe::Probe;

  private:
    void painted(QQuickWindow&) override {
        if (isAsked_) return;
        isAsked_ = true;
        QTimer::singleShot(1000, this, [] {
            say("memory", residentMemory());
            say("own memory", ownMemory());
            QCoreApplication::quit();
        });
    }

    bool isAsked_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    orvane::chooseRenderer();
    const QGuiApplication application(argc, argv);
    orvane::chooseFont();
    new EmptyProbe(QCoreApplication::instance());
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\nWindow { width: 1100; height: 720; visible: true }\n");
    return QCoreApplication::exec();
}
