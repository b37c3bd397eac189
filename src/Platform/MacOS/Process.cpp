#include "Platform/Posix/Process.h"

#include <sys/event.h>
#include <unistd.h>

namespace orvane {

void closeOtherDescriptors(posix_spawn_file_actions_t& actions, posix_spawnattr_t& attributes) {
    short flags = 0;
    ::posix_spawnattr_getflags(&attributes, &flags);
    ::posix_spawnattr_setflags(&attributes, static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT));
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::posix_spawn_file_actions_addinherit_np(&actions, descriptor);
    }
}

/// A queue that the kernel puts the process's end into.
FileDescriptor openProcess(pid_t process) {
    FileDescriptor queue(::kqueue());
    struct kevent end {};
    EV_SET(&end, static_cast<uintptr_t>(process), EVFILT_PROC, EV_ADD | EV_ONESHOT, NOTE_EXIT, 0, nullptr);
    if (!queue || ::kevent(queue.get(), &end, 1, nullptr, 0, nullptr) != 0) return {};
    return queue;
}

}  // namespace orvane
