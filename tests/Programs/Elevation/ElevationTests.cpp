#include "Programs/Elevation/Elevation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <iostream>
#include <sstream>

#include "Platform/PrivilegedScript.h"
#include "Programs/Elevation/RootShell.h"
#include "tests/Fixtures/StandInTools.h"

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::IsEmpty;

const RootShell ownShell{{"/bin/sh", "-s"}};

/// A program in pkexec's place. It writes down its arguments and, like pkexec, runs them as they are.
class StandInPrompt {
  public:
    StandInPrompt() : program_(directory_.makeFile("pkexec")) {
        directory_.makeFile("pkexec",
                            "#!/bin/sh\nprintf '%s\\n' \"$@\" >'" + log() + "'\nshift\nexec \"$@\"\n");
        ::chmod(program_.c_str(), 0755);
    }

    RootShell shell() const {
        auto command = RootShell::reachedBy(1000).command;
        command.front() = program_;
        return {command};
    }
    std::string log() const { return directory_.path("arguments"); }

  private:
    test::TemporaryDirectory directory_;
    std::string program_;
};

/// `elevate` in a process of its own, which becomes the shell: for EXPECT_EXIT.
[[noreturn]] void becomeElevated(const std::vector<std::string>& arguments, const RootShell& shell) {
    std::exit(elevate(arguments, shell, std::cout, std::cerr));
}

[[noreturn]] void becomeShell(const RootShell& shell, const std::string& commands) {
    std::cerr << becomeRootShell(shell, commands).message();
    std::exit(99);
}

TEST(RootShell, RootNeedsNoPrompt) {
    EXPECT_THAT(RootShell::reachedBy(0).command, ElementsAre("/bin/sh", "-s"));
}

TEST(RootShell, EveryoneElseGoesThroughThePrompt) {
    EXPECT_THAT(RootShell::reachedBy(1000).command,
                ElementsAre("/usr/bin/pkexec", "--disable-internal-agent", "/bin/sh", "-s"));
}

TEST(RootShell, StatusAndStandardErrorAreTheCommands) {
    EXPECT_EXIT(becomeShell(ownShell, "echo caution >&2; exit 41; "), ExitedWithCode(41), "^caution\n$");
}

TEST(RootShell, AProgramThatIsMissingIsAnErrorAndRunsNothing) {
    EXPECT_EXIT(becomeShell({{"/nowhere/pkexec"}}, "exit 0"), ExitedWithCode(99),
                "No such file or directory");
}

TEST(RootShell, TheCommandsCannotBeAlteredOnceTheyAreThere) {
    // The shell itself tries to write to the file that it reads.
    EXPECT_EXIT(becomeShell(ownShell, "echo 'exit 7' >>/proc/self/fd/0 || exit 8; "), ExitedWithCode(8), "");
}

TEST(RootShell, WorksWithStandardInputClosed) {
    EXPECT_EXIT(
        {
            ::close(STDIN_FILENO);
            becomeShell(ownShell, "exit 5; ");
        },
        ExitedWithCode(5), "");
}

class RootShellKinds : public testing::TestWithParam<std::vector<std::string>> {
  protected:
    /// A tool that reads all of its standard input, once per item, far more text than a pipe or a shell
    /// holds.
    static std::string textForGreedyTools(const test::StandInTools& standIns) {
        standIns.addBehaviour("rm", "cat >>'" + standIns.directory().path("swallowed") + "'");
        PrivilegedRequest request{"delete", {}};
        for (int i = 0; i < items; ++i) {
            request.items.push_back({"item", "/" + std::string(2000, 'x') + std::to_string(i), ""});
        }
        return commandText(request, "anna", standIns.tools(""));
    }

    static constexpr int items = 100;
};

TEST_P(RootShellKinds, NoToolCanReadTheRestOfTheCommands) {
    const test::StandInTools standIns;
    const auto text = textForGreedyTools(standIns);

    EXPECT_EXIT(becomeShell({GetParam()}, text), ExitedWithCode(0), "");

    EXPECT_EQ(standIns.calls().size(), static_cast<std::size_t>(items));
    EXPECT_EQ(test::readFile(standIns.directory().path("swallowed")), "");
}

TEST_P(RootShellKinds, CommandsOnLinesOfTheirOwnWouldBeSwallowed) {
    // The counterpart of the test above: why the commands are one line.
    const test::StandInTools standIns;
    auto text = textForGreedyTools(standIns);
    for (auto at = text.find("; "); at != std::string::npos; at = text.find("; ", at))
        text.replace(at, 2, "\n");

    EXPECT_EXIT(
        becomeShell({GetParam()}, text), [](int) { return true; }, "");

    EXPECT_LT(standIns.calls().size(), static_cast<std::size_t>(items));
}

INSTANTIATE_TEST_SUITE_P(Shells, RootShellKinds,
                         testing::Values(std::vector<std::string>{"/bin/sh", "-s"},
                                         std::vector<std::string>{"/bin/bash", "--posix", "-s"}));

TEST(Elevation, NamesReachTheToolsAndNeverThePrompt) {
    const StandInPrompt prompt;
    const test::TemporaryDirectory directory;
    const auto name = "it's -rf\n\xff$HOME";
    const auto doomed = directory.makeFile(name);
    const auto spared = directory.makeFile("spared");
    const auto arguments = scriptArguments({"delete", {{"item", doomed, ""}}});

    EXPECT_EXIT(becomeElevated(arguments, prompt.shell()), ExitedWithCode(0), "^$");

    EXPECT_EQ(test::readFile(prompt.log()), "--disable-internal-agent\n/bin/sh\n-s\n");
    EXPECT_THAT(directory.listing(), Not(HasSubstr("it's")));
    EXPECT_THAT(directory.listing(), HasSubstr("spared"));
}

TEST(Elevation, TheWholeBatchIsOnePrompt) {
    const StandInPrompt prompt;
    const test::TemporaryDirectory directory;
    PrivilegedRequest request{"delete", {}};
    for (const auto* const name : {"a", "b", "c"}) {
        request.items.push_back({"item", directory.makeFile(name), ""});
    }

    EXPECT_EXIT(becomeElevated(scriptArguments(request), prompt.shell()), ExitedWithCode(0), "^$");

    EXPECT_EQ(test::readFile(prompt.log()), "--disable-internal-agent\n/bin/sh\n-s\n");
    EXPECT_THAT(directory.listing(), IsEmpty());
}

TEST(Elevation, MovesToTheTrashAndGivesItToTheUserOfTheEnvironment) {
    // A user who does not exist, so that the tool's complaint tells his name without a need for root.
    const test::TemporaryDirectory directory;
    directory.makeDirectory("Trash");
    const auto arguments =
        scriptArguments({"trash", {{"item", directory.makeFile("a"), directory.path("Trash/a 2")}}});

    EXPECT_EXIT(
        {
            ::setenv("USER", "no such o'hara", 1);
            ::setenv("LC_ALL", "C", 1);
            becomeElevated(arguments, ownShell);
        },
        ExitedWithCode(1), "/bin/chown: .*no such o");

    EXPECT_THAT(directory.listing(), HasSubstr("/Trash/a 2\n"));
    EXPECT_THAT(directory.listing(), Not(HasSubstr(" /a\n")));
}

class UserOfTheEnvironment : public testing::TestWithParam<const char*> {};

TEST_P(UserOfTheEnvironment, WhenThereIsNoneIsTheOneWhoRunsIt) {
    const test::TemporaryDirectory directory;
    directory.makeDirectory("Trash");
    const auto arguments =
        scriptArguments({"trash", {{"item", directory.makeFile("a"), directory.path("Trash/a")}}});

    EXPECT_EXIT(
        {
            ::unsetenv("USER");
            if (GetParam() != nullptr) ::setenv("USER", GetParam(), 1);
            becomeElevated(arguments, ownShell);
        },
        ExitedWithCode(0), "^$");

    EXPECT_THAT(directory.listing(), HasSubstr("/Trash/a\n"));
}

INSTANTIATE_TEST_SUITE_P(UnsetAndEmpty, UserOfTheEnvironment, testing::Values(nullptr, ""));

TEST(Elevation, APromptThatIsMissingIsOneClearLine) {
    const auto arguments = scriptArguments({"delete", {{"item", "/nowhere/a", ""}}});
    std::ostringstream out;
    std::ostringstream err;

    EXPECT_EQ(elevate(arguments, {{"/nowhere/pkexec", "/bin/sh"}}, out, err), 127);

    EXPECT_EQ(err.str(),
              "orvane-elevate: administrator rights cannot be asked for: /nowhere/pkexec: "
              "No such file or directory\n");
    EXPECT_THAT(out.str(), IsEmpty());
}

TEST(Elevation, ArgumentsThatAreNoRequestAreOneClearLine) {
    const std::vector<std::vector<std::string>> misuses{{},
                                                        {"trash"},
                                                        {"--help", "me"},
                                                        {"-e", "script", "--"},
                                                        {"-e", "script", "--", "delete", "item", "/a"}};
    for (const auto& arguments : misuses) {
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(elevate(arguments, {{"/nowhere/shell"}}, out, err), 2);
        EXPECT_EQ(err.str(), "orvane-elevate: these arguments are no request; see orvane-elevate --help\n");
        EXPECT_THAT(out.str(), IsEmpty());
    }
}

TEST(Elevation, ARequestWithoutItemsAsksForNothing) {
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(elevate({"-e", "script", "--", "delete"}, {{"/nowhere/shell"}}, out, err), 0);
    EXPECT_THAT(err.str(), IsEmpty());
}

TEST(Elevation, TellsItsUseAndItsVersion) {
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(elevate({"--help"}, ownShell, out, err), 0);
    EXPECT_THAT(out.str(), HasSubstr("Usage: orvane-elevate"));
    out.str("");
    EXPECT_EQ(elevate({"--version"}, ownShell, out, err), 0);
    EXPECT_THAT(out.str(), testing::MatchesRegex("orvane-elevate [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_THAT(err.str(), IsEmpty());
}

}  // namespace
}  // namespace orvane
