#pragma once

#include <string>
#include <vector>

#include "Platform/PrivilegedScript.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {

/// Small programs in the place of the command text's tools. Each writes down how it was called and does
/// nothing else.
class StandInTools {
  public:
    StandInTools();

    /// The tools by their paths, for the group that a test wants.
    PrivilegedTools tools(const std::string& group) const;
    /// Lets every call of one tool ("mv") run these shell commands as well, last.
    void addBehaviour(const std::string& tool, const std::string& commands) const;

    /// Every call so far, in order: the tool's name ("mv"), then its arguments.
    std::vector<std::vector<std::string>> calls() const;

    const TemporaryDirectory& directory() const { return directory_; }

  private:
    std::string logFile() const;
    TemporaryDirectory directory_;
};

/// Feeds a command text to a shell ("/bin/sh") as its standard input; gives the exit status back.
int runInShell(const std::string& shell, const std::string& commandText);

}  // namespace orvane::test
