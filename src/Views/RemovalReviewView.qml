import QtQuick
import Orvane

/// The sheet in which the items of a plan are chosen and removed. It stays while a removal runs.
Sheet {
    id: sheet

    required property ReviewModel model

    signal cancelled

    objectName: "reviewSheet"
    title: model.title
    width: 720
    height: 590
    defaultButton: footer.trashButton
    cancelButton: footer.cancelButton
    firstFocusItem: (list.isEmpty ? footer.cancelButton : list) as Item

    Item {
        id: header

        width: parent.width
        height: icon.height + 2 * 20

        Image {
            id: icon

            x: 20
            y: 20
            width: 52
            height: 52
            source: sheet.model.iconSource
            sourceSize { width: 52; height: 52 }
            asynchronous: true
            fillMode: Image.PreserveAspectFit
        }

        Column {
            anchors {
                left: icon.right; leftMargin: 14
                right: parent.right; rightMargin: 20
                verticalCenter: parent.verticalCenter
            }
            spacing: 3

            OneLineText {
                width: parent.width
                line: sheet.model.title
                font: Theme.weighted(Theme.title2, Font.Bold)
                Accessible.role: Accessible.Heading
            }

            PlainText {
                width: parent.width
                text: "Selected files will be moved to Trash. Review the list carefully."
                color: Theme.secondary
                elide: Text.ElideRight
            }
        }
    }

    Divider {
        id: upperDivider

        y: header.height
        width: parent.width
    }

    ReviewList {
        id: list

        anchors { left: parent.left; right: parent.right; top: upperDivider.bottom; bottom: lowerDivider.top }
        model: sheet.model
    }

    Divider {
        id: lowerDivider

        width: parent.width
        anchors.bottom: footer.top
    }

    ReviewFooter {
        id: footer

        width: parent.width
        anchors.bottom: parent.bottom
        model: sheet.model
        onCancelled: sheet.cancelled()
    }

    Alert {
        objectName: "confirmationAlert"
        visible: sheet.model.isConfirmingPermanentDeletion
        title: "Delete Selected Items Permanently?"
        message: sheet.model.confirmationMessage
        actions: [
            AlertAction {
                text: "Cancel"
                isDefault: true
                isCancel: true
                onTriggered: sheet.model.cancelConfirmation()
            },
            AlertAction {
                text: "Delete Permanently"
                isDestructive: true
                onTriggered: sheet.model.deletePermanently()
            }
        ]
    }

    Alert {
        id: resultAlert

        objectName: "resultAlert"
        visible: sheet.model.hasResult
        title: "Uninstall Result"
        actions: AlertAction {
            text: "Done"
            isDefault: true
            onTriggered: sheet.model.acknowledgeResult()
        }

        // The words stay while the alert fades away.
        Binding on message {
            when: sheet.model.hasResult
            value: sheet.model.resultMessage
            restoreMode: Binding.RestoreNone
        }
    }
}
