#include "Platform/Linux/Spawn.h"

#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>

namespace orvane {

namespace {

constexpr int unknownStatus = 255;
constexpr int killedBySignal = 128;

/// What posix_spawn is told to do in the child. Owns its two tables.
class SpawnSetup {
  public:
    explicit SpawnSetup(int standardError) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_adddup2(&actions_, standardError, STDERR_FILENO);
        ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        ::sigaddset(&signals, SIGPIPE);
        ::sigaddset(&signals, SIGCHLD);
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
    }
    ~SpawnSetup() {
        ::posix_spawnattr_destroy(&attributes_);
        ::posix_spawn_file_actions_destroy(&actions_);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    const posix_spawn_file_actions_t* actions() const { return &actions_; }
    const posix_spawnattr_t* attributes() const { return &attributes_; }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

}  // namespace

Result<pid_t> spawn(const std::vector<std::string>& command, int standardError) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);

    const SpawnSetup setup(standardError);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, arguments.front(), setup.actions(), setup.attributes(),
                                    arguments.data(), environ);
    if (error != 0) return tl::unexpected(std::error_code(error, std::generic_category()));
    return child;
}

int waitForTermination(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return unknownStatus;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : killedBySignal + WTERMSIG(status);
}

}  // namespace orvane
