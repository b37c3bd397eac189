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

TEST_F(AppLibraryTest, ARecordThatNamesNoFileTakesNoInstalledApplicationOfItsIdWithIt) {
    volume.addApplication("/Applications/A.app");
    auto nowhere = record("/Applications/A.app");
    nowhere.url = FileURL::fromString("https://example.org/Applications/A.app/").value();
    ASSERT_EQ(nowhere.id(), "/Applications/A.app");
    for (const auto& list : {std::vector{nowhere, record("/Applications/A.app")},
                             std::vector{record("/Applications/A.app"), nowhere}}) {
        save(list);
        library = AppLibrary::make(mainLoop.executor(), scanner, catalog, volume.localizedText(), clock);
        load();
        EXPECT_THAT(listed(), testing::SizeIs(2));
        pass(5s);
        EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
        EXPECT_THAT(saved(), ElementsAre("/Applications/A.app"));
        EXPECT_EQ(library->selectedApplicationID(), "/Applications/A.app");
    }
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

/// Lets the time run out in the very moment in which a field has changed.
class AdvanceOnChange : public AppLibrary::Observer {
  public:
    AdvanceOnChange(AppLibrary::Field field, test::ManualClock& clock) : field_(field), clock_(clock) {}
    void libraryDidChange(AppLibrary::Field field) override {
        if (field == field_) clock_.advance(5s);
    }

  private:
    AppLibrary::Field field_;
    test::ManualClock& clock_;
};

class AppLibraryMomentTest : public AppLibraryTest, public testing::WithParamInterface<AppLibrary::Field> {};

// The list is published at the beginning of a refresh, the selection at its end.
TEST_P(AppLibraryMomentTest, KeepsAnApplicationThatIsBackAsTheTimeRunsOut) {
    volume.addApplication("/Applications/A.app");
    scan();
    volume.remove("/Applications/A.app");
    refresh();
    library->setSelectedApplicationID(std::nullopt);
    volume.addApplication("/Applications/A.app");
    AdvanceOnChange observer(GetParam(), clock);
    library->addObserver(observer);
    refresh();
    library->removeObserver(observer);
    pass(0s);
    EXPECT_THAT(listed(), ElementsAre("/Applications/A.app"));
    EXPECT_EQ(clock.sleeperCount(), 0U);
    volume.remove("/Applications/A.app");
    refresh();
    pass(5s);
    EXPECT_THAT(listed(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AppLibrary, AppLibraryMomentTest,
                         testing::Values(AppLibrary::Field::applications,
                                         AppLibrary::Field::selectedApplicationID));

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
