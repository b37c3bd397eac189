import QtQuick
import QtQuick.Layouts
import Orvane

/// How many applications are listed, the way to the About window, and the rescan.
Item {
    id: footer

    required property SidebarModel model

    signal aboutRequested

    implicitHeight: row.implicitHeight + 2 * 12

    RowLayout {
        id: row

        x: 12
        y: 12
        width: footer.width - 2 * 12
        spacing: 12

        PlainText {
            objectName: "applicationCount"
            text: footer.model.countText
            font: Theme.caption
            color: Theme.secondary
            elide: Text.ElideRight
            Layout.fillWidth: true
        }

        SymbolButton {
            objectName: "aboutButton"
            symbol: "info.circle"
            helpText: "About Orvane"
            onClicked: footer.aboutRequested()
        }

        SymbolButton {
            objectName: "rescanButton"
            symbol: "arrow.clockwise"
            helpText: "Rescan applications"
            enabled: !footer.model.isScanning
            onClicked: footer.model.rescan()
        }
    }
}
