// An application's process ends before it is asked to quit, or while it is, and another gets its number.
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <random>
#include <stdexcept>

#include "Platform/Linux/ProcWorkspace.h"
#include "Platform/Posix/BundleLoader.h"
#include "tests/Fixtures/ChildProcess.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

class ReusedNumbers {
  public:
    explicit ReusedNumbers(const ProofTask& task) : task_(task), random_(task.seed) {}

    ProofOutcome run() {
        ProofOutcome outcome;
        outcome.unit = "innocents";
        while (outcome.trials < task_.rounds) {
            const auto isUntouched = tryOnce();
            if (!isUntouched) continue;
            ++outcome.trials;
            if (*isUntouched) continue;
            ++outcome.failures;
            if (task_.isWrong) break;
        }
        return outcome;
    }

  private:
    /// Whether the process that took the number over was left alone. It takes it over before the request, or
    /// at the one or the other system call that the request is made of; absent where there was no such call.
    std::optional<bool> tryOnce() {
        std::optional<ChildProcess> quitter(foo_);
        const auto service = listed(quitter->id());
        std::optional<ChildProcess> successor;
        const auto takeOver = [&] {
            quitter->kill();
            quitter.reset();
            successor.emplace(random_() % 2 == 0 ? bar_ : tool_,
                              ChildOptions{.identifier = service.processIdentifier});
        };
        auto callsBefore = random_() % 4;
        if (callsBefore == 0) {
            takeOver();
            ask(service);
        } else {
            const auto direct = [&](const PendingCall& /*call*/) {
                if (!successor && --callsBefore == 0) takeOver();
                return proceed;
            };
            onCue({SYS_pidfd_open, SYS_readlink, SYS_readlinkat, SYS_pidfd_send_signal, SYS_kill}, direct,
                  [&] { ask(service); });
            if (!successor) return std::nullopt;
        }
        return successor->isUntouched();
    }

    /// The mistake: by number alone.
    void ask(const RunningService& service) const {
        if (task_.isWrong) {
            ::kill(service.processIdentifier, SIGTERM);
        } else {
            workspace_->terminate(service);
        }
    }

    RunningService listed(pid_t process) const {
        for (const auto& application : workspace_->runningApplications()) {
            if (application.processIdentifier != process) continue;
            return {process, application.localizedName.value(), application.executableURL.value().path()};
        }
        throw std::runtime_error("a running application is not listed");
    }

    const ProofTask& task_;
    std::mt19937_64 random_;
    TestVolume volume_;
    const std::string foo_ = installSleep(volume_.machinePath("/Applications/Foo.app/Contents/MacOS/Foo"));
    const std::string bar_ = installSleep(volume_.machinePath("/Applications/Bar.app/Contents/MacOS/Foo"));
    const std::string tool_ = installSleep(volume_.machinePath("/usr/bin/Foo"));
    std::unique_ptr<BundleLoader> bundles_ = makeBundleLoader(volume_.files());
    std::unique_ptr<Workspace> workspace_ = makeWorkspace(volume_.volume(), *bundles_);
};

const ProofHarness reusedNumbers("ReusedNumbers", [](const ProofTask& task) {
    if (!ChildProcess::mayChooseIdentifier()) return notHere("only root chooses the id of a process");
    return ReusedNumbers(task).run();
});

}  // namespace
}  // namespace orvane::test
