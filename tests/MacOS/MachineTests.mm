#include "Platform/MacDisks.h"
#include "Platform/Machine.h"
#include "tests/MacOS/MacFixture.h"

namespace orvane::test {
namespace {

class MacMachineTest : public MacFixture, public testing::Test {};

TEST_F(MacMachineTest, LooksAfterTheUsersOwnFiles) {
    const auto machine = makeMachine({});
    ASSERT_TRUE(machine);
    EXPECT_EQ(machine->fileManager->homeDirectoryForCurrentUser().path(), mac_.home);
    EXPECT_EQ(machine->fileManager->applicationSupportDirectory().path(), mac_.applicationSupport);
    EXPECT_TRUE(machine->bundleLoader->bundle(url("Applications")));
    EXPECT_TRUE(machine->workspace->runningApplications().empty());
    EXPECT_TRUE(machine->privilegedRunner && machine->localizedText && machine->clock);
}

TEST_F(MacMachineTest, WithoutAFolderForProgramsItIsTheUsualOne) {
    mac_.applicationSupport.clear();
    EXPECT_EQ(makeMachine({})->fileManager->applicationSupportDirectory().path(),
              mac_.home + "/Library/Application Support");
}

TEST_F(MacMachineTest, AHomeOfAnyNameIsFound) {
    for (const auto& name : awkwardNames) {
        mac_.home = directory_.makeDirectory("Users/" + name);
        EXPECT_EQ(makeMachine({})->fileManager->homeDirectoryForCurrentUser().path(), mac_.home);
    }
}

TEST_F(MacMachineTest, AHomeCanBeNamed) {
    const auto other = directory_.makeDirectory("Users/other");
    const auto machine = makeMachine({{}, other, {}});
    ASSERT_TRUE(machine);
    EXPECT_EQ(machine->fileManager->applicationSupportDirectory().path(),
              other + "/Library/Application Support");
}

TEST_F(MacMachineTest, WhatCannotBeUsedIsOneLine) {
    mac_.home.clear();
    EXPECT_EQ(makeMachine({}).error(), "the home '' is not an absolute path");
    mac_.mishap = Mishap::exception;
    EXPECT_EQ(makeMachine({}).error(), "the home '' is not an absolute path");
    EXPECT_EQ(makeMachine({at("Users"), {}, {}}).error(),
              "the root '" + at("Users") + "' cannot be used: Function not implemented");
}

TEST_F(MacMachineTest, LooksAtNoOtherDisk) {
    EXPECT_FALSE(looksAtMacDisks());
    EXPECT_TRUE(mountedFolders().empty());
    EXPECT_TRUE(macDisksAmong({"/"}, std::chrono::milliseconds(1)).disks.empty());
}

}  // namespace
}  // namespace orvane::test
