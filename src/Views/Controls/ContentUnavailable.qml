import QtQuick
import Orvane

/// What stands where content would be: a symbol, what is missing, and what can be done about it.
Column {
    id: placeholder

    property alias symbol: image.name
    property alias title: heading.text
    property alias description: detail.text

    width: 300
    spacing: 6

    Accessible.role: Accessible.Grouping
    Accessible.name: heading.text

    Symbol {
        id: image

        anchors.horizontalCenter: parent.horizontalCenter
        size: 48
        color: Theme.secondary
    }

    Item {
        width: 1
        height: 4
    }

    PlainText {
        id: heading

        width: parent.width
        font: Theme.weighted(Theme.title2, Font.Bold)
        wrapMode: Text.Wrap
        maximumLineCount: 4
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignHCenter
        Accessible.role: Accessible.Heading
    }

    PlainText {
        id: detail

        width: parent.width
        color: Theme.secondary
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
    }
}
