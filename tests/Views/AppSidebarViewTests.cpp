#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include "Views/SidebarModel.h"
#include "tests/Views/ControlTest.h"

namespace orvane::test {
namespace {

class AppSidebarViewTest : public ControlTest {
  protected:
    QQuickItem& open(const std::vector<InstalledApplication>& applications, QSize size = {320, 700}) {
        load(applications);
        QQuickItem& sidebar = show("AppSidebar", {{"model", QVariant::fromValue(&model)}}, size);
        settle();
        return sidebar;
    }
    /// The rows stand still.
    void settle() {
        waitUntil([this] {
            layOut();
            for (const QQuickItem* row : rows())
                if (row->property("presence") != 1 || row->property("displacement") != 0) return false;
            return true;
        });
    }
    std::vector<QQuickItem*> rows() {
        std::vector<QQuickItem*> rows = itemsOfType(*window->contentItem(), "AppRow");
        std::ranges::sort(rows, {}, [](const QQuickItem* row) { return row->y(); });
        return rows;
    }
    QQuickItem& rowOf(const QString& name) {
        for (QQuickItem* row : rows())
            if (row->property("name") == name) return *row;
        throw std::runtime_error("no row of " + name.toStdString());
    }
    QRectF frame(const QQuickItem& item) { return frameIn(*window->contentItem(), item); }
    static bool isSelected(const QQuickItem& row) { return row.property("isSelected").toBool(); }
    QString selectedName() {
        for (const QQuickItem* row : rows())
            if (isSelected(*row)) return row->property("name").toString();
        return {};
    }

    SidebarModel model{services};
};

TEST_F(AppSidebarViewTest, LaysOutItsHeader) {
    open({application("Foo")});
    const QRectF icon = frame(item("sidebarIcon"));
    const QRectF titles = frame(item("sidebarTitles"));
    const QRectF field = frame(item("searchField"));
    EXPECT_EQ(icon, QRectF(16, 16, 38, 38));
    EXPECT_EQ(titles.left(), icon.right() + 10);
    EXPECT_EQ(titles.center().y(), icon.center().y() + 0.5);
    EXPECT_EQ(field, QRectF(16, icon.bottom() + 12, 320 - 32, 24));
    EXPECT_EQ(frame(item("applicationList")).top(), field.bottom() + 16 + 1);
    const QStringList texts = textsIn(item("sidebarTitles"));
    EXPECT_EQ(texts, (QStringList{"Orvane", "Application uninstaller"}));
}

TEST_F(AppSidebarViewTest, LaysOutItsFooter) {
    const QQuickItem& sidebar = open({application("Foo")});
    const QRectF count = frame(item("applicationCount"));
    const QRectF rescan = frame(item("rescanButton"));
    EXPECT_EQ(count.left(), 12);
    EXPECT_EQ(rescan.right(), sidebar.width() - 12);
    EXPECT_EQ(rescan.bottom(), sidebar.height() - 12);
    EXPECT_EQ(frame(item("aboutButton")).center().y(), rescan.center().y());
    EXPECT_LT(frame(item("aboutButton")).right(), rescan.left());
    EXPECT_EQ(frame(item("applicationList")).bottom(), rescan.top() - 12 - 1);
}

TEST_F(AppSidebarViewTest, LaysOutARow) {
    InstalledApplication system = application("Mail");
    system.isSystemApplication = true;
    open({system});
    QQuickItem& row = rowOf("Mail");
    EXPECT_EQ(row.x(), 10);
    EXPECT_EQ(row.width(), 300);
    EXPECT_EQ(row.height(), 50);
    const QQuickItem& icon = *itemsOfType(row, "QQuickImage").at(0);
    EXPECT_EQ(frameIn(row, icon), QRectF(8, 8, 34, 34));
    const QRectF name = frameIn(row, textItem(row, "Mail"));
    const QRectF caption = frameIn(row, textItem(row, "Version 1.0 • 12.3 MB"));
    const QRectF lock = frameIn(row, *itemsOfType(row, "orvane::Symbol").at(0));
    EXPECT_EQ(name.left(), 8 + 34 + 10);
    EXPECT_EQ(caption.left(), name.left());
    EXPECT_EQ(caption.top() - name.bottom(), 3);
    EXPECT_EQ(name.top(), 50 - caption.bottom());
    EXPECT_EQ(lock.left() - name.right(), 5);
    EXPECT_EQ(textItem(row, "Mail").property("font").value<QFont>().weight(), QFont::Medium);
}

TEST_F(AppSidebarViewTest, LeavesAirBetweenNameAndCaption) {
    open({application("Mail")});
    const auto baseline = [this](const QString& text) {
        const QQuickItem& line = textItem(rowOf("Mail"), text);
        return frame(line).top() + line.property("baselineOffset").toReal();
    };
    EXPECT_NEAR(baseline("Version 1.0 • 12.3 MB") - baseline("Mail"), 16 + 3 - 3 + 1.5, 0.2);
}

TEST_F(AppSidebarViewTest, SetsNoPictureBetweenPixels) {
    InstalledApplication system = application("Mailed to you");
    system.isSystemApplication = true;
    open({application("Foo"), system}, {321, 700});
    for (const char* type : {"orvane::Symbol", "QQuickImage"}) {
        for (const QQuickItem* picture : itemsOfType(*window->contentItem(), type))
            EXPECT_EQ(frame(*picture), QRectF(frame(*picture).toRect())) << type;
    }
}

TEST_F(AppSidebarViewTest, ShowsALockForSystemApplicationsOnly) {
    InstalledApplication system = application("Mail");
    system.isSystemApplication = true;
    open({application("Foo"), system});
    EXPECT_TRUE(itemsOfType(rowOf("Foo"), "orvane::Symbol").empty());
    EXPECT_EQ(itemsOfType(rowOf("Mail"), "orvane::Symbol").at(0)->property("name"), "lock.fill");
}

TEST_F(AppSidebarViewTest, DimsWhatIsNoLongerInstalled) {
    theme().setProperty("appearance", "light");
    InstalledApplication gone = application("Gone");
    gone.isInstalled = false;
    open({application("Foo"), gone});
    QQuickItem& row = rowOf("Gone");
    EXPECT_EQ(textsIn(row), (QStringList{"Gone", "Not installed"}));
    const QQuickItem& caption = textItem(row, "Not installed");
    EXPECT_EQ(caption.property("color").value<QColor>(), QColor("#ff3b30"));
    EXPECT_EQ(caption.parentItem()->opacity(), 0.62);
    EXPECT_EQ(itemsOfType(row, "QQuickImage").at(0)->opacity(), 0.62);
    EXPECT_EQ(textItem(rowOf("Foo"), "Foo").parentItem()->parentItem()->opacity(), 1);
}

TEST_F(AppSidebarViewTest, ShowsTheFileWhereThereIsNoName) {
    InstalledApplication nameless = application("Foo");
    nameless.name = "";
    nameless.isSystemApplication = true;
    open({application("Bar"), nameless});
    QQuickItem& row = rowOf("");
    EXPECT_EQ(textsIn(row).first(), "Foo.app");
    EXPECT_EQ(textItem(row, "Foo.app").property("color").value<QColor>().alphaF(),
              theme().property("tertiary").value<QColor>().alphaF());
    EXPECT_TRUE(accessibleName(row).startsWith("Foo.app, "));
}

TEST_F(AppSidebarViewTest, ShowsANameAsItIsOnOneLine) {
    const QString name = "<b>Two</b>\nlines & more";
    InstalledApplication odd = application("Odd");
    odd.name = name.toStdString();
    open({odd});
    const QQuickItem& text = textItem(rowOf(name), "<b>Two</b> lines & more");
    EXPECT_EQ(text.height(), 16);
    EXPECT_EQ(text.property("truncated"), false);
}

TEST_F(AppSidebarViewTest, CutsALongNameShortBeforeTheLock) {
    InstalledApplication system = application(std::string(80, 'M'));
    system.isSystemApplication = true;
    open({system});
    QQuickItem& row = *rows().at(0);
    const QRectF lock = frameIn(row, *itemsOfType(row, "orvane::Symbol").at(0));
    EXPECT_EQ(lock.right(), row.width() - 8);
    EXPECT_EQ(textItem(row, QString(80, 'M')).property("truncated"), true);
}

TEST_F(AppSidebarViewTest, TellsAScreenReaderNameAndCaption) {
    open({application("Foo")});
    EXPECT_EQ(accessibleName(rowOf("Foo")), "Foo, Version 1.0 • 12.3 MB");
    EXPECT_EQ(accessibleName(item("applicationList")), "Applications");
    EXPECT_EQ(accessibleName(item("rescanButton")), "Rescan applications");
    EXPECT_EQ(accessibleName(item("aboutButton")), "About Orvane");
    EXPECT_EQ(accessibleName(item("searchField")), "Search applications");
}

TEST_F(AppSidebarViewTest, SelectsByPointerAndScreenReader) {
    open({application("Foo"), application("Goo"), application("Hoo")});
    click(rowOf("Goo"));
    EXPECT_EQ(selectedName(), "Goo");
    turn();
    EXPECT_EQ(library->selectedApplicationID(), listed("Goo").id());
    EXPECT_TRUE(pressForScreenReader(rowOf("Hoo")));
    EXPECT_EQ(selectedName(), "Hoo");
}

TEST_F(AppSidebarViewTest, ShowsASelectionOfTheLibrary) {
    open({application("Foo"), application("Goo")});
    library->setSelectedApplicationID(listed("Goo").id());
    EXPECT_EQ(selectedName(), "Goo");
    library->setSelectedApplicationID(std::nullopt);
    EXPECT_EQ(selectedName(), "");
}

TEST_F(AppSidebarViewTest, PalesTheSelectionWithoutTheKeyboard) {
    theme().setProperty("appearance", "light");
    open({application("Foo"), application("Goo")});
    click(rowOf("Foo"));
    const auto fill = [this] {
        return itemsOfType(rowOf("Foo"), "orvane::PixelRectangle").at(0)->property("color").value<QColor>();
    };
    const auto ink = [this] { return textItem(rowOf("Foo"), "Foo").property("color").value<QColor>(); };
    EXPECT_EQ(fill(), QColor("#007aff"));
    EXPECT_EQ(ink(), QColor("#ffffff"));
    item("searchField").forceActiveFocus();
    EXPECT_EQ(fill(), QColor("#dcdcde"));
    EXPECT_EQ(ink(), theme().property("label").value<QColor>());
}

TEST_F(AppSidebarViewTest, WritesOnTheSelectionInShadesOfWhite) {
    InstalledApplication nameless = application("Foo");
    nameless.name = "";
    open({nameless, application("Goo")});
    const auto ink = [this](const QString& row, const QString& text) {
        return textItem(rowOf(row), text).property("color").value<QColor>();
    };
    click(rowOf(""));
    EXPECT_EQ(QColor(ink("", "Foo.app").rgb()), Qt::white);
    EXPECT_NEAR(ink("", "Foo.app").alphaF(), 0.6, 0.005);
    click(rowOf("Goo"));
    EXPECT_EQ(QColor(ink("Goo", "Version 1.0 • 12.3 MB").rgb()), Qt::white);
    EXPECT_NEAR(ink("Goo", "Version 1.0 • 12.3 MB").alphaF(), 0.8, 0.005);
    EXPECT_EQ(itemsOfType(rowOf("Goo"), "orvane::PixelRectangle").at(0)->property("radius"), 6);
}

TEST_F(AppSidebarViewTest, AsksForPicturesInTheSizeThatTheyAreShownIn) {
    open({application("Foo")});
    const auto pictures = itemsOfType(*window->contentItem(), "QQuickImage");
    EXPECT_EQ(pictures.size(), 2U);
    for (const QQuickItem* picture : pictures)
        EXPECT_EQ(picture->property("sourceSize").toSize(), picture->size().toSize());
}

TEST_F(AppSidebarViewTest, SearchesWithEveryKeystroke) {
    open({application("Foo"), application("Goo")});
    click(item("searchField"));
    press(Qt::Key_G);
    waitUntil([this] { return library->searchText() == "g"; });
    settle();
    EXPECT_EQ(item("applicationCount").property("text"), "2 applications");
    press(Qt::Key_O);
    press(Qt::Key_O);
    waitUntil([this] { return library->searchText() == "goo"; });
    EXPECT_EQ(item("applicationCount").property("text"), "1 applications");
}

TEST_F(AppSidebarViewTest, SearchesForAJoinedPictureAsOneCharacter) {
    open({application("Album 👩‍👩‍👧"), application("Diary 👩")});
    click(item("searchField"));
    const auto expectFound = [this](const QString& picture, const QStringList& names) {
        QInputMethodEvent choice;
        choice.setCommitString(picture);
        QCoreApplication::sendEvent(&item("searchField"), &choice);
        EXPECT_EQ(item("searchField").property("text"), picture);
        waitUntil([&] {
            layOut();
            QStringList found;
            for (const QQuickItem* row : rows()) found << row->property("name").toString();
            return library->searchText() == picture.toStdString() && found == names;
        });
        press(Qt::Key_Escape);
    };
    expectFound("👩", {"Diary 👩"});
    expectFound("👩‍👩‍👧", {"Album 👩‍👩‍👧"});
    expectFound("👩‍👧", {});
}

TEST_F(AppSidebarViewTest, SaysThatASearchFindsNothing) {
    open({application("Foo")});
    EXPECT_FALSE(item("searchPlaceholder").isVisible());
    library->setSearchText("zzz");
    EXPECT_TRUE(item("searchPlaceholder").isVisible());
    EXPECT_EQ(textsIn(item("searchPlaceholder")),
              (QStringList{"No Results for “zzz”", "Check the spelling or try a new search."}));
    const QPointF middle = frame(item("applicationList")).center();
    const QPointF placeholder = frame(item("searchPlaceholder")).center();
    EXPECT_LE((middle - placeholder).manhattanLength(), 1);
}

TEST_F(AppSidebarViewTest, SearchesFromTheKeyboardAlone) {
    open({application("Foo"), application("Goo")});
    press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(isActive("searchField"));
    press(Qt::Key_G);
    waitUntil([this] { return library->searchText() == "g"; });
    press(Qt::Key_Escape);
    waitUntil([this] { return library->searchText().empty(); });
    EXPECT_EQ(item("searchField").property("text"), "");
    press(Qt::Key_Down);
    EXPECT_FALSE(isActive("searchField"));
    press(Qt::Key_End);
    waitUntil([this] { return library->selectedApplicationID() == listed("Goo").id(); });
}

TEST_F(AppSidebarViewTest, CannotRescanWhileAScanRuns) {
    open({application("Foo")});
    EXPECT_FALSE(item("scanIndicator").isVisible());
    holdPool();
    click(item("rescanButton"));
    waitUntil([this] { return library->isScanning(); });
    EXPECT_FALSE(item("rescanButton").isEnabled());
    EXPECT_TRUE(item("scanIndicator").isVisible());
    layOut();
    EXPECT_EQ(frame(item("scanIndicator")).right(), 320 - 16);
    EXPECT_FALSE(item("searchPlaceholder").isVisible());
    releasePool();
    waitUntil([this] { return !library->isScanning(); });
    EXPECT_TRUE(item("rescanButton").isEnabled());
    EXPECT_FALSE(item("scanIndicator").isVisible());
}

TEST_F(AppSidebarViewTest, BringsTheOthersBackWithAnAnimationWhenTheSearchIsCleared) {
    open({application("Foo"), application("Goo")});
    click(item("searchField"));
    press(Qt::Key_G);
    press(Qt::Key_O);
    waitUntil([this] { return rows().size() == 1; });
    settle();
    press(Qt::Key_Escape);
    turn();
    layOut();
    EXPECT_EQ(item("searchField").property("text"), "");
    EXPECT_LT(rowOf("Foo").property("presence").toReal(), 1);
    EXPECT_LT(rowOf("Goo").property("displacement").toReal(), 0);
    EXPECT_EQ(theme().property("listDuration"), 450);
    settle();
    EXPECT_EQ(rows().size(), 2U);
}

TEST_F(AppSidebarViewTest, AsksForTheAboutWindow) {
    QQuickItem& sidebar = open({application("Foo")});
    const QSignalSpy requests(&sidebar, SIGNAL(aboutRequested()));
    click(item("aboutButton"));
    EXPECT_EQ(requests.count(), 1);
}

}  // namespace
}  // namespace orvane::test
