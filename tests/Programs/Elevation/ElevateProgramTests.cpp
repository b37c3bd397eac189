#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>

#include "Platform/Linux/ElevateScriptRunner.h"
#include "Platform/PrivilegedScript.h"
#include "tests/Fixtures/EnvironmentVariable.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane {
namespace {

using testing::IsEmpty;

/// The built program on a volume, run by root, who needs no prompt.
class ElevateProgramTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!test::isRoot()) GTEST_SKIP() << "everyone but root would be asked for a password";
    }

    ScriptOutcome run(const PrivilegedRequest& request) const {
        return makeScriptRunner(volume_.volume(), test::binaryDirectory() + "/orvane-elevate")
            ->run(scriptArguments(request));
    }

    static constexpr const char* hostileName = "-it's \"a\"\n$(touch x)\t\xff";
    test::TestVolume volume_;
};

TEST_F(ElevateProgramTest, DeletesWhatItIsToldAndNothingElse) {
    volume_.makeFile("/Library/LaunchDaemons/other.plist");
    volume_.makeOutsideFile("precious");
    volume_.makeDirectory("/Library/Foo");
    const auto before = volume_.listing();
    volume_.makeFile("/Library/LaunchDaemons/foo.plist");
    volume_.makeFile(std::string("/Library/Foo/") + hostileName + "/deep/file");
    volume_.makeLink("/Library/Foo/link", volume_.outside());
    volume_.makeLink(std::string("/Library/Foo/") + hostileName + "/link", volume_.outside());

    const auto outcome = run({"delete",
                              {{"daemon", "/Library/LaunchDaemons/foo.plist", ""},
                               {"item", std::string("/Library/Foo/") + hostileName, ""},
                               {"item", "/Library/Foo/link", ""},
                               {"item", "/Library/Foo/gone", ""}}});

    EXPECT_EQ(outcome.launchError, "");
    EXPECT_EQ(outcome.terminationStatus, 0);
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(volume_.listing(), before);
}

TEST_F(ElevateProgramTest, WhatGoesToTheTrashBelongsToTheUserAndHisGroup) {
    const auto* const user = ::getpwuid(test::unprivilegedUser());
    ASSERT_NE(user, nullptr);
    const test::EnvironmentVariable name("USER", user->pw_name);
    const std::string trash = "/Users/sample/.Trash/";
    volume_.makeDirectory(trash);
    volume_.makeFile(std::string("/Library/") + hostileName + "/deep/file");

    const auto outcome =
        run({"trash", {{"item", std::string("/Library/") + hostileName, trash + hostileName}}});

    EXPECT_EQ(outcome.terminationStatus, 0) << outcome.standardError;
    EXPECT_FALSE(volume_.contains(std::string("/Library/") + hostileName));
    for (const auto* const inside : {"", "/deep", "/deep/file"}) {
        struct stat status {};
        const auto path = volume_.machinePath(trash + hostileName + inside);
        ASSERT_EQ(::lstat(path.c_str(), &status), 0) << path;
        EXPECT_EQ(status.st_uid, user->pw_uid);
        EXPECT_EQ(status.st_gid, user->pw_gid);
    }
}

TEST_F(ElevateProgramTest, AFailureIsToldInTheToolsWords) {
    const test::EnvironmentVariable language("LC_ALL", "C");
    volume_.makeDirectory("/Library");

    const auto outcome = run({"trash", {{"item", "/Library/gone", "/Users/sample/.Trash/gone"}}});

    EXPECT_NE(outcome.terminationStatus, 0);
    EXPECT_THAT(outcome.standardError, testing::HasSubstr("No such file or directory"));
}

TEST_F(ElevateProgramTest, AThousandItemsAreOneRun) {
    PrivilegedRequest request{"delete", {}};
    for (int i = 0; i < 1000; ++i) {
        const auto path = "/Library/" + std::string(200, 'x') + std::to_string(i);
        volume_.makeFile(path);
        request.items.push_back({"item", path, ""});
    }
    EXPECT_EQ(run(request).terminationStatus, 0);
    EXPECT_THAT(volume_.files().contentsOfDirectory(volume_.url("/Library"), {}).value(), IsEmpty());
}

TEST(ElevateProgram, MisuseIsStatusTwoForAnyUser) {
    const int status = std::system(
        (test::binaryDirectory() + "/orvane-elevate -e script -- delete item /a 2>/dev/null").c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
}

}  // namespace
}  // namespace orvane
