// The Mac's system calls, by those of Linux that do the same. The linker gives the calls named __wrap_… to
// whoever calls the plain ones.

#include <linux/openat2.h>
#include <sys/epoll.h>
#include <sys/event.h>
#include <sys/mount.h>
#include <sys/stdio.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <utility>

#include "tests/MacOS/StandIns/SystemCallState.h"

extern "C" {

int __real_fcntl(int descriptor, int command, ...);
int __real_openat(int folder, const char* path, int flags, ...);
int __real_fstat(int descriptor, struct stat* status);
int __real_fstatat(int folder, const char* path, struct stat* status, int flags);

int __wrap_fcntl(int descriptor, int command, ...) {
    std::va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    auto& state = orvane::test::systemCallState();
    if (command == F_FULLFSYNC) {
        errno = state.fullFlushError;
        if (errno != 0) return -1;
        ++state.fullFlushes;
        return ::fsync(descriptor);
    }
    if (command == F_GETPATH) {
        char link[32];
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
        const auto length = ::readlink(link, static_cast<char*>(argument), PATH_MAX - 1);
        if (length < 0) return -1;
        static_cast<char*>(argument)[length] = '\0';
        return 0;
    }
    return __real_fcntl(descriptor, command, argument);
}

int __wrap_openat(int folder, const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if ((flags & O_NOFOLLOW_ANY) == 0) return __real_openat(folder, path, flags, mode);
    open_how how{};
    how.flags = static_cast<std::uint64_t>((flags & ~O_NOFOLLOW_ANY) | O_CLOEXEC);
    how.resolve = RESOLVE_NO_SYMLINKS;
    return static_cast<int>(::syscall(SYS_openat2, folder, path, &how, sizeof how));
}

static void fillInFlags(struct stat& status) {
    const auto& flags = orvane::test::systemCallState().flags;
    const auto found = flags.find({status.st_dev, status.st_ino});
    status.st_flags = found == flags.end() ? 0 : found->second;
}

int __wrap_fstat(int descriptor, struct stat* status) {
    const int result = __real_fstat(descriptor, status);
    if (result == 0) fillInFlags(*status);
    return result;
}

/// Whether a path leads to an entry of a hidden folder.
static bool isHidden(int folder, const std::string& path) {
    const auto slash = path.rfind('/');
    const auto around = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    struct stat status {};
    return __real_fstatat(folder, around.c_str(), &status, 0) == 0 &&
           orvane::test::systemCallState().hiddenFolders.contains({status.st_dev, status.st_ino});
}

int __wrap_fstatat(int folder, const char* path, struct stat* status, int flags) {
    if (isHidden(folder, path)) {
        errno = EPERM;
        return -1;
    }
    const int result = __real_fstatat(folder, path, status, flags);
    if (result == 0) fillInFlags(*status);
    return result;
}

int renameatx_np(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    return ::renameat2(fromFolder, from, toFolder, to, flags == RENAME_EXCL ? RENAME_NOREPLACE : 0);
}

int getfsstat(struct statfs* buffer, int size, int /*mode*/) {
    const auto& mounts = orvane::test::systemCallState().mounts;
    const auto all = static_cast<int>(mounts.size()) + 1;
    if (buffer == nullptr) return all;
    const int count = std::min(all, size / static_cast<int>(sizeof *buffer));
    for (int i = 0; i < count; ++i) {
        const auto place = i == 0 ? std::string("/") : mounts[static_cast<std::size_t>(i) - 1];
        std::snprintf(buffer[i].f_mntonname, sizeof buffer[i].f_mntonname, "%s", place.c_str());
    }
    return count;
}

int kqueue() {
    return ::epoll_create1(EPOLL_CLOEXEC);
}

int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* /*events*/,
           int /*eventCount*/, const timespec* /*timeout*/) {
    if (changeCount != 1 || changes->filter != EVFILT_PROC || changes->fflags != NOTE_EXIT) {
        errno = EINVAL;
        return -1;
    }
    // The Mac does not know a process any more that has ended, even if nobody has asked for its status yet.
    const int process = static_cast<int>(::syscall(SYS_pidfd_open, changes->ident, 0));
    if (process < 0) return -1;
    siginfo_t end{};
    if (::waitid(P_PID, static_cast<id_t>(changes->ident), &end, WEXITED | WNOWAIT | WNOHANG) == 0 &&
        end.si_pid != 0) {
        ::close(process);
        errno = ESRCH;
        return -1;
    }
    // The descriptor stays open as long as this process: the queue would forget it.
    epoll_event event{};
    event.events = EPOLLIN;
    return ::epoll_ctl(queue, EPOLL_CTL_ADD, process, &event);
}

int posix_spawn_file_actions_addinherit_np(posix_spawn_file_actions_t* actions, int descriptor) {
    // What is said of the last of them closes all others.
    return descriptor == STDERR_FILENO
               ? ::posix_spawn_file_actions_addclosefrom_np(actions, STDERR_FILENO + 1)
               : 0;
}
}
