import QtQuick
import Orvane

/// A process that runs from the application.
Item {
    id: row

    required property string name
    required property string caption

    implicitHeight: lines.height + 2 * 5

    Accessible.role: Accessible.ListItem
    Accessible.name: name + ", " + caption

    Item {
        id: frame

        width: 24
        height: parent.height

        Symbol {
            anchors.centerIn: parent
            name: "waveform.path.ecg"
            size: Theme.symbolSize(Theme.body.pixelSize)
            color: Theme.green
        }
    }

    Column {
        id: lines

        anchors { left: frame.right; leftMargin: 10; right: parent.right; verticalCenter: parent.verticalCenter }
        spacing: 2

        OneLineText {
            width: parent.width
            line: row.name
            font: Theme.weighted(Theme.body, Font.Medium)
            Accessible.ignored: true
        }

        OneLineText {
            width: parent.width
            line: row.caption
            drop: 1
            font: Theme.caption
            color: Theme.secondary
            Accessible.ignored: true
        }
    }
}
