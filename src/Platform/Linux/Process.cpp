#include "Platform/Linux/Process.h"

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
    explicit SpawnSetup(const SpawnOptions& options) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_adddup2(&actions_, options.standardInput, STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions_, options.standardError, STDERR_FILENO);
        if (options.folder != nullptr) ::posix_spawn_file_actions_addchdir_np(&actions_, options.folder);
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

/// As the system wants them: ended by a null pointer, into texts that outlive them.
std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const auto& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

Result<pid_t> startProgram(const std::vector<std::string>& command, const SpawnOptions& options) {
    auto arguments = pointersTo(command);
    std::vector<char*> environment;
    if (options.environment != nullptr) environment = pointersTo(*options.environment);

    const SpawnSetup setup(options);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, arguments.front(), setup.actions(), setup.attributes(),
                                    arguments.data(), environment.empty() ? environ : environment.data());
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
