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
    /// The absolute path of the program to run, then its arguments. It reads standard input.
    std::vector<std::string> command;
    /// Standard input is an order for the installed part that runs as root, whose argument is the number of
    /// items; otherwise it is the commands.
    bool takesOrder = false;

    /// Root needs no prompt. Everyone else gets the one of `rootPart` when that is a program which only root
    /// can change, and otherwise, as from the build folder, the system's general prompt for a shell.
    static RootShell reachedBy(uid_t effectiveUser, const std::string& rootPart = installedRootPart());

    /// Where the part that runs as root is installed, if it is.
    static std::string installedRootPart();
};

/// Becomes the shell: this process is replaced by it, so that its standard error and its exit status are this
/// process's own. Comes back only with the reason why that failed; then nothing has been run.
///
/// `input` is its standard input. No name is in the arguments of a program that would choke on its length or
/// its bytes, and what the user authorizes cannot be altered any more: the text is sealed first. There is no
/// pipe that could break.
std::error_code becomeRootShell(const RootShell& shell, std::string_view input);

/// Takes away what the prompt's program refuses to start with: a folder that it cannot name and all of the
/// environment but the user's name and his language. Whoever asks has no say in what root's programs find
/// there.
void leaveSurroundingsBehind();

}  // namespace orvane
