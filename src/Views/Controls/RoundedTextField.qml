import QtQuick
import QtQuick.Templates as T

/// A field for one line of text, with a rounded border.
T.TextField {
    id: field

    implicitWidth: 200
    implicitHeight: 24
    leftPadding: 8
    rightPadding: 8
    verticalAlignment: TextInput.AlignVCenter
    font: Theme.body
    color: Theme.label
    selectionColor: Theme.faded(Theme.accent, 0.35)
    selectedTextColor: Theme.label
    selectByMouse: true
    opacity: enabled ? 1 : 0.4

    Accessible.name: placeholderText
    Accessible.description: enabled ? "" : "dimmed"

    background: Surface {
        fill: Theme.field

        FocusRing {
            shapeRadius: 6
            visible: field.activeFocus
        }
    }

    PlainText {
        x: field.leftPadding
        width: field.width - field.leftPadding - field.rightPadding
        height: field.height
        text: field.placeholderText
        font: field.font
        color: Theme.tertiary
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        visible: field.length === 0 && field.preeditText === ""
        Accessible.ignored: true
    }
}
