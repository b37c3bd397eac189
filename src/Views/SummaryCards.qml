import QtQuick
import Orvane

/// The plan in three numbers, in cards of one width that fill the row.
Item {
    id: cards

    required property DetailModel model

    readonly property real share: (width + spacing) / 3
    readonly property int spacing: 12

    /// Where a card begins. Cards begin and end on whole points, whatever the width.
    function edge(column: int): int {
        return Math.round(column * share)
    }

    implicitHeight: Math.max(first.implicitHeight, second.implicitHeight, third.implicitHeight)

    SummaryCard {
        id: first

        height: cards.height
        width: cards.edge(1) - cards.spacing
        title: "Related Items"
        value: cards.model.relatedItemsText
        symbol: "doc.on.doc.fill"
        tint: Theme.blue
    }

    SummaryCard {
        id: second

        x: cards.edge(1)
        height: cards.height
        width: cards.edge(2) - cards.spacing - x
        title: "Recoverable Space"
        value: cards.model.recoverableSpaceText
        symbol: "externaldrive.fill.badge.minus"
        tint: Theme.purple
    }

    SummaryCard {
        id: third

        x: cards.edge(2)
        height: cards.height
        width: cards.edge(3) - cards.spacing - x
        title: "Active Services"
        value: cards.model.activeServicesText
        symbol: "waveform.path.ecg"
        tint: Theme.green
    }
}
