import QtQuick

/// The line of help for all rows of a list: it appears below what the pointer rests on. Of that a row tells in its
/// `helpItem`, which is null when the pointer is elsewhere, and what is to be said in its `helpText`.
HelpTip {
    id: tip

    property var row: null

    /// To be called when a row's `helpItem` has changed.
    function follow(changed: var) {
        if (!changed.helpItem && row !== changed)
            return
        // It goes first, and waits anew before it appears elsewhere.
        row = null
        if (changed.helpItem)
            row = changed
    }

    parent: row?.helpItem ?? null
    text: row?.helpText ?? ""
    isWanted: row !== null
}
