// The window's own program, used and looked at from within: started until its list is painted, and then, for
// `ORVANE_PROBE=use`, searched, gone through and scanned. For `start` it ends after that, else it stays idle.
#include <pthread.h>
#include <unicode/ucol.h>
#include <unicode/usearch.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtQml/QQmlEngine>
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "Programs/Window/Run.h"
#include "benchmarks/Probe.h"

namespace {

constexpr int selections = 1000;
/// One keystroke after the other.
const auto typed =
    std::to_array({"s", "sa", "sam", "samp", "sampl", "sample", "sample0", "sample00", "sample001"});

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values.empty() ? 0 : values[values.size() / 2];
}

/// Processor time of a thread, this one, in milliseconds: other programs do not make it longer.
double processorTime(clockid_t thread = CLOCK_THREAD_CPUTIME_ID) {
    timespec now{};
    ::clock_gettime(thread, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

/// How long the main thread lets an event wait that comes at any moment, told by a thread of its own.
class Stalls {
  public:
    Stalls() {
        ::pthread_getcpuclockid(::pthread_self(), &mainThread_);
        beats_ = std::jthread([this](const std::stop_token& isOver) {
            while (!isOver.stop_requested()) {
                beat();
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            hasEnded_ = true;
        });
    }

    // Once it has ended.
    double longest() const { return longest_; }
    double longestOfProcessor() const { return longestOfProcessor_; }
    /// Lets the last event through.
    void end() {
        beats_.request_stop();
        while (!hasEnded_) QCoreApplication::processEvents();
        beats_.join();
    }

  private:
    void beat() {
        QElapsedTimer timer;
        timer.start();
        const double before = processorTime(mainThread_);
        std::atomic<bool> isHandled = false;
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [&] { isHandled = true; }, Qt::QueuedConnection);
        while (!isHandled) std::this_thread::sleep_for(std::chrono::microseconds(200));
        longest_ = std::max(longest_, static_cast<double>(timer.nsecsElapsed()) * 1e-6);
        longestOfProcessor_ = std::max(longestOfProcessor_, processorTime(mainThread_) - before);
    }

    clockid_t mainThread_{};
    double longest_ = 0;
    double longestOfProcessor_ = 0;
    std::atomic<bool> hasEnded_ = false;
    std::jthread beats_;
};

class WindowProbe : public orvane::Probe {
  public:
    using Probe::Probe;

  private:
    void painted(QQuickWindow& window) override {
        if (!sidebar_) {
            auto* const content = window.property("contentModel").value<QObject*>();
            sidebar_ = content ? content->property("sidebar").value<QObject*>() : nullptr;
            engine_ = ::qmlEngine(&window);
        }
        if (!sidebar_) return;
        if (!hasList_ && count() > 0) {
            hasList_ = true;
            say("list", sinceStart());
            QTimer::singleShot(2000, this, [this] { begin(); });
            return;
        }
        if (afterFrame_) std::exchange(afterFrame_, nullptr)();
    }

    int count() const { return sidebar_->property("count").toInt(); }

    void begin() {
        say("memory", residentMemory());
        say("own memory", ownMemory());
        const auto what = qEnvironmentVariable("ORVANE_PROBE");
        if (what == QLatin1String("start")) return QCoreApplication::quit();
        if (what == QLatin1String("use")) return type(0);
        say("idle", 0);
    }

    void type(std::size_t keystroke) {
        if (keystroke == typed.size()) {
            say("keystroke", median(times_));
            say("longest keystroke", *std::ranges::max_element(times_));
            say("icu", median(icuTimes_));
            times_.clear();
            sidebar_->setProperty("searchText", QString());
            QTimer::singleShot(1000, this, [this] { select(0); });
            return;
        }
        icuTimes_.push_back(plainSearch(typed[keystroke]));
        // The one before is out of the way.
        QTimer::singleShot(300, this, [this, keystroke] {
            const double before = processorTime();
            afterFrame_ = [this, before, keystroke] {
                times_.push_back(processorTime() - before);
                type(keystroke + 1);
            };
            sidebar_->setProperty("searchText", QLatin1String(typed[keystroke]));
        });
    }

    /// What ICU takes to look for the text in as many names and identifiers.
    double plainSearch(const char* text) const {
        const auto total = sidebarTotal_ > 0 ? sidebarTotal_ : sidebarTotal_ = count();
        std::vector<QString> fields;
        for (int i = 0; i < total; ++i) {
            fields.push_back(QStringLiteral("Sample%1").arg(i, 5, 10, QLatin1Char('0')));
            fields.push_back(QStringLiteral("org.example.") + fields.back());
        }
        const QString pattern = QLatin1String(text);
        const double before = processorTime();
        UErrorCode status = U_ZERO_ERROR;
        auto* const collator = ::ucol_open("en", &status);
        ::ucol_setStrength(collator, UCOL_SECONDARY);
        const auto* const first = reinterpret_cast<const UChar*>(fields.front().utf16());
        auto* const search = ::usearch_openFromCollator(
            reinterpret_cast<const UChar*>(pattern.utf16()), static_cast<int>(pattern.size()), first,
            static_cast<int>(fields.front().size()), collator, nullptr, &status);
        int found = 0;
        for (int i = 0; i < total; ++i) {
            // The identifier is looked into where the name does not hold it.
            for (int field = 0; field < 2; ++field) {
                const auto& in = fields[static_cast<std::size_t>(2 * i + field)];
                ::usearch_setText(search, reinterpret_cast<const UChar*>(in.utf16()),
                                  static_cast<int>(in.size()), &status);
                if (::usearch_first(search, &status) == USEARCH_DONE) continue;
                ++found;
                break;
            }
        }
        ::usearch_close(search);
        ::ucol_close(collator);
        if (U_FAILURE(status) || found == 0) std::fprintf(stderr, "the plain search has found nothing\n");
        return processorTime() - before;
    }

    void select(int number) {
        if (number == 100) memoryBefore_ = memoryInUse();
        if (number == 100 + selections) {
            say("held key", median(times_));
            say("longest held key", *std::ranges::max_element(times_));
            QTimer::singleShot(1000, this, [this] {
                say("memory after selections", memoryInUse() / memoryBefore_);
                scan();
            });
            return;
        }
        QTimer::singleShot(0, this, [this, number] {
            const double before = processorTime();
            afterFrame_ = [this, before, number] {
                times_.push_back(processorTime() - before);
                select(number + 1);
            };
            QMetaObject::invokeMethod(sidebar_, "select", Q_ARG(int, 1 + number % (count() - 1)));
        });
    }

    /// Without what waits for the collector, which comes when it likes.
    double memoryInUse() const {
        engine_->collectGarbage();
        return ownMemory();
    }

    void scan() {
        stalls_ = std::make_unique<Stalls>();
        QMetaObject::invokeMethod(sidebar_, "rescan");
        auto* const timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, [this, timer] {
            if (sidebar_->property("isScanning").toBool()) return;
            timer->stop();
            stalls_->end();
            say("stall", stalls_->longest());
            say("stall of processor", stalls_->longestOfProcessor());
            QCoreApplication::quit();
        });
        timer->start(100);
    }

    QObject* sidebar_ = nullptr;
    QQmlEngine* engine_ = nullptr;
    bool hasList_ = false;
    std::function<void()> afterFrame_;
    std::vector<double> times_;
    std::vector<double> icuTimes_;
    mutable int sidebarTotal_ = 0;
    double memoryBefore_ = 0;
    std::unique_ptr<Stalls> stalls_;
};

void startProbe() {
    new WindowProbe(QCoreApplication::instance());
}

}  // namespace

Q_COREAPP_STARTUP_FUNCTION(startProbe)

int main(int argc, char** argv) {
    return orvane::window::run(argc, argv);
}
