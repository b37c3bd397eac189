#include <QtTest/QTest>
#include <filesystem>

#include "tests/Views/RemovalReviewViewFixture.h"

namespace orvane::test {
namespace {

using Ticks = std::vector<bool>;

TEST_F(RemovalReviewViewTest, AsksWhatItIsAbout) {
    installBundle("Foo");
    open();
    EXPECT_EQ(
        textsIn(content("reviewSheet")).mid(0, 2),
        (QStringList{"Uninstall Foo?", "Selected files will be moved to Trash. Review the list carefully."}));
    EXPECT_EQ(named("reviewSheet").property("title"), "Uninstall Foo?");
}

TEST_F(RemovalReviewViewTest, SelectsEverythingAtFirst) {
    installBundle("Foo");
    addContainer("Foo A");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    open();
    EXPECT_EQ(ticks(), Ticks(3, true));
    EXPECT_EQ(title("selectAllButton"), "Deselect All");
}

TEST_F(RemovalReviewViewTest, SelectsAllAgainWhenOneIsLeftOut) {
    installBundle("Foo");
    addContainer("Foo A");
    open();
    click(*rows()[1]);
    EXPECT_EQ(ticks(), (Ticks{true, false}));
    EXPECT_EQ(title("selectAllButton"), "Select All");
    click(item("selectAllButton"));
    EXPECT_EQ(ticks(), Ticks(2, true));
    EXPECT_EQ(title("selectAllButton"), "Deselect All");
}

TEST_F(RemovalReviewViewTest, RemovesNothingWhereNothingIsSelected) {
    installBundle("Foo");
    open();
    click(item("selectAllButton"));
    EXPECT_EQ(ticks(), Ticks(1, false));
    EXPECT_FALSE(isEnabled("deletePermanentlyButton"));
    EXPECT_FALSE(isEnabled("moveToTrashButton"));
    EXPECT_TRUE(isEnabled("cancelButton"));
    press(Qt::Key_Return);
    EXPECT_FALSE(review().isRemoving());
}

TEST_F(RemovalReviewViewTest, ListsKindsPathsAndSizes) {
    mac.makeDirectory("/Applications/Foo.app");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    open();
    ASSERT_EQ(rows().size(), 2U);
    EXPECT_EQ(textsIn(*rows()[0]), (QStringList{"Application", "—", "/Applications/Foo.app"}));
    const QStringList daemon = textsIn(*rows()[1]);
    ASSERT_EQ(daemon.size(), 4);
    EXPECT_EQ(daemon[0], "Launch Daemon");
    EXPECT_EQ(daemon[1], "Permission required");
    EXPECT_TRUE(daemon[2].endsWith(" KB"));
    EXPECT_EQ(daemon[3], "/Library/LaunchDaemons/org.example.Foo.plist");
}

TEST_F(RemovalReviewViewTest, RowsAreReadAloudWithKindAndPath) {
    installBundle("Foo");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    open();
    EXPECT_EQ(accessibleName(*rows()[0]), "Application, /Applications/Foo.app");
    EXPECT_EQ(accessibleName(*rows()[1]), "Launch Daemon, /Library/LaunchDaemons/org.example.Foo.plist");
    EXPECT_TRUE(accessibleDescription(*rows()[1]).contains("Permission required"));
    EXPECT_FALSE(accessibleDescription(*rows()[0]).contains("Permission required"));
    EXPECT_EQ(accessibleName(item("moveToTrashButton")), "Move Selected to Trash");
}

TEST_F(RemovalReviewViewTest, RowsTellWhyTheyAreThere) {
    installBundle("Foo");
    open();
    waitUntil([this] { return accessibleDescription(*rows()[0]).endsWith(", The application itself"); });
    const QPoint place = rows()[0]->mapToScene(QPointF(100, 10)).toPoint();
    QTest::mouseMove(window.get(), place);
    QTest::mouseMove(window.get(), place + QPoint(1, 1));
    waitUntil([this] { return textsIn(*window->contentItem()).contains("The application itself"); });
    review().setConfirmingPermanentDeletion(true);
    waitUntilOpened("confirmationAlert");
    EXPECT_FALSE(textsIn(*window->contentItem()).contains("The application itself"));
}

TEST_F(RemovalReviewViewTest, OneTipGoesFromRowToRow) {
    installBundle("Foo");
    mac.makeFile(TestVolume::home() + "/Library/Caches/org.example.Foo/data");
    open();
    const QString reason = "In “Library/Caches”, named after the identifier “org.example.Foo”";
    waitUntil([&] { return rows()[1]->property("reason") == reason; });
    const auto pointAt = [this](const QQuickItem& row) {
        const QPoint place = row.mapToScene(QPointF(100, 10)).toPoint();
        QTest::mouseMove(window.get(), place);
        QTest::mouseMove(window.get(), place + QPoint(1, 1));
    };
    const auto isSaid = [this](const QString& text) {
        return textsIn(*window->contentItem()).contains(text);
    };
    pointAt(*rows()[0]);
    waitUntil([&] { return isSaid("The application itself"); });
    pointAt(*rows()[1]);
    EXPECT_FALSE(isSaid("The application itself"));
    EXPECT_FALSE(isSaid(reason));
    waitUntil([&] { return isSaid(reason); });
    EXPECT_FALSE(isSaid("The application itself"));
    QTest::mouseMove(window.get(), item("reviewList").mapToScene(QPointF(100, -20)).toPoint());
    EXPECT_FALSE(isSaid(reason));
}

TEST_F(RemovalReviewViewTest, MakesNoMoreRowsThanCanBeSeenOfTwoThousand) {
    for (int i = 0; i < 2000; ++i) {
        const std::string name = std::to_string(2000 + i);
        addLaunchAgent("agent" + name, "Agent " + name);
    }
    open();
    constexpr std::size_t most = 25;
    EXPECT_LE(rows().size(), most);
    press(Qt::Key_End);
    layOut();
    EXPECT_EQ(window->activeFocusItem()->property("index"), 1999);
    EXPECT_LE(rows().size(), most);
}

TEST_F(RemovalReviewViewTest, MovesWhatIsSelectedToTheTrash) {
    installBundle("Foo");
    addContainer("Foo A");
    addContainer("Foo B");
    addContainer("Foo C");
    open();
    click(*rows()[1]);
    const std::string spared = rows()[1]->property("path").toString().toStdString();
    click(item("moveToTrashButton"));
    EXPECT_EQ(awaitResult(), "Moved 3 item(s) to Trash.");
    EXPECT_EQ(textsIn(content("resultAlert")).first(), "Uninstall Result");
    EXPECT_TRUE(mac.contains(spared));
    EXPECT_FALSE(mac.contains("/Applications/Foo.app"));
    EXPECT_TRUE(mac.contains(TestVolume::home() + "/.Trash/Foo.app"));
}

TEST_F(RemovalReviewViewTest, AsksBeforeItDeletesForGood) {
    installBundle("Foo");
    addContainer("Foo A");
    addContainer("Foo B");
    open();
    click(*rows()[0]);
    click(item("deletePermanentlyButton"));
    waitUntilOpened("confirmationAlert");
    EXPECT_EQ(textsIn(content("confirmationAlert")),
              (QStringList{"Delete Selected Items Permanently?",
                           "This will immediately delete 2 selected item(s). They will not be moved to Trash "
                           "and cannot be recovered.",
                           "Cancel", "Delete Permanently"}));
    EXPECT_TRUE(alertButton("confirmationAlert", "Cancel").property("isProminent").toBool());
    const QQuickItem& destructive = alertButton("confirmationAlert", "Delete Permanently");
    EXPECT_TRUE(destructive.property("isDestructive").toBool());
    EXPECT_FALSE(destructive.property("isProminent").toBool());
    EXPECT_FALSE(review().isRemoving());
}

TEST_F(RemovalReviewViewTest, KeepsEverythingWhenTheQuestionIsCancelled) {
    installBundle("Foo");
    open();
    const std::string before = mac.listing();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        click(item("deletePermanentlyButton"));
        waitUntilOpened("confirmationAlert");
        press(key);
        waitUntil([this] { return !isShown("confirmationAlert"); });
        EXPECT_FALSE(review().isRemoving());
        EXPECT_TRUE(isShown("reviewSheet"));
    }
    EXPECT_EQ(mac.listing(), before);
}

TEST_F(RemovalReviewViewTest, TellsWhatCouldNotBeDeleted) {
    installBundle("Foo");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    open();
    deletePermanently();
    EXPECT_EQ(awaitResult(),
              "Deleted 1 item(s) permanently. 1 item(s) could not be removed. Locked items may require "
              "administrator access.");
    EXPECT_FALSE(mac.contains("/Applications/Foo.app"));
    EXPECT_FALSE(mac.contains(TestVolume::home() + "/.Trash/Foo.app"));
}

TEST_F(RemovalReviewViewTest, DoesNotCountWhatVanishedBefore) {
    installBundle("Foo");
    addContainer("Foo A");
    open();
    std::filesystem::remove_all(mac.machinePath(containerPath("Foo A")));
    click(item("moveToTrashButton"));
    EXPECT_EQ(awaitResult(), "Moved 1 item(s) to Trash.");
}

TEST_F(RemovalReviewViewTest, AllStandsStillWhileARemovalRuns) {
    installBundle("Foo");
    addContainer("Foo A");
    open();
    EXPECT_FALSE(item("removalProgress").isVisible());
    holdPool();
    click(item("moveToTrashButton"));
    layOut();
    EXPECT_EQ(textsIn(item("removalProgress")), QStringList("Moving to Trash…"));
    EXPECT_EQ(itemsOfType(item("removalProgress"), "Spinner").size(), 1U);
    for (const QQuickItem* row : rows()) EXPECT_FALSE(row->isEnabled());
    for (const char* button :
         {"selectAllButton", "cancelButton", "deletePermanentlyButton", "moveToTrashButton"})
        EXPECT_FALSE(isEnabled(button)) << button;
    press(Qt::Key_Escape);
    press(Qt::Key_Return);
    click(item("cancelButton"));
    click(*rows()[0]);
    EXPECT_TRUE(isShown("reviewSheet"));
    EXPECT_TRUE(detail->isShowingRemovalSheet());
    releasePool();
    EXPECT_EQ(awaitResult(), "Moved 2 item(s) to Trash.");
    EXPECT_FALSE(item("removalProgress").isVisible());
}

TEST_F(RemovalReviewViewTest, SaysThatItDeletesForGood) {
    installBundle("Foo");
    open();
    holdPool();
    deletePermanently();
    layOut();
    EXPECT_EQ(textsIn(item("removalProgress")), QStringList("Deleting permanently…"));
    releasePool();
    EXPECT_EQ(awaitResult(), "Deleted 1 item(s) permanently.");
}

TEST_F(RemovalReviewViewTest, DoneClosesTheSheetAndRefreshesTheLibrary) {
    load({application("Foo")});
    open();
    click(item("moveToTrashButton"));
    awaitResult();
    EXPECT_TRUE(listed("Foo").isInstalled);
    click(alertButton("resultAlert", "Done"));
    waitUntil([this] { return !isThere("reviewSheet"); });
    EXPECT_FALSE(detail->isShowingRemovalSheet());
    waitUntil([this] { return !listed("Foo").isInstalled; });
}

TEST_F(RemovalReviewViewTest, TheResultIsAcknowledgedByKeys) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        installBundle("Foo");
        open();
        click(item("moveToTrashButton"));
        awaitResult();
        press(key);
        waitUntil([this] { return !isThere("reviewSheet"); });
        delete pane;
    }
}

TEST_F(RemovalReviewViewTest, CancelKeepsEverything) {
    installBundle("Foo");
    open();
    const std::string before = mac.listing();
    click(item("cancelButton"));
    waitUntil([this] { return !isThere("reviewSheet"); });
    EXPECT_FALSE(detail->isShowingRemovalSheet());
    EXPECT_EQ(mac.listing(), before);
}

TEST_F(RemovalReviewViewTest, StartsAfreshEachTime) {
    installBundle("Foo");
    open();
    click(*rows()[0]);
    press(Qt::Key_Escape);
    waitUntil([this] { return !isThere("reviewSheet"); });
    reopen();
    EXPECT_EQ(ticks(), Ticks(1, true));
}

TEST_F(RemovalReviewViewTest, CanBeOpenedAgainWhileItSlidesAway) {
    installBundle("Foo");
    open();
    click(*rows()[0]);
    detail->dismissSheet();
    EXPECT_TRUE(isShown("reviewSheet"));
    reopen();
    EXPECT_EQ(ticks(), Ticks(1, true));
    click(item("cancelButton"));
    waitUntil([this] { return !isThere("reviewSheet"); });
}

TEST_F(RemovalReviewViewTest, AHeldReturnOpensItAndThatIsAll) {
    installBundle("Foo");
    for (const Repetition how : {Repetition::press, Repetition::releaseAndPress, Repetition::silent}) {
        showPlan(application("Foo"), {980, 700});
        const std::string before = mac.listing();
        item("reviewButton").forceActiveFocus(Qt::TabFocusReason);
        pressDown(Qt::Key_Return);
        waitUntil([&] {
            repeat(how, 1);
            return isThere("reviewSheet") && named("reviewSheet").property("opened").toBool();
        });
        repeat(how, 30);
        letGo();
        waitUntilOpened("reviewSheet");
        EXPECT_FALSE(review().isRemoving());
        EXPECT_FALSE(review().hasResult());
        EXPECT_EQ(mac.listing(), before);
        delete pane;
    }
}

TEST_F(RemovalReviewViewTest, AHeldReturnRemovesAndLeavesTheResultToBeSeen) {
    installBundle("Foo");
    open();
    pressDown(Qt::Key_Return);
    waitUntil([this] {
        repeat(Repetition::press, 1);
        return isThere("resultAlert") && named("resultAlert").property("opened").toBool();
    });
    repeat(Repetition::press, 30);
    letGo();
    EXPECT_EQ(awaitResult(), "Moved 1 item(s) to Trash.");
    EXPECT_TRUE(isShown("resultAlert"));
}

TEST_F(RemovalReviewViewTest, TwoQuickReturnsOpenItAndRemoveNothing) {
    installBundle("Foo");
    showPlan(application("Foo"), {980, 700});
    const std::string before = mac.listing();
    item("reviewButton").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    waitUntil([this] { return isThere("reviewSheet"); });
    pressDown(Qt::Key_Return);
    letGo();
    waitUntilOpened("reviewSheet");
    EXPECT_FALSE(review().isRemoving());
    EXPECT_EQ(mac.listing(), before);
}

TEST_F(RemovalReviewViewTest, ReturnRemovesNothingOnceTheSheetIsCancelled) {
    installBundle("Foo");
    open();
    const std::string before = mac.listing();
    press(Qt::Key_Escape);
    press(Qt::Key_Return);
    click(item("moveToTrashButton"));
    waitUntil([this] { return !isThere("reviewSheet"); });
    EXPECT_EQ(mac.listing(), before);
}

TEST_F(RemovalReviewViewTest, IsWorkedFromTheKeyboardAlone) {
    installBundle("Foo");
    addContainer("Foo A");
    addContainer("Foo B");
    open();
    EXPECT_EQ(window->activeFocusItem(), rows()[0]);
    EXPECT_TRUE(rows()[0]->property("visualFocus").toBool());
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(window->activeFocusItem(), rows()[2]);
    EXPECT_TRUE(rows()[2]->property("visualFocus").toBool());
    press(Qt::Key_Space);
    EXPECT_EQ(ticks(), (Ticks{true, true, false}));
    for (const char* button :
         {"selectAllButton", "cancelButton", "deletePermanentlyButton", "moveToTrashButton"}) {
        press(Qt::Key_Tab);
        EXPECT_EQ(window->activeFocusItem(), &item(button)) << button;
    }
    press(Qt::Key_Tab);
    EXPECT_EQ(window->activeFocusItem(), rows()[2]);
    press(Qt::Key_Return);
    EXPECT_EQ(awaitResult(), "Moved 2 item(s) to Trash.");
}

TEST_F(RemovalReviewViewTest, ItsListIsOneStopOfTheTabKeyAndAClickLeavesTheKeyboardWhereItIs) {
    installBundle("Foo");
    addContainer("Foo A");
    addContainer("Foo B");
    open();
    EXPECT_EQ(window->activeFocusItem(), rows()[0]);
    press(Qt::Key_Tab);
    EXPECT_EQ(window->activeFocusItem(), &item("selectAllButton"));
    click(*rows()[1]);
    EXPECT_EQ(ticks(), (Ticks{true, false, true}));
    EXPECT_EQ(window->activeFocusItem(), &item("selectAllButton"));
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(window->activeFocusItem(), rows()[1]);
    EXPECT_TRUE(rows()[1]->property("visualFocus").toBool());
}

}  // namespace
}  // namespace orvane::test
