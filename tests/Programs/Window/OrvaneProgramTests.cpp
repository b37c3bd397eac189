#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Runs the window's program where there is no display.
ProgramResult runOrvane(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), binaryDirectory() + "/orvane");
    return runProgram(arguments, {{{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}}, ""});
}

bool isOneLine(const std::string& text) {
    return text.ends_with('\n') && std::ranges::count(text, '\n') == 1;
}

TEST(OrvaneProgram, HelpsWithoutADisplay) {
    const auto result = runOrvane({"--help"});
    EXPECT_EQ(result.status, 0);
    for (const char* option : {"--root", "--home", "--appearance", "--help", "--version"})
        EXPECT_THAT(result.output, HasSubstr(option));
    EXPECT_EQ(result.error, "");
}

TEST(OrvaneProgram, TellsItsVersionWithoutADisplay) {
    const auto result = runOrvane({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, StartsWith("orvane 1."));
    EXPECT_TRUE(isOneLine(result.output));
}

TEST(OrvaneProgram, SaysThatItsHelpCouldNotBeWritten) {
    const auto result =
        runProgram({"/bin/sh", "-c", "exec \"$0\" --help >/dev/full", binaryDirectory() + "/orvane"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "orvane: the output could not be written\n");
}

TEST(OrvaneProgram, AnswersMisuseWithOneLineAndStatusTwo) {
    const std::vector<std::vector<std::string>> mistakes{
        {"--frobnicate"}, {"extra"},  {"--appearance", "sepia"},         {"--root"},
        {"--root", ""},   {"--home"}, {"--root", "/nothing/is\n/there"},
    };
    for (const auto& arguments : mistakes) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const auto result = runOrvane(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(isOneLine(result.error)) << result.error;
        EXPECT_THAT(result.error, StartsWith("orvane: "));
        EXPECT_EQ(result.output, "");
    }
}

TEST(OrvaneProgram, SaysThatThereIsNoDisplay) {
    const TestVolume mac;
    const auto result = runOrvane({"--root", mac.machinePath("/"), "--home", "/Users/sample"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "orvane: there is no display to open a window on\n");
}

}  // namespace
}  // namespace orvane::test
