pragma ComponentBehavior: Bound
import QtQuick
import Orvane

/// Rows of related items. The Tab key comes to one of them, the arrow keys to the others.
Column {
    id: list

    required property var items

    property int currentRow: 0

    signal revealRequested(string key)

    function moveBy(rows: int): bool {
        const row = repeater.itemAt(currentRow + rows)
        row?.forceActiveFocus(Qt.TabFocusReason)
        return row !== null
    }

    spacing: 8

    Accessible.role: Accessible.List

    Keys.onUpPressed: event => event.accepted = moveBy(-1)
    Keys.onDownPressed: event => event.accepted = moveBy(1)

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
