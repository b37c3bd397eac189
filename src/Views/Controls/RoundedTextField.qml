pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T

/// A field for one line of text, with a rounded border and the menu that fields have.
T.TextField {
    id: field

    function showMenu(x: real, y: real) {
        forceActiveFocus(Qt.PopupFocusReason)
        const menu = menuComponent.createObject(field) as PopupMenu
        menu.popup(field, x, y)
    }

    implicitWidth: 200
    implicitHeight: Theme.scaled(24)
    leftPadding: 8
    rightPadding: 8
    verticalAlignment: TextInput.AlignVCenter
    font: Theme.body
    color: Theme.label
    selectionColor: Theme.faded(Theme.accent, 0.35)
    selectedTextColor: Theme.label
    selectByMouse: true
    opacity: enabled ? 1 : Theme.disabledOpacity

    Keys.onMenuPressed: showMenu(cursorRectangle.x, height)
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_F10 && event.modifiers === Qt.ShiftModifier
        if (event.accepted)
            showMenu(cursorRectangle.x, height)
    }

    Accessible.name: placeholderText
    Accessible.description: enabled ? "" : "dimmed"

    background: Surface {
        fill: Theme.field

        FocusRing {
            shapeRadius: 6
            visible: field.activeFocus
        }
    }

    PlainText {
        x: field.leftPadding
        width: field.width - field.leftPadding - field.rightPadding
        height: field.height
        text: field.placeholderText
        font: field.font
        color: Theme.tertiary
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        visible: field.length === 0 && field.preeditText === ""
        Accessible.ignored: true
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.RightButton
        cursorShape: Qt.IBeamCursor
        onPressed: mouse => field.showMenu(mouse.x, mouse.y)
    }

    Component {
        id: menuComponent

        PopupMenu {
            id: menu

            onClosed: menu.destroy()

            PopupMenuItem {
                text: "Cut"
                enabled: field.selectedText !== ""
                onTriggered: field.cut()
            }

            PopupMenuItem {
                text: "Copy"
                enabled: field.selectedText !== ""
                onTriggered: field.copy()
            }

            PopupMenuItem {
                text: "Paste"
                enabled: field.canPaste
                onTriggered: field.paste()
            }
        }
    }
}
