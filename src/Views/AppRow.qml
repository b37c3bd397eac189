import QtQuick
import Orvane

/// An application in the list. It fades in, leaves towards the leading edge while it fades, and glides to where a change
/// of the list has put it. All of that is the row's own and only how it is drawn: in the list it has its final place and
/// height at once, so that nothing that comes between can leave it half done.
Item {
    id: row

    required property int index
    required property string name
    /// What stands in the place of a name that is empty.
    required property string fileName
    required property string caption
    required property bool isInstalled
    required property bool isSystemApplication
    required property string iconSource
    required property int rowHeight
    required property bool isSelected
    /// The list has the keyboard, and its window too.
    required property bool isEmphasized

    /// Where the row was seen before the list changed, from the list's top edge; not a number for one that was not.
    property real formerPlace: NaN
    readonly property bool isEntering: entrance.running

    property real presence: 1
    property real slide: 0
    property real displacement: 0
    property bool isLeaving: false

    readonly property bool isHighlighted: isSelected && isEmphasized
    readonly property color ink: isHighlighted ? Theme.accentText : Theme.label
    readonly property color faintInk: isHighlighted ? Theme.faded(Theme.accentText, Theme.hasHighContrast ? 0.8 : 0.6) : Theme.tertiary
    readonly property color paleInk: isHighlighted ? Theme.faded(Theme.accentText, 0.8) : Theme.secondary

    signal chosen

    /// Starts from that much lower than the row's place, and goes there.
    function glide(distance: real) {
        displacement += distance
        gliding.restart()
    }

    height: isLeaving ? 0 : rowHeight

    Accessible.ignored: isLeaving
    Accessible.role: Accessible.ListItem
    Accessible.name: (name || fileName) + ", " + caption
    Accessible.focusable: true
    Accessible.selectable: true
    Accessible.selected: isSelected
    Accessible.onPressAction: chosen()

    ListView.onAdd: entrance.start()
    ListView.onRemove: {
        isLeaving = true
        entrance.stop()
        exit.start()
    }

    TapHandler {
        // A list selects as the button goes down.
        onPressedChanged: if (pressed && row.index >= 0) row.chosen()
    }

    Item {
        x: -row.slide * (row.width + row.x)
        y: Math.round(row.displacement)
        width: row.width
        height: row.rowHeight
        opacity: row.presence

        PixelRectangle {
            anchors.fill: parent
            radius: 6
            color: row.isEmphasized ? Theme.accent : Theme.inactiveSelection
            visible: row.isSelected
        }

        Image {
            id: icon

            objectName: "rowIcon"
            x: 8
            anchors.verticalCenter: parent.verticalCenter
            width: 34
            height: 34
            source: row.iconSource
            sourceSize { width: 34; height: 34 }
            asynchronous: true
            opacity: column.opacity
        }

        Column {
            id: column

            anchors { left: icon.right; leftMargin: 10; right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
            spacing: 3
            opacity: row.isInstalled || Theme.hasHighContrast ? 1 : 0.62

            Row {
                spacing: 5

                OneLineText {
                    width: Math.min(Math.ceil(implicitWidth), column.width - (lock.visible ? lock.width + parent.spacing : 0))
                    line: row.name || row.fileName
                    drop: -0.5
                    font: Theme.weighted(Theme.body, Font.Medium)
                    color: row.name ? row.ink : row.faintInk
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }

                Symbol {
                    id: lock

                    anchors.verticalCenter: parent.verticalCenter
                    name: "lock.fill"
                    size: Theme.symbolSize(Theme.caption2.pixelSize)
                    color: row.paleInk
                    visible: row.isSystemApplication
                }
            }

            OneLineText {
                width: parent.width
                line: row.caption
                drop: 1
                font: Theme.caption
                color: row.isInstalled || row.isHighlighted ? row.paleInk : Theme.red
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }

    NumberAnimation {
        id: entrance

        target: row
        property: "presence"
        from: 0
        to: 1
        duration: Theme.listDuration
        easing.type: Easing.InOutQuad
    }

    NumberAnimation {
        id: gliding

        target: row
        property: "displacement"
        to: 0
        duration: Theme.listDuration
        easing.type: Easing.InOutQuad
    }

    SequentialAnimation {
        id: exit

        PropertyAction { target: row; property: "ListView.delayRemove"; value: true }
        ParallelAnimation {
            NumberAnimation { target: row; property: "slide"; to: 1; duration: Theme.listDuration; easing.type: Easing.InOutQuad }
            NumberAnimation { target: row; property: "presence"; to: 0; duration: Theme.listDuration; easing.type: Easing.InOutQuad }
        }
        PropertyAction { target: row; property: "ListView.delayRemove"; value: false }
    }
}
