import QtQuick
import QtQuick.Templates as T

/// Content that scrolls up and down, as on a desktop: by wheel, bar and keys, not by dragging it. What the keyboard
/// comes to is scrolled into view.
Flickable {
    id: area

    /// How far from the edge what the keyboard comes to shall be, in points.
    property real breathingSpace: 28
    readonly property Item focusItem: Window.activeFocusItem

    function scrollBy(distance: real) {
        contentY = Math.round(Math.max(0, Math.min(contentHeight - height, contentY + distance)))
    }

    function reveal(item: Item) {
        const top = item.mapToItem(contentItem, 0, 0).y
        const bottom = top + item.height
        if (top - breathingSpace < contentY)
            scrollBy(top - breathingSpace - contentY)
        else if (bottom + breathingSpace > contentY + height)
            scrollBy(bottom + breathingSpace - contentY - height)
    }

    function holds(item: Item): bool {
        for (let ancestor = item; ancestor; ancestor = ancestor.parent) {
            if (ancestor === contentItem)
                return true
        }
        return false
    }

    contentWidth: width
    interactive: false
    clip: true

    onFocusItemChanged: if (focusItem && holds(focusItem)) reveal(focusItem)
    // A larger window may leave less to scroll.
    onHeightChanged: scrollBy(0)
    onContentHeightChanged: scrollBy(0)

    Keys.onPressed: event => {
        const distances = {
            [Qt.Key_PageUp]: -height,
            [Qt.Key_PageDown]: height,
            [Qt.Key_Home]: -contentHeight,
            [Qt.Key_End]: contentHeight,
            [Qt.Key_Up]: -40,
            [Qt.Key_Down]: 40
        }
        event.accepted = event.key in distances
        if (event.accepted)
            scrollBy(distances[event.key])
    }

    T.ScrollBar.vertical: OverlayScrollBar { id: bar }

    ScrollWheel {
        view: area
        bar: bar
    }
}
