#pragma once

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Result.h"

namespace orvane {

/// What a started program has of this one.
struct SpawnOptions {
    int standardInput = STDIN_FILENO;
    int standardError = STDERR_FILENO;
    /// "NAME=value" each; null for this process's own.
    const std::vector<std::string>* environment = nullptr;
    /// Where it starts; null for this process's own folder.
    const char* folder = nullptr;
};

/// Starts the program with the absolute path `command.front()`. It inherits standard output and no descriptor
/// but those of the options, and no signal blocked or ignored on our account. It is the child of the calling
/// thread, which should outlive it.
Result<pid_t> startProgram(const std::vector<std::string>& command, const SpawnOptions& options = {});

/// Waits for the end of a child: its exit status, or 128 plus the signal that killed it. 255 for one whose
/// status was taken by somebody else, which is never to be read as success.
int waitForTermination(pid_t child);

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
