import QtQuick
import QtQuick.Layouts
import Orvane

/// A question or a message that waits for an answer. The buttons stand one above the other in the order of
/// `actions`; the keyboard is with the default one. Escape presses the one that cancels, or the only one there is.
ModalPanel {
    id: alert

    property string message
    property list<AlertAction> actions
    property PushButton defaultButton

    function press(isMeant) {
        for (let i = 0; i < actions.length; ++i) {
            if (isMeant(actions[i]))
                return actions[i].trigger()
        }
    }

    width: 260
    height: Math.ceil(column.implicitHeight) + 18 + 16
    restingY: parent ? Math.round((parent.height - height) * 0.48) : 0
    radius: 12
    firstFocusItem: defaultButton
    onReturnPressed: press(action => action.isDefault)
    onEscapePressed: press(action => action.isCancel || actions.length === 1)

    Column {
        id: column

        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 16; topMargin: 18 }
        spacing: 10

        Image {
            anchors.horizontalCenter: parent.horizontalCenter
            source: Theme.programIcon
            sourceSize { width: 56; height: 56 }
        }

        PlainText {
            x: -8
            width: parent.width + 16
            text: alert.title
            font: Theme.headline
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }

        PlainText {
            width: parent.width
            text: alert.message
            font: Theme.subheadline
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }

        Item {
            width: parent.width
            implicitHeight: buttons.y + buttons.implicitHeight

            ColumnLayout {
                id: buttons

                y: 4
                width: parent.width
                spacing: 6

                Repeater {
                    model: alert.actions

                    PushButton {
                        required property AlertAction modelData

                        Layout.fillWidth: true
                        Layout.preferredHeight: Theme.scaled(28)
                        text: modelData.text
                        isProminent: modelData.isDefault
                        isDestructive: modelData.isDestructive
                        onClicked: modelData.trigger()
                        Component.onCompleted: if (modelData.isDefault) alert.defaultButton = this
                    }
                }
            }
        }
    }
}
