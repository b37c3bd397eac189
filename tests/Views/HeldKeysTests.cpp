#include <QtTest/QTest>

#include "tests/Views/ControlTest.h"

namespace orvane::test {
namespace {

class HeldKeysTest : public ControlTest {
  protected:
    /// In every way that a display tells of a held key.
    template <typename Check>
    static void forEachRepetition(Check check) {
        for (const Repetition how : {Repetition::press, Repetition::releaseAndPress, Repetition::silent}) {
            SCOPED_TRACE(static_cast<int>(how));
            check(how);
        }
    }
};

TEST_F(HeldKeysTest, PressAButtonOnce) {
    QQuickItem& button = stage(R"(PushButton { text: "Press" })");
    button.forceActiveFocus(Qt::TabFocusReason);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
        forEachRepetition([&](Repetition how) {
            const QSignalSpy clicks(&button, SIGNAL(clicked()));
            hold(key, how);
            EXPECT_EQ(clicks.count(), 1) << key;
            EXPECT_EQ(button.property("down"), false);
        });
}

TEST_F(HeldKeysTest, PressNothingThatTheKeyboardComesToMeanwhile) {
    stage(R"(Row {
        PushButton { objectName: "first"; text: "First"; onClicked: second.forceActiveFocus() }
        PushButton { id: second; objectName: "second"; text: "Second" }
    })");
    forEachRepetition([&](Repetition how) {
        item("first").forceActiveFocus(Qt::TabFocusReason);
        const QSignalSpy clicks(&item("second"), SIGNAL(clicked()));
        hold(Qt::Key_Return, how);
        EXPECT_TRUE(isActive("second"));
        EXPECT_EQ(clicks.count(), 0);
    });
}

TEST_F(HeldKeysTest, TickABoxOnce) {
    QQuickItem& toggle = stage(R"(CheckToggle { text: "Cache" })");
    toggle.forceActiveFocus(Qt::TabFocusReason);
    forEachRepetition([&](Repetition how) {
        const bool wasChecked = toggle.property("checked").toBool();
        hold(Qt::Key_Space, how);
        EXPECT_EQ(toggle.property("checked"), !wasChecked);
    });
}

TEST_F(HeldKeysTest, ChooseFromAMenuOnceAndPressNothingBehindIt) {
    QQuickItem& root = stage(R"(Item {
        id: root
        property int chosen: 0
        property int pressed: 0
        PushButton { objectName: "behind"; text: "Behind"; onClicked: ++root.pressed }
        PopupMenu {
            id: menu
            objectName: "menu"
            PopupMenuItem { text: "Choose"; onTriggered: ++root.chosen }
        }
        function open() { menu.popup(50, 50) }
    })");
    forEachRepetition([&](Repetition how) {
        root.setProperty("chosen", 0);
        item("behind").forceActiveFocus(Qt::TabFocusReason);
        QMetaObject::invokeMethod(&root, "open");
        waitUntil([this] { return named("menu").property("opened").toBool(); });
        press(Qt::Key_Down);
        hold(Qt::Key_Return, how);
        EXPECT_EQ(root.property("chosen"), 1);
        EXPECT_EQ(root.property("pressed"), 0);
        EXPECT_TRUE(isActive("behind"));
    });
}

TEST_F(HeldKeysTest, GiveACommandOnce) {
    stage(R"(Item {
        RoundedTextField { objectName: "field" }
        PushButton { objectName: "button"; x: 300; text: "Press" }
        property Command command: Command { objectName: "command"; keys: "Ctrl+R" }
    })");
    for (const char* place : {"field", "button"}) {
        item(place).forceActiveFocus(Qt::TabFocusReason);
        forEachRepetition([&](Repetition how) {
            const QSignalSpy commands(&named("command"), SIGNAL(triggered(QObject*)));
            hold(Qt::Key_R, how, Qt::ControlModifier);
            EXPECT_EQ(commands.count(), 1) << place;
        });
    }
    EXPECT_EQ(item("field").property("text"), "");
}

TEST_F(HeldKeysTest, WriteAndEraseInATextField) {
    QQuickItem& field = stage("RoundedTextField {}");
    field.forceActiveFocus();
    forEachRepetition([&](Repetition how) {
        hold(Qt::Key_A, how, {}, "a");
        EXPECT_EQ(field.property("text"), "aaaaaa");
        hold(Qt::Key_Backspace, how);
        EXPECT_EQ(field.property("text"), "");
    });
    hold(Qt::Key_Space, Repetition::press, {}, " ");
    EXPECT_EQ(field.property("text"), "      ");
}

TEST_F(HeldKeysTest, MoveOn) {
    stage(R"(Row {
        Repeater { model: 7; PushButton { objectName: "button" + index; text: "Button" } }
    })");
    forEachRepetition([&](Repetition how) {
        item("button0").forceActiveFocus(Qt::TabFocusReason);
        hold(Qt::Key_Tab, how);
        EXPECT_TRUE(isActive("button6"));
    });
}

}  // namespace
}  // namespace orvane::test
