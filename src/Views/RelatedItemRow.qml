pragma ComponentBehavior: Bound
import QtQuick
import Orvane

/// A file or a folder that belongs to the application, with a menu to show it.
Item {
    id: row

    required property int index
    required property string key
    required property string title
    required property string path
    required property string symbol
    required property string sizeText
    required property bool requiresAdministrator
    required property string reason

    readonly property string permissionHint: "Administrator permission may be required"
    readonly property Item helpItem: lockHover.hovered ? lock : rowHover.hovered ? row : null
    readonly property string helpText: lockHover.hovered ? permissionHint : reason

    signal revealRequested

    function showMenu(x: real, y: real) {
        const menu = menuComponent.createObject(row) as PopupMenu
        menu.popup(row, x, y)
    }

    implicitHeight: lines.height + 2 * 4

    Accessible.role: Accessible.ListItem
    Accessible.name: title + ", " + path
    Accessible.description: sizeText + (requiresAdministrator ? ", " + permissionHint : "") + (reason ? ", " + reason : "")
    Accessible.focusable: true
    Accessible.onPressAction: showMenu(lines.x, height)

    Keys.onMenuPressed: showMenu(lines.x, height)
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_F10 && event.modifiers === Qt.ShiftModifier
        if (event.accepted)
            showMenu(lines.x, height)
    }

    HoverHandler { id: rowHover }

    FocusRing {
        anchors { margins: -4; leftMargin: -9; rightMargin: -9 }
        shapeRadius: 4
        visible: row.activeFocus
    }

    Item {
        id: frame

        width: 24
        height: parent.height

        Symbol {
            anchors.centerIn: parent
            name: row.symbol
            size: Theme.symbolSize(Theme.body.pixelSize)
            color: row.requiresAdministrator ? Theme.orange : Theme.blue
        }
    }

    Column {
        id: lines

        anchors {
            left: frame.right; leftMargin: 10
            right: lock.visible ? lock.left : size.left; rightMargin: 10
            verticalCenter: parent.verticalCenter
        }
        spacing: 2

        OneLineText {
            width: parent.width
            line: row.title
            font: Theme.weighted(Theme.body, Font.Medium)
            Accessible.ignored: true
        }

        OneLineText {
            width: parent.width
            line: row.path
            drop: 0.5
            font: Theme.caption
            color: Theme.secondary
            Accessible.ignored: true
        }
    }

    Symbol {
        id: lock

        x: Math.floor(size.x) - 10 - width
        anchors.verticalCenter: parent.verticalCenter
        name: "lock.fill"
        size: Theme.symbolSize(Theme.body.pixelSize)
        color: Theme.orange
        visible: row.requiresAdministrator

        HoverHandler { id: lockHover }
    }

    TabularText {
        id: size

        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        text: row.sizeText
        font: Theme.caption
        color: Theme.secondary
        Accessible.ignored: true
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.RightButton
        onPressed: mouse => row.showMenu(mouse.x, mouse.y)
    }

    Component {
        id: menuComponent

        PopupMenu {
            id: menu

            onClosed: menu.destroy()

            PopupMenuItem {
                symbol: "folder"
                text: "Show in Finder"
                onTriggered: row.revealRequested()
            }
        }
    }
}
