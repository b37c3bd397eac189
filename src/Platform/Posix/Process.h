#pragma once

#include <spawn.h>
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

/// Leaves a program that is started no descriptor of this process but its standard ones. The implementation
/// is the platform's.
void closeOtherDescriptors(posix_spawn_file_actions_t& actions, posix_spawnattr_t& attributes);

/// Starts the program with the absolute path `command.front()`. It inherits standard output and no descriptor
/// but those of the options, and no signal blocked or ignored on our account. It is the child of the calling
/// thread, which should outlive it.
Result<pid_t> startProgram(const std::vector<std::string>& command, const SpawnOptions& options = {});

/// Waits for the end of a child: its exit status, or 128 plus the signal that killed it. 255 for one whose
/// status was taken by somebody else, which is never to be read as success.
int waitForTermination(pid_t child);

/// How a program ended that was run to its end.
struct ProgramEnd {
    /// As `waitForTermination` gives it.
    int status = 0;
    /// Everything that it wrote to standard error while it ran.
    std::string standardError;
};

/// Starts a program, whose standard error is read here, and waits for its end. The error says why it could
/// not be started.
Result<ProgramEnd> runToEnd(const std::vector<std::string>& command, SpawnOptions options = {});

/// A process held by a descriptor, which becomes readable when it has ended, whoever has its id later. Empty
/// where there is no such process any more. The implementation is the platform's.
FileDescriptor openProcess(pid_t process);

}  // namespace orvane
