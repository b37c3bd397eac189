#pragma once

#include <string>
#include <vector>

namespace orvane {

/// How a run of the script runner ended.
struct ScriptOutcome {
    /// Why it could not be started, for a person to read; empty when it was.
    std::string launchError;
    /// 0 is success. A runner that was killed reports 128 plus the signal.
    int terminationStatus = 0;
    /// Everything that it wrote to standard error, as it is.
    std::string standardError;
};

/// Runs the privileged script, once, behind one authorization prompt. Blocks until the run has ended.
class ScriptRunner {
  public:
    virtual ~ScriptRunner() = default;

    /// `arguments` is the vector after the program's name: "-e", the script, "--", the action word, then
    /// three values per item. Paths in it are the Mac's own.
    virtual ScriptOutcome run(const std::vector<std::string>& arguments) = 0;
};

}  // namespace orvane
