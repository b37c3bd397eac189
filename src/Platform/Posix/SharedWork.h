#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

#include "Text/FunctionRef.h"

namespace orvane {

/// Pieces of work that threads share, and who works on one may find more of them. So few wait at a time that
/// what they hold (memory, descriptors) is bounded, however many there are in all. Thread-safe.
template <typename Piece>
class SharedWork {
  public:
    /// Enough that no thread is soon without.
    static constexpr std::size_t maximumWaiting = 32;

    /// A first piece, before anybody takes part. All of them wait, and new ones only when they have become
    /// few.
    void add(Piece piece) { waiting_.push_back(std::move(piece)); }

    /// Leaves a piece that was found to any thread, and moves it away; false, and it stays, while enough of
    /// them wait, or nobody else takes part: who has found it does it then. Only for a thread that is at work
    /// on another piece.
    bool leave(Piece& piece) {
        {
            const std::lock_guard lock(mutex_);
            if (threads_ == 1 || waiting_.size() >= maximumWaiting) return false;
            waiting_.push_back(std::move(piece));
        }
        changed_.notify_one();
        return true;
    }

    /// Does one piece after the other, the latest first, and waits while there is none but who is at work may
    /// find one. Returns when all are done. For any number of threads, at any time.
    void takePart(FunctionRef<void(Piece)> work) {
        std::unique_lock lock(mutex_);
        ++threads_;
        while (true) {
            changed_.wait(lock, [this] { return !waiting_.empty() || atWork_ == 0; });
            if (waiting_.empty()) break;
            auto piece = std::move(waiting_.back());
            waiting_.pop_back();
            ++atWork_;
            lock.unlock();
            work(std::move(piece));
            lock.lock();
            --atWork_;
            if (atWork_ == 0 && waiting_.empty()) changed_.notify_all();
        }
        --threads_;
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Piece> waiting_;
    /// Threads that take part.
    std::size_t threads_ = 0;
    /// Threads that may leave a piece yet.
    std::size_t atWork_ = 0;
};

}  // namespace orvane
