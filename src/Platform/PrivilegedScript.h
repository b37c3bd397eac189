#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// The protocol between the removal service and the script runner: an argument vector on one side, one
/// command text for one shell on the other. The AppleScript below and `commandText` build the same text from
/// the same request.
struct PrivilegedRequest {
    struct Item {
        /// "daemon" for a launch daemon, "item" for everything else.
        std::string kind;
        std::string source;
        /// Where it goes in the Trash; empty when it is deleted.
        std::string destination;
        friend bool operator==(const Item&, const Item&) = default;
    };

    /// "trash" or "delete".
    std::string action;
    std::vector<Item> items;
    friend bool operator==(const PrivilegedRequest&, const PrivilegedRequest&) = default;
};

/// The whole AppleScript that the Mac's script runner is given.
std::string_view privilegedAppleScript();

/// "-e", the script, "--", the action word, then kind, source and destination of each item in order.
std::vector<std::string> scriptArguments(const PrivilegedRequest& request);

/// The request in such a vector; absent when it is not one (a triple cut short, no action word).
std::optional<PrivilegedRequest> requestFromScriptArguments(const std::vector<std::string>& arguments);

/// Where the tools of the command text live, each as the shell's words. The defaults are the Mac's.
struct PrivilegedTools {
    std::string launchctl = "/bin/launchctl";
    std::string mv = "/bin/mv";
    std::string chown = "/usr/sbin/chown";
    std::string rm = "/bin/rm";
    /// The group that a moved item is given to; empty for the user's own.
    std::string group = "staff";

    /// The same tools on a Debian machine.
    static PrivilegedTools debian();
};

/// The text in single quotes, each single quote in it closed, escaped and opened again: one word to any POSIX
/// shell.
std::string shellQuoted(std::string_view text);

/// The commands for the whole request, separated by "; ", for one shell. `userName` owns what goes to the
/// Trash.
std::string commandText(const PrivilegedRequest& request, std::string_view userName,
                        const PrivilegedTools& tools = {});

}  // namespace orvane
