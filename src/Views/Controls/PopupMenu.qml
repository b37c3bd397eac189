import QtQuick
import QtQuick.Templates as T

/// A menu: below a title of the menu bar, or where the pointer asked for it.
T.Menu {
    id: menu

    implicitWidth: contentWidth + leftPadding + rightPadding
    implicitHeight: contentHeight + topPadding + bottomPadding
    contentWidth: {
        let widest = 0
        for (let i = 0; i < count; ++i)
            widest = Math.max(widest, itemAt(i)?.implicitWidth ?? 0)
        return Math.ceil(widest)
    }
    padding: 5
    margins: 4
    overlap: 1

    delegate: PopupMenuItem {}

    background: Surface {
        radius: 6
        fill: Theme.sheet
        line: Theme.separator
        isRaised: false

        SoftShadow {
            shapeRadius: 6
            reach: 16
            drop: 4
            strength: 0.22
        }
    }

    contentItem: ListView {
        implicitHeight: contentHeight
        model: menu.contentModel
        currentIndex: menu.currentIndex
        interactive: false
    }
}
