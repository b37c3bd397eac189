#pragma once

#include <string>
#include <vector>

#include "tests/AppleScript/AppleScript.h"

namespace orvane::test {

/// How a command text is handed to /bin/sh.
enum class ShellInput { argument, standardInput };

/// What came of a command text.
struct ShellRun {
    /// Every tool that was called, in order, each by its path and its arguments.
    std::vector<std::vector<std::string>> calls;
    int status = 0;
    std::string output;
    std::string errors;
    friend bool operator==(const ShellRun&, const ShellRun&) = default;
};

/// Makes this process's root a folder in memory that holds a shell, the libraries that it needs, and in the
/// places of the Mac's tools a program that writes down how it was called and touches nothing. Only in
/// private mounts. `recorder` is that program's bytes, which may lie where nothing is seen any more.
void enterShellOfRecordedTools(const std::string& recorder);

/// Runs a command text there.
ShellRun runRecorded(const std::string& commandText, ShellInput input);

}  // namespace orvane::test
