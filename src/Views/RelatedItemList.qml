pragma ComponentBehavior: Bound
import QtQuick
import Orvane

/// Rows of related items, in a pane that scrolls. The Tab key comes to one of them, the arrow, Home and End keys to the
/// others. However many there are, only those exist that are in sight or near it.
Item {
    id: list

    required property var items
    /// What the items are, for a screen reader.
    required property string title
    /// The pane, and where the list begins in what it scrolls.
    required property ScrollArea pane
    required property real topInPane

    readonly property int spacing: 8
    readonly property int rowHeight: Theme.lineHeight(Theme.body.pixelSize) + 2
                                     + Theme.lineHeight(Theme.caption.pixelSize) + 2 * 4

    signal revealRequested(string key)

    function inside(y: real): real {
        return Math.max(0, Math.min(height, y))
    }

    implicitHeight: Math.max(0, rows.count * (rowHeight + spacing) - spacing)

    ListView {
        id: rows

        readonly property RowKeys rowKeys: RowKeys {
            count: rows.count
            current: rows.currentIndex
            onRowRequested: row => rows.currentIndex = row
        }

        // It stands where the part is that can be seen, and shows that part.
        y: list.inside(list.pane.contentY - list.topInPane)
        width: list.width
        height: list.inside(list.pane.contentY - list.topInPane + list.pane.height) - y
        contentY: y
        model: list.items
        spacing: list.spacing
        cacheBuffer: 10 * list.rowHeight
        interactive: false
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        activeFocusOnTab: count > 0

        Accessible.role: Accessible.List
        Accessible.name: list.title
        Accessible.ignored: count === 0

        // A row from far away has its place only now.
        onCurrentItemChanged: if (currentItem?.activeFocus) list.pane.reveal(currentItem)

        Keys.onPressed: event => event.accepted = rowKeys.go(event.key)

        delegate: RelatedItemRow {
            width: rows.width
            height: list.rowHeight
            onRevealRequested: list.revealRequested(key)
            onHelpItemChanged: tip?.follow(this)
        }

        RowTip { id: tip }
    }
}
