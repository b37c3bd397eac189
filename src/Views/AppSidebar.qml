import QtQuick
import Orvane

/// The left column: the program's mark, the search, the list of applications, and what can be done with all of them.
Rectangle {
    id: sidebar

    required property SidebarModel model
    /// What stays free at the top.
    property real air: 0

    signal aboutRequested

    function focusList() {
        list.forceActiveFocus(Qt.TabFocusReason)
    }

    color: Theme.sidebar

    Component.onCompleted: model.appear()

    Shortcut {
        sequence: "Ctrl+F"
        onActivated: header.focusSearch()
    }

    SidebarHeader {
        id: header

        y: sidebar.air
        width: parent.width
        model: sidebar.model
        onListRequested: key => list.take(key)
    }

    Divider {
        id: upperDivider

        y: header.y + header.height
        width: parent.width
    }

    ApplicationList {
        id: list

        objectName: "applicationList"
        anchors { left: parent.left; right: parent.right; top: upperDivider.bottom; bottom: lowerDivider.top }
        sidebar: sidebar.model
        focus: true
    }

    Divider {
        id: lowerDivider

        anchors.bottom: footer.top
        width: parent.width
    }

    SidebarFooter {
        id: footer

        anchors.bottom: parent.bottom
        width: parent.width
        model: sidebar.model
        onAboutRequested: sidebar.aboutRequested()
    }
}
