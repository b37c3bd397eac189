pragma ComponentBehavior: Bound
import QtQuick

/// Eight fading spokes that turn once a second while they can be seen.
Item {
    id: spinner

    readonly property alias isTurning: clock.running
    property int step: 0

    implicitWidth: 16
    implicitHeight: 16

    Accessible.role: Accessible.Animation
    Accessible.name: "In progress"

    Timer {
        id: clock

        interval: 1000 / 8
        repeat: true
        running: spinner.visible && spinner.Window.visibility !== Window.Hidden
                 && spinner.Window.visibility !== Window.Minimized
        onTriggered: spinner.step = (spinner.step + 1) % 8
    }

    Repeater {
        model: 8

        Rectangle {
            id: spoke

            required property int index

            x: spinner.width / 2 - width / 2
            y: spinner.height / 2 - 7.5
            width: 2
            height: 4.5
            radius: 1
            antialiasing: true
            color: Theme.label
            opacity: 0.85 - 0.09 * ((spinner.step - index + 8) % 8)
            transform: Rotation {
                origin { x: 1; y: 7.5 }
                angle: spoke.index * 45
            }
        }
    }
}
