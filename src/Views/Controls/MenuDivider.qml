import QtQuick
import QtQuick.Templates as T

/// A line between groups of commands.
T.MenuSeparator {
    implicitHeight: 11
    padding: 5
    horizontalPadding: 9

    contentItem: Divider {}
}
