import QtQuick
import QtQuick.Templates as T

/// A line of help that appears below its parent when the pointer rests there. It goes when the keyboard goes elsewhere,
/// to a sheet for one.
T.ToolTip {
    id: tip

    /// The pointer asks for it.
    property bool isWanted: false
    readonly property Item focusItem: parent?.Window.activeFocusItem ?? null

    visible: isWanted && text !== "" && (parent?.Window.window ?? null) !== null
    onFocusItemChanged: close()

    x: parent ? Math.round((parent.width - implicitWidth) / 2) : 0
    y: parent ? parent.height + 8 : 0
    implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 6
    verticalPadding: 2
    margins: 4
    delay: 700
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
    font: Theme.subheadline

    background: Surface {
        radius: 4
        fill: Theme.sheet
        line: Theme.separator

        SoftShadow {
            shapeRadius: 4
            reach: 6
            drop: 2
            strength: 0.15
        }
    }

    contentItem: PlainText {
        text: tip.text
        font: tip.font
        wrapMode: Text.Wrap
    }
}
