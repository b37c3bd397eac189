#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <optional>

#include "Platform/Linux/ProcWorkspace.h"
#include "Platform/Posix/BundleLoader.h"
#include "tests/Fixtures/ChildProcess.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

using testing::Optional;

constexpr const char* fooExecutable = "/Applications/Foo.app/Contents/MacOS/Foo";
constexpr const char* barExecutable = "/Applications/Bar.app/Contents/MacOS/Bar";

class WorkspaceIdentity : public testing::Test {
  protected:
    std::string install(const std::string& path) const { return installSleep(volume_.machinePath(path)); }
    void rename(const std::string& from, const std::string& to) const {
        fs::create_directories(fs::path(volume_.machinePath(to)).parent_path());
        fs::rename(volume_.machinePath(from), volume_.machinePath(to));
    }

    /// A process as the planner hands it on; absent where it is no running application.
    std::optional<RunningService> listed(pid_t process) const {
        for (const auto& application : workspace_->runningApplications()) {
            if (application.processIdentifier != process) continue;
            return RunningService{process, application.localizedName.value(),
                                  application.executableURL.value().path()};
        }
        return std::nullopt;
    }
    std::optional<std::string> listedPath(pid_t process) const {
        const auto service = listed(process);
        return service ? std::optional(service->executablePath) : std::nullopt;
    }

    TestVolume volume_;
    std::unique_ptr<BundleLoader> bundles_ = makeBundleLoader(volume_.files());
    std::unique_ptr<Workspace> workspace_ = makeWorkspace(volume_.volume(), *bundles_);
};

TEST_F(WorkspaceIdentity, AProcessStartedThroughLinksRunsFromTheRealBundle) {
    install("/Volumes/Data/Foo.app/Contents/MacOS/Foo");
    // Links of this machine, which starts the program, and of the volume at once.
    volume_.makeLink("/Applications/Foo.app", "../Volumes/Data/Foo.app");
    volume_.makeLink("/usr/local/bin/foo", "../../../Applications/Foo.app/Contents/MacOS/Foo");

    for (const auto* const path : {fooExecutable, "/usr/local/bin/foo"}) {
        ChildProcess process(volume_.machinePath(path));
        const auto service = listed(process.id());
        ASSERT_TRUE(service) << path;
        EXPECT_EQ(service->executablePath, "/Volumes/Data/Foo.app/Contents/MacOS/Foo");
        workspace_->terminate(*service);
        EXPECT_THAT(process.status(), Optional(128 + SIGTERM));
    }
}

TEST_F(WorkspaceIdentity, ALinkInABundleMakesNoApplicationOfWhatIsElsewhere) {
    install("/usr/bin/tool");
    volume_.makeLink(fooExecutable, "../../../../usr/bin/tool");
    const ChildProcess process(volume_.machinePath(fooExecutable));
    EXPECT_FALSE(listed(process.id()));
}

TEST_F(WorkspaceIdentity, ABundleIsWhereItWasMovedTo) {
    ChildProcess process(install(fooExecutable));
    const auto before = listed(process.id()).value();

    rename("/Applications/Foo.app", "/Applications/Renamed.app");
    EXPECT_EQ(listedPath(process.id()), "/Applications/Renamed.app/Contents/MacOS/Foo");
    EXPECT_EQ(listed(process.id())->name, "Renamed");
    rename("/Applications/Renamed.app", "/Users/sample/.Trash/Foo.app");
    const auto after = listed(process.id()).value();
    EXPECT_EQ(after.executablePath, "/Users/sample/.Trash/Foo.app/Contents/MacOS/Foo");

    workspace_->terminate(before);
    workspace_->terminate({process.id(), "Foo", "/Applications/Renamed.app/Contents/MacOS/Foo"});
    EXPECT_EQ(listed(process.id()), after);
    workspace_->terminate(after);
    EXPECT_THAT(process.status(), Optional(128 + SIGTERM));
}

TEST_F(WorkspaceIdentity, WhatIsNoBundleAnyMoreOrHasLeftTheVolumeRunsNoApplication) {
    const ChildProcess process(install(fooExecutable));
    rename("/Applications/Foo.app", "/Applications/Foo");
    EXPECT_FALSE(listed(process.id()));
    fs::rename(volume_.machinePath("/Applications/Foo"), volume_.outside("Foo.app"));
    EXPECT_FALSE(listed(process.id()));
}

TEST_F(WorkspaceIdentity, AnUpdatedApplicationStillRunsItsOldExecutable) {
    ChildProcess old(install(fooExecutable));
    install(fooExecutable);
    const ChildProcess updated(volume_.machinePath(fooExecutable));
    EXPECT_EQ(listedPath(old.id()), fooExecutable);
    EXPECT_EQ(listedPath(updated.id()), fooExecutable);

    workspace_->terminate(listed(old.id()).value());
    EXPECT_THAT(old.status(), Optional(128 + SIGTERM));
    EXPECT_EQ(listedPath(updated.id()), fooExecutable);
}

TEST_F(WorkspaceIdentity, AProcessThatIgnoresTheRequestIsLeftAlone) {
    ChildProcess process(install(fooExecutable), {.ignoresRequestsToQuit = true});
    const auto service = listed(process.id()).value();
    for (int i = 0; i < 3; ++i) workspace_->terminate(service);
    EXPECT_EQ(listed(process.id()), service);
    EXPECT_TRUE(process.isUntouched());
}

TEST_F(WorkspaceIdentity, AProcessThatHasEndedButWasNotWaitedForIsNone) {
    ChildProcess process(install(fooExecutable));
    const auto service = listed(process.id()).value();
    ::kill(process.id(), SIGKILL);
    siginfo_t ended{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(process.id()), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(listed(process.id()));
    workspace_->terminate(service);
}

TEST_F(WorkspaceIdentity, WhoeverTookOverTheNumberIsNeverAskedToQuit) {
    if (!ChildProcess::mayChooseIdentifier()) GTEST_SKIP() << "only root chooses the id of a process";
    const auto foo = install(fooExecutable);
    const auto bar = install(barExecutable);
    const auto takenOver = [&](auto ask) {
        std::optional<ChildProcess> quitter(foo);
        const auto service = listed(quitter->id()).value();
        quitter->kill();
        ChildProcess successor(bar, {.identifier = service.processIdentifier});
        EXPECT_EQ(listedPath(service.processIdentifier), barExecutable);
        ask(service);
        return successor.isUntouched();
    };

    EXPECT_TRUE(takenOver([&](const RunningService& service) { workspace_->terminate(service); }));
    // A request by number alone hits the innocent one: this is what the test can tell.
    EXPECT_FALSE(takenOver([](const RunningService& service) { ::kill(service.id(), SIGTERM); }));
}

TEST_F(WorkspaceIdentity, RootSeesTheApplicationsOfOtherUsers) {
    if (!isRoot()) GTEST_SKIP() << "only root looks into other users' processes";
    fs::permissions(fs::path(volume_.machinePath("")).parent_path().parent_path(), fs::perms(0755));
    ChildProcess process(install(fooExecutable), {.isUnprivileged = true});
    const auto service = listed(process.id());
    ASSERT_TRUE(service);
    EXPECT_EQ(service->executablePath, fooExecutable);
    workspace_->terminate(*service);
    EXPECT_THAT(process.status(), Optional(128 + SIGTERM));
}

TEST_F(WorkspaceIdentity, AUserSeesNoApplicationsThatTheKernelHidesAndHarmsNone) {
    if (!isRoot()) GTEST_SKIP() << "only root starts a process of another user";
    ChildProcess roots(install(fooExecutable));
    const auto service = listed(roots.id()).value();
    volume_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        EXPECT_FALSE(listed(roots.id()));
        workspace_->terminate(service);
        ChildProcess own(volume_.machinePath(fooExecutable));
        EXPECT_EQ(listedPath(own.id()), fooExecutable);
    });
    EXPECT_TRUE(roots.isUntouched());
}

}  // namespace
}  // namespace orvane::test
