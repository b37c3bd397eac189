#include "Platform/Posix/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

// Whoever uses it declares it: not every system's headers do.
extern "C" char** environ;  // NOLINT(readability-redundant-declaration)

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
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        closeOtherDescriptors(actions_, attributes_);
        sigset_t signals;
        // Macros on some systems.
        sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        sigaddset(&signals, SIGPIPE);
        sigaddset(&signals, SIGCHLD);
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

struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;
};

Result<Pipe> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return errnoFailure();
    for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
    return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

/// Everything that is written into the pipe until its end, or until the child is gone: somebody whom it left
/// behind may keep the pipe open for ever.
std::string readUntilExit(const FileDescriptor& pipe, pid_t child) {
    const auto process = openProcess(child);
    std::array<pollfd, 2> polled{pollfd{pipe.get(), POLLIN, 0}, pollfd{process.get(), POLLIN, 0}};
    constexpr int forEver = -1;
    std::string text;
    for (;;) {
        // Who is gone already cannot be held; what it has written can be read at once.
        if (::poll(polled.data(), polled.size(), process ? forEver : 0) < 0) {
            if (errno == EINTR) continue;
            return text;
        }
        if (polled[0].revents == 0) return text;
        std::array<char, 4096> buffer{};
        const auto count = ::read(pipe.get(), buffer.data(), buffer.size());
        if (count == 0 || (count < 0 && errno != EINTR)) return text;
        if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    }
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

Result<ProgramEnd> runToEnd(const std::vector<std::string>& command, SpawnOptions options) {
    auto pipe = makePipe();
    if (!pipe) return tl::unexpected(pipe.error());
    options.standardError = pipe->writing.get();
    const auto child = startProgram(command, options);
    if (!child) return tl::unexpected(child.error());
    pipe->writing = FileDescriptor();
    auto standardError = readUntilExit(pipe->reading, *child);
    return ProgramEnd{waitForTermination(*child), std::move(standardError)};
}

}  // namespace orvane
