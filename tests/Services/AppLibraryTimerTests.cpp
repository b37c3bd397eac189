#include "tests/Services/AppLibraryFixture.h"

namespace orvane {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(AppLibraryTest, DropsAMissingApplicationAfterFiveSeconds) {
    volume.addApplication("/Applications/A.app");
    save({record("/Applications/A.app"), record("/Applications/Gone.app")});
    load();
    pass(4999ms);
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app", "/Applications/Gone.app?"));
    EXPECT_THAT(saved(), ElementsAre("/Applications/A.app", "/Applications/Gone.app?"));
    pass(1ms);
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
    EXPECT_THAT(saved(), ElementsAre("/Applications/A.app"));
}

TEST_F(AppLibraryTest, GivesEveryMissingApplicationItsOwnFiveSeconds) {
    volume.addApplication("/Applications/A.app");
    volume.addApplication("/Applications/B.app");
    scan();
    volume.remove("/Applications/A.app");
    refresh();
    pass(3s);
    volume.remove("/Applications/B.app");
    refresh();
    pass(2s);
    EXPECT_THAT(listed(), ElementsAre("/Applications/B.app?"));
    pass(3s);
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_EQ(clock.sleeperCount(), 0U);
}

TEST_F(AppLibraryTest, DoesNotRestartTheFiveSecondsWithARescan) {
    volume.addApplication("/Applications/A.app");
    scan();
    volume.remove("/Applications/A.app");
    scan();
    pass(4s);
    scan();
    refresh();
    EXPECT_EQ(clock.sleeperCount(), 1U);
    pass(1s);
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_THAT(saved(), IsEmpty());
}

TEST_F(AppLibraryTest, KeepsAnApplicationThatIsBackBeforeARescan) {
    volume.addApplication("/Applications/A.app");
    scan();
    volume.remove("/Applications/A.app");
    refresh();
    pass(4s);
    volume.addApplication("/Applications/A.app");
    scan();
    mainLoop.drain();
    EXPECT_EQ(clock.sleeperCount(), 0U);
    pass(1min);
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
    EXPECT_THAT(saved(), ElementsAre("/Applications/A.app"));
}

TEST_F(AppLibraryTest, KeepsAnApplicationThatIsBackBeforeARefresh) {
    volume.addApplication("/Applications/A.app");
    scan();
    volume.remove("/Applications/A.app");
    refresh();
    volume.addApplication("/Applications/A.app");
    refresh();
    pass(1min);
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
}

TEST_F(AppLibraryTest, BeginsTheFiveSecondsAnewForAnApplicationThatGoesAgain) {
    volume.addApplication("/Applications/A.app");
    scan();
    volume.remove("/Applications/A.app");
    refresh();
    pass(4s);
    volume.addApplication("/Applications/A.app");
    refresh();
    volume.remove("/Applications/A.app");
    refresh();
    pass(4s);
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app?"));
    pass(1s);
    EXPECT_THAT(listed(), IsEmpty());
}

// The file system is not asked again when the time is up: only a scan or a refresh finds an application back.
TEST_F(AppLibraryTest, DropsAnApplicationThatCameBackUnnoticed) {
    volume.addApplication("/Applications/A.app");
    scan();
    volume.remove("/Applications/A.app");
    refresh();
    volume.addApplication("/Applications/A.app");
    pass(5s);
    EXPECT_THAT(listed(), IsEmpty());
    scan();
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
}

TEST_F(AppLibraryTest, DropsEveryEntryOfTheSamePathTogether) {
    volume.addApplication("/Applications/A.app");
    save({missing("/Applications/Gone.app"), record("/Applications/A.app"),
          missing("/Applications/Gone.app")});
    load();
    EXPECT_EQ(clock.sleeperCount(), 1U);
    pass(5s);
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
    EXPECT_EQ(clock.sleeperCount(), 0U);
}

TEST_F(AppLibraryTest, MovesTheSelectionOffADroppedApplication) {
    save({missing("/Applications/A.app"), missing("/Applications/B.app")});
    load();
    EXPECT_EQ(library->selectedApplicationID(), "/Applications/A.app");
    pass(5s);
    EXPECT_EQ(library->selectedApplicationID(), std::nullopt);
}

TEST_F(AppLibraryTest, LeavesTheCatalogAloneOnceItIsGoneItself) {
    save({missing("/Applications/A.app")});
    load();
    library.reset();
    EXPECT_EQ(clock.sleeperCount(), 1U);
    pass(5s);
    EXPECT_EQ(clock.sleeperCount(), 0U);
    EXPECT_THAT(saved(), ElementsAre("/Applications/A.app?"));
}

TEST_F(AppLibraryTest, MayEndWithTimersPending) {
    save({missing("/Applications/A.app"), missing("/Applications/B.app")});
    load();
    EXPECT_EQ(clock.sleeperCount(), 2U);
}

/// Time runs out in the very moment in which an application is found to be back.
class AdvanceOnSelection : public AppLibrary::Observer {
  public:
    explicit AdvanceOnSelection(test::ManualClock& clock) : clock_(clock) {}
    void libraryDidChange(AppLibrary::Field field) override {
        if (field == AppLibrary::Field::selectedApplicationID) clock_.advance(5s);
    }

  private:
    test::ManualClock& clock_;
};

TEST_F(AppLibraryTest, KeepsAnApplicationThatIsBackAsTheTimeRunsOut) {
    volume.addApplication("/Applications/A.app");
    scan();
    volume.remove("/Applications/A.app");
    refresh();
    library->setSelectedApplicationID(std::nullopt);
    volume.addApplication("/Applications/A.app");
    AdvanceOnSelection observer(clock);
    library->addObserver(observer);
    refresh();
    pass(0s);
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
    EXPECT_EQ(clock.sleeperCount(), 0U);
    library->removeObserver(observer);
}

// The scan merges the list as it was before the time ran out, so the entry is back for five seconds more.
TEST_F(AppLibraryTest, MergesTheListThatItHadWhenTheMergeBegan) {
    volume.addApplication("/Applications/A.app");
    volume.addApplication("/Applications/B.app");
    scan();
    volume.remove("/Applications/A.app");
    refresh();
    gate.setOpen(false);
    auto scanning = mainLoop.start(library->scan());
    mainLoop.runUntil([&] { return gate.isHoldingSomebody(); });
    clock.advance(5s);
    mainLoop.drain();
    EXPECT_THAT(listed(), ElementsAre("/Applications/B.app"));
    gate.setOpen(true);
    mainLoop.wait(std::move(scanning));
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app?", "/Applications/B.app"));
    pass(5s);
    EXPECT_THAT(listed(), ElementsAre("/Applications/B.app"));
    EXPECT_THAT(saved(), ElementsAre("/Applications/B.app"));
}

TEST_F(AppLibraryTest, FinishesScansThatOverlap) {
    volume.addApplication("/Applications/A.app");
    volume.addApplication("/Applications/B.app");
    gate.setOpen(false);
    auto first = mainLoop.start(library->scan());
    mainLoop.runUntil([&] { return gate.isHoldingSomebody(); });
    volume.addApplication("/Applications/C.app");
    auto second = mainLoop.start(library->scan());
    EXPECT_TRUE(library->isScanning());
    gate.setOpen(true);
    mainLoop.wait(std::move(first));
    mainLoop.wait(std::move(second));
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app", "/Applications/B.app", "/Applications/C.app"));
    EXPECT_FALSE(library->isScanning());
}

TEST_F(AppLibraryTest, OutlivesItsOwnersDuringAScan) {
    volume.addApplication("/Applications/A.app");
    volume.addApplication("/Applications/B.app");
    gate.setOpen(false);
    auto scanning = mainLoop.start(library->scan());
    mainLoop.runUntil([&] { return gate.isHoldingSomebody(); });
    const std::weak_ptr<AppLibrary> observed = library;
    library.reset();
    EXPECT_FALSE(observed.expired());
    gate.setOpen(true);
    mainLoop.wait(std::move(scanning));
    mainLoop.drain();
    EXPECT_TRUE(observed.expired());
    EXPECT_THAT(saved(), ElementsAre("/Applications/A.app", "/Applications/B.app"));
}

}  // namespace
}  // namespace orvane
