#include <QtGui/QAccessible>
#include <QtTest/QTest>

#include "tests/Views/RemovalReviewViewFixture.h"
#include "tests/Views/Styles.h"

namespace orvane::test {
namespace {

QAccessible::Role accessibleRole(QObject& object) {
    return QAccessible::queryAccessibleInterface(&object)->role();
}

TEST_F(RemovalReviewViewTest, WritesEveryTextInItsStyleAndMarksItWithItsSymbol) {
    installBundle("Foo");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    open();
    const QQuickItem& sheet = content("reviewSheet");
    EXPECT_EQ(styleOf(sheet, "Uninstall Foo?"), "17 bold label");
    EXPECT_EQ(styleOf(sheet, "Selected files will be moved to Trash. Review the list carefully."),
              "13 regular secondary");
    EXPECT_EQ(styleOf(sheet, "Launch Daemon"), "13 medium label");
    EXPECT_EQ(styleOf(sheet, "Permission required"), "10 regular orange");
    EXPECT_EQ(styleOf(sheet, "/Applications/Foo.app"), "10 regular secondary");
    EXPECT_EQ(styleOf(sheet, "Delete Permanently"), "13 regular red");
    EXPECT_EQ(styleOf(sheet, "Move Selected to Trash"), "13 regular white");
    for (const QQuickItem* size : itemsOfType(sheet, "TabularText")) {
        EXPECT_EQ(size->property("font").value<QFont>().pixelSize(), 10);
        EXPECT_EQ(size->property("color").value<QColor>(), QColor("#80000000"));
    }
    EXPECT_EQ(symbolsIn(sheet), (QStringList{"app.fill blue", "lock.fill orange", "server.rack orange",
                                             "tick white", "tick white", "trash white", "trash.slash red"}));
}

TEST_F(RemovalReviewViewTest, FitsItsHeaderIntoItsPlace) {
    installBundle("Foo");
    open();
    const QQuickItem& icon = *itemsOfType(content("reviewSheet"), "QQuickImage").front();
    EXPECT_EQ(icon.property("sourceSize").toSize(), QSize(52, 52));
    // PreserveAspectFit.
    EXPECT_EQ(icon.property("fillMode").toInt(), 1);
    const QQuickItem& advice =
        textItem(content("reviewSheet"), "Selected files will be moved to Trash. Review the list carefully.");
    EXPECT_EQ(advice.property("elide").toInt(), Qt::ElideRight);
}

TEST_F(RemovalReviewViewTest, ShowsItsListOnTheColourOfLists) {
    installBundle("Foo");
    open();
    const QQuickItem& list = item("reviewList");
    const QQuickItem& ground = *itemsOfType(*list.parentItem(), "QQuickRectangle").front();
    EXPECT_EQ(ground.property("color").value<QColor>(), QColor(Qt::white));
    EXPECT_EQ(frameInSheet(ground), frameInSheet(list));
    EXPECT_TRUE(list.clip());
    // It goes by the wheel, the bar and the keys; a row is never dragged away from below the pointer.
    EXPECT_FALSE(list.property("interactive").toBool());
}

TEST_F(RemovalReviewViewTest, SetsWhatARowSaysAroundItsMiddle) {
    installBundle("Foo");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    open();
    const QQuickItem& row = *rows()[1];
    const QQuickItem& label = *itemsOfType(row, "ReviewItemLabel").front();
    const QQuickItem& symbol = *itemsOfType(label, "orvane::Symbol").front();
    EXPECT_EQ(symbol.size(), QSizeF(13 + 1, 13 + 1));
    EXPECT_EQ(frameIn(row, symbol).center().y(), row.height() / 2);
    const QRectF kind = frameIn(row, textItem(row, "Launch Daemon"));
    const QRectF lock = frameIn(row, *itemsOfType(row, "SymbolLabel").front());
    EXPECT_EQ(lock.left(), kind.right() + 8);
    EXPECT_NEAR(lock.center().y(), kind.center().y(), 0.5);
    const QRectF path = frameIn(row, textItem(row, "/Library/LaunchDaemons/org.example.Foo.plist"));
    const QRectF size = frameIn(row, *itemsOfType(row, "TabularText").front());
    EXPECT_EQ(path.right(), size.left() - 10);
    EXPECT_NEAR(size.center().y(), row.height() / 2, 0.5);
}

TEST_F(RemovalReviewViewTest, FadesItsRowsAndSaysSoWhileARemovalRuns) {
    installBundle("Foo");
    addContainer("Foo A");
    open();
    const auto looks = [this](double opacity, bool isDimmed) {
        for (QQuickItem* row : rows()) {
            EXPECT_EQ(itemsOfType(*row, "ReviewItemLabel").front()->opacity(), opacity);
            EXPECT_EQ(row->property("indicator").value<QQuickItem*>()->opacity(), opacity);
            EXPECT_EQ(accessibleDescription(*row).endsWith(", dimmed"), isDimmed);
        }
    };
    looks(1, false);
    holdPool();
    click(item("moveToTrashButton"));
    layOut();
    looks(0.4, true);
    const QQuickItem& progress = item("removalProgress");
    EXPECT_EQ(styleOf(progress, "Moving to Trash…"), "13 regular secondary");
    const QRectF spinner = frameIn(progress, *itemsOfType(progress, "Spinner").front());
    const QRectF text = frameIn(progress, textItem(progress, "Moving to Trash…"));
    EXPECT_EQ(text.left(), spinner.right() + 5);
    EXPECT_EQ(text.center().y(), spinner.center().y());
    releasePool();
    EXPECT_EQ(awaitResult(), "Moved 2 item(s) to Trash.");
}

TEST_F(RemovalReviewViewTest, LeavesAirBelowItsLastRow) {
    for (int i = 0; i < 30; ++i) addContainer("Foo " + std::to_string(i));
    open();
    turnWheel({490, 350}, -6000);
    layOut();
    const auto all = rows();
    const QQuickItem& last =
        **std::ranges::max_element(all, {}, [](const QQuickItem* row) { return row->y(); });
    EXPECT_EQ(last.property("index"), 29);
    EXPECT_EQ(frameInSheet(last).bottom(), frameInSheet("reviewList").bottom() - 8);
}

TEST_F(RemovalReviewViewTest, IsReadAloudAsAListBelowAHeading) {
    installBundle("Foo");
    open();
    EXPECT_EQ(accessibleRole(textItem(content("reviewSheet"), "Uninstall Foo?")), QAccessible::Heading);
    EXPECT_EQ(accessibleRole(item("reviewList")), QAccessible::List);
    EXPECT_EQ(accessibleName(item("reviewList")), "Uninstall Foo?");
    EXPECT_EQ(accessibleRole(*rows()[0]), QAccessible::CheckBox);
    const QString size = rows()[0]->property("sizeText").toString();
    EXPECT_TRUE(size.endsWith(" KB"));
    EXPECT_TRUE(accessibleDescription(*rows()[0]).startsWith(size));
}

TEST_F(RemovalReviewViewTest, ATipGoesAsTheButtonOfTheMouseGoesDown) {
    installBundle("Foo");
    open();
    const QQuickItem& row = *rows()[0];
    const QPoint place = row.mapToScene(QPointF(100, 10)).toPoint();
    const auto isPointedAt = [&] { return row.property("helpItem").value<QQuickItem*>() == &row; };
    QTest::mouseMove(window.get(), place);
    QTest::mouseMove(window.get(), place + QPoint(1, 1));
    EXPECT_TRUE(isPointedAt());
    QTest::mousePress(window.get(), Qt::LeftButton, {}, place);
    EXPECT_FALSE(isPointedAt());
    QTest::mouseRelease(window.get(), Qt::LeftButton, {}, place);
    EXPECT_TRUE(isPointedAt());
}

}  // namespace
}  // namespace orvane::test
