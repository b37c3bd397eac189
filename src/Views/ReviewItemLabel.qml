import QtQuick
import Orvane

/// What is said of an item beside its box: its kind, its path, its size.
Item {
    id: label

    required property string kindTitle
    required property string symbol
    required property string path
    required property string sizeText
    required property bool requiresAdministrator

    // Known before the lines are laid out: a row that is far from those in sight has its place by it.
    implicitHeight: Theme.lineHeight(Theme.body.pixelSize) + lines.spacing + Theme.lineHeight(Theme.caption.pixelSize) + 2 * 4

    Item {
        id: frame

        width: 24
        height: parent.height

        Symbol {
            anchors.centerIn: parent
            name: label.symbol
            size: Theme.symbolSize(Theme.body.pixelSize)
            color: label.requiresAdministrator ? Theme.orange : Theme.blue
        }
    }

    Column {
        id: lines

        anchors {
            left: frame.right; leftMargin: 10
            right: size.left; rightMargin: 10
            verticalCenter: parent.verticalCenter
        }
        spacing: 3

        Item {
            width: parent.width
            height: kind.height

            PlainText {
                id: kind

                width: Math.ceil(implicitWidth)
                text: label.kindTitle
                font: Theme.weighted(Theme.body, Font.Medium)
                // A little higher in its line, which leaves air above the path.
                topPadding: -0.5
                bottomPadding: 0.5
                Accessible.ignored: true
            }

            Loader {
                anchors { left: kind.right; leftMargin: 8; verticalCenter: parent.verticalCenter }
                active: label.requiresAdministrator
                sourceComponent: SymbolLabel {
                    symbol: "lock.fill"
                    text: "Permission required"
                    font: Theme.caption
                    color: Theme.orange
                }
            }
        }

        OneLineText {
            width: parent.width
            line: label.path
            drop: 0.5
            font: Theme.caption
            color: Theme.secondary
            Accessible.ignored: true
        }
    }

    TabularText {
        id: size

        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        text: label.sizeText
        font: Theme.caption
        color: Theme.secondary
        Accessible.ignored: true
    }
}
