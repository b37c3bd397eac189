#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <filesystem>
#include <sstream>

#include "Platform/MacOS/ScriptRunner.h"
#include "Platform/Posix/Process.h"
#include "Platform/PrivilegedScript.h"
#include "tests/MacOS/MacFixture.h"

namespace orvane::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ScriptRunnerTest : public MacFixture, public testing::Test {
  protected:
    /// A script runner that writes its arguments down, each ended by a NUL, and then does as it is told.
    PrivilegedOutcome run(const PrivilegedRequest& request, const std::string& commands = "exit 0") const {
        const auto program =
            directory_.makeFile("osascript", "#!/bin/sh\nfor each; do printf '%s\\0' \"$each\"; done >'" +
                                                 at("arguments") + "'\n" + commands + "\n");
        EXPECT_EQ(::chmod(program.c_str(), 0755), 0);
        return makeScriptRunner(volume_, program)->run(request);
    }

    std::vector<std::string> arguments() const {
        std::istringstream written(isThere("arguments") ? readFile(at("arguments")) : std::string());
        std::vector<std::string> all;
        for (std::string each; std::getline(written, each, '\0');) all.push_back(each);
        return all;
    }

    PrivilegedRequest::Item item(const std::string& path) const {
        PrivilegedRequest::Item made;
        made.source = at(path);
        made.destination = mac_.home + "/.Trash/there";
        return made;
    }
};

TEST_F(ScriptRunnerTest, GivesTheScriptItsArguments) {
    auto daemon = item("Library/LaunchDaemons/a.plist");
    daemon.kind = PrivilegedRequest::Item::Kind::daemon;
    PrivilegedRequest request{RemovalMode::trash, {daemon}};
    std::vector<std::string> expected{"-e",
                                      std::string(privilegedAppleScript()),
                                      "--",
                                      "trash",
                                      "daemon",
                                      daemon.source,
                                      daemon.destination};
    for (const auto& name : awkwardNames) {
        request.items.push_back(item("Applications/" + name));
        expected.insert(expected.end(),
                        {"item", request.items.back().source, request.items.back().destination});
    }
    EXPECT_EQ(run(request).terminationStatus, 0);
    EXPECT_EQ(arguments(), expected);
}

TEST_F(ScriptRunnerTest, TellsHowItEnded) {
    const auto cancelled = run({RemovalMode::permanent, {item("a")}},
                               "echo 'execution error: User canceled. (-128)' >&2; exit 1");
    EXPECT_EQ(cancelled.launchError, "");
    EXPECT_EQ(cancelled.terminationStatus, 1);
    EXPECT_EQ(cancelled.standardError, "execution error: User canceled. (-128)\n");
    EXPECT_EQ(run({RemovalMode::permanent, {item("a")}}, "kill -KILL $$").terminationStatus, 128 + SIGKILL);
}

TEST_F(ScriptRunnerTest, ReadsMoreThanAPipeHolds) {
    const auto outcome =
        run({RemovalMode::permanent, {item("a")}}, "head -c 300000 /dev/zero | tr '\\0' x >&2; exit 3");
    EXPECT_EQ(outcome.terminationStatus, 3);
    EXPECT_EQ(outcome.standardError.size(), 300'000U);
}

TEST_F(ScriptRunnerTest, WhatItLeavesBehindHoldsNobodyUp) {
    const auto outcome = run({RemovalMode::permanent, {item("a")}},
                             "echo said >&2; sleep 600 & echo $! >'" + at("left") + "'; exit 0");
    EXPECT_EQ(outcome.terminationStatus, 0);
    EXPECT_EQ(outcome.standardError, "said\n");
    ::kill(std::stoi(readFile(at("left"))), SIGKILL);
}

TEST_F(ScriptRunnerTest, WhatCannotBeStartedSaysWhy) {
    const auto outcome = makeScriptRunner(volume_, at("missing"))->run({RemovalMode::permanent, {item("a")}});
    EXPECT_EQ(outcome.launchError, "No such file or directory");
}

TEST_F(ScriptRunnerTest, HasNoOtherDescriptorOfTheProgram) {
    const int open = ::open("/dev/null", O_RDONLY);
    run({RemovalMode::permanent, {item("a")}}, "ls /proc/$$/fd >'" + at("descriptors") + "'");
    ::close(open);
    // The shell opens its script, and may keep a copy of what it redirects; nothing else is above 2.
    std::istringstream listed(readFile(at("descriptors")));
    std::vector<int> inherited;
    for (int each = 0; listed >> each;) {
        if (each == open) inherited.push_back(each);
    }
    EXPECT_THAT(inherited, IsEmpty());
}

TEST_F(ScriptRunnerTest, AnItemOfAnotherFolderThanTheOneShownIsLeftOut) {
    directory_.makeFile("Library/a");
    auto moved = item("Library/a");
    moved.folder = files_->identity(url("Users")).value();
    auto shown = item("Library/a");
    shown.folder = files_->identity(url("Library")).value();
    const auto outcome = run({RemovalMode::permanent, {moved, shown}});
    EXPECT_THAT(outcome.reasons,
                ElementsAre("The folder that it lies in is no longer the one that was shown.", ""));
    EXPECT_EQ(arguments().size(), 7U);

    std::filesystem::remove(at("arguments"));
    EXPECT_EQ(run({RemovalMode::permanent, {moved}}).terminationStatus, 0);
    EXPECT_THAT(arguments(), IsEmpty()) << "nobody is asked for nothing";
}

TEST_F(ScriptRunnerTest, AProcessThatHasEndedCannotBeHeld) {
    const auto child = startProgram({"/bin/true"});
    ASSERT_TRUE(child);
    siginfo_t end{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(*child), &end, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(openProcess(*child));
    EXPECT_EQ(waitForTermination(*child), 0);
}

TEST_F(ScriptRunnerTest, ItsEndIsNeverMissed) {
    for (int round = 0; round < 100; ++round) {
        const auto end = runToEnd({"/bin/sh", "-c", "echo said >&2; exit 5"});
        ASSERT_TRUE(end);
        EXPECT_EQ(end->status, 5);
        EXPECT_EQ(end->standardError, "said\n");
    }
}

}  // namespace
}  // namespace orvane::test
