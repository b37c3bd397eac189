#include "Platform/Workspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <limits>
#include <optional>

#include "Platform/Linux/ProcWorkspace.h"
#include "Platform/Posix/BundleLoader.h"
#include "tests/Fixtures/ChildProcess.h"
#include "tests/Fixtures/EnvironmentVariable.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

using test::ChildProcess;
using test::installSleep;
using testing::Optional;

class WorkspaceTest : public testing::Test {
  protected:
    /// A program of this volume that runs for a long time.
    std::string makeExecutable(const std::string& path) const {
        return installSleep(volume_.machinePath(path));
    }
    void makeInformation(const std::string& bundle, const std::string& entries) const {
        volume_.makeFile(bundle + "/Contents/Info.plist",
                         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>" + entries +
                             "</dict></plist>");
    }

    /// The entry of the list for one process.
    std::optional<RunningApplication> listed(pid_t process) const {
        for (auto& application : workspace_->runningApplications()) {
            if (application.processIdentifier == process) return application;
        }
        return std::nullopt;
    }

    test::TestVolume volume_;
    std::unique_ptr<BundleLoader> bundles_ = makeBundleLoader(volume_.files());
    std::unique_ptr<Workspace> workspace_ = makeWorkspace(volume_.volume(), *bundles_);
};

TEST_F(WorkspaceTest, ListsAnApplicationByItsBundle) {
    makeInformation("/Applications/Foo.app",
                    "<key>CFBundleIdentifier</key><string>com.example.foo</string>"
                    "<key>CFBundleName</key><string>Short</string>"
                    "<key>CFBundleDisplayName</key><string>Display</string>");
    const ChildProcess process(makeExecutable("/Applications/Foo.app/Contents/MacOS/Foo"));

    const auto application = listed(process.id());

    ASSERT_TRUE(application);
    EXPECT_EQ(application->localizedName, "Display");
    EXPECT_EQ(application->bundleIdentifier, "com.example.foo");
    EXPECT_EQ(application->executableURL,
              FileURL::fromPath("/Applications/Foo.app/Contents/MacOS/Foo", false));
}

TEST_F(WorkspaceTest, NamesAnApplicationByItsShortNameThenByItsFile) {
    makeInformation("/Applications/Foo.app", "<key>CFBundleName</key><string>Short</string>");
    const ChildProcess named(makeExecutable("/Applications/Foo.app/Contents/MacOS/Foo"));
    const ChildProcess unnamed(makeExecutable("/Applications/Bar.APP/Contents/MacOS/main"));

    EXPECT_EQ(listed(named.id())->localizedName, "Short");
    EXPECT_EQ(listed(unnamed.id())->localizedName, "Bar");
    EXPECT_EQ(listed(unnamed.id())->bundleIdentifier, std::nullopt);
}

TEST_F(WorkspaceTest, AHelperBelongsToItsInnermostBundle) {
    makeInformation("/Applications/Foo.app", "<key>CFBundleIdentifier</key><string>com.example.foo</string>");
    const std::string helper = "/Applications/Foo.app/Contents/Helpers/Helper.app";
    makeInformation(helper, "<key>CFBundleIdentifier</key><string>com.example.helper</string>");
    const ChildProcess process(makeExecutable(helper + "/Contents/MacOS/Helper"));
    const ChildProcess tool(makeExecutable("/Applications/Foo.app/Contents/Helpers/tool"));

    EXPECT_EQ(listed(process.id())->bundleIdentifier, "com.example.helper");
    EXPECT_EQ(listed(tool.id())->bundleIdentifier, "com.example.foo");
}

TEST_F(WorkspaceTest, LeavesOutWhatRunsFromNoBundle) {
    for (const auto* const path : {"/usr/bin/tool", "/Applications/Foo.app", "/Applications/.app/main",
                                   "/Applications/Foo.app2/main", "/Applications/app/main"}) {
        const ChildProcess process(makeExecutable(path));
        EXPECT_FALSE(listed(process.id())) << path;
        fs::remove_all(volume_.machinePath("/Applications"));
    }
    EXPECT_FALSE(listed(::getpid()));
}

TEST_F(WorkspaceTest, LeavesOutWhatRunsFromOutsideTheVolume) {
    const ChildProcess process(installSleep(volume_.outside("Foo.app/Contents/MacOS/Foo")));
    EXPECT_FALSE(listed(process.id()));
}

TEST_F(WorkspaceTest, ListsInTheOrderOfTheProcessIdentifiers) {
    const auto executable = makeExecutable("/Applications/Foo.app/Contents/MacOS/Foo");
    const ChildProcess a(executable);
    const ChildProcess b(executable);
    const ChildProcess c(executable);

    std::vector<pid_t> identifiers;
    for (const auto& application : workspace_->runningApplications()) {
        identifiers.push_back(application.processIdentifier);
    }

    std::vector expected{a.id(), b.id(), c.id()};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(identifiers, expected);
}

TEST_F(WorkspaceTest, AnApplicationWhoseBundleIsGoneStillRuns) {
    const auto executable = makeExecutable("/Applications/Foo.app/Contents/MacOS/Foo");
    ChildProcess process(executable);
    fs::remove_all(volume_.machinePath("/Applications/Foo.app"));

    const auto application = listed(process.id());

    ASSERT_TRUE(application);
    EXPECT_EQ(application->localizedName, "Foo");
    EXPECT_EQ(application->executableURL->path(), "/Applications/Foo.app/Contents/MacOS/Foo");
    workspace_->terminate({process.id(), "Foo", application->executableURL->path()});
    EXPECT_THAT(process.status(), Optional(128 + SIGTERM));
}

TEST_F(WorkspaceTest, AFileThatIsCalledDeletedIsNone) {
    const std::string path = "/Applications/Foo.app/Contents/MacOS/Foo (deleted)";
    const ChildProcess process(makeExecutable(path));
    EXPECT_EQ(listed(process.id())->executableURL->path(), path);
}

TEST_F(WorkspaceTest, NamesOfAnyBytesAreListed) {
    const std::string path = "/Applications/it's \"a\"\n\xff.app/Contents/MacOS/-x";
    const ChildProcess process(makeExecutable(path));
    EXPECT_EQ(listed(process.id())->executableURL->path(), path);
    EXPECT_EQ(listed(process.id())->localizedName, "it's \"a\"\n\xef\xbf\xbd");
}

TEST_F(WorkspaceTest, AsksTheListedProcessToQuit) {
    ChildProcess process(makeExecutable("/Applications/Foo.app/Contents/MacOS/Foo"));
    ChildProcess other(makeExecutable("/Applications/Foo.app/Contents/MacOS/Other"));

    workspace_->terminate({process.id(), "Foo", "/Applications/Foo.app/Contents/MacOS/Foo"});

    EXPECT_THAT(process.status(), Optional(128 + SIGTERM));
    EXPECT_TRUE(other.isUntouched());
}

TEST_F(WorkspaceTest, LeavesAProcessAloneThatIsNoLongerTheOneListed) {
    ChildProcess process(makeExecutable("/Applications/Bar.app/Contents/MacOS/Bar"));

    workspace_->terminate({process.id(), "Foo", "/Applications/Foo.app/Contents/MacOS/Foo"});
    workspace_->terminate({process.id(), "Foo", ""});
    workspace_->terminate(
        {process.id(), "Foo", volume_.machinePath("Applications/Bar.app/Contents/MacOS/Bar")});

    EXPECT_TRUE(process.isUntouched());
}

TEST_F(WorkspaceTest, NeverSignalsGroupsNorTheFirstProcessNorTheGone) {
    ChildProcess process(makeExecutable("/Applications/Foo.app/Contents/MacOS/Foo"));
    const std::string path = "/Applications/Foo.app/Contents/MacOS/Foo";
    for (const pid_t identifier : {0, 1, -1, -process.id(), std::numeric_limits<pid_t>::max()}) {
        workspace_->terminate({identifier, "Foo", path});
    }
    EXPECT_TRUE(process.isUntouched());
}

TEST_F(WorkspaceTest, ShowsNothingThatNamesNoFile) {
    const test::EnvironmentVariable session("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    const test::EnvironmentVariable noScreen("DISPLAY", std::nullopt);
    testing::internal::CaptureStderr();
    workspace_->activateFileViewerSelecting(FileURL::fromPath("/nowhere/a", false));
    workspace_->activateFileViewerSelecting(FileURL());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace orvane
