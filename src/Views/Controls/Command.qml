import QtQuick
import QtQuick.Templates as T

/// Something that the user can ask for, in a menu or with keys from any window of the program, also while a sheet
/// is open.
T.Action {
    id: command

    property string keys

    readonly property Shortcut trigger_: Shortcut {
        sequence: command.keys
        context: Qt.ApplicationShortcut
        enabled: command.enabled && command.keys !== ""
        onActivated: command.trigger()
    }
}
