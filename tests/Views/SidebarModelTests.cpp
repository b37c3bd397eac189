#include "Views/SidebarModel.h"

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>

#include "tests/Views/ViewModelTest.h"

namespace orvane::test {
namespace {

class SidebarModelTest : public ViewModelTest {
  protected:
    QVariant value(int row, const char* role) const {
        return sidebar.index(row).data(sidebar.roleNames().key(role));
    }
    QStringList names() const {
        QStringList names;
        for (int row = 0; row < sidebar.rowCount(); ++row) names << value(row, "name").toString();
        return names;
    }

    SidebarModel sidebar{services};
    QAbstractItemModelTester tester{&sidebar, QAbstractItemModelTester::FailureReportingMode::Warning};
};

TEST_F(SidebarModelTest, ListsWhatTheLibraryListsInItsOrder) {
    load({application("Zebra"), application("Archive"), application("Mail")});
    EXPECT_EQ(names(), (QStringList{"Zebra", "Archive", "Mail"}));
    EXPECT_EQ(sidebar.count(), 3);
    EXPECT_EQ(sidebar.countText(), "3 applications");
}

TEST_F(SidebarModelTest, FindsTheFirstRowThatBeginsWithWhatIsTyped) {
    load({application("Archive"), application("Mail"), application("Map (new)"), application("Übersicht")});
    EXPECT_EQ(sidebar.rowBeginningWith("m"), 1);
    EXPECT_EQ(sidebar.rowBeginningWith("MAP ("), 2);
    EXPECT_EQ(sidebar.rowBeginningWith("ü"), 3);
    EXPECT_EQ(sidebar.rowBeginningWith("ail"), -1);
}

TEST_F(SidebarModelTest, TellsOnceThatTheSearchHasChanged) {
    QSignalSpy changed(&sidebar, &SidebarModel::searchTextChanged);
    sidebar.setSearchText("foo");
    sidebar.setSearchText("foo");
    EXPECT_EQ(changed.size(), 1);
}

TEST_F(SidebarModelTest, KeepsThePluralForOneApplication) {
    EXPECT_EQ(sidebar.countText(), "0 applications");
    load({application("Foo")});
    EXPECT_EQ(sidebar.countText(), "1 applications");
}

TEST_F(SidebarModelTest, WritesCountsWithoutGrouping) {
    std::vector<InstalledApplication> many;
    for (int i = 0; i < 1234; ++i) {
        many.push_back(application("Foo" + std::to_string(i)));
        many.back().isInstalled = false;
    }
    load(many);
    EXPECT_EQ(sidebar.countText(), "1234 applications");
}

TEST_F(SidebarModelTest, CaptionsAnInstalledApplicationWithVersionAndSize) {
    InstalledApplication record = application("Foo");
    record.version = "5.0.4";
    load({record});
    EXPECT_EQ(value(0, "caption"), "Version 5.0.4 • 12.3 MB");
    EXPECT_EQ(value(0, "isInstalled"), true);
}

TEST_F(SidebarModelTest, ShowsADashForASizeOfZero) {
    InstalledApplication record = application("Foo");
    record.size = 0;
    load({record});
    EXPECT_EQ(value(0, "caption"), "Version 1.0 • —");
}

TEST_F(SidebarModelTest, SaysOnlyThatAnApplicationIsNotInstalled) {
    InstalledApplication gone = application("Gone");
    gone.isInstalled = false;
    load({gone});
    EXPECT_EQ(value(0, "caption"), "Not installed");
    EXPECT_EQ(value(0, "isInstalled"), false);
    EXPECT_EQ(value(0, "iconSource"), "image://icons/generic");
}

TEST_F(SidebarModelTest, MarksSystemApplicationsAndNoOthers) {
    InstalledApplication system = application("Mail");
    system.isSystemApplication = true;
    load({application("Foo"), system});
    EXPECT_EQ(value(0, "isSystemApplication"), false);
    EXPECT_EQ(value(1, "isSystemApplication"), true);
}

TEST_F(SidebarModelTest, ShowsThePlaceholderForASearchThatMatchesNothing) {
    load({application("Foo")});
    EXPECT_FALSE(sidebar.showsSearchPlaceholder());
    QSignalSpy changed(&sidebar, &SidebarModel::placeholderChanged);
    library->setSearchText("nothing <b>such</b>");
    EXPECT_GT(changed.size(), 0);
    EXPECT_TRUE(sidebar.showsSearchPlaceholder());
    EXPECT_EQ(sidebar.placeholderTitle(), "No Results for “nothing <b>such</b>”");
    EXPECT_EQ(sidebar.placeholderDescription(), "Check the spelling or try a new search.");
}

TEST_F(SidebarModelTest, ShowsThePlaceholderOfAnEmptySearchForAnEmptyList) {
    EXPECT_TRUE(sidebar.showsSearchPlaceholder());
    EXPECT_EQ(sidebar.placeholderTitle(), "No Results");
}

TEST_F(SidebarModelTest, ShowsNoPlaceholderDuringAScan) {
    bool wasShown = false;
    QObject::connect(&sidebar, &SidebarModel::isScanningChanged, &sidebar,
                     [&] { wasShown |= sidebar.isScanning() && sidebar.showsSearchPlaceholder(); });
    complete(library->scan());
    EXPECT_FALSE(wasShown);
    EXPECT_TRUE(sidebar.showsSearchPlaceholder());
}

TEST_F(SidebarModelTest, TellsThatThePlaceholderComesWhenAScanHasFoundNothing) {
    bool isShown = true;
    QObject::connect(&sidebar, &SidebarModel::placeholderChanged, &sidebar,
                     [&] { isShown = sidebar.showsSearchPlaceholder(); });
    bool wasHidden = false;
    QObject::connect(&sidebar, &SidebarModel::isScanningChanged, &sidebar, [&] {
        if (!sidebar.isScanning()) wasHidden = !isShown;
    });
    complete(library->scan());
    EXPECT_TRUE(wasHidden);
    EXPECT_TRUE(isShown);
}

TEST_F(SidebarModelTest, ScansOnRequestAndSaysSo) {
    installBundle("Foo");
    QSignalSpy scanning(&sidebar, &SidebarModel::isScanningChanged);
    sidebar.rescan();
    waitUntil([&] { return scanning.size() == 2; });
    EXPECT_FALSE(sidebar.isScanning());
    EXPECT_EQ(names(), QStringList{"Foo"});
}

TEST_F(SidebarModelTest, StartsNoSecondScanBesideARunningOne) {
    QSignalSpy scanning(&sidebar, &SidebarModel::isScanningChanged);
    sidebar.rescan();
    turn();
    ASSERT_TRUE(sidebar.isScanning());
    sidebar.rescan();
    waitUntil([&] { return !sidebar.isScanning(); });
    turn();
    EXPECT_EQ(scanning.size(), 2);
}

TEST_F(SidebarModelTest, TakesAMissingApplicationOutAloneAfterFiveSeconds) {
    InstalledApplication gone = application("Gone");
    gone.isInstalled = false;
    load({application("Foo"), gone, application("Zoo")});
    waitUntil([&] { return clock.sleeperCount() == 1; });
    QSignalSpy removed(&sidebar, &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(&sidebar, &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(&sidebar, &QAbstractItemModel::modelReset);
    clock.advance(std::chrono::seconds(5));
    waitUntil([&] { return !removed.empty(); });
    ASSERT_EQ(removed.size(), 1);
    EXPECT_EQ(removed[0][1].toInt(), 1);
    EXPECT_EQ(removed[0][2].toInt(), 1);
    EXPECT_EQ(inserted.size() + reset.size(), 0);
    EXPECT_EQ(sidebar.countText(), "2 applications");
}

TEST_F(SidebarModelTest, ChangesOnlyTheRowOfAnApplicationThatWentAway) {
    load({application("Bar"), application("Foo"), application("Zoo")});
    QSignalSpy changed(&sidebar, &QAbstractItemModel::dataChanged);
    removeBundle("Foo");
    complete(library->updateSavedAvailability());
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(changed[0][1].toModelIndex().row(), 1);
    EXPECT_EQ(value(1, "caption"), "Not installed");
}

TEST_F(SidebarModelTest, BringsTheOtherRowsBackWhenTheSearchIsCleared) {
    load({application("Bar"), application("Foo"), application("Baz")});
    library->setSearchText("foo");
    QSignalSpy removed(&sidebar, &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(&sidebar, &QAbstractItemModel::rowsInserted);
    library->setSearchText("");
    EXPECT_EQ(removed.size(), 0);
    EXPECT_EQ(inserted.size(), 2);
    EXPECT_EQ(names(), (QStringList{"Bar", "Foo", "Baz"}));
}

TEST_F(SidebarModelTest, RepairsASearchTextThatIsNoUTF8) {
    library->setSearchText("a\xff");
    EXPECT_EQ(sidebar.placeholderTitle(), QStringLiteral("No Results for “a\uFFFD”"));
}

}  // namespace
}  // namespace orvane::test
