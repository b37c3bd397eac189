import QtQuick.Templates as T

/// A button of an alert.
T.Action {
    /// At the top, prominent, and pressed by Return.
    property bool isDefault: false
    /// Pressed by Escape.
    property bool isCancel: false
    /// Written in red; never the default.
    property bool isDestructive: false
}
