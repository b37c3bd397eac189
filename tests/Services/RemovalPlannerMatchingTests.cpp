#include <filesystem>

#include "Formats/PropertyList.h"
#include "tests/Services/RemovalPlannerFixture.h"

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

TEST_F(RemovalPlannerTest, PassesOverWhatCannotBeRead) {
    volume.makeFile(library + "LaunchAgents", "com.example.foo");
    volume.makeFile(library + "Group Containers");
    volume.makeFile("/Library/LaunchAgents/closed.plist", "com.example.foo");
    volume.makeFile("/Library/LaunchAgents/open.plist", "com.example.foo");
    volume.makeDirectory("/Library/LaunchAgents/folder.plist");
    volume.makeFIFO("/Library/LaunchAgents/pipe.plist");
    volume.makeLink("/Library/LaunchAgents/dangling.plist", "/nowhere");
    std::filesystem::permissions(volume.machinePath("/Library/LaunchAgents/closed.plist"),
                                 std::filesystem::perms::none);
    volume.giveEverythingToUnprivilegedUser();
    mayStartThreads = false;
    test::asUnprivilegedUser(
        [&] { EXPECT_THAT(paths(foo), ElementsAre("/Library/LaunchAgents/open.plist")); });
}

TEST_F(RemovalPlannerTest, FindsALaunchItemByItsTextAndReportsItsLabel) {
    volume.makeFile(library + "LaunchAgents/com.example.agent.plist",
                    test::propertyListText({{"Label", "com.example.agent"}, {"Owner", "COM.Example.Foo"}}));
    const auto items = plan(foo).items;
    ASSERT_THAT(items, SizeIs(1));
    EXPECT_EQ(items[0].id(), library + "LaunchAgents/com.example.agent.plist");
    EXPECT_EQ(items[0].detail, "com.example.agent");
    EXPECT_EQ(items[0].size, volume.allocatedSize(items[0].id()));
}

TEST_F(RemovalPlannerTest, ReportsNoLabelWhereThereIsNone) {
    volume.makeFile(library + "LaunchAgents/1.plist", "com.example.foo, but no property list");
    volume.makeFile(library + "LaunchAgents/2.plist", test::propertyListText({{"Owner", "com.example.foo"}}));
    volume.makeFile(library + "LaunchAgents/3.plist",
                    "<plist><array><string>Label</string><string>com.example.foo</string></array></plist>");
    volume.makeFile(library + "LaunchAgents/4.plist",
                    "<plist><dict><key>Label</key><integer>1</integer>"
                    "<key>Owner</key><string>com.example.foo</string></dict></plist>");
    const auto items = plan(foo).items;
    EXPECT_THAT(items, SizeIs(4));
    for (const auto& item : items) EXPECT_EQ(item.detail, std::nullopt) << item.id();
}

TEST_F(RemovalPlannerTest, ReportsALabelOnlyOfLaunchItems) {
    volume.makeFile(library + "Preferences/com.example.foo.plist", test::propertyListText({{"Label", "x"}}));
    const auto items = plan(foo).items;
    ASSERT_THAT(items, SizeIs(1));
    EXPECT_EQ(items[0].detail, std::nullopt);
}

TEST_F(RemovalPlannerTest, TakesLaunchItemsByTheExactExtension) {
    volume.makeFile(library + "LaunchAgents/com.example.foo.PLIST", "com.example.foo");
    volume.makeFile(library + "LaunchAgents/com.example.foo.plist.bak", "com.example.foo");
    volume.makeFile(library + "LaunchAgents/.hidden.plist", "com.example.foo");
    EXPECT_THAT(paths(foo), ElementsAre(library + "LaunchAgents/.hidden.plist"));
}

TEST_F(RemovalPlannerTest, ReadsALaunchItemsWholeFile) {
    volume.makeFile(library + "LaunchAgents/late.plist", std::string(200'000, ' ') + "com.example.foo");
    volume.makeFile(library + "LaunchAgents/nul.plist", std::string("a\0com.example.foo", 17));
    EXPECT_THAT(paths(foo), UnorderedElementsAre(library + "LaunchAgents/late.plist",
                                                 library + "LaunchAgents/nul.plist"));
}

TEST_F(RemovalPlannerTest, IgnoresALaunchItemThatIsNoText) {
    volume.makeFile(library + "LaunchAgents/latin.plist", "com.example.foo B\xFCro");
    volume.makeFile(library + "LaunchAgents/binary.plist", std::string("bplist00\xD1 com.example.foo"));
    EXPECT_THAT(paths(foo), IsEmpty());
}

TEST_F(RemovalPlannerTest, IgnoresALaunchItemTooLargeToRead) {
    const auto file = volume.makeFile(library + "LaunchAgents/a.plist", "com.example.foo");
    std::filesystem::resize_file(file, PropertyListLimits::bytes + 1);
    EXPECT_THAT(paths(foo), IsEmpty());
}

TEST_F(RemovalPlannerTest, MatchesGroupContainersByTheirNameWithoutRegardToCase) {
    volume.makeDirectory(library + "Group Containers/TEAM.COM.Example.Foo.shared");
    volume.makeDirectory(library + "Group Containers/snafoo");
    volume.makeFile(library + "Group Containers/.foo");
    volume.makeDirectory(library + "Group Containers/bar");
    EXPECT_THAT(entries(foo),
                UnorderedElementsAre(
                    Entry(library + "Group Containers/TEAM.COM.Example.Foo.shared", Kind::container, false),
                    Entry(library + "Group Containers/snafoo", Kind::container, false),
                    Entry(library + "Group Containers/.foo", Kind::container, false)));
}

TEST_F(RemovalPlannerTest, MatchesNothingByAnEmptyIdentifier) {
    volume.makeDirectory(library + "Group Containers/anything");
    volume.makeFile(library + "LaunchAgents/anything.plist");
    const auto unnamed = application(foo.url, "");
    EXPECT_THAT(paths(unnamed), IsEmpty());
    EXPECT_THAT(services(unnamed, {running(1, "com.example.other"), running(2, std::nullopt)}), IsEmpty());
}

}  // namespace
}  // namespace orvane
