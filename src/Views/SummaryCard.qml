import QtQuick
import Orvane

/// One number of the plan, with what it counts.
PixelRectangle {
    id: card

    required property string title
    required property string value
    required property string symbol
    required property color tint

    implicitHeight: Math.max(frame.height, lines.height) + 2 * 14
    radius: 12
    color: Theme.quaternaryFill(0.45)

    Accessible.role: Accessible.StaticText
    Accessible.name: title + ": " + value

    PlainText {
        id: unwrapped

        visible: false
        text: card.title
        font: Theme.caption
        Accessible.ignored: true
    }

    Row {
        anchors.centerIn: parent
        spacing: 12

        PixelRectangle {
            id: frame

            width: 42
            height: 42
            radius: 10
            color: Theme.faded(card.tint, 0.12)

            Symbol {
                anchors.centerIn: parent
                name: card.symbol
                size: Theme.symbolSize(Theme.title2.pixelSize)
                color: card.tint
            }
        }

        Column {
            id: lines

            anchors.verticalCenter: parent.verticalCenter
            spacing: 2

            PlainText {
                width: Math.min(Math.ceil(implicitWidth), card.width - 28 - 54)
                text: card.value
                font: Theme.weighted(Theme.title3, Font.Bold)
                elide: Text.ElideRight
                Accessible.ignored: true
            }

            PlainText {
                // Not its own: what a text that is wrapped and cut would like changes while it is laid out.
                width: Math.min(Math.ceil(unwrapped.implicitWidth), card.width - 28 - 54)
                text: card.title
                font: Theme.caption
                color: Theme.secondary
                // Larger text may need two lines for its two words.
                wrapMode: Text.Wrap
                maximumLineCount: 2
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
}
