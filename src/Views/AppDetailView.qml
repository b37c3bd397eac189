pragma ComponentBehavior: Bound
import QtQuick
import Orvane

/// The pane of an application: its facts, what its removal would touch, and at the bottom the way to that. Starts afresh
/// when it is given another one's.
Rectangle {
    id: pane

    required property DetailModel model

    property RemovalReviewView sheet

    function bringSheet() {
        if (model.isShowingRemovalSheet && !sheet)
            sheet = sheetComponent.createObject(pane, { detail: model }) as RemovalReviewView
        model.isSheetInView = sheet !== null
    }

    function takeSheetAway(detail: DetailModel) {
        sheet.destroy()
        sheet = null
        detail.isSheetInView = false
    }

    function holds(item: Item): bool {
        for (let ancestor = item; ancestor; ancestor = ancestor.parent) {
            if (ancestor === pane)
                return true
        }
        return false
    }

    color: Theme.window
    onModelChanged: scroll.contentY = 0

    Keys.forwardTo: [scroll]

    ScrollArea {
        id: scroll

        objectName: "detailScroll"
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: actionBar.top }
        contentHeight: stack.height

        Column {
            id: stack

            readonly property real lineWidth: width - leftPadding - rightPadding

            width: scroll.width
            padding: 28
            spacing: 24

            DetailHeader {
                objectName: "detailHeader"
                width: stack.lineWidth
                model: pane.model
            }

            Notice {
                objectName: "availabilityNotice"
                width: stack.lineWidth
                visible: !pane.model.isInstalled
                symbol: "app.badge.checkmark"
                title: "Application is no longer installed"
                message: "Orvane kept this saved entry. Any remaining related files can still be reviewed and removed."
                ink: Theme.secondary
                fill: Theme.quaternaryFill(0.4)
            }

            Notice {
                objectName: "protectionNotice"
                width: stack.lineWidth
                visible: pane.model.isSystemApplication
                symbol: "lock.shield.fill"
                title: "Protected by macOS"
                message: "System applications cannot be removed by Orvane."
                ink: Theme.orange
                fill: Theme.faded(Theme.orange, 0.1)
            }

            SummaryCards {
                objectName: "summaryCards"
                width: stack.lineWidth
                model: pane.model
            }

            DetailSection {
                id: servicesSection

                objectName: "servicesSection"
                width: stack.lineWidth
                title: "Services and Processes"
                symbol: "gearshape.2.fill"

                Spinner { visible: pane.model.isLoading }

                EmptyDetailRow {
                    width: parent.width
                    visible: pane.model.showsEmptyServices
                    text: "No active processes or launch services were detected."
                    symbol: "checkmark.circle.fill"
                }

                Repeater {
                    model: pane.model.services
                    delegate: RunningServiceRow { width: parent?.width ?? 0 }
                }

                RelatedItemList {
                    width: parent.width
                    items: pane.model.launchItems
                    title: servicesSection.title
                    pane: scroll
                    topInPane: servicesSection.contentTop + y
                    onRevealRequested: key => pane.model.reveal(key)
                }
            }

            DetailSection {
                id: filesSection

                objectName: "filesSection"
                width: stack.lineWidth
                title: "Files Found"
                symbol: "folder.badge.gearshape"

                Spinner { visible: pane.model.isLoading }

                RelatedItemList {
                    width: parent.width
                    items: pane.model.fileItems
                    title: filesSection.title
                    pane: scroll
                    topInPane: filesSection.contentTop + y
                    onRevealRequested: key => pane.model.reveal(key)
                }
            }
        }
    }

    DetailActionBar {
        id: actionBar

        objectName: "actionBar"
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        model: pane.model
    }

    // Made when it is asked for, and there until it has slid away. The pane may be another application's before it goes.
    Component {
        id: sheetComponent

        RemovalReviewView {
            required property DetailModel detail

            model: detail.review
            visible: detail.isShowingRemovalSheet
            onCancelled: detail.dismissSheet()
            onClosed: pane.takeSheetAway(detail)
        }
    }

    Connections {
        target: pane.model

        function onIsShowingRemovalSheetChanged() { pane.bringSheet() }
    }
}
