import QtQuick
import QtQuick.Templates as T
import Orvane

/// A thin bar over the content, there while something scrolls or the pointer is on it.
T.ScrollBar {
    id: bar

    readonly property int thickness: hovered || pressed ? 10 : 6

    implicitWidth: 14
    implicitHeight: 14
    hoverEnabled: true
    padding: 2
    minimumSize: 0.06
    visible: size < 1

    contentItem: Item {
        PixelRectangle {
            x: bar.vertical ? parent.width - width : 0
            y: bar.vertical ? 0 : parent.height - height
            width: bar.vertical ? bar.thickness : parent.width
            height: bar.vertical ? parent.height : bar.thickness
            radius: bar.thickness / 2
            color: Theme.label
            opacity: bar.pressed ? 0.55 : bar.active ? 0.4 : 0

            Behavior on opacity {
                NumberAnimation { duration: Theme.sheetDuration }
            }
        }
    }
}
