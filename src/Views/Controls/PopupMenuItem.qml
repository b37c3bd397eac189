import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Orvane

/// A command in a menu, with its symbol and its keys where it has them.
T.MenuItem {
    id: item

    property string symbol
    readonly property string keys: (action as Command)?.keys ?? ""
    readonly property color ink: highlighted ? Theme.accentText : Theme.label

    function activate() {
        if (!enabled)
            return
        menu.dismiss()
        if (action)
            action.trigger(item)
        else
            triggered()
    }

    implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
    implicitHeight: Theme.scaled(22)
    horizontalPadding: 9
    hoverEnabled: true
    font: Theme.body
    opacity: enabled ? 1 : Theme.disabledOpacity

    Keys.onReturnPressed: activate()
    Keys.onEnterPressed: activate()

    Accessible.name: text
    Accessible.description: enabled ? "" : "dimmed"
    Accessible.onPressAction: activate()

    background: PixelRectangle {
        radius: 4
        color: Theme.accent
        visible: item.highlighted
    }

    contentItem: RowLayout {
        spacing: 6

        Symbol {
            name: item.symbol
            size: Theme.symbolSize(item.font.pixelSize)
            color: item.ink
            visible: name !== ""
        }

        PlainText {
            text: item.text
            font: item.font
            color: item.ink
            Accessible.ignored: true
            Layout.fillWidth: true
        }

        PlainText {
            text: item.keys
            font: item.font
            color: item.highlighted ? Theme.accentText : Theme.secondary
            visible: text !== ""
            Accessible.ignored: true
            Layout.leftMargin: 26
        }
    }
}
