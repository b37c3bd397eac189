#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Platform/PrivilegedRunner.h"
#include "Platform/PrivilegedScript.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {

/// A privileged runner that runs the real command text of its request through a real shell, on a volume.
/// Where an administrator may write and the test's user may not, it changes the permissions for that time.
/// The tools that move and remove are the machine's, `launchctl` and `chown` are stand-ins.
class ShellRunner : public PrivilegedRunner {
  public:
    enum class Ending {
        /// Every command runs, and the last one decides the exit status.
        runs,
        /// Something takes the first item away before its turn.
        losesTheFirst,
        /// The shell ends after half of the items, with a reason and without one.
        diesHalfWay,
        isKilledHalfWay,
        /// No command runs, whatever the exit status says.
        isDismissed,
        cannotBeLaunched,
        onlyPretends,
    };

    struct Run {
        PrivilegedRequest request;
        bool hasRunCommands = false;
        PrivilegedOutcome outcome;
        /// What was taken away, by its path on the volume.
        std::set<std::string> vanished;
    };

    /// `lockedFolders` are those which only the administrator may write to.
    ShellRunner(const TestVolume& volume, std::vector<std::string> lockedFolders)
        : volume_(volume), lockedFolders_(std::move(lockedFolders)) {}

    void setEnding(Ending ending) { ending_ = ending; }

    PrivilegedOutcome run(const PrivilegedRequest& request) override;

    /// The one run since this was asked for last; throws when there were more.
    std::optional<Run> takeRun();

  private:
    PrivilegedOutcome outcomeOf(Run& run);
    void runCommands(Run& run, std::size_t count, const std::string& afterwards);
    int runShell(const std::string& text) const;
    void setPermissions(bool areOpen) const;
    bool makeTrash() const;

    const TemporaryDirectory directory_;
    const TestVolume& volume_;
    const std::vector<std::string> lockedFolders_;
    Ending ending_ = Ending::runs;
    std::vector<Run> runs_;
};

}  // namespace orvane::test
