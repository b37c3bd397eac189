pragma ComponentBehavior: Bound
import QtQuick
import Orvane

/// Rows of related items. The Tab key comes to one of them, the arrow, Home and End keys to the others.
Column {
    id: list

    required property var items
    /// What the items are, for a screen reader.
    required property string title

    property int currentRow: 0

    signal revealRequested(string key)

    function rowAfter(key: int): int {
        switch (key) {
        case Qt.Key_Up: return currentRow - 1
        case Qt.Key_Down: return currentRow + 1
        case Qt.Key_Home: return 0
        case Qt.Key_End: return repeater.count - 1
        }
        return -1
    }

    spacing: 8

    Accessible.role: Accessible.List
    Accessible.name: title
    Accessible.ignored: repeater.count === 0

    Keys.onPressed: event => {
        const row = repeater.itemAt(rowAfter(event.key))
        event.accepted = row !== null
        row?.forceActiveFocus(Qt.TabFocusReason)
    }

    Repeater {
        id: repeater

        model: list.items
        delegate: RelatedItemRow {
            width: list.width
            activeFocusOnTab: index === list.currentRow
            onActiveFocusChanged: if (activeFocus) list.currentRow = index
            onRevealRequested: list.revealRequested(key)
        }
    }
}
