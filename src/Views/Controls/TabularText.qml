pragma ComponentBehavior: Bound
import QtQuick

/// One line whose digits all have the same width, for numbers that change or stand in columns.
Row {
    id: line

    property string text
    property font font: Theme.body
    property color color: Theme.label

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    FontMetrics {
        id: metrics

        readonly property real digitWidth: widest("0123456789", font)

        // The font is asked for, so that the width is measured again when it changes.
        function widest(characters: string, _: font): real {
            return Math.max(...[...characters].map(character => advanceWidth(character)))
        }

        font: line.font
    }

    Repeater {
        model: line.text.match(/[0-9]|[^0-9]+/g) ?? []

        PlainText {
            required property string modelData
            readonly property bool isDigit: modelData >= "0" && modelData <= "9"

            width: isDigit ? metrics.digitWidth : implicitWidth
            text: modelData
            font: line.font
            color: line.color
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
