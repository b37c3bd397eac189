#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace orvane::test {

/// How long a test waits for another process before it gives up.
constexpr int patienceInMilliseconds = 60'000;

struct ChildOptions {
    /// SIGTERM does nothing to it.
    bool ignoresRequestsToQuit = false;
    /// Root's child runs as the user of `asUnprivilegedUser`.
    bool isUnprivileged = false;
    /// The id that it gets; 0 for any.
    pid_t identifier = 0;
};

/// A child that runs an executable, a copy of `sleep`, until it is asked to quit. Ends with this object in
/// any case.
class ChildProcess {
  public:
    explicit ChildProcess(const std::string& executable, const ChildOptions& options = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t id() const { return id_; }

    /// Its exit status once it has ended, or 128 plus the signal; nothing if it does not end. Its id is free
    /// from then on.
    std::optional<int> status();
    /// Ends it by a signal that a pending SIGTERM would come before; whether there was none.
    bool isUntouched();
    void kill();

    /// Whether the kernel lets this process choose the id of a child.
    static bool mayChooseIdentifier();

  private:
    pid_t id_;
    bool isWaitedFor_ = false;
};

/// Puts a copy of `sleep` at a path of this machine, in the place of what may be there; its parents are made.
std::string installSleep(const std::string& path);

}  // namespace orvane::test
