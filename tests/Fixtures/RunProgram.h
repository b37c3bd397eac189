#pragma once

#include <map>
#include <string>
#include <vector>

namespace orvane::test {

struct ProgramResult {
    /// The exit status; 128 plus the signal for a program that was killed.
    int status = -1;
    std::string output;
    std::string error;
};

struct ProgramOptions {
    /// Set besides what this process has; an empty value unsets.
    std::map<std::string, std::string> environment;
    /// What it reads from standard input, which is no terminal; 64 KiB at most.
    std::string input;
};

/// Runs a program to its end. A program that does not end within a minute is killed.
ProgramResult runProgram(const std::vector<std::string>& command, const ProgramOptions& options = {});

/// Runs a program on a terminal of its own, types `input` into it, and gives back all that it wrote to it as
/// `output`.
ProgramResult runOnTerminal(const std::vector<std::string>& command, const std::string& input);

}  // namespace orvane::test
