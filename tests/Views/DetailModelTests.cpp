#include "Views/DetailModel.h"

#include <QtCore/QPointer>
#include <QtTest/QSignalSpy>
#include <memory>

#include "Views/DisplayText.h"
#include "tests/Views/ViewModelTest.h"

namespace orvane::test {
namespace {

class DetailModelTest : public ViewModelTest {
  protected:
    /// The pane of an application, before its plan has arrived.
    DetailModel& show(const InstalledApplication& record) {
        pane = std::make_unique<DetailModel>(record, services);
        return *pane;
    }
    /// The pane of an application with its plan.
    DetailModel& showPlan(const InstalledApplication& record) {
        show(record);
        waitUntil([this] { return !pane->isLoading(); });
        return *pane;
    }
    static InstalledApplication goneApplication() {
        InstalledApplication record = application("Foo");
        record.isInstalled = false;
        return record;
    }

    void makeLaunchAgent(const std::string& name, const std::string& label) const {
        const std::string key = label.empty() ? "" : "<key>Label</key><string>" + label + "</string>";
        mac.makeFile(
            TestVolume::home() + "/Library/LaunchAgents/" + name,
            "<plist><dict>" + key + "<key>Program</key><string>org.example.Foo</string></dict></plist>");
    }
    void run(std::int32_t processIdentifier, const std::string& name) {
        RunningApplication running;
        running.processIdentifier = processIdentifier;
        running.localizedName = name;
        running.bundleIdentifier = "org.example.Foo";
        workspace.setRunningApplications({running});
    }

    static QVariant value(const QAbstractItemModel* model, int row, const char* role) {
        return model->index(row, 0).data(model->roleNames().key(role));
    }
    static QStringList column(const QAbstractItemModel* model, const char* role) {
        QStringList values;
        for (int row = 0; row < model->rowCount(); ++row) values << value(model, row, role).toString();
        return values;
    }

    std::unique_ptr<DetailModel> pane;
};

TEST_F(DetailModelTest, ShowsTheApplicationsFacts) {
    InstalledApplication record = application("Foo");
    record.version = "5.0.4";
    const DetailModel& detail = show(record);
    EXPECT_EQ(detail.name(), "Foo");
    EXPECT_EQ(detail.identifierText(), "org.example.Foo");
    EXPECT_EQ(detail.versionText(), "Version 5.0.4");
    EXPECT_EQ(detail.sizeText(), "12.3 MB");
    EXPECT_TRUE(detail.isInstalled());
    EXPECT_FALSE(detail.isSystemApplication());
}

TEST_F(DetailModelTest, SaysSoWhenThereIsNoIdentifierAndNoSize) {
    InstalledApplication record = application("Foo");
    record.bundleIdentifier.reset();
    record.size = 0;
    const DetailModel& detail = show(record);
    EXPECT_EQ(detail.identifierText(), "No bundle identifier");
    EXPECT_EQ(detail.sizeText(), "—");
}

TEST_F(DetailModelTest, ShowsEllipsesUntilThePlanArrives) {
    const DetailModel& detail = show(application("Foo"));
    EXPECT_TRUE(detail.isLoading());
    EXPECT_EQ(detail.relatedItemsText(), "…");
    EXPECT_EQ(detail.recoverableSpaceText(), "…");
    EXPECT_EQ(detail.activeServicesText(), "…");
    EXPECT_FALSE(detail.showsEmptyServices());
    EXPECT_FALSE(detail.canReview());
}

TEST_F(DetailModelTest, ShowsWhatThePlanHolds) {
    installBundle("Foo");
    mac.makeFile(TestVolume::home() + "/Library/Caches/org.example.Foo/data", std::string(3'000'000, 'x'));
    makeLaunchAgent("foo.plist", "org.example.Foo.agent");
    run(12345, "Foo");
    DetailModel& detail = show(application("Foo"));
    QSignalSpy planChanged(&detail, &DetailModel::planChanged);
    waitUntil([&] { return !planChanged.empty(); });
    EXPECT_FALSE(detail.isLoading());
    EXPECT_EQ(detail.relatedItemsText(), "3");
    EXPECT_EQ(detail.activeServicesText(), "1");
    EXPECT_TRUE(detail.canReview());
    EXPECT_EQ(column(detail.fileItems(), "title"), (QStringList{"Foo.app", "org.example.Foo"}));
    EXPECT_EQ(column(detail.fileItems(), "kindTitle"), (QStringList{"Application", "Cache"}));
    EXPECT_EQ(column(detail.fileItems(), "symbol"), (QStringList{"app.fill", "internaldrive.fill"}));
    EXPECT_EQ(column(detail.launchItems(), "kindTitle"), QStringList{"Launch Agent"});
    EXPECT_EQ(value(detail.fileItems(), 1, "path"), "/Users/sample/Library/Caches/org.example.Foo");
}

TEST_F(DetailModelTest, SumsTheSizesOfAllItemsOfThePlan) {
    const std::string megabyte(1'000'000, 'x');
    mac.makeFile(TestVolume::home() + "/Library/Caches/org.example.Foo/data", megabyte + megabyte);
    mac.makeFile("/Library/LaunchDaemons/foo.plist", "org.example.Foo" + megabyte + megabyte);
    const DetailModel& detail = showPlan(goneApplication());
    std::int64_t total = 0;
    for (const QAbstractItemModel* model : {pane->fileItems(), pane->launchItems()})
        for (const QString& path : column(model, "path")) {
            WalkOptions options;
            const FileURL url = FileURL::fromPath(path.toStdString(), false);
            if (const auto values = mac.files().resourceValues(url); values && values->isRegularFile)
                total += values->fileAllocatedSize.value();
            total += mac.files().allocatedSizes({url}, options, alone).front().fileAllocatedSize;
        }
    EXPECT_GT(total, 4'000'000);
    EXPECT_EQ(detail.recoverableSpaceText(), sizeText(total));
}

TEST_F(DetailModelTest, ShowsADashForItemsWithoutSize) {
    mac.makeDirectory(TestVolume::home() + "/Library/Caches/Foo");
    const DetailModel& detail = showPlan(goneApplication());
    EXPECT_EQ(detail.relatedItemsText(), "1");
    EXPECT_EQ(detail.recoverableSpaceText(), "—");
    EXPECT_EQ(value(pane->fileItems(), 0, "sizeText"), "—");
}

TEST_F(DetailModelTest, ShowsZerosAndADashForAnEmptyPlan) {
    const DetailModel& detail = showPlan(goneApplication());
    EXPECT_EQ(detail.relatedItemsText(), "0");
    EXPECT_EQ(detail.recoverableSpaceText(), "—");
    EXPECT_EQ(detail.activeServicesText(), "0");
    EXPECT_TRUE(detail.showsEmptyServices());
    EXPECT_TRUE(detail.canReview());
}

TEST_F(DetailModelTest, NeverOffersTheReviewOfASystemApplication) {
    InstalledApplication system = application("Foo");
    system.isSystemApplication = true;
    DetailModel& detail = showPlan(system);
    EXPECT_TRUE(detail.isSystemApplication());
    EXPECT_FALSE(detail.canReview());
    detail.setShowingRemovalSheet(true);
    EXPECT_FALSE(detail.isShowingRemovalSheet());
    EXPECT_EQ(detail.review(), nullptr);
}

TEST_F(DetailModelTest, OffersTheReviewOfWhatAnApplicationLeftBehind) {
    mac.makeFile(TestVolume::home() + "/Library/Caches/org.example.Foo/data");
    const DetailModel& detail = showPlan(goneApplication());
    EXPECT_FALSE(detail.isInstalled());
    EXPECT_TRUE(detail.canReview());
    EXPECT_EQ(detail.iconSource(), "image://icons/generic");
}

TEST_F(DetailModelTest, ListsProcessesWithoutLaunchItems) {
    run(7, "Foo");
    const DetailModel& detail = showPlan(goneApplication());
    EXPECT_EQ(pane->runningServices()->rowCount(), 1);
    EXPECT_EQ(pane->launchItems()->rowCount(), 0);
    EXPECT_FALSE(detail.showsEmptyServices());
}

TEST_F(DetailModelTest, ListsLaunchItemsWithoutProcesses) {
    makeLaunchAgent("foo.plist", "x");
    const DetailModel& detail = showPlan(goneApplication());
    EXPECT_EQ(pane->runningServices()->rowCount(), 0);
    EXPECT_EQ(pane->launchItems()->rowCount(), 1);
    EXPECT_FALSE(detail.showsEmptyServices());
}

TEST_F(DetailModelTest, ListsLaunchAgentsAndDaemonsAmongTheServicesOnly) {
    makeLaunchAgent("foo.plist", "x");
    mac.makeFile("/Library/LaunchDaemons/foo.plist", "org.example.Foo");
    showPlan(goneApplication());
    EXPECT_EQ(pane->fileItems()->rowCount(), 0);
    EXPECT_EQ(column(pane->launchItems(), "kindTitle"), (QStringList{"Launch Agent", "Launch Daemon"}));
    EXPECT_EQ(value(pane->launchItems(), 0, "requiresAdministrator"), false);
    EXPECT_EQ(value(pane->launchItems(), 1, "requiresAdministrator"), true);
    EXPECT_EQ(pane->relatedItemsText(), "2");
}

TEST_F(DetailModelTest, WritesProcessIdentifiersWithoutGrouping) {
    run(12345, "Foo Helper");
    showPlan(goneApplication());
    EXPECT_EQ(value(pane->runningServices(), 0, "name"), "Foo Helper");
    EXPECT_EQ(value(pane->runningServices(), 0, "caption"), "Running process • PID 12345");
}

TEST_F(DetailModelTest, TitlesAnItemByItsDetailElseByItsFile) {
    makeLaunchAgent("a.plist", "org.example.Foo.sync");
    makeLaunchAgent("b.plist", "");
    showPlan(goneApplication());
    QStringList titles = column(pane->launchItems(), "title");
    titles.sort();
    EXPECT_EQ(titles, (QStringList{"b.plist", "org.example.Foo.sync"}));
}

TEST_F(DetailModelTest, TakesNewFactsOfTheSameApplication) {
    DetailModel& detail = showPlan(application("Foo"));
    QSignalSpy changed(&detail, &DetailModel::applicationChanged);
    detail.setApplication(application("Foo"));
    EXPECT_EQ(changed.size(), 0);
    InstalledApplication newer = application("Foo");
    newer.version = "2.0";
    newer.isInstalled = false;
    detail.setApplication(newer);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(detail.versionText(), "Version 2.0");
    EXPECT_FALSE(detail.isInstalled());
    EXPECT_FALSE(detail.isLoading());
}

TEST_F(DetailModelTest, SaysOfEachItemWhyItIsThereAlsoInTheReview) {
    installBundle("Foo");
    makeLaunchAgent("foo.plist", "org.example.Foo.agent");
    DetailModel& detail = showPlan(application("Foo"));
    detail.setShowingRemovalSheet(true);
    waitUntil([&] { return !value(detail.fileItems(), 0, "reason").toString().isEmpty(); });
    EXPECT_EQ(column(detail.fileItems(), "reason"), QStringList("The application itself"));
    EXPECT_EQ(column(detail.launchItems(), "reason"), QStringList("Mentions “org.example.Foo”"));
    EXPECT_EQ(column(detail.review()->items(), "reason"),
              (QStringList{"The application itself", "Mentions “org.example.Foo”"}));
    detail.dismissSheet();
    detail.setShowingRemovalSheet(true);
    EXPECT_EQ(value(detail.review()->items(), 0, "reason"), "The application itself");
}

TEST_F(DetailModelTest, RevealsTheApplicationAndItsItems) {
    installBundle("Foo");
    mac.makeFile(TestVolume::home() + "/Library/Caches/org.example.Foo/data");
    DetailModel& detail = showPlan(application("Foo"));
    detail.revealApplication();
    waitUntil([&] { return workspace.revealed().size() == 1; });
    detail.reveal(value(pane->fileItems(), 1, "key").toString());
    waitUntil([&] { return workspace.revealed().size() == 2; });
    EXPECT_EQ(workspace.revealed()[0], bundleURL("Foo"));
    EXPECT_EQ(workspace.revealed()[1].path(), "/Users/sample/Library/Caches/org.example.Foo");
}

TEST_F(DetailModelTest, RevealsNothingThatIsNotInThePlan) {
    DetailModel& detail = show(application("Foo"));
    detail.reveal(keyOfBytes("/Applications/Foo.app"));
    waitUntil([&] { return !detail.isLoading(); });
    detail.reveal(keyOfBytes("/etc/passwd"));
    pool.join();
    EXPECT_TRUE(workspace.revealed().empty());
}

TEST_F(DetailModelTest, ShowsNoSheetBeforeThePlanHasArrived) {
    DetailModel& detail = show(application("Foo"));
    detail.setShowingRemovalSheet(true);
    EXPECT_FALSE(detail.isShowingRemovalSheet());
}

TEST_F(DetailModelTest, ASheetThatIsShownStaysTheSameWhenItIsAskedForAgain) {
    installBundle("Foo");
    DetailModel& detail = showPlan(application("Foo"));
    QSignalSpy changes(&detail, &DetailModel::isShowingRemovalSheetChanged);
    detail.setShowingRemovalSheet(true);
    const ReviewModel* const review = detail.review();
    detail.setShowingRemovalSheet(true);
    EXPECT_EQ(detail.review(), review);
    EXPECT_EQ(changes.size(), 1);
}

TEST_F(DetailModelTest, KeepsTheSheetWhileARemovalRunsWhoeverAsks) {
    installBundle("Foo");
    mac.makeDirectory(TestVolume::home() + "/.Trash");
    DetailModel& detail = showPlan(application("Foo"));
    detail.setShowingRemovalSheet(true);
    detail.review()->moveToTrash();
    ASSERT_TRUE(detail.review()->isRemoving());
    detail.dismissSheet();
    EXPECT_TRUE(detail.isShowingRemovalSheet());
    detail.setShowingRemovalSheet(false);
    EXPECT_TRUE(detail.isShowingRemovalSheet());
    waitUntil([&] { return detail.review()->hasResult(); });
    detail.dismissSheet();
    EXPECT_FALSE(detail.isShowingRemovalSheet());
}

TEST_F(DetailModelTest, TellsWhenItCannotBeReviewedAnyMore) {
    DetailModel& detail = showPlan(application("Foo"));
    QSignalSpy told(&detail, &DetailModel::canReviewChanged);
    InstalledApplication record = application("Foo");
    record.isSystemApplication = true;
    detail.setApplication(record);
    EXPECT_EQ(told.size(), 1);
    EXPECT_FALSE(detail.canReview());
}

TEST_F(DetailModelTest, MakesAFreshReviewEachTimeTheSheetOpens) {
    installBundle("Foo");
    DetailModel& detail = showPlan(application("Foo"));
    QSignalSpy changed(&detail, &DetailModel::isShowingRemovalSheetChanged);
    EXPECT_EQ(detail.review(), nullptr);
    detail.setShowingRemovalSheet(true);
    ASSERT_NE(detail.review(), nullptr);
    detail.review()->setSelected(0, false);
    EXPECT_FALSE(detail.review()->canRemove());
    detail.dismissSheet();
    detail.setShowingRemovalSheet(true);
    EXPECT_TRUE(detail.review()->canRemove());
    EXPECT_EQ(changed.size(), 3);
}

TEST_F(DetailModelTest, KeepsTheReviewWhileItsSheetSlidesAway) {
    installBundle("Foo");
    DetailModel& detail = showPlan(application("Foo"));
    detail.setShowingRemovalSheet(true);
    const QPointer<ReviewModel> review = detail.review();
    detail.dismissSheet();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(detail.isShowingRemovalSheet());
    EXPECT_EQ(detail.review(), review);
    EXPECT_NE(review, nullptr);
    detail.setShowingRemovalSheet(true);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(review, nullptr);
    EXPECT_NE(detail.review(), nullptr);
}

TEST_F(DetailModelTest, CanGoAwayWhileItsPlanIsOnItsWay) {
    show(application("Foo"));
    turn();
    pane.reset();
    pool.join();
    turn();
}

}  // namespace
}  // namespace orvane::test
