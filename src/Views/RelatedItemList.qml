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

    readonly property RowKeys rowKeys: RowKeys {
        count: repeater.count
        current: list.currentRow
        onRowRequested: row => repeater.itemAt(row).forceActiveFocus(Qt.TabFocusReason)
    }

    spacing: 8

    Accessible.role: Accessible.List
    Accessible.name: title
    Accessible.ignored: repeater.count === 0

    Keys.onPressed: event => event.accepted = rowKeys.go(event.key)

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
