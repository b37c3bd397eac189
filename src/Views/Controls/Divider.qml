import QtQuick
import Orvane

/// A line between two areas, one pixel of the screen thin in a space of one point.
Item {
    property bool isVertical: false

    implicitWidth: isVertical ? 1 : 0
    implicitHeight: isVertical ? 0 : 1

    PixelRectangle {
        readonly property real hairline: 1 / Screen.devicePixelRatio

        width: parent.isVertical ? hairline : parent.width
        height: parent.isVertical ? parent.height : hairline
        color: Theme.separator
    }
}
