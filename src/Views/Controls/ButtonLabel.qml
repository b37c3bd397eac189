import QtQuick
import Orvane

/// What is written on a button, in the middle of it: a symbol, a text, or both.
Item {
    id: label

    property alias symbol: image.name
    property alias text: title.text
    property alias font: title.font
    property color color

    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight

    Row {
        id: row

        anchors.centerIn: parent
        // So that the symbol stands on whole points.
        width: Math.ceil(implicitWidth)
        spacing: 5

        Symbol {
            id: image

            anchors.verticalCenter: parent.verticalCenter
            size: Theme.symbolSize(title.font.pixelSize)
            color: label.color
            visible: name !== ""
        }

        PlainText {
            id: title

            anchors.verticalCenter: parent.verticalCenter
            color: label.color
            visible: text !== ""
            Accessible.ignored: true
        }
    }
}
