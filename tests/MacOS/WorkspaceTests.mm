#include <gmock/gmock.h>

#include "Platform/MacOS/FoundationValues.h"
#include "Platform/MacOS/MacWorkspace.h"
#include "tests/MacOS/MacFixture.h"

namespace orvane::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacWorkspaceTest : public MacFixture, public testing::Test {
  protected:
    NSRunningApplication* launch(pid_t identifier, const std::string& bundle, NSString* name = @"Foo",
                                 NSString* bundleIdentifier = @"com.example.foo") {
        NSRunningApplication* const application = [NSRunningApplication
            applicationWithIdentifier:identifier
                                 name:name
                     bundleIdentifier:bundleIdentifier
                               bundle:bundle.empty() ? nil : urlOf(bundle, true)
                           executable:bundle.empty() ? nil : urlOf(bundle + "/Contents/MacOS/Foo", false)];
        [mac_.applications addObject:application];
        return application;
    }

    std::vector<RunningApplication> running() const { return workspace_->runningApplications(); }
    void terminate(pid_t identifier, const std::string& executable) const {
        RunningService service;
        service.processIdentifier = identifier;
        service.executablePath = executable;
        workspace_->terminate(service);
    }

    const std::unique_ptr<Workspace> workspace_ = makeWorkspace();
};

TEST_F(MacWorkspaceTest, TellsWhatRuns) {
    launch(12, "/Applications/Foo.app");
    launch(7, "/Applications/Bar.app", @"Bär", @"org.example.bar");
    const auto applications = running();
    ASSERT_EQ(applications.size(), 2U);
    EXPECT_EQ(applications[0].processIdentifier, 12) << "in the system's order";
    EXPECT_EQ(applications[0].executableURL->path(), "/Applications/Foo.app/Contents/MacOS/Foo");
    EXPECT_EQ(applications[1].localizedName, "Bär");
    EXPECT_EQ(applications[1].bundleIdentifier, "org.example.bar");
}

TEST_F(MacWorkspaceTest, APathKeepsItsBytes) {
    for (const auto& name : awkwardNames) launch(1, "/Applications/" + name);
    const auto applications = running();
    ASSERT_EQ(applications.size(), std::size(awkwardNames));
    for (std::size_t i = 0; i < applications.size(); ++i) {
        EXPECT_EQ(applications[i].executableURL->path(),
                  "/Applications/" + awkwardNames[i] + "/Contents/MacOS/Foo");
    }
}

TEST_F(MacWorkspaceTest, WhatIsNotKnownIsAbsent) {
    launch(12, "/Applications/Foo.app", nil, nil);
    const unichar half[] = {0xD83E};
    launch(13, "/Applications/Foo.app", [NSString stringWithCharacters:half length:1], @"");
    const auto applications = running();
    ASSERT_EQ(applications.size(), 2U);
    EXPECT_EQ(applications[0].localizedName, std::nullopt);
    EXPECT_EQ(applications[0].bundleIdentifier, std::nullopt);
    EXPECT_EQ(applications[1].localizedName, std::nullopt) << "half a character is no text";
    EXPECT_EQ(applications[1].bundleIdentifier, "");
}

TEST_F(MacWorkspaceTest, WhatHasNoBundleOrHasEndedIsNoApplication) {
    launch(12, "");
    [launch(13, "/Applications/Foo.app") vanish];
    EXPECT_THAT(running(), IsEmpty());
}

TEST_F(MacWorkspaceTest, AnExceptionOfTheSystemsIsAShorterList) {
    launch(12, "/Applications/Foo.app");
    mac_.mishap = Mishap::exception;
    EXPECT_THAT(running(), IsEmpty());
    mac_.mishap = Mishap::none;
    EXPECT_EQ(running().size(), 1U);
}

TEST_F(MacWorkspaceTest, AsksTheApplicationThatIsMeantToQuit) {
    launch(12, "/Applications/Foo.app");
    launch(13, "/Applications/Foo.app");
    terminate(13, "/Applications/Foo.app/Contents/MacOS/Foo");
    EXPECT_THAT(mac_.terminated, ElementsAre(13));
}

TEST_F(MacWorkspaceTest, LeavesEverybodyElseAlone) {
    launch(12, "/Applications/Foo.app");
    [launch(13, "/Applications/Foo.app") vanish];
    launch(14, "");
    terminate(12, "/Applications/Bar.app/Contents/MacOS/Foo");
    terminate(12, "");
    terminate(13, "/Applications/Foo.app/Contents/MacOS/Foo");
    terminate(14, "");
    terminate(99, "/Applications/Foo.app/Contents/MacOS/Foo");
    mac_.mishap = Mishap::exception;
    terminate(12, "/Applications/Foo.app/Contents/MacOS/Foo");
    EXPECT_THAT(mac_.terminated, IsEmpty());
}

TEST_F(MacWorkspaceTest, ShowsAFileUnderItsOwnName) {
    for (const auto& name : awkwardNames) {
        workspace_->activateFileViewerSelecting(FileURL::fromPath("/Applications/" + name, true));
        ASSERT_FALSE(mac_.revealed.empty());
        EXPECT_EQ(mac_.revealed.back(), "/Applications/" + name);
    }
}

TEST_F(MacWorkspaceTest, ShowsNothingThatIsNoFile) {
    workspace_->activateFileViewerSelecting(FileURL::fromPath("relative", false));
    mac_.mishap = Mishap::exception;
    workspace_->activateFileViewerSelecting(FileURL::fromPath("/Applications", true));
    EXPECT_THAT(mac_.revealed, IsEmpty());
}

}  // namespace
}  // namespace orvane::test
