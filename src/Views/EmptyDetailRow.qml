import QtQuick
import Orvane

/// What a section says that has nothing to list.
Item {
    property alias text: label.text
    property alias symbol: label.symbol

    implicitHeight: label.height + 2 * 5

    SymbolLabel {
        id: label

        y: 5
        width: parent.width
        color: Theme.secondary
    }
}
