pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Orvane

/// The list of applications. The arrow, page, Home and End keys select, and so does what is typed: the first row whose
/// name begins so. The selected row has the keyboard, so that a screen reader speaks it.
ListView {
    id: list

    required property SidebarModel sidebar

    readonly property int rowHeight: Theme.lineHeight(Theme.body.pixelSize) + 3
                                     + Theme.lineHeight(Theme.caption.pixelSize) + 2 * 9
    /// The model has changed and no picture of that has been drawn yet.
    property bool isChanging: false
    /// The selected row is kept in sight until what it was moved by is over, or the user scrolls.
    property bool isToReveal: false
    /// Also while a menu or a sheet has the keyboard for a while.
    readonly property bool isEmphasized: focus && Window.active
    /// What has been typed without a longer pause.
    property string typed

    readonly property RowKeys rowKeys: RowKeys {
        count: list.sidebar.count
        current: list.sidebar.selectedRow
        rowsPerPage: Math.max(1, Math.floor(list.height / list.rowHeight) - 1)
        onRowRequested: row => list.sidebar.select(row)
    }

    /// Gives the keyboard to the list and lets it go on with a key, so that a row is selected.
    function take(key: int) {
        forceActiveFocus(Qt.TabFocusReason)
        if (key === Qt.Key_Down || sidebar.selectedRow < 0)
            rowKeys.go(Qt.Key_Down)
    }

    /// Whether the text went on with what has been typed, or began it.
    function type(text: string): bool {
        if (text < (typed === "" ? "!" : " ") || text === "\u007f")
            return false
        typed += text
        pause.restart()
        sidebar.select(sidebar.rowBeginningWith(typed))
        return true
    }

    /// The rows that exist, in or near the visible part, from top to bottom.
    function rows() {
        return Array.from(contentItem.children).filter(item => item instanceof AppRow).sort((one, other) => one.y - other.y)
    }

    function rememberPlaces() {
        rest.restart()
        if (isChanging)
            return
        isChanging = true
        rows().forEach(row => row.formerPlace = row.y - contentY)
    }

    /// Has every row glide from where it was. One that came into sight with the change comes along with the row above.
    function glideRows() {
        let distance = 0
        for (const row of rows()) {
            if (!isNaN(row.formerPlace))
                distance = Math.max(-height, Math.min(height, row.formerPlace - (row.y - contentY)))
            if (distance !== 0 && !row.isEntering)
                row.glide(distance)
            row.formerPlace = NaN
        }
    }

    function revealSelectedRow() {
        if (!isToReveal || currentIndex < 0)
            return
        positionViewAtIndex(currentIndex, ListView.Contain)
        const lowest = currentItem.y - topMargin
        const highest = currentItem.y + rowHeight + bottomMargin - height
        contentY = Math.min(lowest, Math.max(highest, contentY))
    }

    function focusSelectedRow() {
        if (activeFocus)
            currentItem?.forceActiveFocus()
    }

    model: sidebar
    currentIndex: sidebar.selectedRow
    highlightMoveDuration: 0
    keyNavigationEnabled: false
    interactive: false
    clip: true
    // A screen reader is told of the rows that exist: some pages of them, not only what is in sight.
    cacheBuffer: 40 * rowHeight
    topMargin: 6
    bottomMargin: 6
    activeFocusOnTab: true

    Accessible.role: Accessible.List
    Accessible.name: "Applications"

    onCurrentIndexChanged: {
        isToReveal = true
        rest.restart()
        // Later: while the model tells of its change, the rows are not laid out yet.
        nextTurn.start()
    }
    onCurrentItemChanged: focusSelectedRow()
    onActiveFocusChanged: focusSelectedRow()

    Keys.onPressed: event => {
        const isCommand = event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier)
        event.accepted = rowKeys.go(event.key) || (!isCommand && type(event.text))
    }

    Timer {
        id: pause

        interval: 1000
        onTriggered: list.typed = ""
    }

    Connections {
        target: list.model

        function onRowsAboutToBeInserted() { list.rememberPlaces() }
        function onRowsAboutToBeRemoved() { list.rememberPlaces() }
        function onRowsAboutToBeMoved() { list.rememberPlaces() }
    }

    Connections {
        target: list.Window.window
        enabled: list.isChanging

        // The rows have been laid out, and are not drawn yet.
        function onAfterAnimating() {
            list.isChanging = false
            list.revealSelectedRow()
            list.glideRows()
        }
    }

    delegate: AppRow {
        x: 10
        width: list.width - 2 * 10
        rowHeight: list.rowHeight
        isSelected: index >= 0 && index === list.sidebar.selectedRow
        isEmphasized: list.isEmphasized
        onChosen: {
            list.sidebar.select(index)
            list.forceActiveFocus(Qt.MouseFocusReason)
        }
    }

    T.ScrollBar.vertical: OverlayScrollBar { id: bar }

    ScrollWheel {
        view: list
        bar: bar
        onWheel: list.isToReveal = false
    }

    Timer {
        id: nextTurn

        interval: 0
        onTriggered: list.revealSelectedRow()
    }

    Timer {
        id: rest

        // Rows that leave are in the list, without a height, until they are gone; then all places are final.
        interval: Theme.listDuration + 50
        onTriggered: {
            list.revealSelectedRow()
            list.isToReveal = false
        }
    }

    ContentUnavailable {
        objectName: "searchPlaceholder"
        parent: list
        anchors.centerIn: parent
        width: Math.min(300, parent.width - 2 * 16)
        visible: list.sidebar.showsSearchPlaceholder
        symbol: "magnifyingglass"
        title: list.sidebar.placeholderTitle
        description: list.sidebar.placeholderDescription
    }
}
