import QtQuick

/// A bordered button with a text, a symbol, or both.
ActionButton {
    id: button

    /// Filled with the accent colour, for the one action that the view is about.
    property bool isProminent: false
    /// Written in red, for what cannot be undone.
    property bool isDestructive: false
    property bool isLarge: false

    readonly property real radius: isLarge ? 7 : 6
    readonly property color ink: isProminent ? Theme.accentText : isDestructive ? Theme.red : Theme.label
    readonly property color rest: isProminent ? Theme.accent : Theme.control

    implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
    implicitHeight: Theme.scaled(isLarge ? 30 : 22)
    horizontalPadding: isLarge ? 14 : 9
    font: Theme.body

    background: Surface {
        radius: button.radius
        fill: Qt.darker(button.rest, button.down ? 1.1 : button.hovered ? 1.03 : 1)
        opacity: button.enabled ? 1 : Theme.disabledOpacity
        line: button.isProminent ? "transparent" : Theme.controlLine

        FocusRing {
            shapeRadius: button.radius
            visible: button.visualFocus
        }
    }

    contentItem: ButtonLabel {
        symbol: button.symbol
        text: button.text
        font: button.font
        color: button.ink
        // White on a paler fill stays white, as it would be if both faded as one.
        opacity: button.enabled || (button.isProminent && !Theme.isDark) ? 1 : Theme.disabledOpacity
    }
}
