#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "Platform/Result.h"

namespace orvane {

/// Starts the program with the absolute path `command.front()`. It inherits standard input and output, has
/// `standardError` as its standard error and no other descriptor, and no signal blocked or ignored on our
/// account. It is the child of the calling thread, which should outlive it.
Result<pid_t> spawn(const std::vector<std::string>& command, int standardError = STDERR_FILENO);

/// Waits for the end of a child: its exit status, or 128 plus the signal that killed it. 255 for one whose
/// status was taken by somebody else, which is never to be read as success.
int waitForTermination(pid_t child);

}  // namespace orvane
