#include <QtCore/QPointer>

#include "tests/Views/OrvaneAppViewFixture.h"
#include "tests/Views/Styles.h"

namespace orvane::test {
namespace {

TEST_F(OrvaneAppViewTest, CannotBeMadeTooSmall) {
    open();
    const int menuBar = qRound(item("menuBar").height());
    EXPECT_EQ(window->minimumSize(), QSize(980, 640 + menuBar));
    EXPECT_EQ(window->title(), "Orvane");
    EXPECT_EQ(window->size(), QSize(1120, 800 + menuBar));
}

TEST_F(OrvaneAppViewTest, LoadsTheCatalogWhenItAppears) {
    saveCatalog({application("Foo")});
    open();
    EXPECT_TRUE(item("detailPlaceholder").isVisible());
    EXPECT_EQ(textsIn(item("detailPlaceholder")),
              (QStringList{"Select an Application",
                           "Choose an installed application to inspect its files and services."}));
    waitUntil([this] { return library->applications().size() == 1; });
    waitUntil([this] { return isThere("detailPane"); });
    EXPECT_FALSE(item("detailPlaceholder").isVisible());
}

TEST_F(OrvaneAppViewTest, AsksForAnApplicationUntilTheFirstScanHasFinished) {
    installBundle("Foo");
    holdPool();
    open();
    layOut();
    EXPECT_TRUE(item("detailPlaceholder").isVisible());
    EXPECT_FALSE(isThere("detailPane"));
    EXPECT_EQ(symbolsIn(item("detailPlaceholder")), QStringList("square.grid.2x2 secondary"));
    releasePool();
    waitUntil([this] { return isThere("detailPane"); });
    EXPECT_EQ(library->applications().size(), 1U);
    EXPECT_FALSE(item("detailPlaceholder").isVisible());
}

TEST_F(OrvaneAppViewTest, WritesTheSidebarsTextsInTheirStyles) {
    InstalledApplication system = application("Mail");
    system.isSystemApplication = true;
    saveCatalog({system});
    open();
    const QQuickItem& sidebar = item("sidebar");
    waitUntil([&] {
        layOut();
        const auto rows = itemsOfType(sidebar, "AppRow");
        return rows.size() == 1 && rows.front()->property("presence") == 1;
    });
    // The only row is selected; without the keyboard it keeps its colours.
    item("searchField").forceActiveFocus();
    EXPECT_EQ(styleOf(sidebar, "Orvane"), "17 bold label");
    EXPECT_EQ(styleOf(sidebar, "Application uninstaller"), "10 regular secondary");
    EXPECT_EQ(styleOf(sidebar, "Mail"), "13 medium label");
    EXPECT_EQ(styleOf(sidebar, "Version 1.0 • 12.3 MB"), "10 regular secondary");
    EXPECT_EQ(styleOf(sidebar, "1 applications"), "10 regular secondary");
    EXPECT_EQ(styleOf(sidebar, "Search applications"), "13 regular tertiary");
    EXPECT_EQ(symbolsIn(sidebar),
              (QStringList{"arrow.clockwise secondary", "info.circle secondary", "lock.fill secondary"}));
}

TEST_F(OrvaneAppViewTest, KeepsTheSidebarWithinItsWidths) {
    open();
    layOut();
    QQuickItem& sidebar = item("sidebar");
    EXPECT_EQ(sidebar.width(), 320);
    const int y = qRound(sidebar.height() / 2) + 40;
    const auto drag = [&](int from, int to) {
        QTest::mousePress(window.get(), Qt::LeftButton, {}, QPoint(from, y));
        QTest::mouseMove(window.get(), QPoint((from + to) / 2, y));
        QTest::mouseMove(window.get(), QPoint(to, y));
        QTest::mouseRelease(window.get(), Qt::LeftButton, {}, QPoint(to, y));
        layOut();
    };
    drag(322, 700);
    EXPECT_EQ(sidebar.width(), 380);
    drag(380, 20);
    EXPECT_EQ(sidebar.width(), 280);
}

TEST_F(OrvaneAppViewTest, StartsThePaneAfreshForAnotherApplicationOnly) {
    saveCatalog({application("Foo"), application("Goo")});
    installBundle("Foo");
    installBundle("Goo");
    open();
    waitUntil([this] { return isThere("detailPane"); });
    const auto scrolled = [this] { return item("detailScroll").property("contentY").toInt(); };
    window->setMinimumHeight(0);
    window->resize(980, 300);
    layOut();
    item("detailScroll").setProperty("contentY", 30);
    complete(library->scan());
    EXPECT_EQ(scrolled(), 30);
    library->setSelectedApplicationID(listed("Goo").id());
    EXPECT_EQ(scrolled(), 0);
    EXPECT_TRUE(textsIn(item("detailHeader")).contains("Goo"));
}

TEST_F(OrvaneAppViewTest, TakesThePaneAwayWithTheSelection) {
    saveCatalog({application("Foo")});
    open();
    waitUntil([this] { return isThere("detailPane"); });
    const QPointer<QQuickItem> pane = &item("detailPane");
    library->setSelectedApplicationID(std::nullopt);
    waitUntil([&] { return pane.isNull(); });
    EXPECT_TRUE(item("detailPlaceholder").isVisible());
    library->setSelectedApplicationID(listed("Foo").id());
    EXPECT_TRUE(isThere("detailPane"));
}

TEST_F(OrvaneAppViewTest, RescansAlsoWhileAScanRuns) {
    open();
    waitUntil([this] { return scansEnded == 1; });
    holdPool();
    const int ended = scansEnded;
    press(Qt::Key_R, Qt::ControlModifier);
    press(Qt::Key_R, Qt::ControlModifier);
    waitUntil([this] { return library->isScanning(); });
    EXPECT_EQ(command("rescanCommand").property("enabled"), true);
    releasePool();
    waitUntil([&] { return scansEnded == ended + 2; });
}

TEST_F(OrvaneAppViewTest, ShowsOneAboutWindowHoweverOftenItIsOpened) {
    open();
    EXPECT_EQ(shownAboutWindows(), 0);
    QMetaObject::invokeMethod(&command("aboutCommand"), "trigger");
    click(item("aboutButton"));
    EXPECT_EQ(shownAboutWindows(), 1);
    EXPECT_EQ(aboutWindow().size(), QSize(500, 460));
    EXPECT_EQ(aboutWindow().minimumSize(), aboutWindow().maximumSize());
    EXPECT_EQ(aboutWindow().transientParent(), window.get());
}

TEST_F(OrvaneAppViewTest, ClosesTheWindowThatHasTheKeyboard) {
    open();
    click(item("aboutButton"));
    ASSERT_TRUE(QTest::qWaitForWindowActive(&aboutWindow()));
    QTest::keyClick(&aboutWindow(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(aboutWindow().isVisible());
    EXPECT_TRUE(window->isVisible());
    window->requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(OrvaneAppViewTest, QuitsFromEitherWindow) {
    int quits = 0;
    QObject::connect(&engine, &QQmlEngine::quit, &engine, [&quits] { ++quits; });
    open();
    press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quits, 1);
    click(item("aboutButton"));
    ASSERT_TRUE(QTest::qWaitForWindowActive(&aboutWindow()));
    QTest::keyClick(&aboutWindow(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quits, 2);
}

TEST_F(OrvaneAppViewTest, HasTheCommandsInItsMenus) {
    open();
    QStringList texts;
    for (const char* menu : {"applicationMenu", "fileMenu", "libraryMenu"}) {
        QObject& object = command(menu);
        texts << object.property("title").toString() + ":";
        for (int i = 0; i < object.property("count").toInt(); ++i) {
            QQuickItem* entry = nullptr;
            QMetaObject::invokeMethod(&object, "itemAt", Q_RETURN_ARG(QQuickItem*, entry), Q_ARG(int, i));
            const QString text = entry->property("text").toString();
            if (!text.isEmpty()) texts << (text + " " + entry->property("keys").toString()).trimmed();
        }
    }
    EXPECT_EQ(texts, (QStringList{"Orvane:", "About Orvane", "Quit Orvane Ctrl+Q",
                                  "File:", "Close Window Ctrl+W", "Library:", "Rescan Applications Ctrl+R"}));
}

TEST_F(OrvaneAppViewTest, OpensAMenuWithTheKeyboardAndRunsACommand) {
    open();
    press(Qt::Key_F10);
    waitUntil([this] { return command("applicationMenu").property("opened").toBool(); });
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    waitUntil([this] { return shownAboutWindows() == 1; });
}

TEST_F(OrvaneAppViewTest, TheAboutWindowHasTheSizeOfItsContentAndKeepsIt) {
    open();
    QMetaObject::invokeMethod(&command("aboutCommand"), "trigger");
    const QWindow& shown = aboutWindow();
    const auto* view = shown.findChild<QQuickItem*>("aboutIcon")->parentItem()->parentItem();
    EXPECT_EQ(shown.width(), 500);
    // Whole pixels in every usual scale.
    EXPECT_EQ(shown.height() % 4, 0);
    EXPECT_GE(shown.height(), view->implicitHeight());
    EXPECT_LT(shown.height(), view->implicitHeight() + 4);
    EXPECT_EQ(shown.minimumSize(), shown.size());
    EXPECT_EQ(shown.maximumSize(), shown.size());
    EXPECT_EQ(shown.property("color").value<QColor>(), QColor(Qt::white));
}

TEST_F(OrvaneAppViewTest, HasTheAppearanceThatItIsGiven) {
    open();
    const auto at = [this](int x, int y) { return window->grabWindow().pixelColor(x, y); };
    for (const auto& [appearance, sidebar, pane] :
         {std::tuple("light", "#f3f3f5", "#ffffff"), std::tuple("dark", "#2a2a2c", "#1e1e1e")}) {
        window->setProperty("appearance", appearance);
        EXPECT_EQ(at(5, 400), QColor(sidebar)) << appearance;
        EXPECT_EQ(at(1000, 50), QColor(pane)) << appearance;
        EXPECT_EQ(theme().property("isDark"), appearance == QString("dark"));
    }
}

TEST_F(OrvaneAppViewTest, LoadsAgainWhenItAppearsAgain) {
    open();
    waitUntil([this] { return scansEnded == 1; });
    window->hide();
    saveCatalog({application("Foo")});
    window->show();
    waitUntil([this] { return library->applications().size() == 1; });
}

}  // namespace
}  // namespace orvane::test
