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

    /// Of one application after the other, while any is selected.
    property AppDetailView pane

    signal aboutRequested

    /// Gives the keyboard to the list if it is with nothing but the window itself.
    function catchKeyboard() {
        const item = Window.activeFocusItem
        if (!item?.parent || item === T.ApplicationWindow.window?.contentItem)
            sidebar.focusList()
    }

    function showDetail() {
        const model = view.model.detail
        if (!pane) {
            if (model)
                pane = paneComponent.createObject(detailColumn, { model }) as AppDetailView
            return
        }
        if (model) {
            pane.model = model
        } else {
            pane.visible = false
            pane.destroy()
            pane = null
        }
        applicationHasGone.start()
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

    // What had the keyboard in the pane, or in the sheet over it, may have gone with the application: later, when it has
    // been deleted.
    Timer {
        id: applicationHasGone

        interval: 0
        onTriggered: {
            if (view.pane?.holds(view.Window.activeFocusItem))
                sidebar.focusList()
            else
                view.catchKeyboard()
        }
    }

    Rectangle {
        id: detailColumn

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
    }

    Component {
        id: paneComponent

        AppDetailView {
            objectName: "detailPane"
            anchors.fill: parent
        }
    }

    Connections {
        target: view.model

        function onDetailChanged() { view.showDetail() }
    }

    Component.onCompleted: showDetail()
}
