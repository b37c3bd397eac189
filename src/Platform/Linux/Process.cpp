#include "Platform/Posix/Process.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace orvane {

void closeOtherDescriptors(posix_spawn_file_actions_t& actions, posix_spawnattr_t& /*attributes*/) {
    ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

// By system call: the header of glibc 2.36 declares it without C linkage.
FileDescriptor openProcess(pid_t process) {
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

}  // namespace orvane
