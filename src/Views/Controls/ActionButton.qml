import QtQuick
import QtQuick.Templates as T

/// What all push buttons share: keyboard, screen reader and help text. Takes no focus from a click.
T.Button {
    id: button

    /// What the button does, in a tip under the pointer. It names a button that has no text.
    property string helpText
    property string symbol

    function activate() {
        if (!enabled)
            return
        if (action)
            action.trigger(button)
        else
            clicked()
    }

    hoverEnabled: true
    focusPolicy: Qt.TabFocus

    Keys.onReturnPressed: activate()
    Keys.onEnterPressed: activate()

    Accessible.name: text || helpText
    Accessible.description: enabled ? "" : "dimmed"
    Accessible.onPressAction: activate()

    HelpTip {
        text: button.helpText
        isWanted: button.hovered && !button.pressed
    }
}
