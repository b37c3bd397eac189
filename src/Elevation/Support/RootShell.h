#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace orvane {

/// A shell with root's rights: root's own, or for everyone else one behind the system's authorization prompt.
/// This is the only place that knows how rights are obtained.
struct RootShell {
    /// The absolute path of the program to run, then its arguments. It reads commands from standard input.
    std::vector<std::string> command;

    static RootShell reachedBy(uid_t effectiveUser);
};

/// Becomes the shell: this process is replaced by it, so that its standard error and its exit status are this
/// process's own. Comes back only with the reason why that failed; then nothing has been run.
///
/// The commands reach the shell as standard input. No name is in the arguments of a program that would choke
/// on its length or its bytes, and what the user authorizes cannot be altered any more: the text is sealed
/// first.
std::error_code becomeRootShell(const RootShell& shell, std::string_view commands);

}  // namespace orvane
