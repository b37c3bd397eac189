import QtQuick
import Orvane

/// The buttons below the list of the review, and the progress of the removal.
Item {
    id: footer

    required property ReviewModel model

    readonly property alias cancelButton: cancelButton
    readonly property alias trashButton: trashButton

    signal cancelled

    /// In a wide font the progress has no room between the buttons, and stands above them.
    readonly property bool isProgressAbove:
        progress.width > buttons.x - selectAllButton.x - selectAllButton.width - 2 * 8

    implicitHeight: buttons.height + 2 * 16 + (progress.visible && isProgressAbove ? progress.height + 8 : 0)

    PushButton {
        id: selectAllButton

        objectName: "selectAllButton"
        x: 16
        anchors.verticalCenter: buttons.verticalCenter
        text: footer.model.selectAllTitle
        enabled: !footer.model.isRemoving
        onClicked: footer.model.toggleAll()
    }

    Row {
        id: progress

        objectName: "removalProgress"
        x: (footer.isProgressAbove ? footer.width - 16 : buttons.x - 8) - width
        y: footer.isProgressAbove ? 16 : buttons.y + (buttons.height - height) / 2
        spacing: 5
        visible: footer.model.isRemoving

        Spinner { anchors.verticalCenter: parent.verticalCenter }

        PlainText {
            width: Math.ceil(implicitWidth)
            text: footer.model.progressText
            color: Theme.secondary
        }
    }

    Row {
        id: buttons

        anchors { right: parent.right; rightMargin: 16; bottom: parent.bottom; bottomMargin: 16 }
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
