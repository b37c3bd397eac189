import QtQuick
import Orvane

/// What has to be known of an application before anything else.
PixelRectangle {
    id: notice

    required property string symbol
    required property string title
    required property string message
    required property color ink
    required property color fill

    implicitHeight: lines.height + 28
    radius: 12
    color: fill

    Accessible.role: Accessible.AlertMessage
    Accessible.name: title
    Accessible.description: message

    Item {
        id: frame

        x: 14
        width: 24
        height: parent.height

        Symbol {
            anchors.centerIn: parent
            name: notice.symbol
            size: Theme.symbolSize(Theme.title2.pixelSize)
            color: notice.ink
        }
    }

    Column {
        id: lines

        anchors { left: frame.right; leftMargin: 8; right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }

        PlainText {
            width: parent.width
            text: notice.title
            font: Theme.weighted(Theme.body, Font.DemiBold)
            color: notice.ink
            wrapMode: Text.Wrap
        }

        PlainText {
            width: parent.width
            text: notice.message
            font: Theme.callout
            color: notice.ink
            wrapMode: Text.Wrap
        }
    }
}
