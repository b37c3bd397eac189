#include <QtCore/QEasingCurve>
#include <QtCore/QPointer>
#include <QtTest/QTest>
#include <algorithm>
#include <random>

#include "Views/SidebarModel.h"
#include "tests/Views/ControlTest.h"

namespace orvane::test {
namespace {

class ApplicationListViewTest : public ControlTest {
  protected:
    void open(const std::vector<InstalledApplication>& applications) {
        model.appear();
        load(applications);
        show("ApplicationList", {{"sidebar", QVariant::fromValue(&model)}, {"objectName", "list"}},
             {320, 500});
        item("list").forceActiveFocus();
        settle();
    }
    static std::vector<InstalledApplication> applications(int count) {
        std::vector<InstalledApplication> many;
        for (int i = 0; i < count; ++i) {
            many.push_back(application(QString("App %1").arg(i, 5, 10, QChar('0')).toStdString()));
            many.back().isInstalled = false;
        }
        return many;
    }
    /// Every row that exists, on the screen and near it, from top to bottom.
    std::vector<QQuickItem*> rows() {
        std::vector<QQuickItem*> rows;
        for (QQuickItem* child : item("list").property("contentItem").value<QQuickItem*>()->childItems())
            if (child->property("rowHeight").isValid()) rows.push_back(child);
        std::ranges::sort(rows, {}, [](const QQuickItem* row) { return row->y(); });
        return rows;
    }
    /// The row that shows this name; the test ends when there is none.
    QQuickItem& row(const QString& name) {
        for (QQuickItem* row : rows())
            if (row->property("name") == name) return *row;
        throw std::runtime_error("no row shows " + name.toStdString());
    }
    bool standsStill() {
        layOut();
        return std::ranges::none_of(rows(), [](const QQuickItem* row) {
            return row->property("isLeaving").toBool() || row->property("presence") != 1 ||
                   row->property("displacement") != 0;
        });
    }
    void settle() {
        waitUntil([this] { return standsStill(); });
    }
    int selectedRow() { return model.selectedRow(); }
    /// Whether the selected row has its place within the visible part.
    bool showsSelectedRow() {
        layOut();
        const qreal top = item("list").property("contentY").toReal();
        return std::ranges::any_of(rows(), [&](const QQuickItem* row) {
            return row->property("isSelected").toBool() && row->y() >= top &&
                   row->y() + row->height() <= top + 500;
        });
    }
    /// Rows without gaps, in the model's order, drawn whole and in their places.
    void expectOrder() {
        int expected = -1;
        qreal y = 0;
        for (const QQuickItem* row : rows()) {
            const int index = row->property("index").toInt();
            if (expected >= 0) {
                EXPECT_EQ(index, expected + 1);
                EXPECT_EQ(row->y(), y + 50);
            }
            EXPECT_EQ(row->property("name"), model.index(index).data(model.roleNames().key("name")));
            const QQuickItem& drawn = *row->childItems().front();
            EXPECT_EQ(drawn.position(), QPointF(0, 0));
            EXPECT_EQ(drawn.opacity(), 1);
            expected = index;
            y = row->y();
        }
    }

    SidebarModel model{services};
};

TEST_F(ApplicationListViewTest, SelectsWithTheArrowKeysAndStopsAtTheEnds) {
    open(applications(4));
    EXPECT_EQ(selectedRow(), 0);
    press(Qt::Key_Down);
    EXPECT_EQ(selectedRow(), 1);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(selectedRow(), 3);
    press(Qt::Key_Up);
    EXPECT_EQ(selectedRow(), 2);
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    EXPECT_EQ(selectedRow(), 0);
}

TEST_F(ApplicationListViewTest, SelectsAPageOnAndAtTheEnds) {
    open(applications(100));
    press(Qt::Key_End);
    EXPECT_EQ(selectedRow(), 99);
    waitUntil([this] { return showsSelectedRow(); });
    press(Qt::Key_PageUp);
    EXPECT_EQ(selectedRow(), 90);
    waitUntil([this] { return showsSelectedRow(); });
    press(Qt::Key_Home);
    EXPECT_EQ(selectedRow(), 0);
    waitUntil([this] { return showsSelectedRow(); });
    press(Qt::Key_PageDown);
    EXPECT_EQ(selectedRow(), 9);
    waitUntil([this] { return showsSelectedRow(); });
}

TEST_F(ApplicationListViewTest, SelectsWhatIsTyped) {
    open({application("Alpha"), application("Map new"), application("Mapnew"), application("Mail")});
    type("map");
    EXPECT_EQ(selectedRow(), 1);
    type("n");
    EXPECT_EQ(selectedRow(), 2);
    waitUntil([this] { return item("list").property("typed") == ""; });
    type(" ");
    EXPECT_EQ(item("list").property("typed"), "");
    type("map n");
    EXPECT_EQ(selectedRow(), 1);
    type("zzz");
    EXPECT_EQ(selectedRow(), 1);
    waitUntil([this] { return item("list").property("typed") == ""; });
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Backspace);
    press(Qt::Key_Delete);
    press(Qt::Key_Return);
    EXPECT_EQ(item("list").property("typed"), "");
}

TEST_F(ApplicationListViewTest, GoesOnWhileAnArrowIsHeld) {
    open(applications(10));
    hold(Qt::Key_Down, Repetition::press);
    EXPECT_EQ(selectedRow(), 6);
}

TEST_F(ApplicationListViewTest, LetsTheKeysBeWithoutRows) {
    open({});
    for (const Qt::Key key :
         {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End})
        press(key);
    EXPECT_EQ(selectedRow(), -1);
}

TEST_F(ApplicationListViewTest, GivesTheKeyboardToTheSelectedRow) {
    open(applications(5));
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    layOut();
    const QQuickItem* const focused = window->activeFocusItem();
    ASSERT_TRUE(focused);
    EXPECT_EQ(focused->property("index").toInt(), 2);
}

TEST_F(ApplicationListViewTest, DimsAnEntryThatIsNotInstalled) {
    InstalledApplication gone = application("Gone");
    gone.isInstalled = false;
    open({application("Here"), gone});
    EXPECT_NEAR(item("list").property("opacity").toReal(), 1, 0.001);
    for (const auto& [name, opacity] : {std::pair("Here", 1.0), std::pair("Gone", 0.62)}) {
        EXPECT_EQ(textItem(row(name), name).parentItem()->parentItem()->opacity(), opacity) << name;
        EXPECT_EQ(itemsOfType(row(name), "QQuickImage").front()->opacity(), opacity) << name;
    }
}

TEST_F(ApplicationListViewTest, MovesItsRowsAlongOneCurve) {
    open({application("Alpha")});
    int curves = 0;
    for (const QObject* animation : row("Alpha").findChildren<QObject*>()) {
        if (!animation->inherits("QQuickNumberAnimation")) continue;
        ++curves;
        EXPECT_EQ(animation->property("duration"), 450);
        EXPECT_EQ(animation->property("easing").value<QEasingCurve>().type(), QEasingCurve::InOutQuad);
    }
    EXPECT_EQ(curves, 4);
}

TEST_F(ApplicationListViewTest, FadesARowInWhileOthersMakeRoom) {
    open({application("Alpha"), application("Gamma")});
    installBundle("Beta");
    complete(library->scan());
    layOut();
    const auto all = rows();
    ASSERT_EQ(all.size(), 3U);
    EXPECT_LT(all.at(1)->property("presence").toReal(), 1);
    EXPECT_EQ(all.at(1)->property("displacement"), 0);
    EXPECT_EQ(all.at(2)->y(), all.at(1)->y() + 50);
    EXPECT_LT(all.at(2)->property("displacement").toReal(), 0);
    EXPECT_EQ(all.at(0)->property("displacement"), 0);
    settle();
    expectOrder();
}

TEST_F(ApplicationListViewTest, SlidesARowOutWhileOthersCloseTheGap) {
    open({application("Alpha"), application("Beta"), application("Gamma")});
    library->setSearchText("a");
    settle();
    library->setSearchText("gamma");
    layOut();
    ASSERT_EQ(rows().size(), 3U);
    const QQuickItem& alpha = row("Alpha");
    EXPECT_TRUE(alpha.property("isLeaving").toBool());
    EXPECT_TRUE(row("Beta").property("isLeaving").toBool());
    EXPECT_GT(row("Gamma").property("displacement").toReal(), 50);
    EXPECT_EQ(row("Gamma").y(), 0);
    const QPointer<const QQuickItem> drawn = alpha.childItems().front();
    waitUntil([&] { return !drawn || (drawn->x() < 0 && drawn->opacity() < 1); });
    EXPECT_TRUE(drawn) << "it left at once";
    waitUntil([this] { return rows().size() == 1; });
    settle();
    expectOrder();
}

TEST_F(ApplicationListViewTest, MovesNothingWhenARowsFactsChange) {
    open({application("Alpha"), application("Beta")});
    removeBundle("Alpha");
    complete(library->updateSavedAvailability());
    layOut();
    EXPECT_TRUE(standsStill());
    EXPECT_EQ(rows().at(0)->property("caption"), "Not installed");
}

TEST_F(ApplicationListViewTest, StandsRightAfterManyChangesInQuickSuccession) {
    open(applications(60));
    std::mt19937 random(7);
    for (int round = 0; round < 40; ++round) {
        library->setSearchText(std::to_string(random() % 60));
        if (round % 3 == 0) press(random() % 2 == 0 ? Qt::Key_Down : Qt::Key_End);
        if (round % 2 == 0) layOut();
        QTest::qWait(static_cast<int>(random() % 20));
    }
    library->setSearchText("");
    settle();
    expectOrder();
    EXPECT_GE(rows().size(), 10U);
}

TEST_F(ApplicationListViewTest, MakesNoMoreRowsThanCanBeSeenOfTenThousand) {
    open(applications(10'000));
    const std::size_t most = 100;
    EXPECT_LE(rows().size(), most);
    press(Qt::Key_End);
    waitUntil([this] { return showsSelectedRow(); });
    EXPECT_LE(rows().size(), most);
    library->setSearchText("7");
    layOut();
    EXPECT_LE(rows().size(), 2 * most);
    library->setSearchText("");
    layOut();
    EXPECT_LE(rows().size(), 2 * most);
    settle();
    EXPECT_LE(rows().size(), most);
    waitUntil([this] { return showsSelectedRow(); });
    expectOrder();
}

TEST_F(ApplicationListViewTest, ShowsTheSelectionOfALibraryThatHasJustLoaded) {
    open(applications(40));
    library->setSelectedApplicationID(library->applications().at(1).id());
    waitUntil([this] { return showsSelectedRow(); });
    EXPECT_EQ(item("list").property("contentY").toReal(), item("list").property("originY").toReal() - 6);
}

TEST_F(ApplicationListViewTest, StaysAtItsTopWhenARowComesAboveAll) {
    open(applications(40));
    installBundle("Aardvark");
    complete(library->scan());
    settle();
    EXPECT_EQ(rows().front()->property("name"), "Aardvark");
    EXPECT_EQ(item("list").property("contentY").toReal(), rows().front()->y() - 6);
    expectOrder();
}

TEST_F(ApplicationListViewTest, IsThereAtOnceForThoseWhoWishLessMotion) {
    theme().setProperty("reducesMotion", true);
    open(applications(10));
    library->setSearchText("9");
    EXPECT_TRUE(standsStill());
    EXPECT_EQ(rows().size(), 1U);
}

}  // namespace
}  // namespace orvane::test
