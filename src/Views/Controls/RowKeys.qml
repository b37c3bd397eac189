import QtQuick

/// The keys that go from row to row of a list: arrows, pages, Home and End. A key that leads nowhere else is left to
/// what is around the list.
QtObject {
    property int count: 0
    /// The row that the list is at; -1 for none.
    property int current: -1
    /// 0 where pages are not the list's.
    property int rowsPerPage: 0

    signal rowRequested(int row)

    function rowAfter(key: int): int {
        const last = count - 1
        const isAtRow = current >= 0
        switch (key) {
        case Qt.Key_Up: return isAtRow ? Math.max(0, current - 1) : last
        case Qt.Key_Down: return Math.min(last, current + 1)
        case Qt.Key_PageUp: return rowsPerPage > 0 ? Math.min(last, Math.max(0, current - rowsPerPage)) : -1
        case Qt.Key_PageDown: return rowsPerPage > 0 ? Math.min(last, Math.max(0, current) + rowsPerPage) : -1
        case Qt.Key_Home: return Math.min(last, 0)
        case Qt.Key_End: return last
        }
        return -1
    }

    /// Whether the key leads to another row; then that is asked for.
    function go(key: int): bool {
        const row = rowAfter(key)
        if (row < 0 || row === current)
            return false
        rowRequested(row)
        return true
    }
}
