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

/// Makes this process's root a folder in memory that holds a shell, the libraries that programs need, in the
/// places of the Mac's tools a program that writes down how it was called and touches nothing, and in that of
/// its script runner ours. Only in private mounts.
class RecordedTools {
  public:
    /// Reads the programs, which may lie where nothing is seen from there.
    RecordedTools();
    void enter() const;

  private:
    std::string recorder_;
    std::string scriptRunner_;
};

constexpr const char* scriptRunner = "/usr/bin/osascript";

/// Runs a command text there.
ShellRun runRecorded(const std::string& commandText, ShellInput input);

/// Runs a program there, with one variable in its environment.
ShellRun runRecordedProgram(const std::vector<std::string>& command, const std::string& variable);

}  // namespace orvane::test
