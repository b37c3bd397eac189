#include <QtGui/QGuiApplication>

#include "tests/Views/RemovalReviewViewFixture.h"

namespace orvane::test {
namespace {

TEST_F(RemovalReviewViewTest, StandsAtItsMeasures) {
    installBundle("Foo");
    open();
    const QQuickItem& sheet = content("reviewSheet");
    EXPECT_EQ(sheet.size(), QSizeF(720, 590));
    EXPECT_EQ(sheet.mapToScene(QPointF()).x(), (980 - 720) / 2);
    EXPECT_EQ(frameInSheet(*itemsOfType(sheet, "QQuickImage").front()), QRectF(20, 20, 52, 52));
    const QRectF title = frameInSheet(textItem(sheet, "Uninstall Foo?"));
    EXPECT_EQ(title.left(), 20 + 52 + 14);
    const QRectF advice =
        frameInSheet(textItem(sheet, "Selected files will be moved to Trash. Review the list carefully."));
    EXPECT_EQ(advice.top() - title.bottom(), 3);
    const qreal header = 52 + 2 * 20;
    const qreal footer = 22 + 2 * 16;
    EXPECT_EQ(frameInSheet("reviewList"), QRectF(0, header + 1, 720, 590 - header - footer - 2));
}

TEST_F(RemovalReviewViewTest, ButtonsStandInTheFooter) {
    installBundle("Foo");
    open();
    EXPECT_EQ(frameInSheet("selectAllButton").left(), 16);
    const QRectF cancel = frameInSheet("cancelButton");
    const QRectF deletion = frameInSheet("deletePermanentlyButton");
    const QRectF trash = frameInSheet("moveToTrashButton");
    EXPECT_EQ(trash.right(), 720 - 16);
    EXPECT_EQ(trash.left() - deletion.right(), 8);
    EXPECT_EQ(deletion.left() - cancel.right(), 8);
    for (const QRectF& button : {frameInSheet("selectAllButton"), cancel, deletion, trash}) {
        EXPECT_EQ(button.bottom(), 590 - 16);
        EXPECT_EQ(button.height(), 22);
    }
    EXPECT_EQ(item("deletePermanentlyButton").property("symbol"), "trash.slash");
    EXPECT_TRUE(item("deletePermanentlyButton").property("isDestructive").toBool());
    EXPECT_EQ(item("moveToTrashButton").property("symbol"), "trash");
    EXPECT_TRUE(item("moveToTrashButton").property("isProminent").toBool());
}

TEST_F(RemovalReviewViewTest, ProgressHasRoomBesideTheButtons) {
    installBundle("Foo");
    open();
    holdPool();
    deletePermanently();
    layOut();
    const QRectF progress = frameInSheet("removalProgress");
    EXPECT_GE(progress.left(), frameInSheet("selectAllButton").right() + 8);
    EXPECT_EQ(progress.right(), frameInSheet("cancelButton").left() - 8);
}

/// The sheet in one of several fonts.
class ReviewFooterFontTest : public RemovalReviewViewTest, public testing::WithParamInterface<const char*> {
  protected:
    ReviewFooterFontTest() {
        QFont font = before_;
        font.setFamilies({GetParam()});
        QGuiApplication::setFont(font);
    }
    ~ReviewFooterFontTest() override { QGuiApplication::setFont(before_); }

  private:
    const QFont before_ = QGuiApplication::font();
};

TEST_P(ReviewFooterFontTest, NothingOverlapsOrIsCutShort) {
    installBundle("Foo");
    open();
    const qreal footer = 16 + 22 + 16;
    EXPECT_EQ(frameInSheet("reviewList").bottom(), 590 - footer - 1);
    holdPool();
    deletePermanently();
    layOut();
    const QRectF progress = frameInSheet("removalProgress");
    const QRectF cancel = frameInSheet("cancelButton");
    const QQuickItem& text = *itemsOfType(item("removalProgress"), "PlainText").back();
    EXPECT_EQ(text.property("font").value<QFont>().family(), GetParam());
    EXPECT_GE(text.width(), text.implicitWidth());
    // It has a line of its own where there is no room for it between the buttons.
    if (GetParam() == std::string("DejaVu Sans")) {
        EXPECT_EQ(progress.right(), 720 - 16);
        EXPECT_EQ(progress.bottom() + 8, cancel.top());
        EXPECT_EQ(frameInSheet("reviewList").bottom() + 1 + 16, progress.top());
    } else {
        EXPECT_EQ(progress.right(), cancel.left() - 8);
        EXPECT_EQ(progress.center().y(), cancel.center().y());
        EXPECT_GE(progress.left(), frameInSheet("selectAllButton").right() + 8);
    }
    qreal edge = 16 - 8;
    for (const char* part :
         {"selectAllButton", "cancelButton", "deletePermanentlyButton", "moveToTrashButton"}) {
        const QRectF frame = frameInSheet(part);
        EXPECT_EQ(frame.bottom(), 590 - 16) << part;
        EXPECT_GE(frame.left(), edge + 8) << part;
        EXPECT_GT(frame.width(), 40) << part;
        EXPECT_GE(frame.right(), frameInSheet(*itemsOfType(item(part), "PlainText").back()).right());
        edge = frame.right();
    }
    EXPECT_EQ(edge, 720 - 16);
}

INSTANTIATE_TEST_SUITE_P(Fonts, ReviewFooterFontTest,
                         testing::Values("Inter", "DejaVu Sans", "Noto Sans", "Noto Sans CJK JP"));

TEST_F(RemovalReviewViewTest, ReviewRowsStandAtTheirMeasures) {
    installBundle("Foo");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    open();
    const QQuickItem& row = *rows()[0];
    EXPECT_EQ(frameInSheet(row).left(), 18);
    EXPECT_EQ(frameInSheet(row).right(), 720 - 18);
    EXPECT_EQ(frameInSheet(row).top(), frameInSheet("reviewList").top() + 8);
    EXPECT_EQ(row.height(), 16 + 3 + 13 + 2 * 4);
    EXPECT_EQ(rows()[1]->y() - row.y(), row.height());
    EXPECT_EQ(frameIn(row, textItem(row, "Application")).topLeft(), QPointF(14 + 10 + 24 + 10, 4));
    const auto symbol = [](const QQuickItem& of) {
        return itemsOfType(*itemsOfType(of, "ReviewItemLabel").front(), "orvane::Symbol").front();
    };
    EXPECT_EQ(frameIn(row, *symbol(row)).center().x(), 14 + 10 + 12);
    EXPECT_EQ(symbol(row)->property("color").value<QColor>(), QColor("#007aff"));
    EXPECT_EQ(symbol(*rows()[1])->property("color").value<QColor>(), QColor("#ff9500"));
    const QQuickItem& size = *itemsOfType(row, "TabularText").front();
    EXPECT_EQ(frameInSheet(size).right(), 720 - 18);
}

TEST_F(RemovalReviewViewTest, LeavesAirBetweenAKindAndItsPath) {
    installBundle("Foo");
    open();
    const auto baseline = [this](const QString& text) {
        const QQuickItem& line = textItem(*rows()[0], text);
        return frameInSheet(line).top() + line.property("baselineOffset").toReal();
    };
    EXPECT_NEAR(baseline("/Applications/Foo.app") - baseline("Application"), 16 + 3 - 3 + 1, 0.2);
}

TEST_F(RemovalReviewViewTest, AnyPathStaysOnItsLine) {
    addContainer("Foo\n" + std::string(200, 'x') + "<b>bold</b>");
    open();
    const QQuickItem& path = *itemsOfType(*rows()[0], "OneLineText").front();
    EXPECT_EQ(path.property("lineCount"), 1);
    EXPECT_TRUE(path.property("truncated").toBool());
    EXPECT_EQ(path.property("elide").toInt(), Qt::ElideMiddle);
    EXPECT_EQ(rows()[0]->height(), 16 + 3 + 13 + 2 * 4);
}

TEST_F(RemovalReviewViewTest, ScrollsToTheRowThatTheKeyboardIsWith) {
    for (int i = 0; i < 30; ++i) addContainer("Foo " + std::to_string(i));
    open();
    for (int i = 0; i < 29; ++i) press(Qt::Key_Down);
    waitUntil([this] {
        layOut();
        return frameInSheet("reviewList").contains(frameInSheet(*window->activeFocusItem()));
    });
    EXPECT_EQ(window->activeFocusItem()->property("index"), 29);
    turnWheel({490, 350}, 1500);
    const QQuickItem& list = item("reviewList");
    EXPECT_EQ(list.property("contentY").toReal(), list.property("originY").toReal() - 8);
}

TEST_F(RemovalReviewViewTest, GoesByPagesAndToTheEndsOfTheList) {
    for (int i = 0; i < 30; ++i) addContainer("Foo " + std::to_string(i));
    open();
    const auto row = [this] { return window->activeFocusItem()->property("index").toInt(); };
    press(Qt::Key_End);
    EXPECT_EQ(row(), 29);
    EXPECT_TRUE(window->activeFocusItem()->property("visualFocus").toBool());
    waitUntil([this] {
        layOut();
        return frameInSheet("reviewList").contains(frameInSheet(*window->activeFocusItem()));
    });
    press(Qt::Key_PageUp);
    // One row stays in sight.
    const int page = static_cast<int>(item("reviewList").height() / rows()[0]->height()) - 1;
    EXPECT_EQ(row(), 29 - page);
    press(Qt::Key_Home);
    EXPECT_EQ(row(), 0);
    press(Qt::Key_PageDown);
    EXPECT_EQ(row(), page);
    press(Qt::Key_Space);
    EXPECT_FALSE(
        review().items()->index(page, 0).data(review().items()->roleNames().key("isSelected")).toBool());
}

TEST_F(RemovalReviewViewTest, GoesToTheEndsOfALongList) {
    for (int i = 0; i < 100; ++i) addContainer("Foo " + std::to_string(i));
    open();
    for (const auto& [key, row] : {std::pair(Qt::Key_End, 99), std::pair(Qt::Key_Home, 0)}) {
        press(key);
        EXPECT_EQ(window->activeFocusItem()->property("index"), row);
        waitUntil([this] {
            layOut();
            return frameInSheet("reviewList").contains(frameInSheet(*window->activeFocusItem()));
        });
    }
}

TEST_F(RemovalReviewViewTest, KeepsATitleOfAnyLengthOnItsLine) {
    InstalledApplication odd = application("Foo");
    odd.name = "a\n" + std::string(10'000, 'x');
    showPlan(odd, {980, 700});
    reopen();
    const QQuickItem& title = *itemsOfType(content("reviewSheet"), "OneLineText").front();
    EXPECT_EQ(title.property("lineCount"), 1);
    EXPECT_TRUE(title.property("truncated").toBool());
    EXPECT_EQ(frameInSheet(title).right(), 720 - 20);
}

TEST_F(RemovalReviewViewTest, DrawsTheSheetOnWholePixels) {
    installBundle("Foo");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    open();
    for (const char* type : {"orvane::Symbol", "QQuickImage", "PushButton", "ReviewItemRow"}) {
        for (const QQuickItem* drawn : itemsOfType(content("reviewSheet"), type)) {
            const QRectF where = frameInSheet(*drawn);
            EXPECT_EQ(where, QRectF(where.toRect())) << type;
        }
    }
}

}  // namespace
}  // namespace orvane::test
