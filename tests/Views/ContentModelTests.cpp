#include "Views/ContentModel.h"

#include <QtCore/QPointer>
#include <QtTest/QSignalSpy>

#include "tests/Views/ViewModelTest.h"

namespace orvane::test {
namespace {

class ContentModelTest : public ViewModelTest {
  protected:
    void select(const std::string& name) { library->setSelectedApplicationID(bundleURL(name).path()); }

    ContentModel content{services};
    QSignalSpy detailChanged{&content, &ContentModel::detailChanged};
};

TEST_F(ContentModelTest, ShowsNoApplicationUntilTheFirstScanHasFinished) {
    installBundle("Foo");
    std::vector<bool> shows;
    QObject::connect(content.sidebar(), &SidebarModel::isScanningChanged, &content,
                     [&] { shows.push_back(content.detail() != nullptr); });
    content.load();
    waitUntil([&] { return shows.size() == 2; });
    EXPECT_FALSE(shows.front());
    ASSERT_NE(content.detail(), nullptr);
    EXPECT_EQ(content.detail()->name(), "Foo");
}

TEST_F(ContentModelTest, SaysNothingWhereThereIsStillNoApplication) {
    QSignalSpy scanning(content.sidebar(), &SidebarModel::isScanningChanged);
    content.load();
    waitUntil([&] { return scanning.size() == 2; });
    EXPECT_EQ(content.detail(), nullptr);
    EXPECT_EQ(detailChanged.size(), 0);
}

TEST_F(ContentModelTest, AWindowThatAppearsWhileTheListIsReadReadsItOnce) {
    struct Counter : AppLibrary::Observer {
        void libraryDidChange(AppLibrary::Field field) override {
            lists += field == AppLibrary::Field::applications ? 1 : 0;
        }
        int lists = 0;
    } counter;
    saveCatalog({application("Foo")});
    library->addObserver(counter);
    content.load();
    content.load();
    waitUntil([&] { return content.detail() != nullptr; });
    // A second list would come before this one's.
    complete(library->updateSavedAvailability());
    EXPECT_EQ(counter.lists, 2);
    library->removeObserver(counter);
}

TEST_F(ContentModelTest, ShowsASavedCatalogWithoutScanning) {
    installBundle("Unknown");
    saveCatalog({application("Foo")});
    QSignalSpy scanning(content.sidebar(), &SidebarModel::isScanningChanged);
    content.load();
    waitUntil([&] { return content.detail() != nullptr; });
    EXPECT_EQ(content.detail()->name(), "Foo");
    EXPECT_EQ(content.sidebar()->count(), 1);
    EXPECT_EQ(scanning.size(), 0);
}

TEST_F(ContentModelTest, DoesNotReloadWhenAWindowAppearsAgain) {
    load({application("Foo")});
    saveCatalog({application("Foo"), application("Bar")});
    content.load();
    // A reload would queue up in the catalog before these.
    complete(library->updateSavedAvailability());
    complete(library->updateSavedAvailability());
    EXPECT_EQ(content.sidebar()->count(), 1);
}

TEST_F(ContentModelTest, KeepsThePaneWhileItsSheetIsShown) {
    load({application("Foo"), application("Goo")});
    waitUntil([&] { return !content.detail()->isLoading(); });
    DetailModel* const reviewed = content.detail();
    reviewed->setShowingRemovalSheet(true);
    select("Goo");
    EXPECT_EQ(content.detail(), reviewed);
    library->setSelectedApplicationID(std::nullopt);
    EXPECT_EQ(content.detail(), reviewed);
    reviewed->dismissSheet();
    EXPECT_EQ(content.detail(), nullptr);
    select("Goo");
    EXPECT_EQ(content.detail()->name(), "Goo");
}

TEST_F(ContentModelTest, FollowsOnceTheSheetHasSlidAway) {
    load({application("Foo"), application("Goo")});
    waitUntil([&] { return !content.detail()->isLoading(); });
    DetailModel* const reviewed = content.detail();
    reviewed->setShowingRemovalSheet(true);
    reviewed->setSheetInView(true);
    select("Goo");
    reviewed->dismissSheet();
    EXPECT_EQ(content.detail(), reviewed);
    reviewed->setSheetInView(false);
    EXPECT_EQ(content.detail()->name(), "Goo");
}

TEST_F(ContentModelTest, ReviewsInPeaceWhatLeavesTheListMeanwhile) {
    load({application("Foo"), application("Goo")});
    waitUntil([&] { return !content.detail()->isLoading(); });
    DetailModel* const reviewed = content.detail();
    reviewed->setShowingRemovalSheet(true);
    removeBundle("Foo");
    complete(library->scan());
    EXPECT_EQ(library->selectedApplication()->name, "Goo");
    clock.advance(std::chrono::seconds(5));
    waitUntil([&] { return library->applications().size() == 1; });
    EXPECT_EQ(content.detail(), reviewed);
    EXPECT_EQ(content.detail()->name(), "Foo");
    reviewed->dismissSheet();
    EXPECT_EQ(content.detail()->name(), "Goo");
}

TEST_F(ContentModelTest, StartsASecondScanBesideARunningOne) {
    QSignalSpy scanning(content.sidebar(), &SidebarModel::isScanningChanged);
    int starts = 0;
    QObject::connect(content.sidebar(), &SidebarModel::isScanningChanged, &content, [&] {
        if (content.sidebar()->isScanning() && ++starts == 1) content.rescan();
    });
    content.rescan();
    waitUntil([&] { return scanning.size() == 4; });
    EXPECT_EQ(starts, 2);
}

TEST_F(ContentModelTest, StartsOverForAnotherApplication) {
    load({application("Foo"), application("Bar")});
    const QPointer<DetailModel> foo = content.detail();
    waitUntil([&] { return !foo->isLoading(); });
    select("Bar");
    ASSERT_NE(content.detail(), foo);
    EXPECT_EQ(content.detail()->name(), "Bar");
    EXPECT_TRUE(content.detail()->isLoading());
    EXPECT_TRUE(content.detail()->isLoading());
    EXPECT_FALSE(content.detail()->isShowingRemovalSheet());
    waitUntil([&] { return foo.isNull(); });
}

TEST_F(ContentModelTest, KeepsThePaneWhenItsApplicationIsFoundAgain) {
    InstalledApplication before = application("Foo");
    before.version = "0.9";
    load({before});
    installBundle("Foo");
    DetailModel* const pane = content.detail();
    waitUntil([&] { return !pane->isLoading(); });
    pane->setShowingRemovalSheet(true);
    detailChanged.clear();
    QSignalSpy planChanged(pane, &DetailModel::planChanged);
    QSignalSpy factsChanged(pane, &DetailModel::applicationChanged);
    complete(library->scan());
    EXPECT_EQ(content.detail(), pane);
    EXPECT_EQ(pane->versionText(), "Version 1.0");
    EXPECT_GT(factsChanged.size(), 0);
    EXPECT_FALSE(pane->isLoading());
    EXPECT_TRUE(pane->isShowingRemovalSheet());
    EXPECT_EQ(detailChanged.size() + planChanged.size(), 0);
}

TEST_F(ContentModelTest, ShowsThePlaceholderWhenTheLastApplicationLeaves) {
    InstalledApplication gone = application("Gone");
    gone.isInstalled = false;
    load({gone});
    ASSERT_NE(content.detail(), nullptr);
    waitUntil([&] { return clock.sleeperCount() == 1; });
    clock.advance(std::chrono::seconds(5));
    waitUntil([&] { return content.detail() == nullptr; });
    EXPECT_EQ(content.sidebar()->count(), 0);
}

TEST_F(ContentModelTest, LetsThePlanOfAPaneThatHasGoneArriveNowhere) {
    load({application("Foo"), application("Bar")});
    const QPointer<DetailModel> foo = content.detail();
    EXPECT_TRUE(foo->isLoading());
    select("Bar");
    waitUntil([&] { return foo.isNull() && !content.detail()->isLoading(); });
    EXPECT_EQ(content.detail()->name(), "Bar");
    EXPECT_EQ(content.detail()->fileItems()->index(0, 0).data(Qt::UserRole + 1).toString(), "Bar.app");
}

TEST_F(ContentModelTest, ComesBackToAnApplicationWithAFreshPane) {
    load({application("Foo"), application("Bar")});
    waitUntil([&] { return !content.detail()->isLoading(); });
    select("Bar");
    select("Foo");
    EXPECT_TRUE(content.detail()->isLoading());
    waitUntil([&] { return !content.detail()->isLoading(); });
}

TEST_F(ContentModelTest, FollowsTheSidebarsSelection) {
    load({application("Foo"), application("Bar")});
    content.sidebar()->select(1);
    EXPECT_EQ(content.detail()->name(), "Foo");
    turn();
    EXPECT_EQ(content.detail()->name(), "Bar");
}

TEST_F(ContentModelTest, CanGoAwayWhileEverythingIsUnderWay) {
    load({application("Foo"), application("Bar")});
    const QSignalSpy scanning(content.sidebar(), &SidebarModel::isScanningChanged);
    auto other = std::make_unique<ContentModel>(services);
    other->sidebar()->select(1);
    other->rescan();
    other->load();
    other.reset();
    waitUntil([&] { return scanning.size() == 2; });
}

}  // namespace
}  // namespace orvane::test
