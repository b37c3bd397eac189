#include "Platform/PrivilegedScript.h"

#include <initializer_list>

namespace orvane {

namespace {

/// How many values stand for each item.
constexpr std::size_t valuesPerItem = 3;

// Every quoted fragment here has its twin in `commandText` below.
constexpr std::string_view appleScript = R"(on run argv
    set requestedAction to item 1 of argv
    set commandText to ""
    set argumentIndex to 2
    repeat while argumentIndex is less than or equal to (count of argv)
        set itemKind to item argumentIndex of argv
        set sourcePath to item (argumentIndex + 1) of argv
        set destinationPath to item (argumentIndex + 2) of argv
        if itemKind is "daemon" then
            set commandText to commandText & "/bin/launchctl bootout system " & (quoted form of sourcePath)
            set commandText to commandText & " 2>/dev/null || true; "
        end if
        if requestedAction is "trash" then
            set commandText to commandText & "/bin/mv -- " & (quoted form of sourcePath)
            set commandText to commandText & " " & (quoted form of destinationPath) & "; "
            set commandText to commandText & "/usr/sbin/chown -R " & (quoted form of (system attribute "USER"))
            set commandText to commandText & ":staff " & (quoted form of destinationPath) & "; "
        else
            set commandText to commandText & "/bin/rm -rf -- " & (quoted form of sourcePath) & "; "
        end if
        set argumentIndex to argumentIndex + 3
    end repeat
    do shell script commandText with administrator privileges
end run
)";

}  // namespace

std::string_view actionWord(RemovalMode mode) {
    return mode == RemovalMode::trash ? "trash" : "delete";
}

std::string_view kindWord(PrivilegedRequest::Item::Kind kind) {
    return kind == PrivilegedRequest::Item::Kind::daemon ? "daemon" : "item";
}

std::string_view privilegedAppleScript() {
    return appleScript;
}

std::vector<std::string> scriptArguments(const PrivilegedRequest& request) {
    std::vector<std::string> arguments{"-e", std::string(appleScript), "--",
                                       std::string(actionWord(request.mode))};
    arguments.reserve(arguments.size() + valuesPerItem * request.items.size());
    for (const auto& item : request.items) {
        arguments.insert(arguments.end(), {std::string(kindWord(item.kind)), item.source, item.destination});
    }
    return arguments;
}

std::string shellQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'') {
            quoted += R"('\'')";
        } else {
            quoted += c;
        }
    }
    return quoted += '\'';
}

std::string commandText(const PrivilegedRequest& request, std::string_view owner,
                        const PrivilegedTools& tools) {
    const auto ownerAndGroup = shellQuoted(owner) + ":" + tools.group;
    std::string commands;
    const auto append = [&](std::initializer_list<std::string_view> pieces) {
        for (const auto piece : pieces) commands += piece;
    };
    for (const auto& item : request.items) {
        const auto source = shellQuoted(item.source);
        const auto destination = shellQuoted(item.destination);
        if (item.kind == PrivilegedRequest::Item::Kind::daemon) {
            append({tools.launchctl, " bootout system ", source, " 2>/dev/null || true; "});
        }
        if (request.mode == RemovalMode::trash) {
            append({tools.mv, " -- ", source, " ", destination, "; "});
            append({tools.chown, " -R ", ownerAndGroup, " ", destination, "; "});
        } else {
            append({tools.rm, " -rf -- ", source, "; "});
        }
    }
    return commands;
}

}  // namespace orvane
