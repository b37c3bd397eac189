import QtQuick
import Orvane

/// An item of the plan that can be ticked for removal.
CheckToggle {
    id: row

    required property int index
    required property string kindTitle
    required property string symbol
    required property string path
    required property string sizeText
    required property bool requiresAdministrator
    required property bool isSelected
    required property string reason

    readonly property Item helpItem: hovered && !down ? row : null
    readonly property string helpText: reason

    spacing: 10
    checked: isSelected

    Accessible.name: kindTitle + ", " + path
    Accessible.description: sizeText + (requiresAdministrator ? ", Permission required" : "")
                            + (reason ? ", " + reason : "") + (enabled ? "" : ", dimmed")

    contentItem: ReviewItemLabel {
        kindTitle: row.kindTitle
        symbol: row.symbol
        path: row.path
        sizeText: row.sizeText
        requiresAdministrator: row.requiresAdministrator
        opacity: row.enabled ? 1 : Theme.disabledOpacity
    }
}
