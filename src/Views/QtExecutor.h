#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <asio/execution.hpp>
#include <asio/execution_context.hpp>
#include <atomic>
#include <type_traits>
#include <utility>

namespace orvane {

/// Qt's event loop as a place where Asio's work runs. Made on the thread of that loop, before anything that
/// uses it, and outlives everything that posts to it; what is still waiting when it goes is dropped unrun.
class QtExecutionContext : public asio::execution_context {
  public:
    class Executor;

    QtExecutionContext() = default;
    ~QtExecutionContext();

    Executor get_executor();

  private:
    class Work : public QEvent {
      public:
        Work() : QEvent(QEvent::User) {}
        virtual void run() = 0;
    };

    class Loop : public QObject {
      public:
        /// Takes the work, from any thread.
        void post(Work* work);
        /// Drops what has not run, and what dropping it posts.
        void dropAll();
        bool event(QEvent* event) override;

      private:
        /// Orders what a poster wrote before what its work reads, for tools that cannot see into Qt's queue.
        std::atomic<unsigned> posted_{0};
    };

    Loop loop_;
};

/// Posts to the event loop, always; nothing ever runs inside the call. Copies are equal; any thread may use
/// it. An exception that leaves the work ends the program.
class QtExecutionContext::Executor {
  public:
    asio::execution_context& query(asio::execution::context_t) const noexcept { return *context_; }
    static constexpr auto query(asio::execution::blocking_t) noexcept {
        return asio::execution::blocking_t(asio::execution::blocking.never);
    }

    template <typename F>
    void execute(F&& function) const {
        struct FunctionWork : Work {
            explicit FunctionWork(F&& f) : function(std::forward<F>(f)) {}
            void run() override { std::move(function)(); }
            std::decay_t<F> function;
        };
        context_->loop_.post(new FunctionWork(std::forward<F>(function)));
    }

    friend bool operator==(const Executor&, const Executor&) = default;

  private:
    friend class QtExecutionContext;
    explicit Executor(QtExecutionContext* context) : context_(context) {}

    QtExecutionContext* context_;
};

}  // namespace orvane
