pragma ComponentBehavior: Bound
import QtQuick
import Orvane

/// Every symbol: large, to see how it is drawn, and beside that at the sizes that the window shows it in.
Window {
    id: sheet

    required property list<string> names
    required property string appearance

    readonly property int columns: 4
    readonly property size cell: Qt.size(244, 92)

    // The sides of the squares in points. What is not named here is shown at the size that goes with body text.
    readonly property var sizes: ({
        "app.badge.checkmark": [18],
        "arrow.clockwise": [16],
        "checklist": [13],
        "doc.on.doc.fill": [18],
        "externaldrive.fill.badge.minus": [18],
        "folder.badge.gearshape": [16],
        "gearshape.2.fill": [16],
        "info.circle": [16],
        "internaldrive": [11],
        "lock.fill": [11, 14],
        "lock.shield.fill": [18],
        "magnifyingglass": [48],
        "number": [11],
        "square.grid.2x2": [48],
        "tick": [12],
        "waveform.path.ecg": [14, 18]
    })

    visible: true
    width: columns * cell.width + 2 * 20
    height: Math.ceil(names.length / columns) * cell.height + 2 * 12
    color: Theme.window
    Component.onCompleted: Theme.appearance = appearance

    Repeater {
        model: sheet.names

        Item {
            id: cell

            required property int index
            required property string modelData
            readonly property list<int> used: sheet.sizes[modelData] ?? [14]

            x: 20 + index % sheet.columns * sheet.cell.width
            y: 12 + Math.floor(index / sheet.columns) * sheet.cell.height
            width: sheet.cell.width
            height: sheet.cell.height

            Rectangle {
                x: 8
                y: 10
                width: 48
                height: 48
                color: Theme.quaternaryFill(0.5)

                Symbol {
                    name: cell.modelData
                    size: 48
                    color: Theme.label
                }
            }

            Row {
                x: 72
                height: 68
                spacing: 14

                Repeater {
                    model: cell.used

                    Row {
                        id: use

                        required property int modelData

                        height: parent.height
                        spacing: 6

                        Symbol {
                            anchors.verticalCenter: parent.verticalCenter
                            name: cell.modelData
                            size: use.modelData
                            color: Theme.label
                        }

                        PlainText {
                            anchors.verticalCenter: parent.verticalCenter
                            text: use.modelData
                            font: Theme.caption
                            color: Theme.tertiary
                        }
                    }
                }
            }

            PlainText {
                x: 8
                y: 64
                width: parent.width - 16
                text: cell.modelData
                font: Theme.caption
                color: Theme.secondary
                elide: Text.ElideRight
            }
        }
    }
}
