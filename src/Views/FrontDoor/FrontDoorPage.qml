pragma ComponentBehavior: Bound
import QtQuick
import Orvane

/// The Mac disks of this machine, and the way to any other folder: by a dialog, or dropped here.
FocusScope {
    id: page

    required property FrontDoorModel model

    function chooseFolder() {
        chooser.active = true
        if (chooser.item)
            (chooser.item as FolderChooser).open()
    }

    /// Gives the keyboard to what is most likely wanted.
    function catchKeyboard() {
        if (list.count > 0 && list.currentIndex < 0)
            list.currentIndex = 0
        if (list.count > 0)
            list.forceActiveFocus(Qt.OtherFocusReason)
        else
            chooseButton.forceActiveFocus(Qt.OtherFocusReason)
    }

    Component.onCompleted: catchKeyboard()
    Keys.onEscapePressed: if (model.canCancel) model.cancel()

    Accessible.role: Accessible.Grouping
    Accessible.name: heading.text

    DropArea {
        id: dropArea

        objectName: "dropArea"
        anchors.fill: parent
        onEntered: drag => drag.accepted = drag.hasUrls && drag.urls.length === 1
        onDropped: drop => page.model.openFolder(drop.urls[0])
    }

    PixelRectangle {
        anchors { fill: parent; margins: 12 }
        radius: 12
        color: "transparent"
        lineWidth: 2
        lineColor: Theme.accent
        visible: dropArea.containsDrag
    }

    Column {
        anchors.centerIn: parent
        width: Math.min(560, page.width - 2 * 32)
        spacing: 20

        Column {
            width: parent.width
            spacing: 6

            Image {
                anchors.horizontalCenter: parent.horizontalCenter
                source: Theme.programIcon
                sourceSize { width: 76; height: 76 }
                width: 76
                height: 76
            }

            Item {
                width: 1
                height: 4
            }

            PlainText {
                id: heading

                width: parent.width
                text: "Open a Mac Disk"
                font: Theme.weighted(Theme.title, Font.Bold)
                horizontalAlignment: Text.AlignHCenter
                Accessible.role: Accessible.Heading
            }

            PlainText {
                objectName: "explanation"
                width: parent.width
                text: page.model.isLooking ? "Looking for Mac disks…"
                    : page.model.count > 0 ? "Choose a disk that is mounted on this machine, or a folder laid out like one."
                    : "No Mac disk is mounted on this machine. Choose a folder laid out like one, such as a backup, or drop it here."
                color: Theme.secondary
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
            }

            Spinner {
                anchors.horizontalCenter: parent.horizontalCenter
                visible: page.model.isLooking
            }
        }

        PixelRectangle {
            width: parent.width
            height: list.height + 2 * 6
            radius: 12
            color: Theme.quaternaryFill(0.45)
            visible: page.model.count > 0

            ListView {
                id: list

                objectName: "diskList"
                x: 6
                y: 6
                width: parent.width - 2 * 6
                height: Math.min(contentHeight, Math.max(56, page.height - 380))
                model: page.model
                clip: contentHeight > height
                interactive: contentHeight > height
                boundsBehavior: Flickable.StopAtBounds
                keyNavigationEnabled: false
                activeFocusOnTab: true

                Accessible.role: Accessible.List
                Accessible.name: "Mac disks"

                onCountChanged: nextTurn.start()
                onCurrentItemChanged: if (activeFocus) currentItem?.forceActiveFocus()
                onActiveFocusChanged: if (activeFocus) currentItem?.forceActiveFocus()

                readonly property RowKeys rowKeys: RowKeys {
                    count: list.count
                    current: list.currentIndex
                    onRowRequested: row => list.currentIndex = row
                }

                Keys.onPressed: event => event.accepted = rowKeys.go(event.key)
                Keys.onReturnPressed: page.model.open(currentIndex)
                Keys.onEnterPressed: page.model.open(currentIndex)
                Keys.onSpacePressed: page.model.open(currentIndex)

                delegate: DiskRow {
                    width: list.width
                    isCurrent: ListView.isCurrentItem
                    onOpened: page.model.open(index)
                }
            }
        }

        Notice {
            objectName: "message"
            width: parent.width
            visible: page.model.message !== ""
            symbol: "info.circle"
            title: page.model.message
            message: "Another folder can be chosen, or the disk be mounted and looked for again."
            ink: Theme.orange
            fill: Theme.faded(Theme.orange, 0.12)
        }

        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 10

            PushButton {
                objectName: "cancelButton"
                text: "Cancel"
                isLarge: true
                visible: page.model.canCancel
                onClicked: page.model.cancel()
            }

            PushButton {
                objectName: "lookAgainButton"
                text: "Look Again"
                isLarge: true
                enabled: !page.model.isLooking
                onClicked: page.model.look()
            }

            PushButton {
                id: chooseButton

                objectName: "chooseFolderButton"
                text: "Choose Folder…"
                isLarge: true
                isProminent: page.model.count === 0
                onClicked: page.chooseFolder()
            }
        }
    }

    Timer {
        id: nextTurn

        // While the model tells of its change, the rows are not there yet.
        interval: 0
        onTriggered: page.catchKeyboard()
    }

    // Loaded when it is asked for: it brings a good deal of its own.
    Loader {
        id: chooser

        active: false
        source: "FolderChooser.qml"

        Connections {
            target: chooser.item
            ignoreUnknownSignals: true

            function onFolderChosen(folder: url) { page.model.openFolder(folder) }
        }
    }
}
