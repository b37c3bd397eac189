import QtQuick
import QtQuick.Templates as T
import Orvane

/// The window in which a disk is chosen, before there is one to show.
T.ApplicationWindow {
    id: door

    required property FrontDoorModel model
    /// "light", "dark" or "system".
    property string appearance: "system"
    /// What `Theme` follows; without one, it follows the palette alone.
    property Desktop desktop: null

    title: "Orvane"
    width: 1120
    height: 800 + menuBar.height
    minimumWidth: 640
    minimumHeight: 480 + menuBar.height
    color: Theme.window

    Binding {
        target: Theme
        property: "appearance"
        value: door.appearance
    }
    Binding {
        target: Theme
        property: "desktop"
        value: door.desktop
    }

    // Most looks are over at once, and then often with the only disk open: nothing flashes up for them.
    Timer {
        running: door.model.isLooking
        interval: 400
        onTriggered: door.visible = true
    }

    Connections {
        target: door.model

        function onIsLookingChanged() {
            if (!door.model.isLooking)
                door.visible = true
        }
    }

    menuBar: WindowMenuBar {
        objectName: "menuBar"

        PopupMenu {
            title: "Orvane"

            Command {
                text: "Quit Orvane"
                keys: "Ctrl+Q"
                onTriggered: Qt.quit()
            }
        }

        PopupMenu {
            title: "File"

            Command {
                objectName: "chooseFolderCommand"
                text: "Choose Folder…"
                keys: "Ctrl+O"
                onTriggered: page.chooseFolder()
            }

            Command {
                objectName: "lookAgainCommand"
                text: "Look Again"
                keys: "Ctrl+R"
                onTriggered: door.model.look()
            }

            MenuDivider {}

            Command {
                text: "Close Window"
                keys: "Ctrl+W"
                onTriggered: door.close()
            }
        }
    }

    FrontDoorPage {
        id: page

        anchors.fill: parent
        focus: true
        model: door.model
    }
}
