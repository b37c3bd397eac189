pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Orvane

/// The items of a plan, each with a box to tick. The Tab key comes to the list, the arrow, page, Home and
/// End keys to its rows.
FocusScope {
    id: area

    required property ReviewModel model

    readonly property bool isEmpty: list.count === 0

    Rectangle {
        anchors.fill: parent
        color: Theme.window
    }

    ListView {
        id: list

        readonly property RowKeys rowKeys: RowKeys {
            count: list.count
            current: list.currentIndex
            rowsPerPage: Math.max(1, Math.floor(list.height / (list.currentItem?.height ?? list.height)) - 1)
            onRowRequested: row => list.currentIndex = row
        }

        objectName: "reviewList"
        focus: true
        anchors.fill: parent
        model: area.model.items
        topMargin: 8
        bottomMargin: 8
        interactive: false
        clip: true
        // A screen reader is told of the rows that exist, not only of those in sight.
        cacheBuffer: 10 * 40
        activeFocusOnTab: true
        keyNavigationEnabled: false
        highlightMoveDuration: 0
        onCurrentIndexChanged: nextTurn.start()

        Keys.onPressed: event => event.accepted = rowKeys.go(event.key)

        Accessible.role: Accessible.List
        Accessible.name: area.model.title

        delegate: ReviewItemRow {
            x: 18
            width: list.width - 2 * 18
            focusPolicy: Qt.NoFocus
            // Nothing but the keyboard comes to a row, be it through the list.
            onActiveFocusChanged: if (activeFocus) focusReason = Qt.TabFocusReason
            enabled: !area.model.isRemoving
            onToggled: {
                list.currentIndex = index
                area.model.setSelected(index, checked)
            }
            onHelpItemChanged: tip?.follow(this)
        }

        RowTip { id: tip }

        T.ScrollBar.vertical: OverlayScrollBar { id: bar }

        ScrollWheel {
            view: list
            bar: bar
        }

        Timer {
            id: nextTurn

            interval: 0
            onTriggered: list.positionViewAtIndex(list.currentIndex, ListView.Contain)
        }
    }
}
