pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Orvane

/// The main window's content: the applications on the left, the selected one on the right.
T.SplitView {
    id: view

    required property ContentModel model
    /// What stays free above the sidebar.
    property real titleBarAir: 0

    signal aboutRequested

    /// Gives the keyboard to the list if it is with nothing but the window itself.
    function catchKeyboard() {
        const item = Window.activeFocusItem
        if (!item?.parent || item === T.ApplicationWindow.window?.contentItem)
            sidebar.focusList()
    }

    handle: Divider {
        id: handle

        isVertical: true
        containmentMask: QtObject {
            function contains(point: point): bool {
                return point.x >= -4 && point.x < handle.width + 4
            }
        }
    }

    AppSidebar {
        id: sidebar

        objectName: "sidebar"
        T.SplitView.minimumWidth: 280
        T.SplitView.preferredWidth: 320
        T.SplitView.maximumWidth: 380
        model: view.model.sidebar
        air: view.titleBarAir
        onAboutRequested: view.aboutRequested()
    }

    // What had the keyboard in a pane, or in the sheet over it, goes with it: later, when that has been deleted.
    Timer {
        id: paneHasGone

        interval: 0
        onTriggered: view.catchKeyboard()
    }

    Rectangle {
        objectName: "detailColumn"
        T.SplitView.fillWidth: true
        color: Theme.window

        ContentUnavailable {
            objectName: "detailPlaceholder"
            anchors.centerIn: parent
            visible: !view.model.detail
            symbol: "square.grid.2x2"
            title: "Select an Application"
            description: "Choose an installed application to inspect its files and services."
        }

        // A pane of its own for each model, so that another application's starts afresh.
        Repeater {
            model: view.model.detail ? [view.model.detail] : []
            onItemRemoved: paneHasGone.start()

            AppDetailView {
                required property DetailModel modelData

                objectName: "detailPane"
                anchors.fill: parent
                model: modelData
            }
        }
    }
}
