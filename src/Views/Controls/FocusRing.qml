import QtQuick
import Orvane

/// The ring around the control that the keyboard is with. Fills its parent and stands out of it.
PixelRectangle {
    property real shapeRadius: 0

    anchors.fill: parent
    anchors.margins: -lineWidth
    radius: shapeRadius + lineWidth
    color: "transparent"
    lineWidth: 3
    lineColor: Theme.focusRing
}
