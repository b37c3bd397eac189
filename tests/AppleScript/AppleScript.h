#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Text/FunctionRef.h"

namespace orvane::test {

// As much of AppleScript as the administrator's script is written in, by the AppleScript Language Guide:
//
//     on run NAME … end run        set NAME to …            if … then … else … end if
//     repeat while … end repeat    do shell script … with administrator privileges
//     …  is …                      … is less than or equal to …         … & …            … + …
//     item … of …    quoted form of …    (count of …)    (system attribute …)    (…)    "text"    12    NAME
//
// Words are the same in capital letters. Whatever else a script holds, and whatever a value would need that
// is not written here (the length of a text, comparing letters beyond ASCII), is refused and not guessed.

/// What the system answers to a script.
struct AppleScriptSystem {
    struct ShellEnd {
        int status = 0;
        std::string output;
        std::string errors;
    };

    /// An environment variable; empty where there is none.
    FunctionRef<std::string(const std::string& name)> variable;
    /// Runs a command by /bin/sh, as the administrator.
    FunctionRef<ShellEnd(const std::string& command)> shell;
};

struct AppleScriptValue {
    using List = std::vector<AppleScriptValue>;
    /// A text is well-formed UTF-8.
    std::variant<bool, std::int64_t, std::string, List> held;
    friend bool operator==(const AppleScriptValue&, const AppleScriptValue&) = default;
};

/// An error that the language knows, by its number there. That of a shell command is its exit status.
struct AppleScriptError : std::runtime_error {
    AppleScriptError(int itsNumber, const std::string& message) : runtime_error(message), number(itsNumber) {}
    int number;
};

/// What this interpreter does not know.
struct UnknownAppleScript : std::logic_error {
    using logic_error::logic_error;
};

/// Runs a script with the arguments of its run handler; gives back the value of the last statement.
AppleScriptValue runAppleScript(std::string_view source, const std::vector<std::string>& arguments,
                                const AppleScriptSystem& system);

/// The same with the arguments of the Mac's script runner, which must be "-e", a script, "--", and what the
/// script is given.
AppleScriptValue runScriptRunner(const std::vector<std::string>& arguments, const AppleScriptSystem& system);

}  // namespace orvane::test
