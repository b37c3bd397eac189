#include <QtGui/QAccessible>
#include <QtTest/QTest>

#include "tests/Views/AppDetailViewFixture.h"

namespace orvane::test {
namespace {

TEST_F(AppDetailViewTest, ThePointerOnTheLockTellsWhy) {
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    showPlan(application("Foo"));
    const QQuickItem& lock = *itemsOfType(*rows(servicesSection).front(), "orvane::Symbol").back();
    QTest::mouseMove(window.get(), lock.mapToScene(QPointF(7, 7)).toPoint());
    waitUntil([this] {
        return textsIn(*window->contentItem()).contains("Administrator permission may be required");
    });
}

TEST_F(AppDetailViewTest, ShowsTheApplicationInTheFileViewer) {
    showPlan(application("Foo"));
    click(item("showInFinderButton"));
    waitUntil([this] { return workspace.revealed() == std::vector{bundleURL("Foo")}; });
}

TEST_F(AppDetailViewTest, ARowsMenuShowsItInTheFileViewer) {
    addCache("org.example.Foo");
    showPlan(application("Foo"));
    click(*rows(filesSection).front(), Qt::RightButton);
    waitUntil([this] { return !itemsOfType(*window->contentItem(), "PopupMenuItem").empty(); });
    layOut();
    QQuickItem& entry = *itemsOfType(*window->contentItem(), "PopupMenuItem").front();
    EXPECT_EQ(textsIn(entry), QStringList("Show in Finder"));
    EXPECT_EQ(entry.property("symbol"), "folder");
    click(entry);
    waitUntil([this] { return workspace.revealed().size() == 1; });
    EXPECT_EQ(workspace.revealed()[0].path(), "/Users/sample/Library/Caches/org.example.Foo");
}

TEST_F(AppDetailViewTest, OpensTheReviewAndTakesItAway) {
    installBundle("Foo");
    showPlan(application("Foo"));
    EXPECT_FALSE(isThere("reviewSheet"));
    click(item("reviewButton"));
    waitUntil([this] { return isThere("reviewSheet") && named("reviewSheet").property("isReady").toBool(); });
    EXPECT_TRUE(detail->isShowingRemovalSheet());
    press(Qt::Key_Escape);
    EXPECT_FALSE(detail->isShowingRemovalSheet());
    waitUntil([this] { return !isThere("reviewSheet"); });
}

TEST_F(AppDetailViewTest, ActionBarStaysWhileThePaneScrolls) {
    for (int i = 0; i < 20; ++i)
        mac.makeDirectory(TestVolume::home() + "/Library/Group Containers/Foo" + std::to_string(i));
    showPlan(application("Foo"), {700, 500});
    EXPECT_EQ(frame("actionBar"), QRectF(0, 500 - 58, 700, 58));
    const QRectF button = frame("reviewButton");
    EXPECT_EQ(button.right(), 700 - padding);
    EXPECT_EQ(button.height(), 30);
    EXPECT_EQ(button.top(), 500 - 58 + 14);
    EXPECT_EQ(textsIn(item("actionBar")),
              (QStringList{"Review every selected item before removal", "Review Uninstall…"}));
    press(Qt::Key_Tab);
    press(Qt::Key_End);
    layOut();
    EXPECT_LT(frame("detailHeader").top(), 0);
    EXPECT_EQ(frame(filesSection).bottom(), 500 - 58 - padding);
    EXPECT_EQ(frame("actionBar"), QRectF(0, 500 - 58, 700, 58));
}

TEST_F(AppDetailViewTest, ScrollsByWheelAndNotByDragging) {
    for (int i = 0; i < 20; ++i)
        mac.makeDirectory(TestVolume::home() + "/Library/Group Containers/Foo" + std::to_string(i));
    showPlan(application("Foo"), {700, 500});
    QTest::mousePress(window.get(), Qt::LeftButton, {}, {300, 300});
    QTest::mouseMove(window.get(), {300, 200});
    QTest::mouseMove(window.get(), {300, 100});
    QTest::mouseRelease(window.get(), Qt::LeftButton, {}, {300, 100});
    layOut();
    EXPECT_EQ(frame("detailHeader").top(), padding);
    turnWheel({300, 300}, -15);
    layOut();
    EXPECT_EQ(frame("detailHeader").top(), padding - 48);
    turnWheel({300, 300}, 150);
    EXPECT_EQ(frame("detailHeader").top(), padding);
}

TEST_F(AppDetailViewTest, IsWorkedFromTheKeyboardAlone) {
    installBundle("Foo");
    addCache("org.example.Foo");
    addLaunchAgent("org.example.Foo", "Foo's agent");
    showPlan(application("Foo"), {700, 400});
    const auto focused = [this] { return window->activeFocusItem(); };
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), &item("showInFinderButton"));
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), rows(servicesSection).front());
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), rows(filesSection)[0]);
    press(Qt::Key_Down);
    EXPECT_EQ(focused(), rows(filesSection)[1]);
    layOut();
    EXPECT_LE(frameIn(*pane, *focused()).bottom(), frame("actionBar").top());
    press(Qt::Key_F10, Qt::ShiftModifier);
    waitUntil([this] { return !itemsOfType(*window->contentItem(), "PopupMenuItem").empty(); });
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    waitUntil([this] { return workspace.revealed().size() == 1; });
    EXPECT_EQ(workspace.revealed()[0].path(), "/Users/sample/Library/Caches/org.example.Foo");
    waitUntil([&] { return focused() == rows(filesSection)[1]; });
    press(Qt::Key_Up);
    EXPECT_EQ(focused(), rows(filesSection)[0]);
    press(Qt::Key_Backtab);
    EXPECT_EQ(focused(), rows(servicesSection).front());
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), &item("reviewButton"));
    press(Qt::Key_Return);
    EXPECT_TRUE(detail->isShowingRemovalSheet());
}

TEST_F(AppDetailViewTest, GoesToTheEndsOfAListOfItems) {
    for (int i = 0; i < 20; ++i)
        mac.makeDirectory(TestVolume::home() + "/Library/Group Containers/Foo" + std::to_string(i));
    showPlan(application("Foo"), {700, 500});
    const auto items = rows(filesSection);
    items[0]->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    EXPECT_EQ(window->activeFocusItem(), items.back());
    layOut();
    EXPECT_LE(frameIn(*pane, *items.back()).bottom(), frame("actionBar").top());
    press(Qt::Key_Home);
    EXPECT_EQ(window->activeFocusItem(), items.front());
}

TEST_F(AppDetailViewTest, NamesItsListsByTheirSections) {
    installBundle("Foo");
    addLaunchAgent("org.example.Foo", "Foo's agent");
    showPlan(application("Foo"));
    EXPECT_EQ(accessibleName(*rows(servicesSection).front()->parentItem()), "Services and Processes");
    EXPECT_EQ(accessibleName(*rows(filesSection).front()->parentItem()), "Files Found");
}

TEST_F(AppDetailViewTest, ARowsMenuComesByItsKeyAndByScreenReader) {
    addCache("org.example.Foo");
    showPlan(application("Foo"));
    QQuickItem& row = *rows(filesSection).front();
    const auto hasMenu = [this] { return !itemsOfType(*window->contentItem(), "PopupMenuItem").empty(); };
    row.forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Menu);
    waitUntil(hasMenu);
    press(Qt::Key_Escape);
    waitUntil([&] { return !hasMenu(); });
    EXPECT_TRUE(row.hasActiveFocus());
    QAccessible::queryAccessibleInterface(&row)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    waitUntil(hasMenu);
    EXPECT_TRUE(workspace.revealed().empty());
}

}  // namespace
}  // namespace orvane::test
