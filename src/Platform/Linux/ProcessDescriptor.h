#pragma once

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include "Platform/Posix/FileDescriptor.h"

namespace orvane {

// A process held by a descriptor stays the one meant, whoever has its id later. By system call: the header of
// glibc 2.36 declares these without C linkage.

/// Becomes readable when the process has ended. Empty where there is no such process.
inline FileDescriptor openProcess(pid_t process) {
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

/// Nothing happens when the process has ended.
inline void sendSignal(const FileDescriptor& process, int signal) {
    ::syscall(SYS_pidfd_send_signal, process.get(), signal, nullptr, 0);
}

}  // namespace orvane
