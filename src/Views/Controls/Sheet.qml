import QtQuick

/// A sheet below the window's top edge. Return presses the default button and Escape the cancel button, when these
/// are enabled; whoever shows the sheet clears its `visible`.
ModalPanel {
    id: sheet

    property ActionButton defaultButton
    property ActionButton cancelButton

    restingY: parent ? Math.max(0, Math.round(Math.min(60, (parent.height - height) / 2))) : 0
    onReturnPressed: defaultButton?.activate()
    onEscapePressed: cancelButton?.activate()
}
