import QtQuick
import QtQuick.Layouts
import Orvane

/// The program's mark, whether a scan runs, and the search.
Item {
    id: header

    required property SidebarModel model

    /// The user is done with the search and wants to choose from what it has found, with the key that says so.
    signal listRequested(int key)

    function focusSearch() {
        search.forceActiveFocus(Qt.ShortcutFocusReason)
        search.selectAll()
    }

    implicitHeight: column.implicitHeight + 2 * 16

    ColumnLayout {
        id: column

        x: 16
        y: 16
        width: header.width - 2 * 16
        spacing: 12

        RowLayout {
            spacing: 10

            Image {
                objectName: "sidebarIcon"
                source: Theme.programIcon
                sourceSize { width: 38; height: 38 }
                Layout.preferredWidth: 38
                Layout.preferredHeight: 38
            }

            Column {
                objectName: "sidebarTitles"
                Layout.fillWidth: true

                PlainText {
                    text: "Orvane"
                    font: Theme.weighted(Theme.title2, Font.Bold)
                    Accessible.role: Accessible.Heading
                }

                PlainText {
                    text: "Application uninstaller"
                    font: Theme.caption
                    color: Theme.secondary
                }
            }

            Spinner {
                objectName: "scanIndicator"
                visible: header.model.isScanning
            }
        }

        RoundedTextField {
            id: search

            objectName: "searchField"
            placeholderText: "Search applications"
            text: header.model.searchText
            onTextEdited: header.model.searchText = text
            Keys.onEscapePressed: header.model.searchText = ""
            Keys.onDownPressed: header.listRequested(Qt.Key_Down)
            Keys.onReturnPressed: header.listRequested(Qt.Key_Return)
            Keys.onEnterPressed: header.listRequested(Qt.Key_Return)
            Layout.fillWidth: true
        }
    }
}
