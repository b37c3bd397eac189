import QtQuick
import Orvane

/// The buttons below the list of the review, and the progress of the removal.
Item {
    id: footer

    required property ReviewModel model

    readonly property alias cancelButton: cancelButton
    readonly property alias trashButton: trashButton

    signal cancelled

    implicitHeight: buttons.height + 2 * 16

    PushButton {
        id: selectAllButton

        objectName: "selectAllButton"
        x: 16
        anchors.verticalCenter: parent.verticalCenter
        text: footer.model.selectAllTitle
        enabled: !footer.model.isRemoving
        onClicked: footer.model.toggleAll()
    }

    Row {
        id: progress

        // Between the buttons, whatever room their font leaves there.
        readonly property real room: buttons.x - selectAllButton.x - selectAllButton.width - 2 * 8

        objectName: "removalProgress"
        anchors { right: buttons.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
        spacing: 5
        visible: footer.model.isRemoving

        Spinner { id: spinner; anchors.verticalCenter: parent.verticalCenter }

        PlainText {
            width: Math.min(Math.ceil(implicitWidth), progress.room - spinner.width - progress.spacing)
            text: footer.model.progressText
            color: Theme.secondary
            elide: Text.ElideRight
        }
    }

    Row {
        id: buttons

        anchors { right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
        spacing: 8

        PushButton {
            id: cancelButton

            objectName: "cancelButton"
            text: "Cancel"
            enabled: !footer.model.isRemoving
            onClicked: footer.cancelled()
        }

        PushButton {
            objectName: "deletePermanentlyButton"
            symbol: "trash.slash"
            text: "Delete Permanently"
            isDestructive: true
            enabled: footer.model.canRemove
            onClicked: footer.model.isConfirmingPermanentDeletion = true
        }

        PushButton {
            id: trashButton

            objectName: "moveToTrashButton"
            symbol: "trash"
            text: "Move Selected to Trash"
            isProminent: true
            enabled: footer.model.canRemove
            onClicked: footer.model.moveToTrash()
        }
    }
}
