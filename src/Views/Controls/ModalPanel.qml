import QtQuick
import QtQuick.Templates as T

/// What sheets and alerts share: they stand over their window, take its keyboard, and slide in while they fade
/// in. They close when their `visible` is cleared, never by themselves: Escape and Return are told as signals.
T.Dialog {
    id: panel

    /// Where the panel stands once it has slid in.
    property real restingY: 0
    property real slide: 0
    property color fill: Theme.sheet
    property real radius: 10

    signal escapePressed
    signal returnPressed

    parent: T.Overlay.overlay
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: restingY + slide
    modal: true
    focus: true
    header: null
    footer: null
    padding: 0
    closePolicy: T.Popup.NoAutoClose

    background: Surface {
        radius: panel.radius
        fill: panel.fill
        line: Theme.separator
        isRaised: false

        SoftShadow { shapeRadius: panel.radius }
    }

    contentItem: FocusScope {
        focus: true
        Keys.onEscapePressed: panel.escapePressed()
        Keys.onReturnPressed: panel.returnPressed()
        Keys.onEnterPressed: panel.returnPressed()
    }

    T.Overlay.modal: Rectangle {
        color: Theme.veil

        Behavior on opacity {
            NumberAnimation { duration: Theme.sheetDuration }
        }
    }

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.sheetDuration }
        NumberAnimation { property: "slide"; from: -8; to: 0; duration: Theme.sheetDuration; easing.type: Easing.OutQuad }
    }

    exit: Transition {
        NumberAnimation { property: "opacity"; to: 0; duration: Theme.sheetDuration }
        NumberAnimation { property: "slide"; to: -8; duration: Theme.sheetDuration; easing.type: Easing.InQuad }
    }
}
