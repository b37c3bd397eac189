#include "benchmarks/Probe.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <cstdio>
#include <ctime>

namespace orvane {

Probe::Probe(QObject* parent) : QObject(parent) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool Probe::eventFilter(QObject* object, QEvent* event) {
    auto* const window = event->type() == QEvent::Expose ? qobject_cast<QQuickWindow*>(object) : nullptr;
    if (window && !window_) {
        window_ = window;
        QCoreApplication::instance()->removeEventFilter(this);
        connect(window, &QQuickWindow::frameSwapped, this, [this, isFirst = true]() mutable {
            if (isFirst) say("frame", sinceStart());
            isFirst = false;
            painted(*window_);
        });
    }
    return false;
}

void Probe::say(const char* what, double value) {
    std::printf("%s %.3f\n", what, value);
    std::fflush(stdout);
}

double Probe::sinceStart() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const double started = qEnvironmentVariable("ORVANE_STARTED").toDouble();
    return (static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9 - started) * 1000;
}

double Probe::memory(const char* kind) {
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QIODevice::ReadOnly)) return 0;
    for (const auto& line : file.readAll().split('\n')) {
        if (line.startsWith(kind)) return line.simplified().split(' ').at(1).toDouble() / 1024;
    }
    return 0;
}

}  // namespace orvane
