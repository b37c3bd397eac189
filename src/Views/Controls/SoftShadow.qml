pragma ComponentBehavior: Bound
import QtQuick

/// A wide, soft shadow behind its parent. It is made of faint rectangles, one in the other, as effects that blur
/// need a graphics processor.
Item {
    id: shadow

    property real shapeRadius: 10
    /// How far the shadow fades out beyond the shape, and how far below the shape it lies.
    property int reach: 44
    property int drop: 14
    property real strength: 0.34

    readonly property int layers: Math.max(6, reach / 2)

    anchors.fill: parent
    z: -1

    Repeater {
        model: shadow.layers

        Rectangle {
            required property int index
            readonly property real place: (index + 0.5) / shadow.layers
            readonly property int spread: Math.round((2 * place - 1) * shadow.reach)

            anchors { fill: parent; margins: -spread; topMargin: shadow.drop - spread; bottomMargin: -shadow.drop - spread }
            radius: Math.max(0, shadow.shapeRadius + spread)
            color: Qt.rgba(0, 0, 0, shadow.strength * 6 * place * (1 - place) / shadow.layers)
        }
    }
}
