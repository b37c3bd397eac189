import QtQuick
import Orvane

/// What has to be known of the whole disk, in one line above everything; no height where there is nothing.
Rectangle {
    id: notice

    required property string text

    objectName: "diskNotice"
    height: text === "" ? 0 : 32
    visible: text !== ""
    color: Theme.bar

    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Row {
        anchors { left: parent.left; leftMargin: 16; right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
        spacing: 8

        Symbol {
            id: symbol

            anchors.verticalCenter: parent.verticalCenter
            name: "lock.fill"
            size: Theme.symbolSize(Theme.callout.pixelSize)
            color: Theme.secondary
        }

        OneLineText {
            width: parent.width - symbol.width - parent.spacing
            line: notice.text
            font: Theme.callout
            color: Theme.secondary
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }

    Divider {
        anchors.bottom: parent.bottom
        width: parent.width
    }
}
