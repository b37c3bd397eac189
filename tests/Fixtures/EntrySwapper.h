#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

namespace orvane::test {

/// Something of a volume that an attacker exchanges for a link beside it, and where that leads.
struct LinkExchange {
    std::string path;
    std::string link;
    std::string target;
};

/// Swaps two entries for each other over and over, on a thread of its own, while it is let: an attacker who
/// puts a link where a folder was looked at.
class EntrySwapper {
  public:
    EntrySwapper();
    ~EntrySwapper();
    EntrySwapper(const EntrySwapper&) = delete;
    EntrySwapper& operator=(const EntrySwapper&) = delete;

    /// Begins with two machine paths that are there; returns when they have been swapped once. While one of
    /// the two is gone it waits for it.
    void start(const std::string& a, const std::string& b);
    /// How often they were swapped.
    std::uint64_t stop();

  private:
    void work();
    void swap();

    std::string a_;
    std::string b_;
    std::atomic<std::uint64_t> swaps_ = 0;
    std::atomic<bool> mayWork_ = false;
    std::atomic<bool> isWorking_ = false;
    std::atomic<bool> isOver_ = false;
    std::thread thread_;
};

}  // namespace orvane::test
