#include <filesystem>

#include "tests/Fixtures/UnprivilegedUser.h"
#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

class Misuse : public CommandLineTest {
  protected:
    static ProgramResult runPlain(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), binaryDirectory() + "/orvane-cli");
        return runProgram(arguments);
    }
};

TEST_F(Misuse, IsOneClearLineAndStatusTwo) {
    const std::vector<std::vector<std::string>> mistakes{
        {},
        {"frobnicate"},
        {"list", "--frobnicate"},
        {"list", "extra"},
        {"plan"},
        {"plan", "a", "b"},
        {"remove"},
        {"remove", "a", "--keep"},
        {"list", "plan"},
        {"plan", ""},
        {"plan", "No Such Application"},
        {"plan", "/Applications/Nothing.app"},
        {"plan", "http://example.org/Applications/Foo.app"},
        {"remove", "No Such Application", "--yes"},
        {"remove", "No Such\nApplication", "--yes"},
    };
    for (const auto& arguments : mistakes) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        expectMisuse(run(arguments));
    }
}

TEST_F(Misuse, NamesARootThatIsNoFolder) {
    expectMisuse(runPlain({"--root", volume.path("missing"), "list"}));
    expectMisuse(runPlain({"--root", volume.makeFile("file"), "list"}));
    expectMisuse(runPlain({"--root", "", "list"}));
}

TEST_F(Misuse, SaysWhyARootCannotBeRead) {
    const auto files = volume.path("Users");
    giveToUnprivilegedUser(volume.path());
    giveToUnprivilegedUser(files);
    // A copy: that user may not get to where this was built.
    const TemporaryDirectory copies;
    const auto program = copies.path("orvane-cli");
    std::filesystem::copy_file(binaryDirectory() + "/orvane-cli", program);
    giveToUnprivilegedUser(copies.path());
    asUnprivilegedUser([&] {
        for (const auto& unreadable : {files, volume.path()}) {
            std::filesystem::permissions(unreadable, std::filesystem::perms::none);
            const auto result = runProgram({program, "--root", volume.path(), "list"});
            expectMisuse(result);
            EXPECT_NE(result.error.find("Permission denied"), std::string::npos) << result.error;
            expectMisuse(runProgram({program, "--root", volume.path(), "--home", home, "list"}));
            std::filesystem::permissions(unreadable, std::filesystem::perms::owner_all);
        }
    });
}

TEST_F(Misuse, NamesAHomeThatIsNone) {
    for (const auto* given : {"/Users/nobody", "Users/sample", ""}) {
        SCOPED_TRACE(given);
        expectMisuse(runPlain({"--root", volume.path(), "--home", given, "list"}));
    }
}

TEST_F(Misuse, AsksForTheHomeWhereThereAreSeveralUsers) {
    volume.makeDirectory("Users/other");
    const auto result = runPlain({"--root", volume.path(), "list"});
    expectMisuse(result);
    EXPECT_NE(result.error.find("other"), std::string::npos) << result.error;
    EXPECT_NE(result.error.find("sample"), std::string::npos) << result.error;
    EXPECT_NE(result.error.find("--home"), std::string::npos) << result.error;
    EXPECT_EQ(runPlain({"--root", volume.path(), "--home", "/Users/sample", "list"}).status, 0);
}

TEST_F(Misuse, NamesThePathsWhenSeveralApplicationsHaveTheName) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    makeApplication("/Users/sample/Applications/Foo.app", "com.example.foo2");
    const auto result = run({"plan", "Foo"});
    expectMisuse(result);
    EXPECT_NE(result.error.find("'/Applications/Foo.app'"), std::string::npos) << result.error;
    EXPECT_NE(result.error.find("'/Users/sample/Applications/Foo.app'"), std::string::npos) << result.error;
}

TEST_F(Misuse, RefusesASystemApplication) {
    makeApplication("/System/Applications/Mail.app", "com.example.mail");
    const auto before = volume.listing();
    run({"list"});
    const auto saved = volume.listing();
    expectMisuse(run({"remove", "Mail", "--yes"}));
    expectMisuse(run({"remove", "/System/Applications/Mail.app", "--yes", "--permanently"}));
    EXPECT_EQ(volume.listing(), saved);
    EXPECT_NE(before, "");
}

TEST_F(Misuse, WantsAnAnswerBeforehandWhereThereIsNoTerminal) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    run({"list"});
    const auto before = volume.listing();
    const auto result = run({"remove", "Foo"});
    expectMisuse(result);
    EXPECT_NE(result.error.find("--yes"), std::string::npos);
    EXPECT_EQ(volume.listing(), before);
}

TEST_F(Misuse, RefusesToKeepWhatIsNotInThePlan) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    run({"list"});
    const auto before = volume.listing();
    expectMisuse(run({"remove", "Foo", "--yes", "--keep", "/Applications/Foo"}));
    EXPECT_EQ(volume.listing(), before);
}

TEST_F(Misuse, HelpAndVersionAreNone) {
    for (const auto* flag : {"--help", "--version"}) {
        const auto result = runPlain({flag});
        EXPECT_EQ(result.status, 0);
        EXPECT_NE(result.output, "");
        EXPECT_EQ(result.error, "");
    }
    EXPECT_EQ(runPlain({"remove", "--help"}).status, 0);
}

}  // namespace
}  // namespace orvane::test
