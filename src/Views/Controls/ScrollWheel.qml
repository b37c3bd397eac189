import QtQuick
import QtQuick.Templates as T

/// Scrolls a view that is not to be dragged, by wheel and touchpad, and shows its bar meanwhile.
WheelHandler {
    id: wheel

    required property Flickable view
    required property T.ScrollBar bar

    // One step of a wheel is three lines of about 16 points.
    readonly property real pointsPerDegree: 3 * 16 / 15

    readonly property Timer rest: Timer {
        interval: 600
        onTriggered: wheel.bar.active = wheel.bar.hovered
    }

    target: null
    acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad

    onWheel: event => {
        const distance = event.pixelDelta.y || event.angleDelta.y / 8 * pointsPerDegree
        const top = view.originY - view.topMargin
        const bottom = Math.max(top, view.originY + view.contentHeight + view.bottomMargin - view.height)
        view.contentY = Math.round(Math.max(top, Math.min(bottom, view.contentY - distance)))
        bar.active = true
        rest.restart()
    }
}
