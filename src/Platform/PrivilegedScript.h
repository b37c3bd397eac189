#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Platform/PrivilegedRunner.h"

namespace orvane {

// A request as the Mac's script runner takes it, an argument vector, and as a shell takes it, one command
// text. The AppleScript and `commandText` build the same text from the same request.

/// "trash" or "delete".
std::string_view actionWord(RemovalMode mode);
/// "daemon" or "item".
std::string_view kindWord(PrivilegedRequest::Item::Kind kind);

/// The whole AppleScript that the Mac's script runner is given.
std::string_view privilegedAppleScript();

/// "-e", the script, "--", the action word, then kind, source and destination of each item in order.
std::vector<std::string> scriptArguments(const PrivilegedRequest& request);

/// Where the tools of the command text live, each as the shell's words. The defaults are the Mac's.
struct PrivilegedTools {
    std::string launchctl = "/bin/launchctl";
    std::string mv = "/bin/mv";
    std::string chown = "/usr/sbin/chown";
    std::string rm = "/bin/rm";
    /// The group that a moved item is given to; empty for the owner's own.
    std::string group = "staff";
};

/// The text in single quotes, each single quote in it closed, escaped and opened again: one word to any POSIX
/// shell.
std::string shellQuoted(std::string_view text);

/// The commands for the whole request, separated by "; ", for one shell. `owner` owns what goes to the Trash.
std::string commandText(const PrivilegedRequest& request, std::string_view owner,
                        const PrivilegedTools& tools = {});

}  // namespace orvane
