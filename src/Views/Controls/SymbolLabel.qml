import QtQuick
import QtQuick.Layouts
import Orvane

/// A symbol with a text beside it, both in one colour. The text is cut short where there is no room.
RowLayout {
    property alias text: title.line
    property alias font: title.font
    property alias color: title.color
    property alias symbol: image.name
    property alias symbolSize: image.size

    spacing: 5

    Symbol {
        id: image

        size: Theme.symbolSize(title.font.pixelSize)
        color: title.color
    }

    OneLineText {
        id: title

        elide: Text.ElideRight
        Layout.fillWidth: true
    }
}
