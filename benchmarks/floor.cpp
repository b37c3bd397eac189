// The least that asking for the size of every file can cost: getdents64 and fstatat on descriptors, the
// folders shared by N threads through one stack. It knows no rules, no names and no errors; what Orvane takes
// longer is Orvane's own.
//
//     orvane-floor THREADS FOLDER...
//
// Prints the space on disk of the regular files that are not hidden, in bytes.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

class SharedStack {
  public:
    void push(int folder) {
        {
            const std::lock_guard lock(mutex_);
            folders_.push_back(folder);
            if (waiting_ == 0) return;
        }
        changed_.notify_one();
    }

    /// The next folder, or -1 when every thread waits for one.
    int pop(int threads) {
        std::unique_lock lock(mutex_);
        ++waiting_;
        if (folders_.empty() && waiting_ == threads) changed_.notify_all();
        changed_.wait(lock, [&] { return !folders_.empty() || waiting_ == threads; });
        if (folders_.empty()) return -1;
        --waiting_;
        const int folder = folders_.back();
        folders_.pop_back();
        return folder;
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<int> folders_;
    int waiting_ = 0;
};

std::int64_t sizeOfFiles(int folder, SharedStack& stack) {
    std::int64_t sum = 0;
    alignas(dirent64) char buffer[32 * 1024];
    for (ssize_t length = 0; (length = ::getdents64(folder, buffer, sizeof buffer)) > 0;) {
        for (ssize_t position = 0; position < length;) {
            const auto& entry = *reinterpret_cast<const dirent64*>(buffer + position);
            position += entry.d_reclen;
            if (entry.d_name[0] == '.') continue;
            if (entry.d_type == DT_DIR) {
                const int child = ::openat(folder, entry.d_name, openFlags);
                if (child >= 0) stack.push(child);
            } else if (entry.d_type == DT_REG) {
                struct stat status {};
                if (::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) {
                    sum += status.st_blocks * 512;
                }
            }
        }
    }
    ::close(folder);
    return sum;
}

}  // namespace

int main(int argc, char** argv) {
    const int threads = argc > 2 ? std::atoi(argv[1]) : 0;
    if (threads < 1) {
        std::fputs("usage: orvane-floor THREADS FOLDER...\n", stderr);
        return 2;
    }
    SharedStack stack;
    for (int i = argc - 1; i >= 2; --i) {
        const int folder = ::open(argv[i], openFlags);
        if (folder < 0) {
            std::perror(argv[i]);
            return 1;
        }
        stack.push(folder);
    }
    std::vector<std::int64_t> sums(static_cast<std::size_t>(threads));
    std::vector<std::thread> workers;
    for (auto& sum : sums) {
        workers.emplace_back([&] {
            std::int64_t own = 0;
            for (int folder = 0; (folder = stack.pop(threads)) >= 0;) own += sizeOfFiles(folder, stack);
            sum = own;
        });
    }
    for (auto& worker : workers) worker.join();
    std::int64_t total = 0;
    for (const auto sum : sums) total += sum;
    std::printf("%lld\n", static_cast<long long>(total));
    return 0;
}
