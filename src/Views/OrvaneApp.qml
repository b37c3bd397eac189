pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Orvane

/// The program's windows and its commands.
T.ApplicationWindow {
    id: app

    required property ContentModel contentModel
    required property AboutModel aboutModel
    /// "light", "dark" or "system".
    property string appearance: "system"
    /// What `Theme` follows; without one, it follows the palette alone.
    property Desktop desktop: null
    /// Whether other disks can be opened; not on a Mac, which has its own.
    property bool opensDisks: false
    /// What to know of the disk before anything is removed from it; empty for nothing.
    property string diskNotice

    /// What stays free above the sidebar, because the system's buttons lie there.
    property real titleBarAir: 0
    /// Whether the desktop shows the menus, and the window does not.
    property bool hasNativeMenuBar: false

    /// The program ends this window in order to open another disk.
    property bool isForAnotherDisk: false

    // It has a place in a menu only where there are disks to open.
    readonly property Command openDiskCommand: Command {
        objectName: "openDiskCommand"
        text: "Open Mac Disk…"
        keys: "Ctrl+O"
        enabled: app.opensDisks && !app.contentModel.detail?.isShowingRemovalSheet
        onTriggered: {
            app.isForAnotherDisk = true
            Qt.exit(0)
        }
    }

    /// Made when it is first asked for.
    property AboutWindow aboutWindow: null

    function showAbout() {
        if (!aboutWindow)
            aboutWindow = aboutComponent.createObject(app) as AboutWindow
        aboutWindow.show()
        aboutWindow.raise()
        aboutWindow.requestActivate()
    }

    title: "Orvane"
    width: 1120
    height: 800 + menuBar.height
    minimumWidth: 980
    minimumHeight: 640 + menuBar.height
    color: Theme.window
    visible: true

    Component.onCompleted: if (opensDisks) fileMenu.insertAction(0, openDiskCommand)
    onVisibleChanged: if (visible) contentModel.load()

    Binding {
        target: Theme
        property: "appearance"
        value: app.appearance
    }

    Binding {
        target: Theme
        property: "desktop"
        value: app.desktop
    }

    menuBar: WindowMenuBar {
        objectName: "menuBar"
        visible: !app.hasNativeMenuBar
        height: visible ? implicitHeight : 0

        PopupMenu {
            objectName: "applicationMenu"
            title: "Orvane"

            Command {
                objectName: "aboutCommand"
                text: "About Orvane"
                onTriggered: app.showAbout()
            }

            MenuDivider {}

            Command {
                objectName: "quitCommand"
                text: "Quit Orvane"
                keys: "Ctrl+Q"
                onTriggered: Qt.quit()
            }
        }

        PopupMenu {
            id: fileMenu

            objectName: "fileMenu"
            title: "File"

            Command {
                objectName: "closeCommand"
                text: "Close Window"
                keys: "Ctrl+W"
                onTriggered: app.aboutWindow?.active ? app.aboutWindow.close() : app.close()
            }
        }

        PopupMenu {
            objectName: "libraryMenu"
            title: "Library"

            Command {
                objectName: "rescanCommand"
                text: "Rescan Applications"
                keys: "Ctrl+R"
                onTriggered: app.contentModel.rescan()
            }
        }
    }

    DiskNotice {
        id: diskNotice

        width: parent.width
        text: app.diskNotice
    }

    ContentView {
        anchors { top: diskNotice.bottom; left: parent.left; right: parent.right; bottom: parent.bottom }
        model: app.contentModel
        titleBarAir: app.titleBarAir
        onAboutRequested: app.showAbout()
    }

    Component {
        id: aboutComponent

        AboutWindow {
            model: app.aboutModel
        }
    }
}
