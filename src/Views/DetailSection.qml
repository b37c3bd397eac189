import QtQuick
import Orvane

/// A part of the pane: a heading over a box with whatever the view puts into it, one below the other.
Column {
    id: section

    property alias title: heading.text
    property alias symbol: heading.symbol
    default property alias content: stack.data
    /// Where the content begins, in what the section is in.
    readonly property real contentTop: y + box.y

    spacing: 12

    Accessible.role: Accessible.Grouping
    Accessible.name: title

    SymbolLabel {
        id: heading

        width: parent.width
        font: Theme.headline
        spacing: 8
        symbolSize: Theme.scaled(16)
    }

    PixelRectangle {
        id: box

        width: parent.width
        height: stack.height
        radius: 12
        color: Theme.quaternaryFill(0.35)

        Column {
            id: stack

            x: 14
            width: parent.width - 28
            topPadding: 14
            bottomPadding: 14
            spacing: 8
        }
    }
}
