#include "Platform/ScriptRunner.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "Platform/Linux/ElevateScriptRunner.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/PrivilegedScript.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Item = PrivilegedRequest::Item;

class ScriptRunnerTest : public testing::Test {
  protected:
    ScriptRunnerTest() { makeProgram(""); }

    /// Makes the program that is run: it writes its arguments down, then runs these shell commands.
    void makeProgram(const std::string& commands) const {
        tools_.makeFile("program", "#!/bin/sh\nprintf '%s\\0' \"$@\" >'" + log() + "'\n" + commands + "\n");
        ::chmod(program().c_str(), 0755);
    }

    ScriptOutcome run(const PrivilegedRequest& request) const { return runProgram(program(), request); }
    ScriptOutcome runProgram(const std::string& path, const PrivilegedRequest& request) const {
        return makeScriptRunner(volume_.volume(), path)->run(scriptArguments(request));
    }
    /// A request that reaches the program, for tests of how it is run.
    PrivilegedRequest anyRequest() const {
        volume_.makeFile("/Library/a");
        return {"delete", {{"item", "/Library/a", ""}}};
    }

    /// What the program was given; nothing when it was not run.
    std::vector<std::string> arguments() const {
        std::istringstream stream(test::readFile(log()));
        std::vector<std::string> arguments;
        for (std::string argument; std::getline(stream, argument, '\0');) arguments.push_back(argument);
        return arguments;
    }
    std::vector<Item> items() const {
        const auto request = requestFromScriptArguments(arguments());
        return request ? request->items : std::vector<Item>();
    }

    std::string program() const { return tools_.path("program"); }
    std::string log() const { return tools_.path("arguments"); }

    test::TemporaryDirectory tools_;
    test::TestVolume volume_;
};

TEST_F(ScriptRunnerTest, GivesTheProgramTheSameVectorWithThisMachinesNames) {
    volume_.makeDirectory("/Users/sample/.Trash");
    volume_.makeFile("/Library/LaunchDaemons/d.plist");

    const auto outcome =
        run({"trash", {{"daemon", "/Library/LaunchDaemons/d.plist", "/Users/sample/.Trash/d 2.plist"}}});

    EXPECT_EQ(outcome.launchError, "");
    EXPECT_EQ(outcome.terminationStatus, 0);
    EXPECT_THAT(arguments(), ElementsAre("-e", std::string(privilegedAppleScript()), "--", "trash", "daemon",
                                         volume_.machinePath("Library/LaunchDaemons/d.plist"),
                                         volume_.machinePath("Users/sample/.Trash/d 2.plist")));
}

TEST_F(ScriptRunnerTest, DeletingHandsOnEmptyDestinations) {
    volume_.makeFile("/a");
    run({"delete", {{"item", "/a", ""}}});
    EXPECT_THAT(items(), ElementsAre(Item{"item", volume_.machinePath("a"), ""}));
}

TEST_F(ScriptRunnerTest, HostileNamesArriveAsTheyAre) {
    const std::string name = "-it's \"a\"\n$(name)\t\xff";
    volume_.makeFile("/Library/" + name);
    run({"delete", {{"item", "/Library/" + name, ""}}});
    EXPECT_THAT(items(), ElementsAre(Item{"item", volume_.machinePath("Library/" + name), ""}));
}

TEST_F(ScriptRunnerTest, ALinkOnTheDiskLeadsNoCommandOutside) {
    const auto outside = volume_.makeOutsideFile("precious");
    volume_.makeLink("/Library/link", volume_.outside());
    volume_.makeLink("/Library/up", "../../outside");
    // To a shell both paths name the file outside.
    ASSERT_TRUE(fs::exists(volume_.machinePath("Library/link/precious")));
    ASSERT_TRUE(fs::exists(volume_.machinePath("Library/up/precious")));
    makeProgram("exit 1");

    const auto outcome =
        run({"delete", {{"item", "/Library/link/precious", ""}, {"daemon", "/Library/up/precious", ""}}});

    EXPECT_THAT(arguments(), IsEmpty());
    EXPECT_EQ(outcome.launchError, "");
    EXPECT_EQ(outcome.terminationStatus, 0);
}

TEST_F(ScriptRunnerTest, ALinkInsideTheDiskIsResolvedThere) {
    volume_.makeFile("/Volumes/Data/a");
    volume_.makeLink("/Library/link", "/Volumes/Data");
    run({"delete", {{"item", "/Library/link/a", ""}}});
    EXPECT_THAT(items(), ElementsAre(Item{"item", volume_.machinePath("Volumes/Data/a"), ""}));
}

TEST_F(ScriptRunnerTest, ALinkThatIsTheItemIsHandedOnAsALink) {
    volume_.makeFile("/Volumes/Data/a");
    volume_.makeLink("/Library/link", "/Volumes/Data");
    run({"delete", {{"item", "/Library/link", ""}}});
    EXPECT_THAT(items(), ElementsAre(Item{"item", volume_.machinePath("Library/link"), ""}));
}

TEST_F(ScriptRunnerTest, WhatDoesNotResolveIsLeftOutAndTheRestIsRun) {
    volume_.makeFile("/Library/a");
    run({"delete",
         {{"item", "/nowhere/x", ""},
          {"item", "", ""},
          {"item", "Library/a", ""},
          {"item", "/", ""},
          {"item", "/Library/..", ""},
          {"item", "/Library/a", ""}}});
    EXPECT_THAT(items(), ElementsAre(Item{"item", volume_.machinePath("Library/a"), ""}));
}

TEST_F(ScriptRunnerTest, AMissingTrashIsMadeForTheUserAlone) {
    volume_.makeFile("/Library/a");
    run({"trash", {{"item", "/Library/a", "/Users/sample/.Trash/a"}}});

    EXPECT_THAT(items(), ElementsAre(Item{"item", volume_.machinePath("Library/a"),
                                          volume_.machinePath("Users/sample/.Trash/a")}));
    EXPECT_EQ(fs::status(volume_.machinePath("Users/sample/.Trash")).permissions(), fs::perms::owner_all);
}

TEST_F(ScriptRunnerTest, ATrashThatLeadsElsewhereIsAnErrorBeforeAnythingIsRun) {
    volume_.makeFile("/Library/a");
    volume_.makeDirectory("/Elsewhere");
    volume_.makeLink("/Users/sample/.Trash", "/Elsewhere");

    const auto outcome = run({"trash", {{"item", "/Library/a", "/Users/sample/.Trash/a"}}});

    EXPECT_EQ(outcome.launchError, "The Trash cannot be used: Not a directory");
    EXPECT_THAT(arguments(), IsEmpty());
}

TEST_F(ScriptRunnerTest, ADestinationThatIsNoTrashIsAnErrorToo) {
    volume_.makeFile("/Library/a");
    const auto outcome = run({"trash", {{"item", "/Library/a", "/Users/sample/a"}}});

    EXPECT_THAT(outcome.launchError, HasSubstr("The Trash cannot be used"));
    EXPECT_THAT(arguments(), IsEmpty());
}

TEST_F(ScriptRunnerTest, ArgumentsThatAreNoRequestAreNotRun) {
    const auto outcome = makeScriptRunner(volume_.volume(), program())->run({"-e", "script", "--"});
    EXPECT_EQ(outcome.launchError, "Invalid argument");
    EXPECT_THAT(arguments(), IsEmpty());
}

TEST_F(ScriptRunnerTest, AProgramThatCannotBeLaunchedSaysWhy) {
    EXPECT_EQ(runProgram("/nowhere/program", anyRequest()).launchError, "No such file or directory");
    EXPECT_EQ(runProgram(tools_.makeFile("text", "no program"), anyRequest()).launchError,
              "Permission denied");
    const auto noFormat = tools_.makeFile("rubbish", "\x01\x02\x03\x04");
    ::chmod(noFormat.c_str(), 0755);
    EXPECT_EQ(runProgram(noFormat, anyRequest()).launchError, "Exec format error");
}

TEST_F(ScriptRunnerTest, TheExitStatusIsTheProgramsOwn) {
    for (const int status : {0, 1, 126, 127, 255}) {
        makeProgram("exit " + std::to_string(status));
        EXPECT_EQ(run(anyRequest()).terminationStatus, status);
    }
}

TEST_F(ScriptRunnerTest, AKilledProgramIsNoSuccess) {
    makeProgram("kill -9 $$");
    EXPECT_EQ(run(anyRequest()).terminationStatus, 128 + SIGKILL);
}

TEST_F(ScriptRunnerTest, StandardErrorComesBackAsItIs) {
    makeProgram(R"(printf ' caution \377\n\n' >&2; exit 1)");
    const auto outcome = run(anyRequest());
    EXPECT_EQ(outcome.standardError, " caution \xff\n\n");
    EXPECT_EQ(outcome.terminationStatus, 1);
}

TEST_F(ScriptRunnerTest, MoreStandardErrorThanAPipeHoldsComesBackWhole) {
    makeProgram("head -c 1000000 /dev/zero | tr '\\0' x >&2; exit 4");
    const auto outcome = run(anyRequest());
    EXPECT_EQ(outcome.standardError, std::string(1'000'000, 'x'));
    EXPECT_EQ(outcome.terminationStatus, 4);
}

TEST_F(ScriptRunnerTest, AProgramThatClosesStandardErrorIsWaitedFor) {
    makeProgram("exec 2>&-; exit 6");
    EXPECT_EQ(run(anyRequest()).terminationStatus, 6);
}

TEST_F(ScriptRunnerTest, SomebodyLeftBehindDoesNotHoldTheRunUp) {
    const auto fifo = tools_.makeFIFO("fifo");
    makeProgram("echo said >&2; cat '" + fifo + "' >/dev/null & exit 7");

    const auto outcome = run(anyRequest());

    EXPECT_EQ(outcome.standardError, "said\n");
    EXPECT_EQ(outcome.terminationStatus, 7);
    // Lets the one left behind, who still has our pipe, come to its end.
    const FileDescriptor end(::open(fifo.c_str(), O_WRONLY | O_CLOEXEC));
    EXPECT_TRUE(end);
}

TEST_F(ScriptRunnerTest, TheProgramGetsNoDescriptorOfOurs) {
    const FileDescriptor ours(::open("/dev/null", O_RDONLY));  // NOLINT(android-cloexec-open)
    // From 10 on a shell has some of its own.
    ASSERT_GT(ours.get(), 2);
    ASSERT_LT(ours.get(), 10);
    makeProgram("test ! -e /proc/$$/fd/" + std::to_string(ours.get()) + " && test -e /proc/$$/fd/2");
    EXPECT_EQ(run(anyRequest()).terminationStatus, 0);
}

TEST_F(ScriptRunnerTest, NoSignalIsBlockedOrBrokenPipeIgnoredInTheProgram) {
    const auto status = tools_.path("status");
    makeProgram("sed -n 's/^Sig\\(Blk\\|Ign\\):\t//p' /proc/self/status >'" + status + "'");
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    auto* const handler = std::signal(SIGPIPE, SIG_IGN);

    run(anyRequest());

    std::signal(SIGPIPE, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::istringstream masks(test::readFile(status));
    std::uint64_t blockedThere = 1;
    std::uint64_t ignoredThere = ~std::uint64_t{0};
    masks >> std::hex >> blockedThere >> ignoredThere;
    EXPECT_EQ(blockedThere, 0u);
    EXPECT_EQ(ignoredThere & (std::uint64_t{1} << (SIGPIPE - 1)), 0u);
}

}  // namespace
}  // namespace orvane
