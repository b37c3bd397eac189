#include "tests/Fixtures/ChildProcess.h"

#include <fcntl.h>
#include <linux/sched.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <system_error>

#include "Platform/Posix/Process.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

/// fork, with the child's id chosen; -1 with the reason in errno.
pid_t forkAs(pid_t identifier) {
    clone_args arguments{};
    arguments.exit_signal = SIGCHLD;
    if (identifier != 0) {
        arguments.set_tid = reinterpret_cast<std::uintptr_t>(&identifier);
        arguments.set_tid_size = 1;
    }
    return static_cast<pid_t>(::syscall(SYS_clone3, &arguments, sizeof arguments));
}

/// In the child: becomes the program. Only what may be called between fork and exec.
[[noreturn]] void become(const char* executable, const ChildOptions& options, uid_t user) {
    ::signal(SIGTERM, options.ignoresRequestsToQuit ? SIG_IGN : SIG_DFL);
    // System calls, not the library's: those would wait for threads that this child does not have.
    if (options.isUnprivileged && (::syscall(SYS_setresgid, user, user, user) != 0 ||
                                   ::syscall(SYS_setresuid, user, user, user) != 0)) {
        ::_exit(126);
    }
    ::execl(executable, executable, "600", nullptr);
    ::_exit(127);
}

}  // namespace

ChildProcess::ChildProcess(const std::string& executable, const ChildOptions& options) {
    // Closed by the exec: then the child is what it is to be.
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    const FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    const auto user = unprivilegedUser();
    id_ = forkAs(options.identifier);
    if (id_ == 0) become(executable.c_str(), options, user);
    if (id_ < 0) throw std::system_error(errno, std::generic_category(), "clone3");
    writing = FileDescriptor();
    char nothing = 0;
    while (::read(reading.get(), &nothing, 1) < 0 && errno == EINTR) {
    }
}

ChildProcess::~ChildProcess() {
    if (!isWaitedFor_) kill();
}

std::optional<int> ChildProcess::status() {
    const auto process = openProcess(id_);
    pollfd polled{process.get(), POLLIN, 0};
    if (::poll(&polled, 1, patienceInMilliseconds) != 1) return std::nullopt;
    int status = 0;
    ::waitpid(id_, &status, 0);
    isWaitedFor_ = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool ChildProcess::isUntouched() {
    ::kill(id_, SIGPROF);
    return status() == 128 + SIGPROF;
}

void ChildProcess::kill() {
    ::kill(id_, SIGKILL);
    status();
}

bool ChildProcess::mayChooseIdentifier() {
    try {
        ChildProcess any("/bin/sleep");
        const auto identifier = any.id();
        any.kill();
        return ChildProcess("/bin/sleep", {.identifier = identifier}).id() == identifier;
    } catch (const std::system_error&) {
        return false;
    }
}

std::string installSleep(const std::string& path) {
    namespace fs = std::filesystem;
    fs::create_directories(fs::path(path).parent_path());
    fs::remove(path);
    fs::copy_file("/bin/sleep", path);
    ::chmod(path.c_str(), 0755);
    return path;
}

}  // namespace orvane::test
