import QtQuick

/// The ring around the control that the keyboard is with. Fills its parent and stands out of it.
Rectangle {
    property real shapeRadius: 0

    anchors.fill: parent
    anchors.margins: -border.width
    radius: shapeRadius + border.width
    color: "transparent"
    border.width: 3
    border.color: Theme.focusRing
}
