import QtQuick
import QtQuick.Templates as T
import Orvane

/// What sheets and alerts share: they stand over their window, take its keyboard, and slide in while they fade
/// in. They close when their `visible` is cleared, never by themselves: Escape and Return are told as signals.
/// Nothing in them is pressed before the user can have seen it: by the pointer while they slide, by a key until
/// they are ready.
T.Dialog {
    id: panel

    /// Where the panel stands once it has slid in.
    property real restingY: 0
    property real slide: 0
    property color fill: Theme.sheet
    property real radius: 10
    /// What the keyboard is with as soon as the panel is ready; without one it is with nothing in the panel.
    property Item firstFocusItem
    property bool hasShownKeyboard: false
    /// The panel has fully opened and has the keyboard, and for a moment no key has been hit or come up that could
    /// press something in it.
    property bool isReady: false
    readonly property bool isInPlace: opened && contentItem.activeFocus

    readonly property KeyGate gate: KeyGate {
        isShut: panel.contentItem.activeFocus && !panel.isReady
        onKnocked: if (moment.running) moment.restart()
    }
    readonly property Timer moment: Timer {
        id: moment

        interval: 250
        running: panel.isInPlace && !panel.isReady
        onTriggered: panel.isReady = true
    }

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

    onAboutToShow: hasShownKeyboard = false
    onIsInPlaceChanged: isReady = false

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

        MouseArea {
            anchors.fill: parent
            z: 1
            enabled: !panel.opened
            hoverEnabled: true
            acceptedButtons: Qt.AllButtons
            onWheel: wheel => wheel.accepted = true
        }

        Item {
            readonly property bool isReady: panel.isReady

            onIsReadyChanged: {
                if (!isReady || panel.hasShownKeyboard)
                    return
                panel.hasShownKeyboard = true
                const item = panel.firstFocusItem ?? this
                item.forceActiveFocus(Qt.TabFocusReason)
            }
        }
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
