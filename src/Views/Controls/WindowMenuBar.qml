pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Orvane

/// The menu bar in the window, where the desktop has none of its own. Alt with the first letter of a menu opens it.
T.MenuBar {
    id: bar

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + 1
    leftPadding: 6
    rightPadding: 6

    readonly property AltKey altKey: AltKey {}

    Shortcut {
        sequence: "F10"
        onActivated: (bar.itemAt(0) as T.MenuBarItem).triggered()
    }

    delegate: T.MenuBarItem {
        id: title

        readonly property TextMetrics letter: TextMetrics {
            font: title.font
            text: title.text.charAt(0)
        }

        implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
        implicitHeight: Theme.scaled(27)
        horizontalPadding: 10
        hoverEnabled: true
        font: Theme.body

        Accessible.name: text
        Accessible.onPressAction: triggered()

        Shortcut {
            sequence: "Alt+" + title.text.charAt(0)
            onActivated: title.triggered()
        }

        background: Item {
            PixelRectangle {
                anchors { fill: parent; margins: 2 }
                radius: 5
                color: Theme.quaternaryFill(title.highlighted || title.down ? 1.2 : 0.6)
                visible: title.highlighted || title.down || title.hovered
            }
        }

        contentItem: PlainText {
            text: title.text
            font: title.font
            verticalAlignment: Text.AlignVCenter
            Accessible.ignored: true

            PixelRectangle {
                objectName: "mnemonic"
                y: Theme.scaled(20)
                width: title.letter.advanceWidth
                height: 1
                color: Theme.label
                visible: bar.altKey.isDown
            }
        }
    }

    contentItem: Row {
        Repeater { model: bar.contentModel }
    }

    background: Rectangle {
        color: Theme.bar

        Divider {
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        }
    }
}
