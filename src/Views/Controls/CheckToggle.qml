import QtQuick
import QtQuick.Templates as T
import Orvane

/// A check box with a label: a text, or whatever the view puts into `contentItem`. The whole label ticks it.
T.CheckBox {
    id: toggle

    function activate() {
        if (!enabled)
            return
        toggle.toggle()
        toggled()
        clicked()
    }

    implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
    implicitHeight: Math.max(implicitContentHeight, implicitIndicatorHeight) + topPadding + bottomPadding
    leftPadding: indicator.width + spacing
    spacing: 6
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    font: Theme.body

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.description: enabled ? "" : "dimmed"
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: activate()
    Accessible.onToggleAction: activate()

    indicator: Surface {
        readonly property color rest: toggle.checked ? Theme.accent : Theme.field

        implicitWidth: Theme.scaled(14)
        implicitHeight: implicitWidth
        y: Math.round((toggle.height - height) / 2)
        radius: 3.5
        fill: Qt.darker(rest, toggle.down ? 1.1 : toggle.hovered ? 1.03 : 1)
        line: toggle.checked ? "transparent" : Theme.controlLine
        opacity: toggle.enabled ? 1 : Theme.disabledOpacity

        Symbol {
            anchors.centerIn: parent
            name: "tick"
            size: Theme.scaled(12)
            color: Theme.accentText
            visible: toggle.checked
        }

        FocusRing {
            shapeRadius: parent.radius
            visible: toggle.visualFocus
        }
    }

    contentItem: PlainText {
        text: toggle.text
        font: toggle.font
        opacity: toggle.enabled ? 1 : Theme.disabledOpacity
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
