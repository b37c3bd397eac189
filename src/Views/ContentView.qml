pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Orvane

/// The main window's content: the applications on the left, the selected one on the right.
T.SplitView {
    id: view

    required property ContentModel model

    signal aboutRequested

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
        objectName: "sidebar"
        T.SplitView.minimumWidth: 280
        T.SplitView.preferredWidth: 320
        T.SplitView.maximumWidth: 380
        model: view.model.sidebar
        onAboutRequested: view.aboutRequested()
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

            AppDetailView {
                required property DetailModel modelData

                objectName: "detailPane"
                anchors.fill: parent
                model: modelData
            }
        }
    }
}
