import QtQuick
import Orvane

/// An item of the plan that can be ticked for removal.
CheckToggle {
    id: row

    required property int index
    required property string kindTitle
    required property string symbol
    required property string path
    required property string sizeText
    required property bool requiresAdministrator
    required property bool isSelected

    spacing: 10
    checked: isSelected

    Accessible.name: kindTitle + ", " + path
    Accessible.description: [requiresAdministrator ? sizeText + ", Permission required" : sizeText,
                             enabled ? "" : "dimmed"].filter(Boolean).join(", ")

    contentItem: Item {
        implicitHeight: lines.height + 2 * 4
        opacity: row.enabled ? 1 : 0.4

        Item {
            id: frame

            width: 24
            height: parent.height

            Symbol {
                anchors.centerIn: parent
                name: row.symbol
                size: Theme.symbolSize(Theme.body.pixelSize)
                color: row.requiresAdministrator ? Theme.orange : Theme.blue
            }
        }

        Column {
            id: lines

            anchors {
                left: frame.right; leftMargin: row.spacing
                right: size.left; rightMargin: row.spacing
                verticalCenter: parent.verticalCenter
            }
            spacing: 3

            Item {
                width: parent.width
                height: kind.height

                PlainText {
                    id: kind

                    width: Math.ceil(implicitWidth)
                    text: row.kindTitle
                    font: Theme.weighted(Theme.body, Font.Medium)
                    Accessible.ignored: true
                }

                SymbolLabel {
                    anchors { left: kind.right; leftMargin: 8; verticalCenter: parent.verticalCenter }
                    visible: row.requiresAdministrator
                    symbol: "lock.fill"
                    text: "Permission required"
                    font: Theme.caption
                    color: Theme.orange
                }
            }

            OneLineText {
                width: parent.width
                line: row.path
                font: Theme.caption
                color: Theme.secondary
                Accessible.ignored: true
            }
        }

        TabularText {
            id: size

            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            text: row.sizeText
            font: Theme.caption
            color: Theme.secondary
            Accessible.ignored: true
        }
    }
}
