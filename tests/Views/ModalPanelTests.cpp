#include <QtCore/QElapsedTimer>
#include <memory>

#include "tests/Views/ControlTest.h"

namespace orvane::test {
namespace {

const char* const sheetQML = R"(Item {
    width: 900; height: 700
    property string said
    PushButton { objectName: "behind"; x: 20; y: 20; text: "Behind"; onClicked: parent.said = "behind" }
    Sheet {
        objectName: "sheet"
        width: 400; height: 300
        title: "Uninstall Foo?"
        defaultButton: ok
        cancelButton: cancel
        PushButton { id: cancel; objectName: "cancel"; x: 20; y: 20; text: "Cancel"; onClicked: said = "cancel" }
        PushButton { id: ok; objectName: "ok"; x: 200; y: 20; text: "OK"; onClicked: said = "ok" }
    }
})";

class SheetTest : public ControlTest {
  protected:
    QQuickItem& open() {
        QQuickItem& root = stage(sheetQML, {900, 700});
        sheet().setProperty("visible", true);
        waitUntil([this] { return sheet().property("isReady").toBool(); });
        return root;
    }
    QObject& sheet() { return named("sheet"); }
};

TEST_F(SheetTest, StandsInTheMiddleBelowTheTopEdge) {
    open();
    EXPECT_EQ(sheet().property("x"), 250);
    EXPECT_EQ(sheet().property("y"), 60);
}

TEST_F(SheetTest, PressesTheDefaultButtonOnReturnAndTheCancelButtonOnEscape) {
    const QQuickItem& root = open();
    press(Qt::Key_Return);
    EXPECT_EQ(root.property("said"), "ok");
    press(Qt::Key_Escape);
    EXPECT_EQ(root.property("said"), "cancel");
    EXPECT_EQ(sheet().property("visible"), true);
}

TEST_F(SheetTest, LeavesReturnToTheButtonThatTheKeyboardIsWith) {
    const QQuickItem& root = open();
    item("cancel").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    EXPECT_EQ(root.property("said"), "cancel");
}

TEST_F(SheetTest, DoesNothingForADisabledButton) {
    const QQuickItem& root = open();
    item("ok").setEnabled(false);
    item("cancel").setEnabled(false);
    press(Qt::Key_Return);
    press(Qt::Key_Escape);
    EXPECT_EQ(root.property("said"), "");
    EXPECT_EQ(sheet().property("visible"), true);
}

TEST_F(SheetTest, PressesNothingBeforeItHasOpened) {
    const QQuickItem& root = stage(sheetQML, {900, 700});
    sheet().setProperty("visible", true);
    layOut();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_Space, Qt::Key_Return})
        press(key);
    click(item("ok"));
    EXPECT_EQ(root.property("said"), "");
    waitUntil([this] { return sheet().property("isReady").toBool(); });
    EXPECT_EQ(root.property("said"), "");
    press(Qt::Key_Return);
    EXPECT_EQ(root.property("said"), "ok");
}

TEST_F(SheetTest, PressesNothingInTheMomentThatItIsThereForThoseWhoWishLessMotion) {
    theme().setProperty("reducesMotion", true);
    const QQuickItem& root = stage(sheetQML, {900, 700});
    sheet().setProperty("visible", true);
    waitUntil([this] { return sheet().property("opened").toBool(); });
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    EXPECT_EQ(root.property("said"), "");
}

TEST_F(SheetTest, WaitsUntilTheKeysRest) {
    const QQuickItem& root = stage(sheetQML, {900, 700});
    pressDown(Qt::Key_Return);
    sheet().setProperty("visible", true);
    waitUntil([this] { return sheet().property("opened").toBool(); });
    QElapsedTimer sinceUp;
    sinceUp.start();
    letGo();
    waitUntil([this] { return sheet().property("isReady").toBool(); });
    EXPECT_GE(sinceUp.elapsed(), 200);
    EXPECT_EQ(root.property("said"), "");
}

TEST_F(SheetTest, IsToldOfEveryKeyThatKnocksAtItsGate) {
    const QQuickItem& root = stage(R"(Item {
        id: root
        property int knocks: 0
        property KeyGate gate: KeyGate { isShut: true; onKnocked: ++root.knocks }
    })");
    pressDown(Qt::Key_Return);
    EXPECT_EQ(root.property("knocks"), 1);
    letGo();
    EXPECT_EQ(root.property("knocks"), 2);
    press(Qt::Key_A);
    EXPECT_EQ(root.property("knocks"), 2);
    root.property("gate").value<QObject*>()->setProperty("isShut", false);
    press(Qt::Key_Return);
    EXPECT_EQ(root.property("knocks"), 2);
}

TEST_F(SheetTest, PressesNothingWithAKeyThatWasDownBeforeItOpened) {
    for (const Repetition how : {Repetition::press, Repetition::releaseAndPress, Repetition::silent}) {
        const std::unique_ptr<QQuickItem> root(&stage(sheetQML, {900, 700}));
        pressDown(Qt::Key_Return);
        sheet().setProperty("visible", true);
        waitUntil([&] {
            repeat(how, 1);
            return sheet().property("opened").toBool();
        });
        repeat(how, 30);
        letGo();
        EXPECT_EQ(root->property("said"), "");
        waitUntil([this] { return sheet().property("isReady").toBool(); });
        repeat(how, 5);
        EXPECT_EQ(root->property("said"), "");
    }
}

TEST_F(SheetTest, PressesNothingOnceItSlidesAway) {
    const QQuickItem& root = open();
    sheet().setProperty("visible", false);
    press(Qt::Key_Return);
    click(item("ok"));
    EXPECT_EQ(root.property("said"), "");
    waitUntil([this] { return !sheet().property("visible").toBool(); });
    EXPECT_EQ(root.property("said"), "");
}

TEST_F(SheetTest, GivesTheKeyboardToWhatItNames) {
    stage(sheetQML, {900, 700});
    sheet().setProperty("firstFocusItem", QVariant::fromValue(&item("cancel")));
    sheet().setProperty("visible", true);
    waitUntil([this] { return sheet().property("isReady").toBool(); });
    EXPECT_TRUE(isActive("cancel"));
    EXPECT_TRUE(item("cancel").property("visualFocus").toBool());
}

TEST_F(SheetTest, KeepsPointerAndKeyboardFromWhatIsBehind) {
    const QQuickItem& root = open();
    click(item("behind"));
    EXPECT_EQ(root.property("said"), "");
    EXPECT_EQ(sheet().property("visible"), true);
    for (int i = 0; i < 6; ++i) {
        press(Qt::Key_Tab);
        EXPECT_FALSE(isActive("behind"));
    }
}

const char* const alertQML = R"(Item {
    id: root
    width: 900; height: 700
    property string said
    property Alert question: Alert {
        objectName: "question"
        title: "Delete?"
        message: "It is gone then."
        actions: [
            AlertAction { text: "Delete"; isDestructive: true; onTriggered: root.said = "delete" },
            AlertAction { text: "Cancel"; isCancel: true; onTriggered: root.said = "cancel" }
        ]
    }
    property Alert notice: Alert {
        objectName: "notice"
        title: "Result"
        actions: AlertAction { text: "Done"; isDefault: true; onTriggered: root.said = "done" }
    }
})";

class AlertTest : public ControlTest {
  protected:
    QQuickItem& open(const char* alert) {
        QQuickItem& root = stage(alertQML, {900, 700});
        auto* const popup = root.property(alert).value<QObject*>();
        popup->setProperty("visible", true);
        waitUntil([popup] { return popup->property("isReady").toBool(); });
        return root;
    }
    QQuickItem& button(const QString& text) {
        for (QQuickItem* candidate : itemsOfType(*window->contentItem(), "PushButton"))
            if (candidate->property("text") == text) return *candidate;
        throw std::runtime_error("no such button");
    }
};

TEST_F(AlertTest, HasItsButtonsOneAboveTheOtherAcrossItsWidth) {
    const QQuickItem& root = open("question");
    EXPECT_EQ(root.property("question").value<QObject*>()->property("width"), 260);
    const QRectF remove = frameIn(*window->contentItem(), button("Delete"));
    const QRectF cancel = frameIn(*window->contentItem(), button("Cancel"));
    EXPECT_EQ(remove.height(), 28);
    EXPECT_EQ(cancel.height(), 28);
    EXPECT_EQ(remove.width(), 228);
    EXPECT_LT(remove.bottom(), cancel.top());
    EXPECT_EQ(button("Delete").property("isProminent"), false);
}

TEST_F(AlertTest, CancelsOnEscapeAndHasNoDefaultThatDestroys) {
    const QQuickItem& root = open("question");
    press(Qt::Key_Return);
    EXPECT_EQ(root.property("said"), "");
    press(Qt::Key_Escape);
    EXPECT_EQ(root.property("said"), "cancel");
}

TEST_F(AlertTest, PressesTheOnlyButtonOnReturnAndOnEscape) {
    QQuickItem& root = open("notice");
    EXPECT_EQ(button("Done").property("isProminent"), true);
    press(Qt::Key_Return);
    EXPECT_EQ(root.property("said"), "done");
    root.setProperty("said", "");
    press(Qt::Key_Escape);
    EXPECT_EQ(root.property("said"), "done");
}

TEST_F(AlertTest, ShowsTheKeyboardAtItsDefaultButton) {
    open("notice");
    EXPECT_TRUE(button("Done").hasActiveFocus());
    EXPECT_EQ(itemsOfType(button("Done"), "FocusRing").size(), 1U);
}

TEST_F(AlertTest, ForgetsWhereTheKeyboardWasWhenItWasOpenBefore) {
    const QQuickItem& root = open("question");
    button("Delete").forceActiveFocus(Qt::TabFocusReason);
    auto* const question = root.property("question").value<QObject*>();
    question->setProperty("visible", false);
    waitUntil([question] { return !question->property("visible").toBool(); });
    question->setProperty("visible", true);
    waitUntil([question] { return question->property("isReady").toBool(); });
    press(Qt::Key_Return);
    press(Qt::Key_Space);
    EXPECT_EQ(root.property("said"), "");
}

TEST_F(AlertTest, IsPressedByTheScreenReader) {
    const QQuickItem& root = open("question");
    EXPECT_TRUE(pressForScreenReader(button("Delete")));
    EXPECT_EQ(root.property("said"), "delete");
}

}  // namespace
}  // namespace orvane::test
