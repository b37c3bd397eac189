import QtQuick
import Orvane

/// A home on a Mac's disk. A click opens it.
Item {
    id: row

    required property int index
    required property string title
    required property string caption
    required property bool canBeOpened
    required property bool isCurrent

    readonly property bool isHighlighted: activeFocus && Window.active
    readonly property color ink: isHighlighted ? Theme.accentText : Theme.label

    signal opened

    implicitHeight: 50
    opacity: canBeOpened ? 1 : 0.5

    Accessible.role: Accessible.ListItem
    Accessible.name: title + ", " + caption
    Accessible.description: canBeOpened ? "" : "dimmed"
    Accessible.focusable: true
    Accessible.selectable: true
    Accessible.selected: isCurrent
    Accessible.onPressAction: opened()

    TapHandler {
        onTapped: row.opened()
    }

    HoverHandler {
        id: pointer
    }

    PixelRectangle {
        anchors.fill: parent
        radius: 8
        color: row.isHighlighted ? Theme.accent : Theme.quaternaryFill(0.8)
        visible: row.isHighlighted || pointer.hovered
    }

    Symbol {
        id: symbol

        x: 12
        anchors.verticalCenter: parent.verticalCenter
        name: "internaldrive.fill"
        size: 22
        color: row.isHighlighted ? Theme.accentText : Theme.secondary
    }

    Column {
        anchors { left: symbol.right; leftMargin: 12; right: parent.right; rightMargin: 12; verticalCenter: parent.verticalCenter }
        spacing: 3

        OneLineText {
            width: parent.width
            line: row.title
            font: Theme.weighted(Theme.body, Font.Medium)
            color: row.ink
            elide: Text.ElideRight
            Accessible.ignored: true
        }

        OneLineText {
            width: parent.width
            line: row.caption
            font: Theme.caption
            color: row.isHighlighted ? Theme.faded(Theme.accentText, 0.8) : Theme.secondary
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }
}
