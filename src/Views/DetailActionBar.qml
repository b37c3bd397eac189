import QtQuick
import Orvane

/// The bar below the pane, with the button that opens the review.
Rectangle {
    id: bar

    required property DetailModel model

    implicitHeight: reviewButton.height + 2 * 14
    color: Theme.bar

    Divider {
        anchors { left: parent.left; right: parent.right; bottom: parent.top }
    }

    SymbolLabel {
        anchors {
            left: parent.left; leftMargin: 28
            right: reviewButton.left; rightMargin: 8
            verticalCenter: parent.verticalCenter
        }
        spacing: 8
        symbol: "checklist"
        text: "Review every selected item before removal"
        font: Theme.callout
        color: Theme.secondary
    }

    PushButton {
        id: reviewButton

        objectName: "reviewButton"
        anchors { right: parent.right; rightMargin: 28; verticalCenter: parent.verticalCenter }
        symbol: "trash"
        text: "Review Uninstall…"
        isProminent: true
        isLarge: true
        enabled: bar.model.canReview
        onClicked: bar.model.isShowingRemovalSheet = true
    }
}
