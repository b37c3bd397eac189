import QtQuick
import Orvane

/// The body of a control: a fill within a hairline, which throws a faint shadow.
Item {
    id: surface

    property real radius: 6
    property color fill: Theme.control
    property color line: Theme.controlLine
    property bool isRaised: true

    readonly property real hairline: 1 / Screen.devicePixelRatio

    PixelRectangle {
        anchors { fill: parent; topMargin: 1; bottomMargin: -1 }
        radius: surface.radius
        color: Theme.controlShadow
        visible: surface.isRaised && surface.enabled
    }

    PixelRectangle {
        anchors.fill: parent
        radius: surface.radius
        color: surface.fill
        lineWidth: surface.line.a > 0 ? surface.hairline : 0
        lineColor: Qt.tint(surface.fill, surface.line)
    }
}
