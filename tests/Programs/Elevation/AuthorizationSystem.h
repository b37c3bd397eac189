#pragma once

#include <string>
#include <vector>

#include "Text/FunctionRef.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {

/// A prompt as the agent saw it.
struct Prompt {
    std::string action;
    std::string message;
    /// Whose password was asked for.
    std::vector<unsigned> users;
    /// It was taken away from the screen before it was answered.
    bool isTakenAway = false;
};

/// The real thing: the system's message bus, polkitd, pkexec and PAM, and Orvane as `cmake --install` puts it
/// there. All of it lives in namespaces of its own: nothing of this machine is changed, tests run beside each
/// other, and every process ends with the test.
class AuthorizationSystem {
  public:
    /// Why there can be no such system here; empty where there can.
    static std::string whyImpossible();

    /// Runs `body` as root on a fresh machine on which nothing has been started.
    static void run(FunctionRef<void(const AuthorizationSystem&)> body);

    void startBus() const;
    /// polkitd; returns when it can be asked.
    void startAuthority() const;
    void start() const {
        startBus();
        startAuthority();
    }

    /// For before the start. Takes the installed part that runs as root away.
    void uninstallRootPart() const;
    /// A machine on which a permission, once given, holds for a while.
    void keepPermissions() const;
    /// A machine that knows no password.
    void letNoPasswordPass() const;
    /// A machine whose rules answer so ("YES", "NO") for Orvane, whoever asks.
    void addRule(const std::string& result) const;
    /// In the place of that program is a file that cannot be run.
    static void breakProgram(const std::string& path);
    /// In the place of that program is a shell script; the program itself is `path` in /mnt.
    void replaceProgram(const std::string& path, const std::string& script) const;

    /// Starts an agent for the calling process, as its user; the answers are those of
    /// authentication-agent.py. It lives as long as the system.
    void startAgent(const std::vector<std::string>& answers) const;
    /// Every prompt so far.
    std::vector<Prompt> prompts() const;

    /// The command line as it is installed, where any user can run it.
    static std::string commandLineProgram() { return "/mnt/bin/orvane-cli"; }

  private:
    AuthorizationSystem();
    void install() const;
    void mountEverything() const;
    std::string log() const { return directory_.path("shared/prompts"); }

    TemporaryDirectory directory_;
};

}  // namespace orvane::test
