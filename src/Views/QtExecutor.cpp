#include "Views/QtExecutor.h"

namespace orvane {

QtExecutionContext::~QtExecutionContext() {
    // Timers and the like keep their operations in services of this context. What waits in the loop may hold
    // a timer, so it goes while the services are still there to take the timer back.
    shutdown();
    loop_.dropAll();
    destroy();
}

QtExecutionContext::Executor QtExecutionContext::get_executor() {
    return Executor(this);
}

void QtExecutionContext::Loop::post(Work* work) {
    posted_.fetch_add(1, std::memory_order_release);
    QCoreApplication::postEvent(this, work);
}

void QtExecutionContext::Loop::dropAll() {
    unsigned before = 0;
    do {
        before = posted_.load(std::memory_order_acquire);
        QCoreApplication::removePostedEvents(this);
    } while (posted_.load(std::memory_order_acquire) != before);
}

bool QtExecutionContext::Loop::event(QEvent* event) {
    if (event->type() != QEvent::User) return QObject::event(event);
    posted_.load(std::memory_order_acquire);
    static_cast<Work*>(event)->run();
    return true;
}

}  // namespace orvane
