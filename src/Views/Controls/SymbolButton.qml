import QtQuick
import Orvane

/// A borderless button that is only a symbol. It can be hit a little beyond what is seen of it.
ActionButton {
    id: button

    property real symbolSize: Theme.scaled(16)
    readonly property int reach: 4

    implicitWidth: symbolSize
    implicitHeight: symbolSize

    containmentMask: QtObject {
        function contains(point: point): bool {
            return point.x >= -button.reach && point.x < button.width + button.reach
                   && point.y >= -button.reach && point.y < button.height + button.reach
        }
    }

    background: Item {
        PixelRectangle {
            readonly property bool isLit: button.enabled && (button.down || button.hovered)

            anchors { fill: parent; margins: -button.reach }
            radius: 5
            color: isLit ? Theme.quaternaryFill(button.down ? 1 : 0.5) : "transparent"

            FocusRing {
                shapeRadius: parent.radius
                visible: button.visualFocus
            }
        }
    }

    contentItem: Symbol {
        name: button.symbol
        size: button.symbolSize
        opacity: button.enabled ? 1 : Theme.disabledOpacity
        color: button.down || button.hovered ? Theme.label : Theme.secondary
    }
}
