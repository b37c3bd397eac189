#include <QtCore/QPointer>
#include <chrono>

#include "Views/DetailModel.h"
#include "tests/Views/OrvaneAppViewFixture.h"

namespace orvane::test {
namespace {

class OrvaneAppInputTest : public OrvaneAppViewTest {
  protected:
    /// The window with Foo, which is selected, and Goo.
    void openWithTwo() {
        installBundle("Foo");
        installBundle("Goo");
        saveCatalog({application("Foo"), application("Goo")});
        mac.makeDirectory(TestVolume::home() + "/.Trash");
        open();
        awaitPlan("Foo");
    }
    void awaitPlan(const QString& name) {
        waitUntil([&] {
            return content.detail() && content.detail()->name() == name && !content.detail()->isLoading();
        });
        layOut();
    }
    void openSheet() {
        content.detail()->setShowingRemovalSheet(true);
        waitUntilOpened("reviewSheet");
    }
    void waitUntilOpened(const QString& panel) {
        waitUntil([&] { return isThere(panel) && named(panel).property("isReady").toBool(); });
    }
    bool hasKeyboard(const char* objectName) { return window->activeFocusItem() == &item(objectName); }
    /// The row of the list that has the keyboard; empty when none has.
    QString rowWithKeyboard() {
        const QQuickItem* const focused = window->activeFocusItem();
        return focused && focused->property("caption").isValid() ? focused->property("name").toString()
                                                                 : QString();
    }
};

TEST_F(OrvaneAppInputTest, TheTabKeyGoesThroughTheWholeWindowAndRound) {
    openWithTwo();
    waitUntil([this] { return rowWithKeyboard() == "Foo"; });
    for (const char* name : {"aboutButton", "rescanButton", "showInFinderButton"}) {
        press(Qt::Key_Tab);
        EXPECT_TRUE(hasKeyboard(name)) << name;
    }
    press(Qt::Key_Tab);
    EXPECT_EQ(window->activeFocusItem(), itemsOfType(item("filesSection"), "RelatedItemRow").front());
    press(Qt::Key_Tab);
    EXPECT_TRUE(hasKeyboard("reviewButton"));
    press(Qt::Key_Tab);
    EXPECT_TRUE(hasKeyboard("searchField"));
    press(Qt::Key_Tab);
    EXPECT_EQ(rowWithKeyboard(), "Foo");
    press(Qt::Key_Backtab);
    EXPECT_TRUE(hasKeyboard("searchField"));
}

TEST_F(OrvaneAppInputTest, RescansFromTheMenuWithTheKeyboard) {
    openWithTwo();
    const int ended = scansEnded;
    press(Qt::Key_F10);
    waitUntil([this] { return command("applicationMenu").property("opened").toBool(); });
    press(Qt::Key_Right);
    waitUntil([this] { return command("fileMenu").property("opened").toBool(); });
    press(Qt::Key_Right);
    waitUntil([this] { return command("libraryMenu").property("opened").toBool(); });
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    waitUntil([&] { return scansEnded == ended + 1; });
}

TEST_F(OrvaneAppInputTest, RescansUnderAnOpenSheetAndKeepsIt) {
    openWithTwo();
    const QPointer<QQuickItem> pane = &item("detailPane");
    openSheet();
    const int ended = scansEnded;
    press(Qt::Key_R, Qt::ControlModifier);
    waitUntil([&] { return scansEnded == ended + 1; });
    EXPECT_EQ(&item("detailPane"), pane);
    EXPECT_EQ(named("reviewSheet").property("opened"), true);
}

TEST_F(OrvaneAppInputTest, GivesTheKeyboardBackWhenTheSheetCloses) {
    openWithTwo();
    item("reviewButton").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    waitUntilOpened("reviewSheet");
    EXPECT_FALSE(hasKeyboard("reviewButton"));
    press(Qt::Key_Escape);
    waitUntil([this] { return !isThere("reviewSheet"); });
    EXPECT_TRUE(hasKeyboard("reviewButton"));
}

TEST_F(OrvaneAppInputTest, GivesTheKeyboardToTheListWhenTheApplicationHasBeenRemoved) {
    openWithTwo();
    item("reviewButton").forceActiveFocus(Qt::TabFocusReason);
    openSheet();
    press(Qt::Key_Return);
    waitUntilOpened("resultAlert");
    press(Qt::Key_Return);
    awaitPlan("Goo");
    waitUntil([this] { return rowWithKeyboard() == "Goo"; });
    press(Qt::Key_Home);
    waitUntil([this] { return rowWithKeyboard() == "Foo"; });
}

TEST_F(OrvaneAppInputTest, LeavesTheKeyboardInTheSearchWhenThePaneChanges) {
    openWithTwo();
    press(Qt::Key_F, Qt::ControlModifier);
    library->setSelectedApplicationID(listed("Goo").id());
    awaitPlan("Goo");
    EXPECT_TRUE(hasKeyboard("searchField"));
}

TEST_F(OrvaneAppInputTest, GivesTheKeyboardToTheListWhenThePaneThatHadItIsAnothers) {
    openWithTwo();
    item("reviewButton").forceActiveFocus(Qt::TabFocusReason);
    library->setSelectedApplicationID(listed("Goo").id());
    waitUntil([this] { return rowWithKeyboard() == "Goo"; });
}

TEST_F(OrvaneAppInputTest, KeepsTheSheetWhateverTheListDoesAndFollowsItThen) {
    openWithTwo();
    openSheet();
    library->setSelectedApplicationID(listed("Goo").id());
    complete(library->scan());
    layOut();
    EXPECT_EQ(named("reviewSheet").property("title"), "Uninstall Foo?");
    EXPECT_EQ(named("reviewSheet").property("opened"), true);
    press(Qt::Key_Escape);
    awaitPlan("Goo");
    waitUntil([this] { return !isThere("reviewSheet"); });
    // Nothing veils the window any more.
    click(item("reviewButton"));
    waitUntilOpened("reviewSheet");
    EXPECT_EQ(named("reviewSheet").property("title"), "Uninstall Goo?");
}

TEST_F(OrvaneAppInputTest, LetsTheSheetSlideAwayBeforeThePaneFollows) {
    openWithTwo();
    openSheet();
    const QPointer<QObject> sheet = &named("reviewSheet");
    const QPointer<QQuickItem> pane = &item("detailPane");
    library->setSelectedApplicationID(listed("Goo").id());
    press(Qt::Key_Escape);
    EXPECT_FALSE(content.detail()->isShowingRemovalSheet());
    QVariant slide;
    QObject::connect(&content, &ContentModel::detailChanged, &content, [&] {
        ASSERT_TRUE(sheet);
        slide = sheet->property("slide");
        EXPECT_EQ(sheet->property("visible"), false);
    });
    ASSERT_EQ(&item("detailPane"), pane);
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->property("visible"), true);
    waitUntil([&] { return content.detail()->name() == "Goo"; });
    EXPECT_EQ(slide, -8);
    waitUntil([&] { return !sheet; });
    EXPECT_TRUE(textsIn(item("detailHeader")).contains("Goo"));
}

TEST_F(OrvaneAppInputTest, ShowsTheResultOfARemovalWhoseEntryHasLeft) {
    openWithTwo();
    openSheet();
    holdPool();
    press(Qt::Key_Return);
    EXPECT_TRUE(content.detail()->review()->isRemoving());
    library->setSelectedApplicationID(listed("Goo").id());
    releasePool();
    removeBundle("Foo");
    complete(library->updateSavedAvailability());
    clock.advance(std::chrono::seconds(5));
    waitUntil([this] { return library->applications().size() == 1; });
    waitUntilOpened("resultAlert");
    EXPECT_EQ(named("reviewSheet").property("title"), "Uninstall Foo?");
    press(Qt::Key_Return);
    awaitPlan("Goo");
}

TEST_F(OrvaneAppInputTest, TheFirstDownFromTheSearchSelects) {
    openWithTwo();
    press(Qt::Key_F, Qt::ControlModifier);
    type("goo");
    waitUntil([this] { return content.sidebar()->count() == 1; });
    press(Qt::Key_Down);
    EXPECT_EQ(rowWithKeyboard(), "Goo");
    awaitPlan("Goo");
}

TEST_F(OrvaneAppInputTest, ReturnInTheSearchGoesToTheListAndKeepsItsSelection) {
    openWithTwo();
    press(Qt::Key_F, Qt::ControlModifier);
    press(Qt::Key_Return);
    EXPECT_EQ(rowWithKeyboard(), "Foo");
    press(Qt::Key_F, Qt::ControlModifier);
    type("goo");
    waitUntil([this] { return content.sidebar()->count() == 1; });
    press(Qt::Key_Return);
    EXPECT_EQ(rowWithKeyboard(), "Goo");
}

TEST_F(OrvaneAppInputTest, AltAndTheFirstLetterOpenAMenu) {
    openWithTwo();
    const auto underlines = [this] {
        int shown = 0;
        for (const QQuickItem* rectangle : itemsOfType(*window->contentItem(), "orvane::PixelRectangle"))
            if (rectangle->objectName() == "mnemonic") ++shown;
        return shown;
    };
    EXPECT_EQ(underlines(), 0);
    pressDown(Qt::Key_Alt);
    EXPECT_EQ(underlines(), 3);
    press(Qt::Key_L, Qt::AltModifier);
    waitUntil([this] { return command("libraryMenu").property("opened").toBool(); });
    letGo();
    EXPECT_EQ(underlines(), 0);
}

TEST_F(OrvaneAppInputTest, TheSelectionKeepsItsColourWhileAMenuIsOpen) {
    openWithTwo();
    waitUntil([this] { return rowWithKeyboard() == "Foo"; });
    const auto isEmphasized = [this] { return item("applicationList").property("isEmphasized").toBool(); };
    EXPECT_TRUE(isEmphasized());
    press(Qt::Key_F10);
    waitUntil([this] { return command("applicationMenu").property("opened").toBool(); });
    EXPECT_TRUE(isEmphasized());
    press(Qt::Key_Escape);
    waitUntil([this] { return rowWithKeyboard() == "Foo"; });
    press(Qt::Key_Tab);
    EXPECT_FALSE(isEmphasized());
}

TEST_F(OrvaneAppInputTest, ShowsTheNewFactsOfTheApplicationThatWasFoundAgain) {
    openWithTwo();
    const QPointer<QQuickItem> pane = &item("detailPane");
    mac.makeFile("/Applications/Foo.app/Contents/Info.plist",
                 "<plist><dict><key>CFBundleShortVersionString</key><string>2.0</string></dict></plist>");
    complete(library->scan());
    EXPECT_EQ(&item("detailPane"), pane);
    const QStringList facts = textsIn(item("detailHeader"));
    EXPECT_TRUE(facts.contains("Version 2.0"));
    EXPECT_TRUE(facts.contains("No bundle identifier"));
    EXPECT_FALSE(item("availabilityNotice").isVisible());
}

}  // namespace
}  // namespace orvane::test
