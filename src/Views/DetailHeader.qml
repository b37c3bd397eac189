import QtQuick
import Orvane

/// Which application the pane is about: icon, name, identifier, version and size.
Item {
    id: header

    required property DetailModel model

    implicitHeight: Math.max(icon.height, facts.height)

    Accessible.role: Accessible.Grouping
    Accessible.name: header.model.name || header.model.fileName

    Image {
        id: icon

        anchors.verticalCenter: parent.verticalCenter
        width: 76
        height: 76
        source: header.model.iconSource
        sourceSize { width: 76; height: 76 }
        asynchronous: true
        fillMode: Image.PreserveAspectFit
    }

    Column {
        id: facts

        anchors {
            left: icon.right; leftMargin: 18
            right: revealButton.left; rightMargin: 18
            verticalCenter: parent.verticalCenter
        }
        spacing: 5

        OneLineText {
            width: parent.width
            line: header.model.name || header.model.fileName
            color: header.model.name ? Theme.label : Theme.tertiary
            font: Theme.weighted(Theme.largeTitle, Font.Bold)
            // Only its length breaks a title into lines.
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
        }

        OneLineText {
            width: parent.width
            // A line cut short would be as high as its font wants.
            height: Theme.lineHeight(font.pixelSize)
            line: header.model.identifierText
            font: Theme.monospacedCallout
            color: Theme.secondary
        }

        Item {
            width: parent.width
            height: version.height

            SymbolLabel {
                id: version

                width: Math.min(Math.ceil(implicitWidth), Math.max(0, parent.width - 12 - size.width))
                symbol: "number"
                text: header.model.versionText
                font: Theme.caption
                color: Theme.secondary
            }

            SymbolLabel {
                id: size

                anchors { left: version.right; leftMargin: 12 }
                width: Math.ceil(implicitWidth)
                symbol: "internaldrive"
                text: header.model.sizeText
                font: Theme.caption
                color: Theme.secondary
            }
        }
    }

    PushButton {
        id: revealButton

        objectName: "showInFinderButton"
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        symbol: "folder"
        text: "Show in Finder"
        onClicked: header.model.revealApplication()
    }
}
