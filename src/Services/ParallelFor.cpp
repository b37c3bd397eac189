#include "Services/ParallelFor.h"

#include <asio/post.hpp>
#include <atomic>
#include <memory>
#include <utility>

namespace orvane {

namespace {

/// Shared with the helpers, one of which may start only after the caller has returned. `body` is the caller's
/// and is touched only for an index below `count`, while the caller waits.
class Batch {
  public:
    Batch(std::size_t count, FunctionRef<void(std::size_t)> body)
        : count_(count), body_(body), unfinished_(count) {}

    bool hasWork() const { return next_ < count_; }

    /// Takes indexes until none is left. `noexcept` because the body lives in a frame that must not unwind.
    void work() noexcept {
        for (auto index = next_++; index < count_; index = next_++) {
            body_(index);
            if (--unfinished_ == 0) unfinished_.notify_all();
        }
    }

    void wait() const {
        for (std::size_t left = unfinished_; left != 0; left = unfinished_) unfinished_.wait(left);
    }

  private:
    const std::size_t count_;
    const FunctionRef<void(std::size_t)> body_;
    std::atomic<std::size_t> next_{0};
    std::atomic<std::size_t> unfinished_;
};

/// Each helper calls the next one before it starts: as many take part as the pool has idle threads.
void callHelper(const asio::any_io_executor& pool, std::shared_ptr<Batch> batch) {
    asio::post(pool, [pool, batch = std::move(batch)] {
        if (!batch->hasWork()) return;
        callHelper(pool, batch);
        batch->work();
    });
}

}  // namespace

void parallelFor(const asio::any_io_executor& pool, std::size_t count, FunctionRef<void(std::size_t)> body) {
    if (count == 0) return;
    const auto batch = std::make_shared<Batch>(count, body);
    if (count > 1) callHelper(pool, batch);
    batch->work();
    batch->wait();
}

void workTogether(const asio::any_io_executor& pool, FunctionRef<void()> work) {
    constexpr std::size_t moreThanThreads = 64;
    parallelFor(pool, moreThanThreads, [&](std::size_t) { work(); });
}

}  // namespace orvane
