#include <algorithm>
#include <filesystem>

#include "tests/Services/RemovalPlannerFixture.h"

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(RemovalPlannerTest, FindsNothingWhereNothingIsLeft) {
    const auto found = plan(foo);
    EXPECT_EQ(found.application, foo);
    EXPECT_THAT(found.items, IsEmpty());
    EXPECT_THAT(found.runningServices, IsEmpty());
}

TEST_F(RemovalPlannerTest, ListsEveryPlaceInItsOrder) {
    volume.addApplication("/Applications/Foo.app");
    volume.makeDirectory(library + "Group Containers/TEAM.com.example.foo");
    volume.makeFile("/Library/LaunchDaemons/d.plist", "com.example.foo");
    volume.makeFile("/Library/LaunchAgents/a.plist", "com.example.foo");
    volume.makeFile(library + "LaunchAgents/u.plist", "com.example.foo");
    volume.makeDirectory(library + "Logs/Foo");
    volume.makeDirectory(library + "Caches/Foo");
    volume.makeDirectory(library + "Application Support/Foo");
    volume.makeDirectory(library + "Containers/com.example.foo");
    volume.makeDirectory(library + "WebKit/com.example.foo");
    volume.makeDirectory(library + "HTTPStorages/com.example.foo");
    volume.makeDirectory(library + "Saved Application State/com.example.foo.savedState");
    volume.makeFile(library + "Preferences/com.example.foo.plist");
    volume.makeDirectory(library + "Caches/com.example.foo");
    EXPECT_THAT(
        entries(foo),
        ElementsAre(
            Entry("/Applications/Foo.app", Kind::application, false),
            Entry(library + "Caches/com.example.foo", Kind::cache, false),
            Entry(library + "Preferences/com.example.foo.plist", Kind::preference, false),
            Entry(library + "Saved Application State/com.example.foo.savedState", Kind::savedState, false),
            Entry(library + "HTTPStorages/com.example.foo", Kind::webData, false),
            Entry(library + "WebKit/com.example.foo", Kind::webData, false),
            Entry(library + "Containers/com.example.foo", Kind::container, false),
            Entry(library + "Application Support/Foo", Kind::applicationSupport, false),
            Entry(library + "Caches/Foo", Kind::cache, false),
            Entry(library + "Logs/Foo", Kind::other, false),
            Entry(library + "LaunchAgents/u.plist", Kind::launchAgent, false),
            Entry("/Library/LaunchAgents/a.plist", Kind::launchAgent, true),
            Entry("/Library/LaunchDaemons/d.plist", Kind::launchDaemon, true),
            Entry(library + "Group Containers/TEAM.com.example.foo", Kind::container, false)));
}

TEST_F(RemovalPlannerTest, TellsTheFolderOfEachItem) {
    volume.addApplication("/Applications/Foo.app");
    volume.makeDirectory("/Volumes/Data/Caches/com.example.foo");
    volume.makeDirectory(library);
    volume.makeLink(library + "Caches", "/Volumes/Data/Caches");
    const auto found = plan(foo);
    const auto identity = [&](const std::string& path) {
        return volume.files().identity(FileURL::fromPath(path, true)).value();
    };
    EXPECT_THAT(found.folders,
                testing::UnorderedElementsAre(
                    testing::Pair("/Applications/Foo.app", identity("/Applications")),
                    testing::Pair(library + "Caches/com.example.foo", identity("/Volumes/Data/Caches"))))
        << "where a folder is a link, the one that it leads to";
}

TEST_F(RemovalPlannerTest, LeavesTheFilesOfOthersAlone) {
    volume.addApplication("/Applications/Bar.app");
    volume.makeDirectory(library + "Caches/com.example.foo2");
    volume.makeDirectory(library + "Caches/Foobar");
    volume.makeDirectory(library + "Application Support/com.example.foo");
    volume.makeFile(library + "Preferences/com.example.foo.helper.plist");
    volume.makeFile(library + "Preferences/Foo.plist");
    volume.makeDirectory("/Library/Caches/com.example.foo");
    volume.makeDirectory("/Users/other/Library/Caches/com.example.foo");
    volume.makeFile(library + "LaunchAgents/other.plist", "com.example.bar");
    volume.makeDirectory(library + "Group Containers/TEAM.com.example.bar");
    EXPECT_THAT(paths(foo), IsEmpty());
}

TEST_F(RemovalPlannerTest, KeepsTheLeftoversOfAnApplicationThatIsGone) {
    volume.makeDirectory(library + "Caches/com.example.foo");
    EXPECT_THAT(entries(foo), ElementsAre(Entry(library + "Caches/com.example.foo", Kind::cache, false)));
}

TEST_F(RemovalPlannerTest, LooksByTheFileNameOnlyWithoutAnIdentifier) {
    volume.makeDirectory(library + "Caches/Foo");
    volume.makeDirectory(library + "Caches/com.example.other");
    volume.makeFile(library + "Preferences/.plist");
    volume.makeFile(library + "LaunchAgents/a.plist", "/Applications/FOO.app/Contents/MacOS/agent");
    volume.makeDirectory(library + "Group Containers/TEAM.myfoothing");
    EXPECT_THAT(paths(anonymousFoo), ElementsAre(library + "Caches/Foo", library + "LaunchAgents/a.plist",
                                                 library + "Group Containers/TEAM.myfoothing"));
}

TEST_F(RemovalPlannerTest, LooksByTheFileNameNotByTheDisplayName) {
    volume.makeDirectory(library + "Application Support/Display Name");
    volume.makeFile(library + "LaunchAgents/a.plist", "Display Name");
    EXPECT_THAT(paths(foo), IsEmpty());
}

TEST_F(RemovalPlannerTest, WhatABundleIsCalledInALanguageFindsNothing) {
    volume.addApplication("/Applications/Foo.app", {{"CFBundleIdentifier", "com.example.foo"}});
    volume.makeFile(
        "/Applications/Foo.app/Contents/Resources/InfoPlist.strings",
        "CFBundleDisplayName = Other; CFBundleName = Other; CFBundleIdentifier = org.example.bar;");
    volume.makeDirectory(library + "Caches/Other");
    volume.makeDirectory(library + "Caches/org.example.bar");
    volume.makeDirectory(library + "Group Containers/TEAM.Other");
    volume.makeDirectory(library + "Group Containers/org.example.bar");
    volume.makeFile(library + "LaunchAgents/a.plist", "Other org.example.bar");
    volume.makeDirectory(library + "Caches/com.example.foo");
    const auto bundle = volume.bundleLoader().bundle(foo.url);
    ASSERT_TRUE(bundle);
    auto localized = application(foo.url, bundle->identifier);
    localized.name = bundle->nameOrFileName(foo.url);
    ASSERT_EQ(localized.name, "Other");
    EXPECT_THAT(paths(localized), ElementsAre("/Applications/Foo.app", library + "Caches/com.example.foo"));
    EXPECT_THAT(services(localized, {running(1, "org.example.bar"), running(2, "com.example.other"),
                                     running(3, "com.example.foo")}),
                ElementsAre(3));
}

TEST_F(RemovalPlannerTest, ReadsTheLabelOfALaunchItemInOldStyle) {
    volume.makeFile(library + "LaunchAgents/a.plist",
                    "{ Label = \"com.example.agent\"; ProgramArguments = (\"/Applications/Foo.app/x\"); }");
    const auto items = plan(foo).items;
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].detail, "com.example.agent");
}

TEST_F(RemovalPlannerTest, ListsTheSamePlaceOnceAsItsFirstKind) {
    volume.makeDirectory(library + "Caches/Foo");
    volume.makeDirectory(library + "Containers/Foo");
    const auto named = application(foo.url, "Foo");
    EXPECT_THAT(entries(named), ElementsAre(Entry(library + "Caches/Foo", Kind::cache, false),
                                            Entry(library + "Containers/Foo", Kind::container, false)));
}

TEST_F(RemovalPlannerTest, ListsTheSamePlaceOnceHoweverItIsSpelled) {
    volume.makeDirectory(library + "Caches/Foo");
    EXPECT_THAT(paths(application(foo.url, "../Caches/Foo")), ElementsAre(library + "Caches/../Caches/Foo"));
}

TEST_F(RemovalPlannerTest, FindsFilesAndLinksNotOnlyFolders) {
    volume.makeFile(library + "Caches/com.example.foo");
    volume.makeLink(library + "Logs/Foo", "/Users/sample");
    volume.makeLink(library + "Application Support/Foo", "/nowhere");
    EXPECT_THAT(paths(foo), ElementsAre(library + "Caches/com.example.foo", library + "Logs/Foo"));
}

TEST_F(RemovalPlannerTest, MarksWhatTheUserCannotRemove) {
    volume.addApplication("/Applications/Foo.app");
    volume.makeDirectory(library + "Caches/com.example.foo");
    volume.makeDirectory(library + "Group Containers/com.example.foo");
    volume.makeFile(library + "LaunchAgents/a.plist", "com.example.foo");
    volume.makeFile("/Library/LaunchAgents/b.plist", "com.example.foo");
    volume.giveEverythingToUnprivilegedUser();
    mayStartThreads = false;
    const auto readOnly = std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec;
    for (const auto* folder :
         {"/Applications", "/Users/sample/Library/LaunchAgents", "/Users/sample/Library/Group Containers"}) {
        std::filesystem::permissions(volume.machinePath(folder), readOnly);
    }
    test::asUnprivilegedUser([&] {
        EXPECT_THAT(entries(foo),
                    ElementsAre(Entry("/Applications/Foo.app", Kind::application, true),
                                Entry(library + "Caches/com.example.foo", Kind::cache, false),
                                Entry(library + "LaunchAgents/a.plist", Kind::launchAgent, false),
                                Entry("/Library/LaunchAgents/b.plist", Kind::launchAgent, true),
                                Entry(library + "Group Containers/com.example.foo", Kind::container, false)));
    });
}

TEST_F(RemovalPlannerTest, MeasuresFoldersWithNestedPackagesButWithoutHiddenFiles) {
    const auto inner = "/Applications/Foo.app/Contents/Helper.app/Contents/file";
    volume.makeFile(inner, std::string(50'000, 'x'));
    volume.makeFile("/Applications/Foo.app/.hidden", std::string(50'000, 'x'));
    volume.makeLink("/Applications/Foo.app/link", inner);
    const auto items = plan(foo).items;
    ASSERT_THAT(items, SizeIs(1));
    EXPECT_EQ(items[0].size, volume.allocatedSize(inner));
}

TEST_F(RemovalPlannerTest, MeasuresAFileByItsOwnSpaceAndALinkAsNothing) {
    volume.makeFile(library + "Preferences/com.example.foo.plist", std::string(50'000, 'x'));
    volume.makeFile("/Users/sample/large", std::string(50'000, 'x'));
    volume.makeLink(library + "Logs/Foo", "/Users/sample");
    const auto items = plan(foo).items;
    ASSERT_THAT(items, SizeIs(2));
    EXPECT_EQ(items[0].size, volume.allocatedSize(items[0].id()));
    EXPECT_GT(items[0].size, 0);
    EXPECT_EQ(items[1].size, 0);
}

TEST_F(RemovalPlannerTest, FollowsNamesThatHoldAnyByte) {
    const auto name = std::string("-\xFF' \"$(x)\n");
    const auto odd = application(volume.addApplication("/Applications/" + name + ".app"), std::nullopt);
    volume.makeDirectory(library + "Caches/" + name);
    volume.makeDirectory(library + "Group Containers/a" + name + "b");
    EXPECT_THAT(paths(odd), ElementsAre("/Applications/" + name + ".app", library + "Caches/" + name,
                                        library + "Group Containers/a" + name + "b"));
}

TEST_F(RemovalPlannerTest, FindsNothingByAURLThatNamesNoFile) {
    volume.addApplication("/Applications/Foo.app");
    volume.makeDirectory(library + "Caches/Foo");
    volume.makeDirectory(library + "Application Support");
    volume.makeFile(library + "LaunchAgents/a.plist", "Foo");
    for (const auto* text :
         {"file:", "Foo.app", "Applications/Foo.app", "https://example.org/Applications/Foo.app",
          "file://example.org/Applications/Foo.app", ".."}) {
        const auto url = FileURL::fromString(text);
        ASSERT_TRUE(url) << text;
        const auto nowhere = application(*url, "com.example.foo");
        EXPECT_THAT(paths(nowhere), IsEmpty()) << text;
        EXPECT_THAT(services(nowhere, {running(1, "org.example.other", "/Applications/Foo.app/main")}),
                    IsEmpty())
            << text;
    }
    EXPECT_THAT(paths(application(FileURL(), std::nullopt)), IsEmpty());
}

TEST_F(RemovalPlannerTest, FindsNothingByTheNameOfWhatIsNoBundle) {
    volume.makeFile("/Users/sample/Documents/file");
    volume.makeFile("/Applications/..app/file");
    for (const auto* const path : {"/", "/Users/sample", "/Users/sample/Documents", "/Applications/..app"}) {
        const auto record = application(FileURL::fromPath(path, true), std::nullopt);
        const auto name = record.url.lastPathComponent();
        for (const std::string folder : {"Caches/", "Application Support/", "Logs/", "Group Containers/"}) {
            volume.makeFile(library + folder + name + "/file");
            volume.makeFile(library + folder + name + ".x/file");
        }
        volume.makeFile(library + "LaunchAgents/a.plist", "/Users/sample/Documents ..app sample");
        EXPECT_THAT(paths(record), ElementsAre(path));
        EXPECT_THAT(services(record, {running(1, "org.example.sample", std::string(path) + "/x/Foo.app/main"),
                                      running(2, "org.Documents..app", path)}),
                    IsEmpty())
            << path;
        EXPECT_THAT(services(record, {running(3, std::nullopt, "/usr/bin/other")}), ElementsAre(3))
            << "two absent identifiers are equal";
    }
}

TEST_F(RemovalPlannerTest, FindsLeftoversByTheNameOfABundleThatIsSpelledInCapitals) {
    volume.makeDirectory(library + "Caches/Foo");
    EXPECT_THAT(paths(application(FileURL::fromPath("/Applications/Foo.APP", true), std::nullopt)),
                ElementsAre(library + "Caches/Foo"));
}

TEST_F(RemovalPlannerTest, FindsNothingThroughALinkThatAnIdentifierLeadsOver) {
    volume.makeFile("/Users/sample/Documents/y/letter");
    volume.makeFile("/Users/sample/Documents/y.plist");
    volume.makeLink(library + "Caches/x", "/Users/sample/Documents");
    volume.makeLink(library + "Preferences/x", "/Users/sample/Documents");
    volume.makeFile(library + "WebKit/x/y/file");
    volume.makeLink(library + "Containers/x/y", "/Users/sample/Documents");
    const auto over = [&](const std::string& identifier) { return paths(application(foo.url, identifier)); };
    EXPECT_THAT(over("x/y"), ElementsAre(library + "WebKit/x/y", library + "Containers/x/y"))
        << "a folder on the way is none, and the last one may be a link";
    EXPECT_THAT(over("x/../Documents/y"), IsEmpty());
    EXPECT_THAT(over("x"), ElementsAre(library + "Caches/x", library + "WebKit/x", library + "Containers/x"));
}

TEST_F(RemovalPlannerTest, LooksThroughFixedFoldersThatAreLinks) {
    volume.makeFile("/Volumes/Big/Caches/com.example.foo/file");
    volume.makeFile("/Volumes/Big/Support/Foo/file");
    volume.makeFile("/Volumes/Big/Agents/a.plist", "com.example.foo");
    volume.makeDirectory(library);
    volume.makeLink(library + "Caches", "/Volumes/Big/Caches");
    volume.makeLink(library + "Application Support", "/Volumes/Big/Support");
    volume.makeLink(library + "LaunchAgents", "/Volumes/Big/Agents");
    EXPECT_THAT(paths(foo),
                ElementsAre(library + "Caches/com.example.foo", library + "Application Support/Foo",
                            library + "LaunchAgents/a.plist"));
}

TEST_F(RemovalPlannerTest, KeepsTheFoldersOwnOrderOfWhatItFindsInOne) {
    const std::vector<std::string> folders{library + "LaunchAgents", "/Library/LaunchAgents",
                                           "/Library/LaunchDaemons", library + "Group Containers"};
    std::vector<std::string> expected;
    for (const auto& folder : folders) {
        for (int number = 0; number < 12; ++number) {
            volume.makeFile(folder + "/" + std::to_string(number * 7 % 12) + "com.example.foo.plist",
                            "com.example.foo");
        }
        const auto listing = volume.files().contentsOfDirectory(FileURL::fromPath(folder, true), {}).value();
        for (const auto& entry : listing) expected.push_back(entry.url.path());
    }
    auto sorted = expected;
    std::ranges::sort(sorted);
    if (sorted == expected) GTEST_SKIP() << "the file system lists by name: any order would do";
    EXPECT_EQ(paths(foo), expected);
}

TEST_F(RemovalPlannerTest, FindsLeftoversByTheIdentifierOfAURLThatNamesNoFile) {
    volume.makeDirectory(library + "Caches/com.example.foo");
    EXPECT_THAT(paths(application(FileURL(), "com.example.foo")),
                ElementsAre(library + "Caches/com.example.foo"));
}

TEST_F(RemovalPlannerTest, ReflectsTheMomentOfTheCall) {
    test::MainLoop mainLoop;
    asio::thread_pool pool(2);
    RemovalPlanner planner(pool.get_executor(), volume.files(), workspace, volume.localizedText());
    EXPECT_THAT(mainLoop.run(planner.plan(foo)).items, IsEmpty());
    volume.makeDirectory(library + "Caches/Foo");
    EXPECT_THAT(mainLoop.run(planner.plan(foo)).items, SizeIs(1));
}

TEST_F(RemovalPlannerTest, ChangesNothing) {
    volume.addApplication("/Applications/Foo.app");
    volume.makeDirectory(library + "Caches/Foo");
    workspace.setRunningApplications({running(1, "com.example.foo")});
    const auto before = volume.listing();
    EXPECT_THAT(plan(foo).items, SizeIs(2));
    EXPECT_EQ(volume.listing(), before);
    EXPECT_THAT(workspace.terminated(), IsEmpty());
}

}  // namespace
}  // namespace orvane
