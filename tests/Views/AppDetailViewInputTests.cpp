#include <QtCore/QSet>
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

TEST_F(AppDetailViewTest, ThePointerOnARowAndTheScreenReaderTellWhyItIsThere) {
    addCache("org.example.Foo");
    showPlan(application("Foo"));
    const QString reason = "In “Library/Caches”, named after the identifier “org.example.Foo”";
    QQuickItem& row = *rows(filesSection).front();
    waitUntil([&] { return row.property("reason") == reason; });
    EXPECT_TRUE(accessibleDescription(row).endsWith(", " + reason));
    const QPoint place = row.mapToScene(QPointF(100, 10)).toPoint();
    QTest::mouseMove(window.get(), place);
    QTest::mouseMove(window.get(), place + QPoint(1, 1));
    waitUntil([&] { return textsIn(*window->contentItem()).contains(reason); });
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
    const auto focusedRow = [this] { return window->activeFocusItem()->property("index"); };
    rows(filesSection)[0]->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    EXPECT_EQ(focusedRow(), 19);
    layOut();
    EXPECT_LE(frameIn(*pane, *window->activeFocusItem()).bottom(), frame("actionBar").top());
    press(Qt::Key_Home);
    EXPECT_EQ(focusedRow(), 0);
}

TEST_F(AppDetailViewTest, MakesNoMoreRowsThanCanBeSeenOfTwoThousand) {
    constexpr int count = 2000;
    for (int i = 0; i < count; ++i) {
        const std::string name = std::to_string(count + i);
        addLaunchAgent("agent" + name, "Agent " + name);
    }
    showPlan(application("Foo"), {700, 500});
    constexpr std::size_t most = 35;
    QSet<int> seen;
    const auto look = [&] {
        layOut();
        EXPECT_LE(rows(servicesSection).size(), most);
        const QRectF visible(0, 0, 700, frame("actionBar").top());
        for (const QQuickItem* row : rows(servicesSection)) {
            const QRectF place = frameIn(*pane, *row);
            if (visible.intersects(place)) seen.insert(row->property("index").toInt());
            EXPECT_EQ(place.height(), 16 + 2 + 13 + 2 * 4);
        }
    };
    look();
    EXPECT_TRUE(seen.contains(0));
    const qreal step = 39 + 8;
    EXPECT_EQ(box(servicesSection).height(), 2 * 14 + count * step - 8);
    for (int page = 0; page < 4; ++page) {
        turnWheel({300, 300}, -120);
        look();
    }
    // All that has come by, and nothing left out.
    for (int i = 0; i < seen.size(); ++i) EXPECT_TRUE(seen.contains(i)) << i;
    EXPECT_GT(seen.size(), 30);

    rows(servicesSection)[0]->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    layOut();
    const QQuickItem& last = *window->activeFocusItem();
    EXPECT_EQ(last.property("index"), count - 1);
    EXPECT_EQ(frameIn(box(servicesSection), last).bottom(), box(servicesSection).height() - 14);
    EXPECT_LE(frameIn(*pane, last).bottom(), frame("actionBar").top());
    EXPECT_GE(frameIn(*pane, last).top(), 0);
    EXPECT_LE(rows(servicesSection).size(), most);
}

TEST_F(AppDetailViewTest, NamesItsListsByTheirSections) {
    installBundle("Foo");
    addLaunchAgent("org.example.Foo", "Foo's agent");
    showPlan(application("Foo"));
    EXPECT_EQ(accessibleName(*rows(servicesSection).front()->parentItem()->parentItem()),
              "Services and Processes");
    EXPECT_EQ(accessibleName(*rows(filesSection).front()->parentItem()->parentItem()), "Files Found");
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
